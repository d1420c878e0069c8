// The engine as a host sees it: banner, start-up run of a named program, the key loop, break and geometry.
#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

#include "engine/error.h"
#include "support/test_console.h"

namespace {

namespace fs = std::filesystem;

// A program file in a fresh temporary folder, removed with the object.
struct program_file {
    explicit program_file(const std::string& file_name, const std::string& text)
    {
        folder = fs::temp_directory_path() / ("vexil_engine_" + std::to_string(::testing::UnitTest::GetInstance()->random_seed()) + "_" + file_name);
        fs::create_directories(folder);
        path = folder / file_name;
        std::ofstream(path, std::ios::binary) << text;
    }
    ~program_file() { fs::remove_all(folder); }
    fs::path folder;
    fs::path path;
};

// An engine that has been initialised but whose screen is not cleared: the banner stays.
struct fresh_engine {
    fresh_engine(int width = 640, int height = 480)
    {
        engine.screen_width = width;
        engine.screen_height = height;
        engine.line_step = height * 2;
        host.p_engine = &engine;
        engine.initialize(&host);
    }
    std::string row(int y) const
    {
        std::string text;
        for (int x = 0; x < engine.columns(); ++x) {
            int c = engine.cell(x, y) & 0xFF;
            text += c == 0 ? ' ' : static_cast<char>(c);
        }
        text.erase(text.find_last_not_of(' ') + 1);
        return text;
    }
    c_test_host host;
    c_vexil engine;
};

}  // namespace

TEST(error_table, holds_the_messages_in_code_order)
{
    EXPECT_STREQ(error_message(error_none), "No error");
    EXPECT_STREQ(error_message(error_break), "Break");
    EXPECT_STREQ(error_message(error_right_bracket), "Not found right blacket ')'");
    EXPECT_STREQ(error_message(error_out_of_memory), "Out of memory");
    EXPECT_STREQ(error_message(23), "No error");  // outside the table
    EXPECT_STREQ(error_message(-1), "No error");
}

TEST(engine_start, prints_the_banner_and_ok_and_waits_below_them)
{
    fresh_engine fresh;
    EXPECT_EQ(fresh.row(0), "VEXIL v0.0.7");
    EXPECT_FALSE(fresh.row(1).empty());
    EXPECT_EQ(fresh.row(2), "Ok");
    EXPECT_EQ(fresh.row(3), "");
    EXPECT_EQ(fresh.engine.text_editor.cursor_x, 0);
    EXPECT_EQ(fresh.engine.text_editor.cursor_y, 3);
    EXPECT_TRUE(fresh.engine.text_editor.input_mode);
    EXPECT_EQ(fresh.engine.system_resource.error_code, 0);
}

TEST(engine_start, truncates_a_grid_that_the_geometry_does_not_fill)
{
    fresh_engine fresh(644, 490);
    EXPECT_EQ(fresh.engine.columns(), 80);
    EXPECT_EQ(fresh.engine.rows(), 30);
    // The extra cell after the grid is empty and ends every scan.
    EXPECT_EQ(fresh.engine.text_layer.cells[80 * 30] & 0xFF, 0u);
}

TEST(engine_start, runs_a_named_program_and_prints_no_ok_after_a_clean_run)
{
    program_file file("clean.bas", "print \"hello\"\r\n");
    fresh_engine fresh;
    fresh.engine.run(file.path.c_str());
    EXPECT_EQ(fresh.row(3), "hello");
    EXPECT_EQ(fresh.row(4), "");
    EXPECT_EQ(fresh.engine.text_editor.cursor_y, 4);
    EXPECT_TRUE(fresh.engine.text_editor.cursor_visible);
}

TEST(engine_start, reports_an_error_of_the_named_program_with_its_line_number)
{
    program_file file("fails.bas", "print 1\nprint 2\ngoto $nowhere\n");
    fresh_engine fresh;
    fresh.engine.run(file.path.c_str());
    EXPECT_EQ(fresh.row(3), "1");
    EXPECT_EQ(fresh.row(4), "2");
    // The report's leading line break leaves the row below the output empty.
    EXPECT_EQ(fresh.row(5), "");
    EXPECT_EQ(fresh.row(6), "Invalid label at 120.");
    EXPECT_EQ(fresh.row(7), "Ok");
    EXPECT_EQ(fresh.host.last_error, error_invalid_label);
}

