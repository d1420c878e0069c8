// Keys of a terminal: characters and curses' key codes as engine key codes, and the host's requests.
#include <gtest/gtest.h>

#include <curses.h>

#include "host/terminal_keys.h"

namespace {

struct key_case {
    int code;
    bool is_function_key;
    int key;
};

const key_case characters[] = {
    {'a', false, 'a'},
    {' ', false, ' '},            // the first printable character
    {'~', false, '~'},            // and the last of ASCII
    {0x1F, false, 0},             // a control byte below the space gives nothing
    {0x7F, false, 8},             // what most terminals send for Back space
    {0x08, false, 8},             // what the others send
    {'\r', false, 13},            // Enter in raw mode
    {'\n', false, 13},            // Control+J
    {'\t', false, 9},
    {0x03, false, terminal_break},  // Control+C
    {0x1B, false, 0},             // Escape alone
    {0x13, false, 0},             // Control+S is not Delete here: only the Delete key is
    {0x00, false, 0},
    {0x9F, false, 0},             // the control half of Latin-1
    {0xA0, false, 0xA0},          // the printable half
    {0xFF, false, 0xFF},
    {0x100, false, 0},            // beyond what a cell holds
    {0x20AC, false, 0},           // the euro sign
};

const key_case function_keys[] = {
    {KEY_RIGHT, true, 28},
    {KEY_LEFT, true, 29},
    {KEY_UP, true, 30},
    {KEY_DOWN, true, 31},
    {KEY_DC, true, 19},           // Delete
    {KEY_IC, true, 18},           // Insert
    {KEY_BACKSPACE, true, 8},
    {KEY_ENTER, true, 13},        // the keypad's Enter
    {KEY_RESIZE, true, terminal_resize},
    {KEY_HOME, true, 0},
    {KEY_END, true, 0},
    {KEY_PPAGE, true, 0},
    {KEY_NPAGE, true, 0},
    {KEY_F(1), true, 0},
    {'a', true, 0},               // a key code that happens to equal a character is no character
};

void expect_keys(const key_case* first, const key_case* last)
{
    for (const key_case* c = first; c != last; ++c)
        EXPECT_EQ(terminal_key(c->code, c->is_function_key), c->key) << "code " << c->code;
}

}  // namespace

TEST(terminal_keys, characters_become_their_codes_and_control_bytes_the_editing_keys)
{
    expect_keys(std::begin(characters), std::end(characters));
}

TEST(terminal_keys, decoded_keys_become_the_editing_codes_and_the_rest_nothing)
{
    expect_keys(std::begin(function_keys), std::end(function_keys));
}
