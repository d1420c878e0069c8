// The full-screen console: the cursor, the text colour and the control codes (output side), and the
// editing keys with Enter reading the logical line under the cursor (key side). The grid is the buffer.
#pragma once

#include <cstdint>

struct c_system_resource;
class c_parser;

// Engine key codes that are not characters.
constexpr int key_back_space = 8;
constexpr int key_tab = 9;
constexpr int key_line_feed = 10;
constexpr int key_home = 11;
constexpr int key_clear = 12;
constexpr int key_enter = 13;
constexpr int key_insert = 18;
constexpr int key_delete = 19;
constexpr int key_right = 28;
constexpr int key_left = 29;
constexpr int key_up = 30;
constexpr int key_down = 31;

class c_text_editor {
public:
    // Output side.
    void put_char(int c);
    void put_str(const char* s);
    void put_str(const char* s, int n);
    void locate(int x, int y);
    void clear_screen();
    void home_position();
    void line_feed();
    void hide_cursor();
    void show_cursor();
    void put_error(int code, int line);
    // The one path that runs translated code, a typed line or the start-up `run`: the editor executes
    // (input_mode and cursor_visible clear) and an error the run leaves is reported; the report starts
    // on the cursor's row when `report_on_cursor_row`, else on the next. True when there was none.
    bool run_line(c_parser& parser, bool report_on_cursor_row);

    // Key side.
    void key(int c);
    void back_space();
    void tab_indent();
    void toggle_insert_mode();
    void right();
    void left();
    void up();
    void down();
    void delete_char();
    void carriage_return();
    bool line_detect(char* buffer, int size);

    c_system_resource* p_system_resource = nullptr;
    int cursor_x = 0;
    int cursor_y = 0;
    std::uint32_t text_color = 0xFFFF0000;  // RGB565 in the upper half, so a character can be or-ed in
    bool input_mode = true;
    bool cursor_visible = true;
    bool insert_mode = true;
};
