// The console's key side: cursor moves, deletion, and Enter, which reads the logical line under the
// cursor back from the grid and either stores it (it begins with a number) or executes it at once.
// The grid is the only line buffer: a logical line is a run of non-empty cells across row ends.
#include "console/text_editor.h"

#include <cstring>

#include "console/text_layer.h"
#include "engine/allocation.h"
#include "engine/error.h"
#include "engine/system_resource.h"
#include "engine/vexil_callback.h"
#include "language/parser.h"
#include "runtime/interpreter.h"

namespace {

constexpr int line_buffer_size = 256;  // a logical line holds at most 255 characters

bool is_empty(std::uint32_t cell)
{
    return (cell & cell_character_mask) == 0;
}

// One row down; from the last row the grid scrolls up instead.
void step_down(int& y, c_text_layer& layer)
{
    if (++y < layer.rows)
        return;
    y = layer.rows - 1;
    layer.scroll_up();
}

// Gives an immediate line's record its own copy of the code and source, as a stored line has, so that a
// label defined in the line can be jumped to. When the copy cannot be had, the line is not run at all:
// its code goes back and 22 "Out of memory" is left for the report.
void fill_record(c_program_line& record, c_parser& parser, c_system_resource* res)
{
    const std::size_t source_length = std::strlen(parser.source);
    record.number = parser.line_number;
    record.block.reset(allocate_array<unsigned char>(parser.code_length + source_length + 1));
    if (record.block == nullptr) {
        parser.variable_release();
        parser.code[0] = token_end;
        parser.code_length = 0;
        res->error_code.raise(error_out_of_memory);
        return;
    }
    record.code = record.block.get();
    std::memcpy(record.code, parser.code, parser.code_length);
    record.source = reinterpret_cast<char*>(record.code + parser.code_length);
    std::memcpy(record.source, parser.source, source_length + 1);
    record.code_length = parser.code_length;
}

// Runs a line without a number. Its output starts on the row below; then comes the error report or
// "Ok", and the caller's move puts the cursor on the row after that.
void execute_immediate(c_text_editor& editor, c_parser& parser, const char* text)
{
    c_system_resource* res = editor.p_system_resource;
    c_program_line record;
    parser.precompile(text, &record);
    fill_record(record, parser, res);

    editor.cursor_visible = false;
    editor.cursor_x = 0;
    step_down(editor.cursor_y, *res->p_text_layer);
    res->p_callback->rows_moved(1);
    if (editor.run_line(parser, true)) {
        editor.input_mode = false;
        if (editor.cursor_x != 0)
            editor.put_str("\r\n");
        editor.put_str("Ok");
        editor.input_mode = true;
    } else {
        --editor.cursor_y;
        res->p_callback->rows_moved(-1);
    }
    editor.cursor_visible = true;
    record.reject();
    record.block.reset();
}

}  // namespace

bool c_text_editor::run_line(c_parser& parser, bool report_on_cursor_row)
{
    c_system_resource* res = p_system_resource;
    input_mode = false;
    cursor_visible = false;
    const int line = res->p_interpreter->run(&parser);
    input_mode = true;
    if (res->error_code == error_none)
        return true;
    if (report_on_cursor_row) {
        // The report opens with a line break: stepping back first starts it on the cursor's row.
        --cursor_y;
        res->p_callback->rows_moved(-1);
    }
    put_error(res->error_code, line);
    return false;
}

void c_text_editor::key(int c)
{
    put_char(c);
    p_system_resource->p_callback->update_text();
}

void c_text_editor::back_space()
{
    const c_text_layer& layer = *p_system_resource->p_text_layer;
    // At column 0 the rows are joined only when the row above runs into this one.
    const bool joins_row_above = cursor_x == 0 && cursor_y > 0 && !is_empty(layer.at(layer.columns - 1, cursor_y - 1));
    if (cursor_x != 0 || joins_row_above)
        left();
    delete_char();
}

void c_text_editor::tab_indent() {}

// The cursor mark is not redrawn.
void c_text_editor::toggle_insert_mode()
{
    insert_mode = !insert_mode;
}

void c_text_editor::right()
{
    const c_text_layer& layer = *p_system_resource->p_text_layer;
    hide_cursor();
    if (cursor_x < layer.columns - 1) {
        ++cursor_x;
    } else if (cursor_y < layer.rows - 1) {
        cursor_x = 0;
        ++cursor_y;
    }
    show_cursor();
}

void c_text_editor::left()
{
    const c_text_layer& layer = *p_system_resource->p_text_layer;
    hide_cursor();
    if (cursor_x > 0) {
        --cursor_x;
    } else if (cursor_y > 0) {
        cursor_x = layer.columns - 1;
        --cursor_y;
    }
    show_cursor();
}

void c_text_editor::up()
{
    if (cursor_y == 0)
        return;
    hide_cursor();
    --cursor_y;
    show_cursor();
}

void c_text_editor::down()
{
    if (cursor_y == p_system_resource->p_text_layer->rows - 1)
        return;
    hide_cursor();
    ++cursor_y;
    show_cursor();
}

void c_text_editor::delete_char()
{
    p_system_resource->p_text_layer->delete_char(cursor_x, cursor_y);
    show_cursor();
}

// Enter while a line is being entered; otherwise only one row down, keeping the column.
void c_text_editor::carriage_return()
{
    c_text_layer& layer = *p_system_resource->p_text_layer;
    c_vexil_callback* host = p_system_resource->p_callback;
    hide_cursor();
    if (!input_mode) {
        step_down(cursor_y, layer);
        show_cursor();
        host->rows_moved(1);
        return;
    }

    char line[line_buffer_size];
    if (!line_detect(line, line_buffer_size)) {
        put_error(error_too_long_line, 0);
        return;
    }
    c_parser parser(p_system_resource);
    const char* text = line;
    const int number = parser.check_line_no(text);
    if (p_system_resource->error_code != error_none) {
        put_error(p_system_resource->error_code, number);
        return;
    }
    if (number == 0)
        execute_immediate(*this, parser, text);
    else if (number > 0)
        p_system_resource->p_interpreter->program_list.add(&parser, text);
    // A line that could not be stored is said so at once; other errors of a stored line (its
    // translation) wait for the run that reaches it.
    if (number > 0 && p_system_resource->error_code == error_out_of_memory) {
        put_error(error_out_of_memory, 0);
        return;
    }

    cursor_x = 0;
    step_down(cursor_y, layer);
    show_cursor();
    host->rows_moved(1);
}

// Reads the line that covers the start of the cursor's row, however far back it begins, and leaves the
// cursor on the row of the empty cell that ends it. False when the line has `size` characters or more.
bool c_text_editor::line_detect(char* buffer, int size)
{
    const c_text_layer& layer = *p_system_resource->p_text_layer;
    int start = cursor_y * layer.columns;
    for (int stepped = 1; start > 0 && !is_empty(layer.load(start - 1)); ++stepped) {
        if (stepped >= size)
            return false;
        --start;
    }
    int length = 0;
    int index = start;
    while (length < size && !is_empty(layer.load(index)))
        buffer[length++] = static_cast<char>(layer.load(index++) & cell_character_mask);
    // A line that ends in the grid's last cell is ended by the extra cell below the last row; the cursor
    // stays in the last row, and the move after Enter scrolls as it would from the row below.
    cursor_y = index / layer.columns < layer.rows ? index / layer.columns : layer.rows - 1;
    if (length == size)
        return false;
    buffer[length] = '\0';
    return true;
}
