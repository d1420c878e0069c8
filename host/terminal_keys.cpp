// Raw mode hands over Control+C and the line ends as bytes; a terminal's Back space is either 8 or 127.
#include "host/terminal_keys.h"

#include <curses.h>

#include "console/text_editor.h"
#include "host/typed_character.h"

namespace {

constexpr int control_c = 3;
constexpr int byte_delete = 127;  // what most terminals send for Back space

int character_key(int character)
{
    switch (character) {
    case control_c:
        return terminal_break;
    case '\r':
    case '\n':
        return key_enter;
    case key_back_space:
    case byte_delete:
        return key_back_space;
    case key_tab:
        return key_tab;
    }
    return typed_character_key(static_cast<unsigned>(character));
}

int function_key(int code)
{
    switch (code) {
    case KEY_RIGHT:
        return key_right;
    case KEY_LEFT:
        return key_left;
    case KEY_UP:
        return key_up;
    case KEY_DOWN:
        return key_down;
    case KEY_DC:
        return key_delete;
    case KEY_IC:
        return key_insert;
    case KEY_BACKSPACE:
        return key_back_space;
    case KEY_ENTER:
        return key_enter;
    case KEY_RESIZE:
        return terminal_resize;
    }
    return 0;  // Home, End, Page Up, Page Down, function keys: nothing
}

}  // namespace

int terminal_key(int code, bool is_function_key)
{
    return is_function_key ? function_key(code) : character_key(code);
}
