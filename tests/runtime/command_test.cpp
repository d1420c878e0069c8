// The commands as a session sees them: lines typed at the prompt, the screen read back as rows.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

#include "engine/error.h"
#include "support/test_console.h"

namespace {

using program = std::vector<const char*>;

struct line_case {
    const char* typed;  // entered on a cleared screen
    const char* shown;  // the rows below the typed line
};

const program three_lines = {"10 i=1", "20 i=2", "30 i=3"};

// Stores the lines, clears the screen, enters the typed line on row 0 and returns the rows below it.
std::string session(test_console& console, const program& lines, const std::string& typed)
{
    for (const char* line : lines)
        console.enter(line);
    console.engine.text_editor.clear_screen();
    console.enter(typed);
    std::string screen = console.screen();
    return screen.substr(screen.find('\n') + 1);
}

void expect_lines(const program& lines, const std::vector<line_case>& cases)
{
    for (const auto& c : cases) {
        test_console console;
        EXPECT_EQ(session(console, lines, c.typed), c.shown) << c.typed;
    }
}

// The "%f" text of the first rnd() after srand(seed), as the C library gives it.
std::string first_random(unsigned int seed)
{
    std::srand(seed);
    char text[64];
    std::snprintf(text, sizeof text, "%f", std::rand() / 2147483647.0);
    return text;
}

class command_files : public ::testing::Test {
protected:
    void SetUp() override
    {
        directory = std::filesystem::temp_directory_path() /
                    ("vexil_commands_" + std::to_string(std::random_device{}()));
        std::filesystem::create_directories(directory);
    }
    void TearDown() override { std::filesystem::remove_all(directory); }
    std::string named(const char* command, const char* file) const
    {
        return std::string(command) + " \"" + (directory / file).string() + "\"";
    }

    test_console console;
    std::filesystem::path directory;
};

}  // namespace

TEST(print, prints_one_value_and_a_line_end_unless_a_semicolon_follows)
{
    expect_lines({}, {
        {"print 1", "1\nOk\n"},
        {"print", "\nOk\n"},
        {"print ;", "Ok\n"},
        {"print 7.0/2", "3.500000\nOk\n"},
        {"print \"a\" + 1", "a1\nOk\n"},
        {"print \"A\";: print \"B\"", "AB\nOk\n"},
        {"print 1 print 2", "1\n2\nOk\n"},
        {"printh 5", "5\nOk\n"},
        {"print \"A\";", "A\nOk\n"},  // the cursor left mid-row: Ok goes to the next row
    });
}

TEST(print, acts_on_what_the_evaluator_left_and_then_reports)
{
    expect_lines({}, {
        {"print 1, 2", "1\nSyntax error.\nOk\n"},
        {"print 2 + 3 / 0", "2\nDivision by zero.\nOk\n"},
        {"r=10.0^300: print r", "Out of string space.\nOk\n"},
        {"PRINT 1", "Syntax error.\nOk\n"},
    });
}

TEST(print, printh_leaves_the_screen_update_to_later)
{
    test_console console;
    int before = console.host.text_updates;
    console.enter("printh 1");
    int printh_updates = console.host.text_updates - before;
    before = console.host.text_updates;
    console.enter("print  1");  // as many keys
    EXPECT_EQ(console.host.text_updates - before, printh_updates + 1);
}

TEST(locate, moves_the_cursor_and_clamps_into_the_grid)
{
    test_console console;
    console.enter("locate 5, 3: print \"x\";");
    EXPECT_EQ(console.row(3), "     x");
    EXPECT_EQ(console.row(4), "Ok");
    console.enter("locate -3, 10: print \"y\";");
    EXPECT_EQ(console.row(10), "y");
    console.enter("locate 100, 20: print \"z\"");
    EXPECT_EQ(console.row(20), std::string(79, ' ') + "z");
    console.enter("locate 0, 100: print \"w\";");
    // Written on the last row; the line end before Ok and the move after it each scrolled once.
    EXPECT_EQ(console.row(27), "w");
    EXPECT_EQ(console.row(28), "Ok");
}

TEST(locate, a_missing_comma_or_a_failed_column_moves_nothing_but_a_failed_row_still_moves)
{
    expect_lines({}, {
        {"locate 5", "Syntax error.\nOk\n"},
        {"locate 1/0, 5", "Division by zero.\nOk\n"},
    });
    test_console console;
    console.enter("locate 5, 10+1/0");  // the row is the 10 the evaluator had reached
    EXPECT_EQ(console.row(10), "Division by zero.");
}

