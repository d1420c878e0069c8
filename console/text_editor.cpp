// The console's output side: every character and control code goes through put_char, whether a key
// or a program produced it, so a code means the same on the screen either way. The cursor mark is
// bit 8 of the cell under the cursor, drawn and removed only while cursor_visible is set.
#include "console/text_editor.h"

#include <cstdio>

#include "console/text_layer.h"
#include "engine/debug_log.h"
#include "engine/error.h"
#include "engine/system_resource.h"
#include "engine/vexil_callback.h"

namespace {

constexpr int character_bits = 0xE0;  // a code with any of bits 5 to 7 set is a character

// Turns the empty cells left of the cursor into spaces, up to the first non-empty one, so that text
// written anywhere on a row reads as one line from column 0.
void fill_gap(c_text_layer& layer, int x, int y)
{
    const int row_start = layer.index(0, y);
    for (int index = layer.index(x, y) - 1; index >= row_start; --index) {
        const std::uint32_t cell = layer.load(index);
        if ((cell & cell_character_mask) != 0)
            return;
        layer.store(index, (cell & cell_colour_mask) | cell_changed | ' ');
    }
}

// The cursor one cell on; past the last column it goes to the next row, and past the last row the grid
// scrolls up instead. No line break is reported: the wrap is not a new line of output.
void advance(int& x, int& y, c_text_layer& layer)
{
    if (++x < layer.columns)
        return;
    x = 0;
    if (++y < layer.rows)
        return;
    y = layer.rows - 1;
    layer.scroll_up();
}

}  // namespace

void c_text_editor::put_char(int c)
{
    if ((c & character_bits) == 0) {
        switch (c) {
        case key_back_space: back_space(); break;
        case key_tab: tab_indent(); break;
        case key_line_feed: line_feed(); break;
        case key_home: home_position(); break;
        case key_clear: clear_screen(); break;
        case key_enter: carriage_return(); break;
        case key_insert: toggle_insert_mode(); break;
        case key_delete: delete_char(); break;
        case key_right: right(); break;
        case key_left: left(); break;
        case key_up: up(); break;
        case key_down: down(); break;
        default: break;  // every other code below 32, and codes above 255 with bits 5 to 7 clear
        }
        return;
    }
    c_text_layer& layer = *p_system_resource->p_text_layer;
    const int character = c & 0xFF;
    const std::uint32_t cell = text_color | static_cast<std::uint32_t>(character);
    if (insert_mode && input_mode) {
        hide_cursor();
        if (layer.insert(cursor_x, cursor_y, cell))
            --cursor_y;
    } else {
        // The old cell goes whole, cursor mark included.
        fill_gap(layer, cursor_x, cursor_y);
        layer.store(layer.index(cursor_x, cursor_y), cell | cell_changed);
    }
    p_system_resource->p_callback->text_written(character);
    advance(cursor_x, cursor_y, layer);
    show_cursor();
}

void c_text_editor::put_str(const char* s)
{
    for (; *s != '\0'; ++s)
        put_char(static_cast<unsigned char>(*s));
}

void c_text_editor::put_str(const char* s, int n)
{
    for (int i = 0; i < n; ++i)
        put_char(static_cast<unsigned char>(s[i]));
}

// The cursor mark is neither removed nor drawn: programs place the cursor while it is hidden.
void c_text_editor::locate(int x, int y)
{
    const c_text_layer& layer = *p_system_resource->p_text_layer;
    cursor_x = x < 0 ? 0 : x >= layer.columns ? layer.columns - 1 : x;
    cursor_y = y < 0 ? 0 : y >= layer.rows ? layer.rows - 1 : y;
}

// Empty white cells, whatever the text colour: only characters written afterwards take it.
void c_text_editor::clear_screen()
{
    p_system_resource->p_text_layer->clear();
    cursor_x = 0;
    cursor_y = 0;
    show_cursor();
}

void c_text_editor::home_position()
{
    hide_cursor();
    cursor_x = 0;
    cursor_y = 0;
    show_cursor();
}

void c_text_editor::line_feed()
{
    hide_cursor();
    cursor_x = 0;
    show_cursor();
}

void c_text_editor::hide_cursor()
{
    if (!cursor_visible)
        return;
    c_text_layer& layer = *p_system_resource->p_text_layer;
    const int index = layer.index(cursor_x, cursor_y);
    layer.store(index, (layer.load(index) & ~cell_cursor) | cell_changed);
}

void c_text_editor::show_cursor()
{
    if (!cursor_visible)
        return;
    c_text_layer& layer = *p_system_resource->p_text_layer;
    const int index = layer.index(cursor_x, cursor_y);
    layer.store(index, layer.load(index) | cell_cursor | cell_changed);
}

// Written with input_mode clear, so its line breaks only move the cursor and its characters overwrite;
// input_mode is set afterwards whatever it was before.
void c_text_editor::put_error(int code, int line)
{
    const char* message = error_message(code);
    char report[96];
    if (line != 0) {
        std::snprintf(report, sizeof report, "\r\n%s at %d.\r\nOk\r\n", message, line);
        dlog.printf("  Program stop: %s at %d\n", message, line);
    } else {
        std::snprintf(report, sizeof report, "\r\n%s.\r\nOk\r\n", message);
        dlog.printf("  Program stop: %s\n", message);
    }
    p_system_resource->p_callback->error_reported(code, line);
    input_mode = false;
    put_str(report);
    input_mode = true;
}
