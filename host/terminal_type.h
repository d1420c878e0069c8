// Whether the terminal named by TERM can serve the terminal host: it must be known and able to move
// the cursor anywhere. Asked before curses starts, and by the automatic choice of a face.
#pragma once

#include <string>

// False with one line naming the type and what it lacks.
bool terminal_usable(std::string& error);