TEST(cls, clears_the_grid_and_an_error_after_it_is_reported_from_row_0)
{
    test_console console;
    console.enter("print 1: cls: print 2");
    EXPECT_EQ(console.screen(), "2\nOk\n");
    console.enter("cls 1");
    EXPECT_EQ(console.screen(), "Syntax error.\nOk\n");
}

TEST(errors, the_report_names_the_line_inside_a_program)
{
    expect_lines({"10 print 1", "20 i=1/0"}, {{"run", "1\nDivision by zero at 20.\nOk\n"}});
    expect_lines({}, {{"i=1/0", "Division by zero.\nOk\n"}});
}

TEST(errors, a_report_on_the_bottom_row_scrolls_and_keeps_its_order)
{
    test_console console;
    console.enter("locate 0, 28: print 1/0");
    int message_row = -1;
    for (int row = 0; row < 30; ++row)
        if (console.row(row) == "Division by zero.")
            message_row = row;
    ASSERT_GT(message_row, 0);
    ASSERT_LT(message_row, 29);
    EXPECT_EQ(console.row(message_row - 1), "1");
    EXPECT_EQ(console.row(message_row + 1), "Ok");
    EXPECT_EQ(console.cursor_y(), std::min(message_row + 2, 29));
    EXPECT_EQ(console.cursor_x(), 0);
}

TEST(sleep, sleeps_through_the_host_unless_its_argument_fails)
{
    test_console console;
    console.enter("sleep 25: sleep 5");
    EXPECT_EQ(console.host.slept_ms, 30u);
    console.enter("sleep 1/0");
    EXPECT_EQ(console.host.slept_ms, 30u);
    EXPECT_EQ(console.resource()->error_code, error_division_by_zero);
}

TEST(list, accepted_forms_list_their_range)
{
    expect_lines(three_lines, {
        {"list", "10 i=1\n20 i=2\n30 i=3\nOk\n"},
        {"list 20", "20 i=2\n30 i=3\nOk\n"},
        {"list 20,", "20 i=2\n30 i=3\nOk\n"},
        {"list ,20", "10 i=1\n20 i=2\nOk\n"},
        {"list 10,20", "10 i=1\n20 i=2\nOk\n"},
        {"list ,", "10 i=1\n20 i=2\n30 i=3\nOk\n"},
        {"list 30,10", "Ok\n"},
        {"list 30: print 1", "30 i=3\n1\nOk\n"},
    });
}

TEST(list, anything_but_a_comma_after_the_first_number_lists_nothing)
{
    expect_lines(three_lines, {
        {"list 10;20", "Illegal parameter.\nOk\n"},
        {"list 10 20", "Illegal parameter.\nOk\n"},
    });
}

TEST(renum, renumbers_from_start_by_step)
{
    expect_lines(three_lines, {
        {"renum: list", "100 i=1\n110 i=2\n120 i=3\nOk\n"},
        {"renum 1000, 5: list", "1000 i=1\n1005 i=2\n1010 i=3\nOk\n"},
        {"renum ,5: list", "100 i=1\n105 i=2\n110 i=3\nOk\n"},
        {"renum 7,: list", "7 i=1\n17 i=2\n27 i=3\nOk\n"},
    });
}

TEST(renum, a_start_or_step_below_one_or_a_stray_separator_changes_nothing)
{
    for (const char* typed : {"renum 10,0", "renum 0", "renum -1", "renum 10;5"}) {
        test_console console;
        EXPECT_EQ(session(console, three_lines, typed), "Illegal parameter.\nOk\n") << typed;
        EXPECT_EQ(session(console, {}, "list"), "10 i=1\n20 i=2\n30 i=3\nOk\n") << typed;
    }
}

TEST(randomize, seeds_the_generator_with_the_value_or_with_minus_one)
{
    test_console console;
    std::string five = first_random(5) + "\nOk\n";
    std::string minus_one = first_random(4294967295u) + "\nOk\n";
    ASSERT_NE(five, minus_one);
    for (int repeat = 0; repeat < 2; ++repeat) {
        EXPECT_EQ(session(console, {}, "randomize 5: print rnd()"), five);
        EXPECT_EQ(session(console, {}, "randomize: print rnd()"), minus_one);
    }
}

