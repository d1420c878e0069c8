// The full-screen console as a user meets it: typing, editing across row ends, cursor keys, control
// codes written by programs, error reports, and Enter on stored lines.
#include "console/text_editor.h"

#include <gtest/gtest.h>

#include <string>

#include "engine/error.h"
#include "support/test_console.h"

namespace {

std::string keys(int code, int times = 1)
{
    return std::string(times, static_cast<char>(code));
}

const std::string a78(78, 'a'), a79(79, 'a'), a80(80, 'a');

// Keys typed into a cleared 80 x 30 console, the screen they leave and where the cursor ends.
struct key_session {
    std::string keys;
    std::string screen;
    int cursor_x, cursor_y;
};

const key_session key_sessions[] = {
    // A logical line runs on across the row end, and insertion pushes it over the row end.
    {a80 + "bcd", a80 + "\nbcd\n", 3, 1},
    {a79 + keys(key_line_feed) + "bc", "bc" + a78 + "\na\n", 2, 0},
    // A line grown to its row's end above another line opens a blank row between them.
    {a79 + keys(key_down) + keys(key_line_feed) + "next" + keys(key_up) + "b", "aaaab" + a80.substr(5) + "\n\nnext\n", 5, 0},
    {"abc" + keys(key_line_feed) + keys(key_insert) + "X" + keys(key_insert) + "Y", "XYbc\n", 2, 0},
    {keys(key_down, 2) + keys(key_right, 3) + "x", "\n\n   x\n", 4, 2},
    // Back space at column 0 joins the rows only when the row above runs into this one.
    {a80 + "bc" + keys(key_line_feed) + keys(key_back_space), a79 + "b\nc\n", 79, 0},
    {"abc" + keys(key_down) + keys(key_line_feed) + "xyz" + keys(key_line_feed) + keys(key_back_space), "abc\nyz\n", 0, 1},
    {"abc" + keys(key_home) + keys(key_back_space), "bc\n", 0, 0},
    {a78 + "bcdef" + keys(key_up) + keys(key_right, 75) + keys(key_delete), a78 + "cd\nef\n", 78, 0},
    {"ab" + keys(key_delete), "ab\n", 2, 0},
    // Cursor keys stop at the grid's edges and wrap between rows.
    {keys(key_left) + keys(key_up), "", 0, 0},
    {keys(key_down, 40) + keys(key_right, 100), "", 79, 29},
    {keys(key_right, 80), "", 0, 1},
    {keys(key_right, 80) + keys(key_left), "", 79, 0},
    {keys(key_tab) + "a", "a\n", 1, 0},
};

// Text a program writes from a cursor placed with locate: characters overwrite, "\r" moves straight down.
struct output_case {
    int x, y;
    std::string text;
    std::string screen;
    int cursor_x, cursor_y;
};

const output_case outputs[] = {
    {0, 29, a80 + "b", std::string(28, '\n') + a80 + "\nb\n", 1, 29},  // wraps and scrolls
    {10, 5, "x", std::string(5, '\n') + "          x\n", 11, 5},         // spaces fill the row to the left
    {0, 0, "ab\rc", "ab\n  c\n", 3, 1},
    {0, 0, "ab\rc\nd", "ab\nd c\n", 1, 1},
    {0, 29, "x\r", std::string(28, '\n') + "x\n", 1, 29},
    {0, 0, "ab\r\ncd\x0Bx", "xb\ncd\n", 1, 0},
    {0, 0, "ab\r\ncd\x0C", "", 0, 0},
    {0, 0, "abc\x08", "ab\n", 2, 0},
    {0, 0, std::string("ab\x07\x09\x0E\x1B\x00", 7), "ab\n", 2, 0},  // codes without an action
    {0, 0, "\x1F\x1F\x1C\x1C\x1C\x1D\x1E", "", 2, 1},
};

void print(test_console& console, const std::string& text)
{
    c_text_editor& editor = console.engine.text_editor;
    editor.input_mode = false;
    editor.put_str(text.c_str(), static_cast<int>(text.size()));
    editor.input_mode = true;
}

const c_program_line* stored(test_console& console)
{
    return console.engine.interpreter.program_list.first;
}

}  // namespace

