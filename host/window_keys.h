// The window's keys: SDL key presses and typed text turned into engine key codes or into the window's
// own actions. Pure functions of the event's fields, so a table tests them without a display.
#pragma once

#include <SDL2/SDL_keycode.h>

#include <vector>

enum class window_action {
    none,           // the key does nothing
    key,            // hand `code` to the engine
    force_break,    // Control+C
    paste,          // Control+V, Shift+Insert: type the clipboard's text
    copy_text,      // Control+Shift+C: the character grid to the clipboard
    screenshot,     // F12: the composed screen as vexil-N.png
    full_screen,    // F11, Alt+Enter: toggle
};

struct c_window_key {
    window_action action = window_action::none;
    int code = 0;  // for window_action::key
};

// A key press with the modifiers held (SDL's KMOD_ bits). Printable characters are not keys here:
// they come as typed text.
c_window_key map_key_down(SDL_Keycode key, unsigned modifiers);

// Typed text (UTF-8) as character codes: printable ASCII as itself, every other printable character
// (a malformed sequence too) as one "?"; control characters are left out.
void map_typed_text(const char* text, std::vector<int>& codes);

// Pasted text as keys: its characters as typed text, a line end (LF, CR, or CR LF) as one Enter,
// a tab as Tab; other control characters are left out.
void map_pasted_text(const char* text, std::vector<int>& codes);
