// The full-screen console as a user meets it: typing, editing across row ends, cursor keys, control
// codes written by programs, error reports, and Enter on stored lines.
#include "console/text_editor.h"

#include <gtest/gtest.h>

#include <string>

#include "engine/error.h"
#include "support/test_console.h"

namespace {

std::string keys(int code, int times = 1) { return std::string(times, static_cast<char>(code)); }

const std::string a78(78, 'a'), a79(79, 'a'), a80(80, 'a');

// Keys typed into a cleared 80 x 30 console, the screen they leave, where the cursor ends and the error
// an immediate line reports.
struct key_session {
    std::string keys;
    std::string screen;
    int cursor_x, cursor_y;
    int error = 0;
};

const std::string stars(76, '*');

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
    // Enter on an empty row moves down, and on the last row scrolls.
    {keys(key_down) + "keep" + keys(key_down) + keys(key_enter), "\nkeep\n", 0, 3},
    {keys(key_down) + "keep" + keys(key_down, 28) + keys(key_enter), "keep\n", 0, 29},
    // An immediate line runs on Enter: its output from the next row, then Ok or the report below it.
    {"print 1\r", "print 1\n1\nOk\n", 0, 3},
    {"print \"" + stars + "\"\r", "print \"" + stars.substr(0, 73) + "\n***\"\n" + stars + "\nOk\n", 0, 4},  // from a continuation row
    {"print \"ab\";\r", "print \"ab\";\nab\nOk\n", 0, 3},  // Ok on the next row
    {"next\r", "next\nNEXT without FOR.\nOk\n", 0, 3, error_next_without_for},
    {"x=1\r", "x=1\nSyntax error.\nOk\n", 0, 3, error_syntax},
    {"print 1/0\r", "print 1/0\n1\nDivision by zero.\nOk\n", 0, 4, error_division_by_zero},  // below what was printed
    {"cls: next\r", "NEXT without FOR.\nOk\n", 0, 2, error_next_without_for},
    {"10 next\rrun\r", "10 next\nrun\nNEXT without FOR at 10.\nOk\n", 0, 4, error_next_without_for},
    // A label in an immediate line is gone once the line has run.
    {"10 goto $here\r$here: print 1\rrun\r", "10 goto $here\n$here: print 1\n1\nOk\nrun\nInvalid label at 10.\nOk\n", 0, 7,
     error_invalid_label},
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
    {0, 0, "ab\r\ncd\x0Bx", "xb\ncd\n", 1, 0},  // overwrites although insertion is on
    {0, 0, "ab\r\ncd\x0C", "", 0, 0},
    {0, 0, "abc\x08", "ab\n", 2, 0},
    {0, 0, std::string("ab\x07\x09\x0E\x1B\x00", 7), "ab\n", 2, 0},  // codes without an action
    {0, 0, "\x1F\x1F\x1C\x1C\x1C\x1D\x1E", "", 2, 1},
    {-1, 30, "", "", 0, 29},  // locate clamps to the grid
    {80, -1, "", "", 79, 0},
    {79, 29, "", "", 79, 29},
};

void print(test_console& console, const std::string& text)
{
    c_text_editor& editor = console.engine.text_editor;
    editor.input_mode = false;
    editor.put_str(text.c_str(), static_cast<int>(text.size()));
    editor.input_mode = true;
}

// Lines typed and entered: what is stored, where the cursor goes, and the error a bad line reports.
struct entry_case {
    std::string keys;
    int number;  // 0: nothing stored
    std::string source;
    int cursor_y, error;
};

std::string quoted(int length) { return "s=\"" + std::string(length, 'x') + "\""; }

const entry_case entries[] = {
    {"10 i=1\r", 10, "i=1", 1, 0},
    {"10 " + quoted(80) + "\r", 10, quoted(80), 2, 0},   // Enter on a continuation row reads from its start
    {"20 " + quoted(73) + "\r", 20, quoted(73), 2, 0},   // 80 cells: Enter on the empty row below enters it
    {"10 " + quoted(248) + "\r", 10, quoted(248), 4, 0},  // 255 characters
    {"10 " + quoted(249) + "\r", 0, "", 6, error_too_long_line},
    {"10 " + quoted(330) + "\r", 0, "", 7, error_too_long_line},  // found walking back from the cursor's row
    {"123456 i=1\r", 0, "", 3, error_illegal_line_number},
};

}  // namespace