TEST(engine_start, drops_a_missing_program_without_a_word)
{
    fresh_engine fresh;
    fresh.engine.run("/nonexistent/vexil/missing.bas");
    EXPECT_EQ(fresh.row(3), "");
    EXPECT_EQ(fresh.engine.system_resource.error_code, 0);
    EXPECT_EQ(fresh.host.last_error, 0);
}

TEST(engine_start, takes_a_quoted_name_up_to_the_next_quote)
{
    program_file file("my prog.txt", "print \"quoted\"\r\n");
    fresh_engine fresh;
    std::string argument = "\"";
    argument += file.path.string();
    argument += "\"b";
    fresh.engine.run(argument.c_str());
    EXPECT_EQ(fresh.row(3), "quoted");
}

TEST(engine_start, uses_an_unquoted_name_with_its_quote_unchanged)
{
    program_file file("a\"b", "print \"unquoted\"\r\n");
    fresh_engine fresh;
    fresh.engine.run(file.path.c_str());
    EXPECT_EQ(fresh.row(3), "unquoted");
}

TEST(engine_start, refuses_a_name_of_260_characters_cleanly)
{
    fresh_engine fresh;
    std::string name(300, 'x');
    fresh.engine.run(name.c_str());
    EXPECT_EQ(fresh.row(3), "");
    EXPECT_EQ(fresh.engine.system_resource.error_code, 0);
}

TEST(key_loop, hands_queued_keys_to_the_editor_and_sleeps_when_idle)
{
    fresh_engine fresh;
    fresh.engine.key('a');
    fresh.engine.key(0);  // stored, then taken as no key at all
    fresh.engine.key('b');
    fresh.engine.run(nullptr);
    EXPECT_EQ(fresh.row(3), "a");  // the 0 ends the keys seen before the first idle sleep
    EXPECT_EQ(fresh.host.slept_ms, 10u);
    fresh.engine.run(nullptr);
    EXPECT_EQ(fresh.row(3), "ab");
}

TEST(key_loop, ends_after_the_line_that_ran_exit_has_finished)
{
    fresh_engine fresh;
    fresh.host.quit_when_idle = false;
    for (char c : std::string("exit: print \"bye\"\r"))
        fresh.engine.key(c);
    fresh.engine.run(nullptr);
    EXPECT_EQ(fresh.row(4), "bye");
    EXPECT_EQ(fresh.row(5), "Ok");
    EXPECT_FALSE(fresh.engine.system_resource.running);
}

TEST(break_key, while_idle_shows_nothing_and_is_reset_by_the_next_line)
{
    fresh_engine fresh;
    fresh.engine.force_break();
    EXPECT_EQ(fresh.engine.system_resource.error_code, error_break);
    for (char c : std::string("print 7\r"))
        fresh.engine.key(c);
    fresh.engine.run(nullptr);
    EXPECT_EQ(fresh.row(4), "7");
    EXPECT_EQ(fresh.row(5), "Ok");
}

TEST(break_key, during_a_program_stops_it_with_break_and_the_line_number)
{
    struct breaking_host : c_test_host {
        void update_text() override
        {
            if (++text_updates == 50)
                p_engine->force_break();
        }
    };
    breaking_host host;
    c_vexil engine;
    engine.screen_width = 640;
    engine.screen_height = 480;
    engine.line_step = 960;
    host.p_engine = &engine;
    engine.initialize(&host);
    program_file file("loop.bas", "$top print 1\r\ngoto $top\r\n");
    engine.run(file.path.c_str());
    EXPECT_EQ(host.last_error, error_break);
    bool found = false;
    for (int y = 0; y < engine.rows(); ++y) {
        std::string text;
        for (int x = 0; x < engine.columns(); ++x)
            text += static_cast<char>(engine.cell(x, y) & 0xFF);
        if (text.rfind("Break at 1", 0) == 0)
            found = true;
    }
    EXPECT_TRUE(found);
}
