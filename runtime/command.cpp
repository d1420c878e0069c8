// The command handlers, except the four file commands (runtime/channel.cpp). Each reads its own
// arguments, records every argument's evaluation code as it goes (the first failure's code stays)
// and leaves the cursor on the first byte it did not take, or null to end the run.
#include "runtime/command.h"

#include <climits>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "console/text_editor.h"
#include "console/text_layer.h"
#include "engine/debug_log.h"
#include "engine/error.h"
#include "engine/system_resource.h"
#include "engine/vexil_callback.h"
#include "language/code.h"
#include "runtime/expression.h"
#include "runtime/interpreter.h"
#include "runtime/value.h"

namespace {

constexpr int file_name_size = 260;  // a 256-byte string and its terminator
constexpr int renumber_start = 100;
constexpr int renumber_step = 10;
constexpr unsigned int default_seed = 0xFFFFFFFFu;  // -1 taken as unsigned

// Evaluates one argument into value and records its code; returns the code.
int evaluate(c_value& value, const unsigned char*& p, c_system_resource* res)
{
    int code = c_expression(res).expression(value, p);
    res->error_code.raise(code);
    return code;
}

int evaluate_integer(const unsigned char*& p, c_system_resource* res, int& code)
{
    c_value value;
    code = evaluate(value, p, res);
    return value.current->get_integer();
}

bool at_statement_end(const unsigned char* p)
{
    return *p == token_colon || *p == token_end;
}

// For list and renum a "," also stands where an argument is left out.
bool argument_absent(const unsigned char* p)
{
    return at_statement_end(p) || *p == token_comma;
}

// The string form of the argument, terminated in name; a name holding a zero byte ends there.
// Returns the first failing code (evaluation, or 8 for a real too long to print).
int read_file_name(const unsigned char*& p, c_system_resource* res, char (&name)[file_name_size])
{
    c_value value;
    int code = evaluate(value, p, res);
    const char* text;
    int length;
    int conversion = value.string_form(text, length);
    res->error_code.raise(conversion);
    std::memcpy(name, text, length);
    name[length] = '\0';
    return code != 0 ? code : conversion;
}

// print and printh: one value, then a line end unless ";" follows.
void print_value(const unsigned char*& p, c_system_resource* res)
{
    c_value value;
    (void)evaluate(value, p, res);
    const char* text;
    int length;
    if (int code = value.string_form(text, length); code != 0) {
        res->error_code.raise(code);
        return;
    }
    res->p_text_editor->put_str(text, length);
    if (!take_token(p, token_semicolon))
        res->p_text_editor->put_str("\r\n");
}

// Renumbering may give numbers past 99999, which list and reports show in full though they cannot be
// typed again; it is refused only where a number would not fit an int, so the order is always kept.
bool numbers_fit(const c_program_list& program, int start, int step)
{
    long long last = start;
    for (const c_program_line* line = program.first; line != nullptr && line->next != nullptr; line = line->next)
        if ((last += step) > INT_MAX)
            return false;
    return true;
}

}  // namespace

// Only the key loop looks at running: the rest of this line, and of the program, still runs.
void cmd_exit(const unsigned char*&, c_system_resource* res)
{
    res->running = false;
}

// Whatever follows run on its line is not executed. A first line whose translation failed stops
// the run there, as any such line does.
void cmd_run(const unsigned char*& p, c_system_resource* res)
{
    dlog.printf("  run\n");
    c_interpreter* interpreter = res->p_interpreter;
    interpreter->all_file_close();
    interpreter->dimension_free();
    c_program_list& program = interpreter->program_list;
    program.current = program.first;
    if (program.first == nullptr) {
        p = nullptr;
        return;
    }
    if (program.first->code == nullptr) {
        res->error_code.raise(error_syntax);
        return;
    }
    p = program.first->code;
}

void cmd_print(const unsigned char*& p, c_system_resource* res)
{
    print_value(p, res);
    res->p_callback->update_text();
}

void cmd_printh(const unsigned char*& p, c_system_resource* res)
{
    print_value(p, res);
}

// Out-of-range coordinates are clamped by the editor, not refused. A failed row still moves.
void cmd_locate(const unsigned char*& p, c_system_resource* res)
{
    int code;
    int column = evaluate_integer(p, res, code);
    if (code != 0)
        return;
    if (!take_token(p, token_comma)) {
        res->error_code.raise(error_syntax);
        return;
    }
    int row = evaluate_integer(p, res, code);
    res->p_text_editor->locate(column, row);
}

