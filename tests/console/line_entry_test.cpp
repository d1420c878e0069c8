// Enter on lines without a number: the line runs, its output starts on the next row, and "Ok" or the
// error report follows; the observation hooks tell a transcript where the lines break.
#include <gtest/gtest.h>

#include <string>

#include "console/text_editor.h"
#include "engine/error.h"
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
    std::string finished() const { return transcript + std::string(pending_rows > 0 ? pending_rows : 0, '\n'); }

    std::string transcript;
    int pending_rows = 0;
};

struct transcript_console {
    transcript_console()
    {
        engine.screen_width = 640;
        engine.screen_height = 480;
        engine.line_step = 960;
        host.p_engine = &engine;
        engine.initialize(&host);
        engine.text_editor.clear_screen();
        host.transcript.clear();
        host.pending_rows = 0;
    }
    void enter(const std::string& line)
    {
        for (unsigned char c : line)
            engine.text_editor.key(c);
        engine.text_editor.key(key_enter);
    }
    transcript_host host;
    c_vexil engine;
};

}  // namespace

TEST(immediate_line, prints_below_the_line_then_ok_and_leaves_the_cursor_after_ok)
{
    test_console console;
    console.enter("print 1");
    EXPECT_EQ(console.screen(), "print 1\n1\nOk\n");
    EXPECT_EQ(console.cursor_x(), 0);
    EXPECT_EQ(console.cursor_y(), 3);
    EXPECT_TRUE(console.engine.text_editor.input_mode);
    EXPECT_TRUE(console.engine.text_editor.cursor_visible);
}

TEST(immediate_line, on_a_continuation_row_runs_the_line_from_its_start)
{
    test_console console;
    console.type("print \"" + std::string(76, '*') + "\"");  // 84 cells: rows 0 and 1
    console.key(key_enter);
    EXPECT_EQ(console.row(2), std::string(76, '*'));
    EXPECT_EQ(console.row(3), "Ok");
}

TEST(immediate_line, that_leaves_the_cursor_inside_a_row_gets_ok_on_the_next_row)
{
    test_console console;
    console.enter("print \"ab\";");
    EXPECT_EQ(console.row(1), "ab");
    EXPECT_EQ(console.row(2), "Ok");
    EXPECT_EQ(console.cursor_y(), 3);
}

TEST(immediate_line, reports_an_error_below_the_line_then_ok)
{
    test_console console;
    console.enter("next");
    EXPECT_EQ(console.screen(), "next\nNEXT without FOR.\nOk\n");
    EXPECT_EQ(console.cursor_x(), 0);
    EXPECT_EQ(console.cursor_y(), 3);
    EXPECT_EQ(console.host.last_error, error_next_without_for);
}

TEST(immediate_line, reports_an_error_below_what_the_line_printed_before_it)
{
    test_console console;
    console.enter("print 1/0");  // print shows the value reached before the division failed
    EXPECT_EQ(console.screen(), "print 1/0\n1\nDivision by zero.\nOk\n");
    EXPECT_EQ(console.cursor_y(), 4);
}

TEST(immediate_line, reports_from_row_0_after_the_screen_was_cleared)
{
    test_console console;
    console.enter("cls: next");
    EXPECT_EQ(console.screen(), "NEXT without FOR.\nOk\n");
    EXPECT_EQ(console.cursor_y(), 2);
}

TEST(immediate_line, reports_the_stored_line_where_the_run_stopped)
{
    test_console console;
    console.enter("10 next");
    console.enter("run");
    EXPECT_EQ(console.row(2), "NEXT without FOR at 10.");
    EXPECT_EQ(console.row(3), "Ok");
}

TEST(immediate_line, jumps_to_a_label_defined_in_the_line_itself)
{
    test_console console;
    console.enter("i=0: $again: i=i+1: if i<3 then $again: print i");
    EXPECT_EQ(console.row(1), "3");
    EXPECT_EQ(console.row(2), "Ok");
}

TEST(immediate_line, leaves_no_label_pointing_into_it_once_it_has_run)
{
    test_console console;
    console.enter("10 goto $here");
    console.enter("$here: print 1");
    console.enter("run");
    EXPECT_EQ(console.row(2), "1");
    EXPECT_EQ(console.row(5), "Invalid label at 10.");
}

TEST(immediate_line, keys_typed_while_it_runs_appear_after_ok)
{
    test_console console;
    console.queue("sleep 500\rabc");
    console.start(nullptr);
    EXPECT_EQ(console.screen(), "sleep 500\nOk\nabc\n");
}

TEST(immediate_line, with_a_syntax_error_reports_it)
{
    test_console console;
    console.enter("x=1");
    EXPECT_EQ(console.screen(), "x=1\nSyntax error.\nOk\n");
}

TEST(console_transcript, reads_output_then_ok_line_by_line)
{
    transcript_console console;
    console.enter("print 1");
    EXPECT_EQ(console.host.finished(), "print 1\n1\nOk\n");
}

TEST(console_transcript, reads_an_error_report_as_its_own_line)
{
    transcript_console console;
    console.enter("next");
    EXPECT_EQ(console.host.finished(), "next\nNEXT without FOR.\nOk\n");
}

TEST(console_transcript, counts_a_row_for_empty_and_numbered_lines_but_none_for_a_wrap)
{
    transcript_console console;
    console.enter("");
    console.enter("10 i=1");
    console.enter(std::string(80, 'a'));  // a run of 80 a's that wraps: one row for the Enter only
    EXPECT_EQ(console.host.finished(), "\n10 i=1\n" + std::string(80, 'a') + "\nSyntax error.\nOk\n");
}
