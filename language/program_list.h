// The stored program: numbered lines in ascending order, each record holding its code and source.
// The list owns its records; every record's code holds references that are given back when it goes.
#pragma once

#include "language/code.h"

struct c_system_resource;
class c_parser;

constexpr int max_line_number = 99999;  // what the line-number check accepts: five digits
constexpr int load_first_number = 100;  // a loaded file's lines are numbered 100, 110, ...
constexpr int load_number_step = 10;

class c_program_list {
public:
    c_program_list() = default;
    c_program_list(const c_program_list&) = delete;
    c_program_list& operator=(const c_program_list&) = delete;
    ~c_program_list();

    // Stores, replaces or deletes the line numbered by parser->line_number; 22 "Out of memory"
    // (in translation too) leaves the line absent; another failed translation stores the source
    // with no code.
    void add(c_parser* parser, const char* text);
    void renumber(int start, int step);
    void clear();
    // 1, or 0 with 11 "Device I/O error"; on failure a file saved over is left as it was.
    int save(const char* name);
    // Writes the file as save does, but records no error and leaves the program counted as unsaved.
    bool write(const char* name) const;
    // 1, or 0 with the error set: 12 "Cannot open file" for a file that cannot be opened or read.
    int load(const char* name, int start, int step);
    void list(int from, int to);
    // Whether the lines changed since the program was last saved or loaded.
    bool differs_from_file() const { return changes != changes_at_file; }

    c_program_line* first = nullptr;
    c_program_line* current = nullptr;
    c_system_resource* p_system_resource = nullptr;
    unsigned changes = 0;          // counts every line stored, replaced, deleted or renumbered
    unsigned changes_at_file = 0;  // the count when the program was last saved or loaded
};