TEST(line_editing, keys_leave_the_screen_and_the_cursor_where_a_user_expects)
{
    for (const key_session& session : key_sessions) {
        test_console console;
        console.type(session.keys);
        EXPECT_EQ(console.screen(), session.screen) << session.keys;
        EXPECT_EQ(console.cursor_x(), session.cursor_x) << session.keys;
        EXPECT_EQ(console.cursor_y(), session.cursor_y) << session.keys;
    }
}

TEST(line_editing, the_cursor_mark_follows_the_cursor)
{
    test_console console;
    console.type("ab");
    console.key(key_left);
    EXPECT_NE(console.engine.cell(1, 0) & cell_cursor, 0u);
    EXPECT_EQ(console.engine.cell(2, 0) & cell_cursor, 0u);
    EXPECT_EQ(console.engine.cell(0, 0) & cell_cursor, 0u);
}

TEST(program_output, writes_characters_and_performs_control_codes)
{
    for (const output_case& output : outputs) {
        test_console console;
        console.engine.text_editor.locate(output.x, output.y);
        print(console, output.text);
        EXPECT_EQ(console.screen(), output.screen) << output.text;
        EXPECT_EQ(console.cursor_x(), output.cursor_x) << output.text;
        EXPECT_EQ(console.cursor_y(), output.cursor_y) << output.text;
    }
}

TEST(program_output, overwrites_even_with_insert_mode_set)
{
    test_console console;
    console.type("abc");
    console.key(key_line_feed);
    print(console, "X");
    EXPECT_EQ(console.row(0), "Xbc");
}

TEST(program_output, ignores_codes_above_255_whose_bits_5_to_7_are_clear)
{
    test_console console;
    console.type("ab");
    console.engine.text_editor.put_char(0x100 + key_back_space);
    EXPECT_EQ(console.row(0), "ab");
    EXPECT_EQ(console.cursor_x(), 2);
}

TEST(program_output, toggles_insertion_with_code_18)
{
    test_console console;
    print(console, "\x12");
    EXPECT_FALSE(console.engine.text_editor.insert_mode);
    print(console, "\x12");
    EXPECT_TRUE(console.engine.text_editor.insert_mode);
}

TEST(program_output, clears_to_white_empty_cells_whatever_the_text_colour)
{
    test_console console;
    console.engine.text_editor.text_color = 0x07E00000;
    print(console, "ab\x0C");
    EXPECT_EQ(console.engine.cell(0, 0) & ~cell_cursor, cell_cleared);
    EXPECT_EQ(console.engine.cell(5, 5), cell_cleared);
    print(console, "c");
    EXPECT_EQ(console.engine.cell(0, 0), 0x07E00200u | 'c');
}

TEST(program_output, locate_clamps_to_the_grid)
{
    struct placement { int x, y, cursor_x, cursor_y; };
    const placement placements[] = {
        {-3, 99, 0, 29}, {80, -1, 79, 0}, {79, 29, 79, 29}, {0, 30, 0, 29}, {5, 7, 5, 7},
    };
    for (const placement& p : placements) {
        test_console console;
        console.engine.text_editor.locate(p.x, p.y);
        EXPECT_EQ(console.cursor_x(), p.cursor_x) << p.x << "," << p.y;
        EXPECT_EQ(console.cursor_y(), p.cursor_y) << p.x << "," << p.y;
    }
}

TEST(error_report, starts_on_the_next_row_and_ends_below_ok)
{
    test_console console;
    console.type("abc");
    console.engine.text_editor.put_error(error_syntax, 0);
    EXPECT_EQ(console.screen(), "abc\nSyntax error.\nOk\n");
    EXPECT_EQ(console.cursor_x(), 0);
    EXPECT_EQ(console.cursor_y(), 3);
    EXPECT_EQ(console.host.last_error, error_syntax);
}

TEST(error_report, names_the_line_when_there_is_one_and_sets_input_mode)
{
    test_console console;
    console.engine.text_editor.input_mode = false;
    console.engine.text_editor.put_error(error_type_mismatch, 120);
    EXPECT_EQ(console.screen(), "\nType mismatch at 120.\nOk\n");
    EXPECT_TRUE(console.engine.text_editor.input_mode);
}

