// The statement loop and the statements that steer control (GOTO, IF, FOR/NEXT, GOSUB/RETURN),
// assignments, DIM's dimensioning, and the ten file channels. It owns the stored program.
#pragma once

#include <cstdio>

#include "language/program_list.h"
#include "runtime/command.h"
#include "runtime/function.h"

struct c_system_resource;
class c_parser;
class c_variable_integer;
class c_variable_label;
class c_value;

constexpr int for_stack_size = 32;
constexpr int gosub_stack_size = 128;
constexpr int channel_count = 10;

struct c_for_entry {
    c_variable_integer* counter;
    int step;
    int limit;
    c_program_line* resume_line;            // null for an immediate line
    const unsigned char* resume_position;   // where the body starts
};

struct c_gosub_entry {
    c_program_line* resume_line;
    const unsigned char* resume_position;   // just after the GOSUB statement
};

class c_interpreter {
public:
    c_interpreter() = default;
    c_interpreter(const c_interpreter&) = delete;
    c_interpreter& operator=(const c_interpreter&) = delete;

    // Runs the workspace's immediate line (and the program, when it moves there); returns the number
    // of the line current when the loop stopped, or 0.
    int run(c_parser* parser);

    void cmd_goto(const unsigned char*& p);
    void cmd_if(const unsigned char*& p);
    void cmd_for(const unsigned char*& p);
    void cmd_next(const unsigned char*& p);
    void cmd_gosub(const unsigned char*& p);
    void cmd_return(const unsigned char*& p);
    c_variable_integer* process_ivar(const unsigned char*& p);
    void process_rvar(const unsigned char*& p);
    void process_svar(const unsigned char*& p);
    void process_iarray(const unsigned char*& p);
    void process_rarray(const unsigned char*& p);
    void process_sarray(const unsigned char*& p);

    // Reads "(", 1 to 8 subscripts and ")"; the count, or 0 after recording an error.
    int dimension_check(const unsigned char*& p, int* indices);
    void dimension_alloc(const unsigned char*& p);
    void dimension_free();

    void file_open(int channel, const char* name, const char* mode);
    void file_close(int channel);
    void file_print(int channel, const char* text, int length);
    int file_input(int channel, char* buffer, int size);
    int file_eof(int channel);
    void all_file_close();

    c_system_resource* p_system_resource = nullptr;
    c_command command;
    c_function function;
    c_for_entry for_stack[for_stack_size] = {};
    int for_depth = 0;
    c_gosub_entry gosub_stack[gosub_stack_size] = {};
    int gosub_depth = 0;
    std::FILE* files[channel_count] = {};
    c_program_list program_list;

private:
    template <class array_type, class value_type>
    array_type* element_assignment(const unsigned char*& p, int* indices, int& count, value_type& value);
};
