// Kept apart from the screen: term.h defines macros (columns, lines) that clash with ordinary names.
#include "host/terminal_type.h"

#include <unistd.h>

#include <cstdlib>

#include <curses.h>
#include <term.h>

bool terminal_usable(std::string& error)
{
    const char* name = std::getenv("TERM");
    const std::string type = std::string("the terminal type \"") + (name != nullptr ? name : "") + "\"";
    int status = 0;
    if (name == nullptr || setupterm(name, STDOUT_FILENO, &status) != OK) {
        error = "cannot use " + type + ": it is not known";
        return false;
    }
    const char* move_cursor = tigetstr("cup");
    const bool addressable = move_cursor != nullptr && move_cursor != reinterpret_cast<char*>(-1);
    del_curterm(cur_term);
    if (!addressable)
        error = "cannot use " + type + ": it cannot move the cursor";
    return addressable;
}
