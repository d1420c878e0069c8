// Enter on lines without a number: the line runs, its output starts on the next row, and "Ok" or the
// error report follows; the observation hooks tell a transcript where the lines break.
#include <gtest/gtest.h>

#include <string>

#include "console/text_editor.h"
#include "engine/error.h"
#include "support/test_console.h"

namespace {

// Lines typed, each ended by "\r", into a cleared console: the screen they leave, the row the cursor
// ends on at column 0, and the error reported.
struct immediate_case {
    std::string keys;
    std::string screen;
    int cursor_y, error;
};

const std::string stars(76, '*');

const immediate_case immediate_cases[] = {
    {"print 1\r", "print 1\n1\nOk\n", 3, 0},
    {"print \"" + stars + "\"\r", "print \"" + stars.substr(0, 73) + "\n***\"\n" + stars + "\nOk\n", 4, 0},  // from a continuation row
    {"print \"ab\";\r", "print \"ab\";\nab\nOk\n", 3, 0},  // Ok on the next row
    {"next\r", "next\nNEXT without FOR.\nOk\n", 3, error_next_without_for},
    {"x=1\r", "x=1\nSyntax error.\nOk\n", 3, error_syntax},
    {"print 1/0\r", "print 1/0\n1\nDivision by zero.\nOk\n", 4, error_division_by_zero},  // below what was printed
    {"cls: next\r", "NEXT without FOR.\nOk\n", 2, error_next_without_for},
    {"10 next\rrun\r", "10 next\nrun\nNEXT without FOR at 10.\nOk\n", 4, error_next_without_for},
    // A label in an immediate line is gone once the line has run.
    {"10 goto $here\r$here: print 1\rrun\r", "10 goto $here\n$here: print 1\n1\nOk\nrun\nInvalid label at 10.\nOk\n", 7, error_invalid_label},
};

// A host that writes the console as a transcript: line breaks are held back until the next character,
// so a step back cancels a break that has not been written yet.
struct transcript_host : c_test_host {
    void text_written(int character) override
    {
        for (; pending_rows > 0; --pending_rows)
            transcript += '\n';
        transcript += static_cast<char>(character);
    }
    void rows_moved(int count) override { pending_rows += count; }
    std::string transcript;
    int pending_rows = 0;
};

}  // namespace

TEST(immediate_line, runs_on_enter_and_shows_its_output_then_ok_or_the_error_below_it)
{
    for (const immediate_case& c : immediate_cases) {
        test_console console;
        console.type(c.keys);
        EXPECT_EQ(console.screen(), c.screen) << c.keys;
        EXPECT_EQ(console.cursor_x(), 0) << c.keys;
        EXPECT_EQ(console.cursor_y(), c.cursor_y) << c.keys;
        EXPECT_EQ(console.host.last_error, c.error) << c.keys;
        EXPECT_TRUE(console.engine.text_editor.input_mode) << c.keys;
        EXPECT_TRUE(console.engine.text_editor.cursor_visible) << c.keys;
    }
}

// The line fills the last row, so the cell that ends it is the one past the grid; each row of output and
// the report below it scroll the grid once more, in order.
TEST(immediate_line, ending_in_the_grids_last_cell_runs_with_its_output_and_report_scrolled_into_view)
{
    test_console console;
    const std::string line = "print 5/0" + std::string(71, ' ');
    for (int x = 0; x < 80; ++x)
        console.engine.text_layer.put(x, 29, console.engine.text_editor.text_color | static_cast<unsigned char>(line[x]));
    console.engine.text_editor.locate(0, 29);
    console.key(key_enter);
    EXPECT_EQ(console.screen(), std::string(25, '\n') + "print 5/0\n5\nDivision by zero.\nOk\n");
    EXPECT_EQ(console.cursor_y(), 29);
}

TEST(immediate_line, keys_typed_while_it_runs_appear_after_ok)
{
    test_console console;
    console.queue("sleep 500\rabc");
    console.start(nullptr);
    EXPECT_EQ(console.screen(), "sleep 500\nOk\nabc\n");
}

TEST(console_transcript, reads_output_and_reports_line_by_line_and_counts_no_row_for_a_wrap)
{
    const std::string a80(80, 'a');
    test_console console;
    transcript_host host;
    console.resource()->p_callback = &host;
    console.type("print 1\rnext\r\r10 i=1\r" + a80 + "\r");
    EXPECT_EQ(host.transcript + std::string(host.pending_rows, '\n'),
              "print 1\n1\nOk\nnext\nNEXT without FOR.\nOk\n\n10 i=1\n" + a80 + "\nSyntax error.\nOk\n");
}
