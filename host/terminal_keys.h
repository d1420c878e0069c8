// Keys read from a terminal as engine key codes. Curses gives either a character (in raw mode the
// control bytes too) or, for the keys it decodes, one of its KEY_ codes.
#pragma once

// Besides engine key codes and 0 (no key), the mapping gives two requests for the host.
constexpr int terminal_break = -1;   // Control+C: break the running program
constexpr int terminal_resize = -2;  // the terminal changed size: draw everything again

// code is a character when is_function_key is false, else a curses KEY_ code.
int terminal_key(int code, bool is_function_key);
