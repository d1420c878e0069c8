// The stored program: records in strictly ascending line-number order, each owning one block with its
// code followed by its source. A record's code references are given back before its code is replaced
// or the record freed, and with them the labels it defines. A line whose translation failed keeps
// its source and has no code (null, length 0), so no jump can land in it.
#include "language/program_list.h"

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>
#include <system_error>
#include <utility>

#include "console/text_editor.h"
#include "engine/allocation.h"
#include "engine/error.h"
#include "engine/system_resource.h"
#include "language/parser.h"
#include "runtime/variable.h"

namespace {

constexpr int file_line_size = 256;     // a file line of at most 255 characters and its terminator
constexpr int path_capacity = 4096;     // a path as long as Linux takes one, terminator included
constexpr char temporary_suffix[] = ".vexil-saving";

// Copies the workspace's code and source into one new block; false when the block cannot be had,
// with the record unchanged.
bool fill(c_program_line* line, const c_parser* parser)
{
    int code_length = parser->code_length;
    std::size_t source_length = std::strlen(parser->source);
    std::unique_ptr<unsigned char[]> block(allocate_array<unsigned char>(code_length + source_length + 1));
    if (block == nullptr)
        return false;
    std::memcpy(block.get(), parser->code, code_length);
    std::memcpy(block.get() + code_length, parser->source, source_length + 1);
    line->block = std::move(block);
    line->number = parser->line_number;
    line->code = code_length != 0 ? line->block.get() : nullptr;
    line->source = reinterpret_cast<char*>(line->block.get() + code_length);
    line->code_length = code_length;
    return true;
}

// Fills the record from the workspace. When the block cannot be had, the new code's references go
// back (with the labels it bound to this record) and 22 "Out of memory" is recorded.
bool store(c_program_line* line, const c_parser* parser, c_system_resource* res)
{
    if (fill(line, parser))
        return true;
    res->p_variable_manager->line_release(parser->code, parser->code_length, line);
    res->error_code.raise(error_out_of_memory);
    return false;
}

// Links the record in after `before`, or at the front when that is null.
void insert(c_program_list& program, c_program_line* line, c_program_line* before)
{
    ++program.changes;
    line->prev = before;
    line->next = before != nullptr ? before->next : program.first;
    if (line->next != nullptr)
        line->next->prev = line;
    if (before != nullptr)
        before->next = line;
    else
        program.first = line;
}

// Unlinks and frees a record whose references are already given back.
void remove(c_program_list& program, c_program_line* line)
{
    ++program.changes;
    if (program.first == line)
        program.first = line->next;
    if (program.current == line)
        program.current = nullptr;
    line->reject();
    delete line;
}

// Blank text (-1) is to delete. A translation that ran out of memory stores nothing either: a line
// kept without its code would fail only when run, with a syntax error that hides the cause.
bool translated(c_parser* parser, const char* text, c_program_line* line, c_system_resource* res)
{
    return parser->precompile(text, line) != -1 && res->error_code != error_out_of_memory;
}

// The old code's references go back before the new text is translated, so a variable that only
// this line named starts afresh: re-entering "10 i=i+1" counts from 0 again. Blank text deletes.
void replace(c_program_list& program, c_program_line* line, c_parser* parser, const char* text)
{
    c_system_resource* res = program.p_system_resource;
    ++program.changes;
    res->p_variable_manager->line_release(line->code, line->code_length, line);
    line->code = nullptr;
    line->code_length = 0;
    if (!translated(parser, text, line, res) || !store(line, parser, res))
        remove(program, line);
}

// A new line goes in after `before`; blank text for a line that does not exist changes nothing.
void add_new(c_program_list& program, c_program_line* before, c_parser* parser, const char* text)
{
    c_system_resource* res = program.p_system_resource;
    auto* line = allocate_object<c_program_line>();
    if (line == nullptr) {
        res->error_code.raise(error_out_of_memory);
        return;
    }
    if (!translated(parser, text, line, res) || !store(line, parser, res)) {
        delete line;
        return;
    }
    insert(program, line, before);
}

// Sets the workspace's line number through the same check that typed numbers pass.
bool number_line(c_parser& parser, long long number, c_system_resource* res)
{
    if (number < 1 || number > max_line_number) {
        res->error_code = error_illegal_line_number;
        return false;
    }
    char text[16];
    std::snprintf(text, sizeof text, "%d", static_cast<int>(number));
    const char* cursor = text;
    parser.check_line_no(cursor);
    return res->error_code == error_none;
}

// Every byte written, flushed and closed, or false.
bool write_lines(std::FILE* file, const c_program_line* first)
{
    bool written = true;
    for (const c_program_line* line = first; line != nullptr && written; line = line->next) {
        const std::size_t length = std::strlen(line->source);
        written = std::fwrite(line->source, 1, length, file) == length && std::fwrite("\r\n", 1, 2, file) == 2;
    }
    written = written && std::fflush(file) == 0;
    return std::fclose(file) == 0 && written;
}

// A device or a pipe cannot be replaced: it is written as it is.
bool write_in_place(const char* name, const c_program_line* first)
{
    std::FILE* file = std::fopen(name, "wb");
    return file != nullptr && write_lines(file, first);
}

// A file is replaced only by a complete new one: the program goes to a file beside it, which takes the
// old one's name and permissions once every byte is written. A full disk, a file-size limit or any
// other failure leaves the old file as it was.
bool write_replacing(const char* name, const c_program_line* first)
{
    char temporary[path_capacity + sizeof temporary_suffix];
    if (std::snprintf(temporary, sizeof temporary, "%s%s", name, temporary_suffix) >= static_cast<int>(sizeof temporary))
        return false;
    std::FILE* file = std::fopen(temporary, "wb");
    if (file == nullptr)
        return false;
    std::error_code failure;
    const auto permissions = std::filesystem::status(name, failure).permissions();
    if (write_lines(file, first) && std::rename(temporary, name) == 0) {
        if (permissions != std::filesystem::perms::unknown)
            std::filesystem::permissions(name, permissions, failure);
        return true;
    }
    std::remove(temporary);
    return false;
}

void cut_at_line_end(char* text)
{
    text[std::strcspn(text, "\r\n")] = '\0';
}

}  // namespace