TEST(set_pixel, writes_the_turned_plane_and_ignores_coordinates_off_it)
{
    test_console console;
    const std::uint16_t* pixels = console.engine.graphic_layer.pixels;
    console.enter("set_pixel 0, 0, 65535");
    EXPECT_EQ(pixels[479], 65535);  // the last pixel of the first frame-buffer line
    console.enter("set_pixel 3, 2, 1234");
    EXPECT_EQ(pixels[3 * 480 + 477], 1234);
    console.enter("set_pixel 639, 479, 65536 + 7");  // only the low 16 bits count
    EXPECT_EQ(pixels[639 * 480], 7);
    std::vector<std::uint16_t> before(pixels, pixels + 640 * 480);
    for (const char* typed :
         {"set_pixel -1, 0, 9", "set_pixel 0, -1, 9", "set_pixel 640, 0, 9", "set_pixel 0, 480, 9"}) {
        console.enter(typed);
        EXPECT_EQ(console.resource()->error_code, error_none) << typed;
    }
    EXPECT_EQ(std::vector<std::uint16_t>(pixels, pixels + 640 * 480), before);
}

TEST(set_pixel, missing_commas_and_failed_coordinates_draw_nothing)
{
    expect_lines({}, {
        {"set_pixel 1", "Syntax error.\nOk\n"},
        {"set_pixel 1, 2", "Syntax error.\nOk\n"},
        {"set_pixel 1/0, 2, 3", "Division by zero.\nOk\n"},
        {"set_pixel 1, 2/0, 3", "Division by zero.\nOk\n"},
    });
    test_console console;
    console.enter("set_pixel 0, 0, 5/0");  // the colour still draws, as the evaluator left it
    EXPECT_EQ(console.engine.graphic_layer.pixels[479], 5);
}

TEST(set_text_color, colours_characters_printed_afterwards)
{
    test_console console;
    console.enter("set_text_color 63488: print \"x\"");
    EXPECT_EQ(console.engine.cell(0, 1) >> 16, 0xF800u);
    console.enter("set_text_color 1/0");
    EXPECT_EQ(console.engine.text_editor.text_color, 0xF8000000u);
    console.enter("set_text_color 65535");
    EXPECT_EQ(console.engine.text_editor.text_color, 0xFFFF0000u);
}

TEST(end_new_exit, end_stops_quietly_and_new_deletes_the_program)
{
    expect_lines(three_lines, {{"end: print 1", "Ok\n"}, {"new: print 1", "Ok\n"}});
    test_console console;
    EXPECT_EQ(session(console, {"10 print 1", "20 end", "30 print 3"}, "run"), "1\nOk\n");
    EXPECT_EQ(session(console, {}, "new"), "Ok\n");
    EXPECT_EQ(console.engine.interpreter.program_list.first, nullptr);
}

TEST(end_new_exit, exit_clears_running_and_the_line_goes_on)
{
    test_console console;
    console.resource()->running = true;
    EXPECT_EQ(session(console, {}, "exit: print \"bye\""), "bye\nOk\n");
    EXPECT_FALSE(console.resource()->running);
}

TEST_F(command_files, save_then_load_gives_the_program_back_numbered_from_100)
{
    EXPECT_EQ(session(console, {"10 i=1", "20 print i"}, named("save", "p.bas")), "Ok\n");
    EXPECT_EQ(session(console, {}, "new"), "Ok\n");
    EXPECT_EQ(session(console, {}, named("load", "p.bas") + ": print 5"), "Ok\n");  // load ends the run
    EXPECT_EQ(session(console, {}, "list"), "100 i=1\n110 print i\nOk\n");
}

TEST_F(command_files, load_inside_a_program_ends_the_run)
{
    EXPECT_EQ(session(console, {"10 print 7"}, named("save", "p.bas")), "Ok\n");
    std::string load_line = "10 " + named("load", "p.bas");
    EXPECT_EQ(session(console, {load_line.c_str(), "20 print 2"}, "run"), "Ok\n");
    EXPECT_EQ(session(console, {}, "list"), "100 print 7\nOk\n");
}

TEST_F(command_files, load_of_a_missing_file_reports_a_device_error_and_leaves_no_program)
{
    EXPECT_EQ(session(console, three_lines, named("load", "missing.txt")), "Device I/O error.\nOk\n");
    EXPECT_EQ(console.engine.interpreter.program_list.first, nullptr);
}

TEST_F(command_files, load_of_a_file_with_a_bad_line_reports_a_device_error_and_keeps_the_lines_read)
{
    EXPECT_EQ(session(console, {"10 print 1", "20 x=1", "30 print 3"}, named("save", "bad.bas")), "Ok\n");
    EXPECT_EQ(session(console, {}, named("load", "bad.bas")), "Device I/O error.\nOk\n");
    EXPECT_EQ(session(console, {}, "list"), "100 print 1\n110 x=1\nOk\n");
}

TEST_F(command_files, save_to_a_file_that_cannot_be_made_reports_a_device_error)
{
    EXPECT_EQ(session(console, three_lines, named("save", "missing/p.bas")), "Device I/O error.\nOk\n");
}
