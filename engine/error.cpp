// The message table, indexed by error code.
#include "engine/error.h"

#include <iterator>

const char* const error_messages[] = {
    "No error",
    "Break",
    "Too long line",
    "Illegal line number",
    "Syntax error",
    "Division by zero",
    "Type mismatch",
    "Not found right blacket ')'",  // the misspelling is the system's own message
    "Out of string space",
    "Illegal parameter",
    "Invalid label",
    "Device I/O error",
    "Cannot open file",
    "Redimensioned array",
    "Subscript out of range",
    "Illegal loop counter",
    "NEXT without FOR",
    "FOR stack overflow",
    "Already opened",
    "Invalid descriptor",
    "RETURN without GOSUB",
    "GOSUB stack overflow",
    "Out of memory",
};
static_assert(std::size(error_messages) == error_count);  // codes index it: a row dropped or added fails here

const char* error_message(int code)
{
    if (code < 0 || code >= error_count)
        return error_messages[0];
    return error_messages[code];
}
