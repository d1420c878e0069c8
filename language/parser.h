// The translation workspace for one line: splits off the line number and precompiles the rest into
// intermediate code, finding or creating the variables and labels it names.
#pragma once

#include "language/code.h"

struct c_system_resource;

constexpr int source_capacity = 256;   // a line is at most 255 characters
constexpr int code_capacity = 2560;    // no token is more than five times the text that makes it

class c_parser {
public:
    explicit c_parser(c_system_resource* resource = nullptr);

    // Resets error_code; -1 for a blank line, 0 for no number (or 3 "Illegal line number" set),
    // else the number, with the cursor left after the digits.
    int check_line_no(const char*& text);
    // -1 for blank text (nothing changes); line_number after success; 0 after a failure, with
    // error_code set, every reference of the partial code given back and code_length 0.
    int precompile(const char* text, c_program_line* line);
    // Gives back the references held by code_length bytes of code.
    void variable_release();

    char source[source_capacity];
    unsigned char code[code_capacity];
    int code_length = 0;
    int line_number = 0;
    c_system_resource* p_system_resource = nullptr;
    c_program_line* p_line = nullptr;  // the record given to the last precompile

private:
    void analyze_number(int& position, const char*& text);
    void analyze_symbol(int& position, const char*& text);
    void analyze_operator(int& position, const char*& text);
    void analyze_string(int& position, const char*& text);
    void analyze_label(int& position, const char*& text, bool statement_start, c_program_line* line);
    int get_operator_id(const char*& text);
};
