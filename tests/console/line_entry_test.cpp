// Enter on lines without a number at the grid's end and while keys wait, and the observation hooks that
// tell a transcript where the lines break. Plain immediate lines are the text editor test's key sessions.
#include <gtest/gtest.h>

#include <string>

#include "console/text_editor.h"
#include "support/test_console.h"

namespace {

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