void cmd_cls(const unsigned char*&, c_system_resource* res)
{
    res->p_text_editor->clear_screen();
}

void cmd_sleep(const unsigned char*& p, c_system_resource* res)
{
    int code;
    int milliseconds = evaluate_integer(p, res, code);
    if (code == 0)
        res->p_callback->sleep(static_cast<unsigned int>(milliseconds));
}

// The store records 11 itself when the file cannot be made; its result needs no look.
void cmd_save(const unsigned char*& p, c_system_resource* res)
{
    char name[file_name_size];
    (void)read_file_name(p, res, name);
    (void)res->p_interpreter->program_list.save(name);
}

// Ends the run through the end mark with no current line. Any failure of the store reads as 11 but
// running out of memory, which says what went wrong; the number check inside the store resets the
// code line by line, so the name's own code is raised again.
void cmd_load(const unsigned char*& p, c_system_resource* res)
{
    char name[file_name_size];
    int code = read_file_name(p, res, name);
    c_program_list& program = res->p_interpreter->program_list;
    program.clear();
    if (program.load(name, load_first_number, load_number_step) == 0) {
        if (res->error_code != error_out_of_memory)
            res->error_code = error_device_io;
    } else
        res->error_code.raise(code);
    p = &end_mark;
}

void cmd_list(const unsigned char*& p, c_system_resource* res)
{
    int first = INT_MIN;
    int last = INT_MAX;
    int code;
    if (!argument_absent(p))
        first = evaluate_integer(p, res, code);
    if (!at_statement_end(p)) {
        if (!take_token(p, token_comma)) {
            res->error_code.raise(error_illegal_parameter);
            return;
        }
        if (!at_statement_end(p))
            last = evaluate_integer(p, res, code);
    }
    res->p_interpreter->program_list.list(first, last);
}

void cmd_new(const unsigned char*& p, c_system_resource* res)
{
    res->p_interpreter->program_list.clear();
    p = nullptr;
}

void cmd_randomize(const unsigned char*& p, c_system_resource* res)
{
    unsigned int seed = default_seed;
    int code;
    if (!at_statement_end(p))
        seed = static_cast<unsigned int>(evaluate_integer(p, res, code));
    std::srand(seed);
}

void cmd_renum(const unsigned char*& p, c_system_resource* res)
{
    int start = renumber_start;
    int step = renumber_step;
    int code;
    if (!argument_absent(p))
        start = evaluate_integer(p, res, code);
    if (!at_statement_end(p)) {
        if (!take_token(p, token_comma)) {
            res->error_code.raise(error_illegal_parameter);
            return;
        }
        if (!at_statement_end(p))
            step = evaluate_integer(p, res, code);
    }
    if (start <= 0 || step <= 0 || !numbers_fit(res->p_interpreter->program_list, start, step)) {
        res->error_code.raise(error_illegal_parameter);
        return;
    }
    res->p_interpreter->program_list.renumber(start, step);
}

void cmd_dim(const unsigned char*& p, c_system_resource* res)
{
    res->p_interpreter->dimension_alloc(p);
}

void cmd_update_screen(const unsigned char*&, c_system_resource* res)
{
    res->p_callback->update_screen();
}

// Coordinates off the plane are ignored without a word; compared unsigned, negatives are off too.
void cmd_set_pixel(const unsigned char*& p, c_system_resource* res)
{
    int code;
    int x = evaluate_integer(p, res, code);
    if (code != 0)
        return;
    if (!take_token(p, token_comma)) {
        res->error_code.raise(error_syntax);
        return;
    }
    int y = evaluate_integer(p, res, code);
    if (code != 0)
        return;
    if (!take_token(p, token_comma)) {
        res->error_code.raise(error_syntax);
        return;
    }
    auto colour = static_cast<std::uint16_t>(evaluate_integer(p, res, code));
    c_graphic_layer* layer = res->p_graphic_layer;
    if (static_cast<unsigned>(y) < static_cast<unsigned>(layer->height) &&
        static_cast<unsigned>(x) < static_cast<unsigned>(layer->width))
        layer->store(layer->pixel_index(x, y), colour);
}

// The colour goes to the upper half, where a cell keeps it; the lower half stays 0 for the character.
void cmd_set_text_color(const unsigned char*& p, c_system_resource* res)
{
    int code;
    int colour = evaluate_integer(p, res, code);
    if (code == 0)
        res->p_text_editor->text_color = static_cast<std::uint32_t>(colour) << 16;
}

void cmd_end(const unsigned char*& p, c_system_resource*)
{
    p = nullptr;
}
