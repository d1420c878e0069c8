// The engine as a host sees it: banner, start-up run of a named program, the key loop, break and geometry.
// A break during a program is the statement loop's test; exit ending the key loop, the exit case end to end.
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <string>

#include "engine/error.h"
#include "support/scratch_directory.h"
#include "support/test_console.h"

namespace {

// A program started by name into a cleared console, and the screen it leaves: no Ok after a clean run.
// A run that fails, with its report and line number, is the end-to-end case program_error.
struct start_case {
    std::string file_name, program;
    std::string argument;  // "@" stands for the file's path
    std::string screen;
    int cursor_y;
};

const start_case start_cases[] = {
    {"my prog.txt", "print \"quoted\"\r\n", "\"@\"b", "quoted\n", 1},  // a quoted name ends at the next quote
    {"a\"b", "print \"unquoted\"\r\n", "@", "unquoted\n", 1},           // an unquoted name keeps its quote
    {"open.bas", "print \"open\"\r\n", "\"@", "open\n", 1},  // a quote never closed: the name runs to the end
    {"missing.bas", "", "@", "", 0},                                       // dropped without a word
    {"long.bas", "", std::string(300, 'x'), "", 0},                        // past 259 characters: cut, not overrun
};

}  // namespace

TEST(error_table, holds_the_messages_in_code_order)
{
    const char* const messages[] = {"No error", "Break", "Too long line", "Illegal line number", "Syntax error",
        "Division by zero", "Type mismatch", "Not found right blacket ')'", "Out of string space",
        "Illegal parameter", "Invalid label", "Device I/O error", "Cannot open file", "Redimensioned array",
        "Subscript out of range", "Illegal loop counter", "NEXT without FOR", "FOR stack overflow",
        "Already opened", "Invalid descriptor", "RETURN without GOSUB", "GOSUB stack overflow", "Out of memory"};
    ASSERT_EQ(std::size(messages), static_cast<std::size_t>(error_count));
    for (int code = 0; code < error_count; ++code)
        EXPECT_STREQ(error_message(code), messages[code]) << code;
    EXPECT_STREQ(error_message(23), "No error");  // outside the table
    EXPECT_STREQ(error_message(-1), "No error");
}

// The grid of whole cells on a screen of spare pixels is the text layer's geometry test.
TEST(engine_start, prints_the_banner_and_ok_and_waits_below_them)
{
    test_console console;
    console.engine.initialize(&console.host);  // again, on planes the constructor cleared: the banner is back
    EXPECT_FALSE(console.row(1).empty());
    EXPECT_EQ(console.screen(), "VEXIL v0.0.7\n" + console.row(1) + "\nOk\n");
    EXPECT_EQ(console.cursor_x(), 0);
    EXPECT_EQ(console.cursor_y(), 3);
    EXPECT_TRUE(console.engine.text_editor.input_mode);
    EXPECT_EQ(console.resource()->error_code, 0);
}

TEST(engine_start, runs_a_program_named_plainly_or_in_quotes_and_drops_one_it_cannot_read)
{
    for (const start_case& c : start_cases) {
        c_scratch_directory scratch;
        if (!c.program.empty())
            std::ofstream(scratch.path(c.file_name), std::ios::binary) << c.program;
        test_console console;
        std::string argument = c.argument;
        if (std::size_t at = argument.find('@'); at != std::string::npos)
            argument.replace(at, 1, scratch.path(c.file_name));
        console.start(argument.c_str());
        EXPECT_EQ(console.screen(), c.screen) << c.file_name;
        EXPECT_EQ(console.cursor_y(), c.cursor_y) << c.file_name;
        EXPECT_EQ(console.host.last_error, 0) << c.file_name;
        EXPECT_TRUE(console.engine.text_editor.cursor_visible) << c.file_name;
        EXPECT_EQ(console.resource()->error_code, 0) << c.file_name;
    }
}

TEST(key_loop, hands_queued_keys_to_the_editor_and_sleeps_when_idle_where_a_break_shows_nothing)
{
    test_console console;
    console.queue(std::string("a\0b", 3));  // the 0 is stored, then taken as no key at all
    console.start(nullptr);
    EXPECT_EQ(console.row(0), "a");
    EXPECT_EQ(console.host.slept_ms, 10u);
    console.start(nullptr);
    EXPECT_EQ(console.row(0), "ab");
    console.engine.force_break();  // while idle: shows nothing and the next line resets it
    EXPECT_EQ(console.resource()->error_code, error_break);
    console.queue(static_cast<char>(key_down) + std::string("print 7\r"));
    console.start(nullptr);
    EXPECT_EQ(console.screen(), "ab\n  print 7\n7\nOk\n");
}