TEST(line_editing, keys_leave_the_screen_the_cursor_and_its_mark_where_a_user_expects)
{
    for (const key_session& session : key_sessions) {
        test_console console;
        console.type(session.keys);
        EXPECT_EQ(console.screen(), session.screen) << session.keys;
        EXPECT_EQ(console.cursor_x(), session.cursor_x) << session.keys;
        EXPECT_EQ(console.cursor_y(), session.cursor_y) << session.keys;
        EXPECT_EQ(console.host.last_error, session.error) << session.keys;
        EXPECT_TRUE(console.engine.text_editor.input_mode) << session.keys;
        EXPECT_TRUE(console.engine.text_editor.cursor_visible) << session.keys;
        for (int i = 0; i < 80 * 30; ++i) {
            const bool under_cursor = i == session.cursor_y * 80 + session.cursor_x;
            EXPECT_EQ((console.engine.text_layer.load(i) & cell_cursor) != 0, under_cursor) << session.keys << " " << i;
        }
    }
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

TEST(program_output, toggles_insertion_with_code_18_ignores_codes_above_255_with_bits_5_to_7_clear_and_clears_to_white)
{
    test_console console;
    print(console, "ab\x12");
    EXPECT_FALSE(console.engine.text_editor.insert_mode);
    console.engine.text_editor.put_char(0x100 + key_insert);
    console.engine.text_editor.put_char(0x100 + key_back_space);
    EXPECT_FALSE(console.engine.text_editor.insert_mode);
    EXPECT_EQ(console.row(0), "ab");
    print(console, "\x12");
    EXPECT_TRUE(console.engine.text_editor.insert_mode);
    console.engine.text_editor.text_color = 0x07E00000;  // code 12 clears to white empty cells all the same
    print(console, "ab\x0C");
    EXPECT_EQ(console.engine.cell(0, 0) & ~cell_cursor, cell_cleared);
    EXPECT_EQ(console.engine.cell(5, 5), cell_cleared);
    print(console, "c");
    EXPECT_EQ(console.engine.cell(0, 0), 0x07E00200u | 'c');
}

TEST(line_entry, stores_numbered_lines_and_reports_bad_ones_below_them)
{
    for (const entry_case& entry : entries) {
        test_console console;
        console.type(entry.keys);
        const c_program_line* line = console.engine.interpreter.program_list.first;
        ASSERT_EQ(line != nullptr, entry.number != 0) << entry.keys;
        if (line != nullptr) {
            EXPECT_EQ(line->number, entry.number);
            EXPECT_EQ(line->source, entry.source);
        }
        EXPECT_EQ(console.host.last_error, entry.error) << entry.keys;
        if (entry.error != 0) {
            EXPECT_EQ(console.row(entry.cursor_y - 1), "Ok") << entry.keys;
        }
        EXPECT_EQ(console.cursor_x(), 0) << entry.keys;
        EXPECT_EQ(console.cursor_y(), entry.cursor_y) << entry.keys;
    }
}

TEST(line_entry, stores_only_the_line_that_covers_the_start_of_the_row)
{
    test_console console;
    const std::string row = "10 a_20 b";  // "_": an empty cell
    for (int x = 0; x < static_cast<int>(row.size()); ++x)
        console.engine.text_layer.put(x, 0, 0xFFFF0200 | (row[x] == '_' ? 0 : row[x]));
    console.type(keys(key_right, 7) + keys(key_enter));
    const c_program_line* line = console.engine.interpreter.program_list.first;
    ASSERT_NE(line, nullptr);
    EXPECT_EQ(line->number, 10);
    EXPECT_STREQ(line->source, "a");
    EXPECT_EQ(line->next, nullptr);
    EXPECT_EQ(console.cursor_y(), 1);
}
