// Keys of a terminal: characters and curses' key codes as engine key codes, and the host's requests.
#include <gtest/gtest.h>

#include <curses.h>

#include "host/terminal_keys.h"

TEST(terminal_keys, characters_and_decoded_keys_become_engine_codes_or_nothing)
{
    struct key_case { int code; bool is_function_key; int key; };
    const key_case keys[] = {
        {' ', false, ' '},              // the first printable character
        {'~', false, '~'},              // and the last of ASCII
        {0x1F, false, 0},               // a control byte below the space gives nothing
        {0x7F, false, 8},               // what most terminals send for Back space
        {0x08, false, 8},               // what the others send
        {'\r', false, 13},              // Enter in raw mode
        {'\n', false, 13},              // Control+J
        {'\t', false, 9},
        {0x03, false, terminal_break},  // Control+C
        {0x9F, false, 0},               // the control half of Latin-1
        {0xA0, false, '?'},             // the printable half: the console cannot show it
        {0xE9, false, '?'},             // e acute, decoded from UTF-8
        {0x20AC, false, '?'},           // the euro sign
        {0x1F600, false, '?'},          // beyond the basic plane
        {KEY_RIGHT, true, 28},
        {KEY_LEFT, true, 29},
        {KEY_UP, true, 30},
        {KEY_DOWN, true, 31},
        {KEY_DC, true, 19},             // Delete
        {KEY_IC, true, 18},             // Insert
        {KEY_BACKSPACE, true, 8},
        {KEY_ENTER, true, 13},          // the keypad's Enter
        {KEY_RESIZE, true, terminal_resize},
        {KEY_HOME, true, 0},            // like End, the pages and the function keys
        {'a', true, 0},                 // a key code that happens to equal a character is no character
    };
    for (const auto& c : keys)
        EXPECT_EQ(terminal_key(c.code, c.is_function_key), c.key) << "code " << c.code;
}