c_program_list::~c_program_list()
{
    // The engine clears the program while the variables still live; anything left goes without them.
    while (first != nullptr) {
        c_program_line* next = first->next;
        delete first;
        first = next;
    }
}

void c_program_list::add(c_parser* parser, const char* text)
{
    if (*text == ' ')
        ++text;
    c_program_line* before = nullptr;
    c_program_line* line = first;
    while (line != nullptr && line->number < parser->line_number) {
        before = line;
        line = line->next;
    }
    if (line != nullptr && line->number == parser->line_number)
        replace(*this, line, parser, text);
    else
        add_new(*this, before, parser, text);
}

void c_program_list::renumber(int start, int step)
{
    if (first != nullptr)
        ++changes;
    int number = start;
    for (c_program_line* line = first; line != nullptr; line = line->next) {
        line->number = number;
        number = static_cast<int>(static_cast<unsigned>(number) + static_cast<unsigned>(step));
    }
}

void c_program_list::clear()
{
    c_variable_manager* variables = p_system_resource->p_variable_manager;
    if (first != nullptr)
        ++changes;
    while (first != nullptr) {
        c_program_line* line = first;
        first = line->next;
        variables->line_release(line->code, line->code_length, line);
        delete line;
    }
    current = nullptr;
}

int c_program_list::save(const char* name)
{
    if (!write(name)) {
        p_system_resource->error_code.raise(error_device_io);
        return 0;
    }
    changes_at_file = changes;
    return 1;
}

bool c_program_list::write(const char* name) const
{
    std::error_code failure;
    // Through a symbolic link the file it leads to is replaced, and the link stays a link.
    std::filesystem::path target = name;
    if (std::filesystem::is_symlink(target, failure)) {
        std::filesystem::path resolved = std::filesystem::canonical(target, failure);
        if (!failure)
            target = resolved;
    }
    const bool replace = std::filesystem::is_regular_file(target, failure) || !std::filesystem::exists(target, failure);
    return replace ? write_replacing(target.c_str(), first) : write_in_place(name, first);
}

// Every file line takes a number, blank ones too, so a file of more lines than the numbers up to 99999
// can hold stops at the line that would pass 99999, with 3 "Illegal line number": the lines before it
// stay stored. A number past 99999 could never be typed again, which is why it is refused here.
int c_program_list::load(const char* name, int start, int step)
{
    c_parser parser(p_system_resource);
    std::FILE* file = std::fopen(name, "rb");
    if (file == nullptr) {
        p_system_resource->error_code.raise(error_cannot_open);
        return 0;
    }
    char text[file_line_size];
    long long number = start;
    while (std::fgets(text, file_line_size, file) != nullptr) {
        cut_at_line_end(text);
        if (!number_line(parser, number, p_system_resource)) {
            std::fclose(file);
            return 0;
        }
        add(&parser, text);
        if (p_system_resource->error_code != error_none) {
            std::fclose(file);
            return 0;
        }
        number += step;
    }
    // A directory opens but cannot be read: like any file that cannot be read, it cannot be opened.
    const bool unreadable = std::ferror(file) != 0;
    std::fclose(file);
    current = nullptr;
    if (unreadable) {
        p_system_resource->error_code.raise(error_cannot_open);
        return 0;
    }
    changes_at_file = changes;
    return 1;
}

void c_program_list::list(int from, int to)
{
    c_text_editor* editor = p_system_resource->p_text_editor;
    for (const c_program_line* line = first; line != nullptr; line = line->next) {
        if (line->number < from || line->number > to)
            continue;
        char number[16];
        std::snprintf(number, sizeof number, "%d ", line->number);
        editor->put_str(number);
        editor->put_str(line->source);
        editor->put_str("\r\n");
    }
}
