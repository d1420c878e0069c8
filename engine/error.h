// Error codes: 0 is no error, every other code indexes the message table the console prints.
// The numbers are fixed: programs and reports rely on them.
#pragma once

constexpr int error_none = 0;                 // "No error"
constexpr int error_break = 1;                // "Break"
constexpr int error_too_long_line = 2;        // "Too long line"
constexpr int error_illegal_line_number = 3;  // "Illegal line number"
constexpr int error_syntax = 4;               // "Syntax error"
constexpr int error_division_by_zero = 5;     // "Division by zero"
constexpr int error_type_mismatch = 6;        // "Type mismatch"
constexpr int error_right_bracket = 7;        // "Not found right blacket ')'"
constexpr int error_string_space = 8;         // "Out of string space"
constexpr int error_illegal_parameter = 9;    // "Illegal parameter"
constexpr int error_invalid_label = 10;       // "Invalid label"
constexpr int error_device_io = 11;           // "Device I/O error"
constexpr int error_cannot_open = 12;         // "Cannot open file"
constexpr int error_redimensioned = 13;       // "Redimensioned array"
constexpr int error_subscript = 14;           // "Subscript out of range"
constexpr int error_loop_counter = 15;        // "Illegal loop counter"
constexpr int error_next_without_for = 16;    // "NEXT without FOR"
constexpr int error_for_overflow = 17;        // "FOR stack overflow"
constexpr int error_already_opened = 18;      // "Already opened"
constexpr int error_invalid_descriptor = 19;  // "Invalid descriptor"
constexpr int error_return_without_gosub = 20; // "RETURN without GOSUB"
constexpr int error_gosub_overflow = 21;      // "GOSUB stack overflow"
constexpr int error_out_of_memory = 22;       // "Out of memory"

constexpr int error_count = 23;
extern const char* const error_messages[];  // unsized: its definition's count is checked

// The message of a code; codes outside the table read as "No error" rather than past its end.
const char* error_message(int code);