TEST(line_entry, stores_a_numbered_line_and_moves_to_the_next_row)
{
    test_console console;
    console.enter("10 i=1");
    ASSERT_NE(stored(console), nullptr);
    EXPECT_EQ(stored(console)->number, 10);
    EXPECT_STREQ(stored(console)->source, "i=1");
    EXPECT_EQ(console.screen(), "10 i=1\n");
    EXPECT_EQ(console.cursor_x(), 0);
    EXPECT_EQ(console.cursor_y(), 1);
}

TEST(line_entry, reads_the_line_from_its_start_on_a_continuation_row)
{
    test_console console;
    std::string text = "s=\"" + std::string(80, 'x') + "\"";
    console.type("10 " + text);  // 87 cells: rows 0 and 1
    ASSERT_EQ(console.cursor_y(), 1);
    console.key(key_enter);
    ASSERT_NE(stored(console), nullptr);
    EXPECT_EQ(std::string(stored(console)->source), text);
    EXPECT_EQ(console.cursor_y(), 2);
}

TEST(line_entry, on_an_empty_row_below_a_full_row_enters_that_line_again)
{
    test_console console;
    console.type("20 s=\"" + std::string(74, 'x') + "\"");  // exactly 80 cells: the cursor wraps to row 1
    ASSERT_EQ(console.cursor_y(), 1);
    console.key(key_enter);
    ASSERT_NE(stored(console), nullptr);
    EXPECT_EQ(stored(console)->number, 20);
    EXPECT_EQ(console.cursor_y(), 2);
}

TEST(line_entry, stores_only_the_line_that_covers_the_start_of_the_row)
{
    test_console console;
    const std::string row = "10 a_20 b";  // "_": an empty cell
    for (int x = 0; x < static_cast<int>(row.size()); ++x)
        console.engine.text_layer.at(x, 0) = 0xFFFF0200 | (row[x] == '_' ? 0 : row[x]);
    console.type(keys(key_right, 7) + keys(key_enter));
    ASSERT_NE(stored(console), nullptr);
    EXPECT_EQ(stored(console)->number, 10);
    EXPECT_STREQ(stored(console)->source, "a");
    EXPECT_EQ(stored(console)->next, nullptr);
    EXPECT_EQ(console.cursor_y(), 1);
}

TEST(line_entry, on_an_empty_row_moves_down_and_scrolls_on_the_last_row)
{
    test_console console;
    console.type(keys(key_down) + "keep" + keys(key_down) + keys(key_enter));
    EXPECT_EQ(console.screen(), "\nkeep\n");
    EXPECT_EQ(console.cursor_y(), 3);
    console.type(keys(key_down, 26) + keys(key_enter));
    EXPECT_EQ(console.screen(), "keep\n");
    EXPECT_EQ(console.cursor_y(), 29);
}

TEST(line_entry, accepts_255_characters)
{
    test_console console;
    console.type("10 s=\"" + std::string(248, 'x') + "\"");  // 255 characters
    console.key(key_enter);
    EXPECT_EQ(console.host.last_error, 0);
    ASSERT_NE(stored(console), nullptr);
    EXPECT_EQ(std::string(stored(console)->source).size(), 252u);
    EXPECT_EQ(console.cursor_y(), 4);
}

TEST(line_entry, reports_a_line_of_256_characters_as_too_long_and_stores_nothing)
{
    test_console console;
    console.type("10 s=\"" + std::string(249, 'x') + "\"");  // 256 characters: rows 0 to 3
    console.key(key_enter);
    EXPECT_EQ(console.host.last_error, error_too_long_line);
    EXPECT_EQ(stored(console), nullptr);
    EXPECT_EQ(console.row(4), "Too long line.");
    EXPECT_EQ(console.row(5), "Ok");
    EXPECT_EQ(console.cursor_y(), 6);
}

TEST(line_entry, reports_a_bad_line_number_without_a_line)
{
    test_console console;
    console.enter("123456 i=1");
    EXPECT_EQ(console.screen(), "123456 i=1\nIllegal line number.\nOk\n");
    EXPECT_EQ(stored(console), nullptr);
    EXPECT_EQ(console.cursor_y(), 3);
}

TEST(line_entry, a_number_alone_deletes_the_stored_line)
{
    test_console console;
    console.enter("10 i=1");
    console.enter("10");
    EXPECT_EQ(stored(console), nullptr);
    EXPECT_EQ(console.cursor_y(), 2);
}
