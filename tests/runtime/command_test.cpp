// The commands as a session sees them: lines typed at the prompt, the screen read back as rows.
// Cases the language reference shows as examples (run by its own test) are not repeated here.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "engine/error.h"
#include "support/scratch_directory.h"
#include "support/value_check.h"

TEST(print, prints_one_value_and_a_line_end_unless_a_semicolon_follows_then_reports_a_failure)
{
    expect_outputs({
        {"print", "\nOk\n"},                        {"print ;", "Ok\n"},
        {"print 1 print 2", "1\n2\nOk\n"},         {"print \"A\";", "A\nOk\n"},  // Ok goes to the next row
        {"print 1, 2", "1\nSyntax error.\nOk\n"},   {"r=10.0^300: print r", "Out of string space.\nOk\n"},
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

TEST(locate, moves_the_cursor_and_clamps_into_the_grid_and_a_failed_row_still_moves)
{
    test_console console;
    console.enter("locate 5, 3: print \"x\";");
    EXPECT_EQ(console.row(3), "     x");
    console.enter("locate -3, 10: print \"y\";");
    EXPECT_EQ(console.row(10), "y");
    console.enter("locate 100, 20: print \"z\"");
    EXPECT_EQ(console.row(20), std::string(79, ' ') + "z");
    console.enter("locate 0, 100: print \"w\";");
    EXPECT_EQ(console.row(27), "w");  // the line end before Ok and the move after it each scrolled once
    console.enter("cls: locate 5, 10+1/0");  // the row is the 10 the evaluator had reached
    EXPECT_EQ(console.row(10), "Division by zero.");
    expect_outputs({{"locate 5", "Syntax error.\nOk\n"}, {"locate 1/0, 5", "Division by zero.\nOk\n"}});
}

TEST(cls, clears_the_grid_and_an_error_after_it_is_reported_from_row_0)
{
    test_console console;
    console.enter("print 1: cls: print 2");
    EXPECT_EQ(console.screen(), "2\nOk\n");
    console.enter("cls 1");
    EXPECT_EQ(console.screen(), "Syntax error.\nOk\n");
}

TEST(sleep, sleeps_through_the_host_unless_its_argument_fails)
{
    test_console console;
    console.enter("sleep 25: sleep 5");
    console.enter("sleep 1/0");
    EXPECT_EQ(console.host.slept_ms, 30u);
    EXPECT_EQ(console.resource()->error_code, error_division_by_zero);
}

TEST(list_and_renum, list_a_range_and_renumber_from_start_by_step)
{
    const std::string program = "10 i=1\n20 i=2\n30 i=3\n";
    const line_case cases[] = {
        {"list", "10 i=1\n20 i=2\n30 i=3\nOk\n"},   {"list 20", "20 i=2\n30 i=3\nOk\n"},
        {"list ,20", "10 i=1\n20 i=2\nOk\n"},        {"list 10,20", "10 i=1\n20 i=2\nOk\n"},
        {"list 20,", "20 i=2\n30 i=3\nOk\n"},        {"list 30,10", "Ok\n"},
        {"list 30: print 1", "30 i=3\n1\nOk\n"},     {"list 10;20", "Illegal parameter.\nOk\n"},
        {"list 10 20", "Illegal parameter.\nOk\n"},
        {"renum: list", "100 i=1\n110 i=2\n120 i=3\nOk\n"},
        {"renum ,5: list", "100 i=1\n105 i=2\n110 i=3\nOk\n"}, {"renum 7,: list", "7 i=1\n17 i=2\n27 i=3\nOk\n"},
        {"renum 10,0", "Illegal parameter.\nOk\n"},  {"renum 0", "Illegal parameter.\nOk\n"},
        {"renum -1", "Illegal parameter.\nOk\n"},    {"renum 10;5", "Illegal parameter.\nOk\n"},
        {"renum 2147483645,1: list", "2147483645 i=1\n2147483646 i=2\n2147483647 i=3\nOk\n"},
        {"renum 2147483646,1", "Illegal parameter.\nOk\n"}, {"renum 1,1073741824", "Illegal parameter.\nOk\n"},
        {"renum 1,1073741823: list", "1 i=1\n1073741824 i=2\n2147483647 i=3\nOk\n"},
        {"renum 10,0\nrenum 0\nrenum -1\nrenum 10;5\nlist", "10 i=1\n20 i=2\n30 i=3\nOk\n"},  // no change
    };
    for (const auto& c : cases)
        EXPECT_EQ(test_console().output(program + c.typed), c.shown) << c.typed;
}

TEST(randomize, seeds_the_generator_with_the_value_or_with_minus_one_and_rnd_divides_rand)
{
    auto first_random = [](unsigned int seed) {
        std::srand(seed);
        char text[64];
        std::snprintf(text, sizeof text, "%f\nOk\n", std::rand() / 2147483647.0);
        return std::string(text);
    };
    test_console console;
    for (int repeat = 0; repeat < 2; ++repeat) {
        EXPECT_EQ(console.output("randomize 5: print rnd()"), first_random(5));
        EXPECT_EQ(console.output("randomize: print rnd()"), first_random(4294967295u));
    }
}

TEST(set_pixel, writes_the_turned_plane_and_ignores_coordinates_off_it)
{
    test_console console;
    const std::uint16_t* pixels = console.engine.graphic_layer.pixels;
    console.enter("set_pixel 3, 2, 1234");
    EXPECT_EQ(pixels[3 * 480 + 477], 1234);
    console.enter("set_pixel 639, 479, 65536 + 7");  // only the low 16 bits count
    EXPECT_EQ(pixels[639 * 480], 7);
    console.enter("set_pixel 0, 0, 5/0");  // the colour still draws, as the evaluator left it
    EXPECT_EQ(pixels[479], 5);
    std::vector<std::uint16_t> before(pixels, pixels + 640 * 480);
    console.enter("set_pixel -1, 0, 9: set_pixel 0, -1, 9: set_pixel 640, 0, 9: set_pixel 0, 480, 9");
    EXPECT_EQ(console.resource()->error_code, error_none);
    EXPECT_EQ(std::vector<std::uint16_t>(pixels, pixels + 640 * 480), before);
    expect_outputs({{"set_pixel 1", "Syntax error.\nOk\n"},   {"set_pixel 1, 2", "Syntax error.\nOk\n"},
                    {"set_pixel 1/0, 2, 3", "Division by zero.\nOk\n"},
                    {"set_pixel 1, 2/0, 3", "Division by zero.\nOk\n"}});
}

TEST(set_text_color, colours_characters_printed_afterwards_and_keeps_the_colour_on_failure)
{
    test_console console;
    console.enter("set_text_color 63488: print \"x\"");
    EXPECT_EQ(console.engine.cell(0, 1) >> 16, 0xF800u);
    console.enter("set_text_color 1/0");
    EXPECT_EQ(console.engine.text_editor.text_color, 0xF8000000u);
}

// exit is the end-to-end cases exit and exit_in_program.
TEST(end_and_new, end_stops_quietly_and_new_deletes_the_program_and_its_variables)
{
    expect_outputs({
        {"end: print 1", "Ok\n"},  {"new: print 1", "Ok\n"},  {"10 print 1\n20 end\n30 print 3\nrun", "1\nOk\n"},
        {"10 i=7\n20 print i\nrun\nnew\nlist: print i", "0\nOk\n"},
    });
}

TEST(save_and_load, give_the_program_back_numbered_from_100_and_report_device_errors)
{
    c_scratch_directory scratch;
    auto named = [&](const char* command, const char* file) { return std::string(command) + " \"" + scratch.path(file) + "\""; };
    test_console console;
    EXPECT_EQ(console.output("10 i=1\n20 print i\n" + named("save", "p.bas")), "Ok\n");
    EXPECT_EQ(console.output("new\n" + named("load", "p.bas") + ": print 5\nlist"), "100 i=1\n110 print i\nOk\n");
    EXPECT_EQ(console.output("new\n10 " + named("load", "p.bas") + "\n20 print 2\nrun\nlist"),  // ends the run
              "100 i=1\n110 print i\nOk\n");
    EXPECT_EQ(console.output(named("save", "missing/p.bas")), "Device I/O error.\nOk\n");
    EXPECT_EQ(console.output(named("load", ".") + "\nlist"), "Ok\n");  // a directory opens but cannot be read
    EXPECT_EQ(console.output(named("load", ".")), "Device I/O error.\nOk\n");
}
