// The session every host shares: a break that ends a sleep at once, the geometry, and the start-up check
// of the program file. A full key ring, --timeout's status, a program file missing, a directory or
// untranslatable are end-to-end cases; the end that breaks an endless line is the window's close button.
#include "host/session.h"

#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include "host/screen_capture.h"
#include "support/scratch_directory.h"

namespace {

struct c_quiet_session : c_session {
    explicit c_quiet_session(const c_options& options) : c_session(options) {}
    ~c_quiet_session() override { (void)finish(); }  // while the hooks below still exist
    void update_screen() override {}
    void update_text() override {}
    void report(const std::string&) override {}

    void type(const std::string& text)
    {
        std::vector<int> codes;
        for (unsigned char c : text)
            codes.push_back(c == '\n' ? 13 : c);
        type_keys(codes.data(), codes.size());
    }
    // Bounded: only a broken session waits this long.
    bool shows(const std::string& text)
    {
        for (int look = 0; look < 10000; ++look) {
            if (screen_text(engine).find(text) != std::string::npos)
                return true;
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        return false;
    }
    void begin()
    {
        EXPECT_TRUE(initialize());
        start();
    }
};

}  // namespace

TEST(session, a_break_ends_a_programs_sleep_at_once_and_is_an_error)
{
    c_options options;
    c_quiet_session session(options);
    session.begin();
    session.type("print \"zz\":sleep 600000\n");
    ASSERT_TRUE(session.shows("zz\n"));
    session.break_program();
    session.end_input();
    EXPECT_EQ(session.finish(), exit_error);
    EXPECT_TRUE(session.shows("zz\nBreak.\nOk"));
}

TEST(session, takes_the_terminals_size_only_when_the_command_line_gave_none)
{
    struct geometry_case { bool size_given; int columns, rows, width, height; };
    const geometry_case cases[] = {
        {false, 100, 30, 800, 480},
        {false, 0, 0, 640, 480},     // no terminal: the default
        {false, 9999, 9999, 4096, 4096},  // at most the largest screen
        {true, 100, 30, 320, 240},   // --size 320x240 wins
    };
    for (const auto& c : cases) {
        c_options options;
        options.size_given = c.size_given;
        if (c.size_given) {
            options.screen_width = 320;
            options.screen_height = 240;
        }
        c_quiet_session session(options);
        session.set_geometry(c.columns, c.rows);
        EXPECT_EQ(std::vector({session.engine.screen_width, session.engine.screen_height, session.engine.line_step}),
            std::vector({c.width, c.height, c.height * 2})) << c.columns << "x" << c.rows;
    }
}

TEST(program_file, problems_are_found_before_the_load_with_the_line_they_are_in)
{
    struct file_case { std::string text; std::string problem; };
    const std::string longest(255, 'a');
    const file_case cases[] = {
        {"print 1\n" + longest + "\r\n", ""},
        {"print 1\n" + longest + "a\n", "line 2: Too long line"},
        {std::string(9990, '\n'), ""},            // numbered up to 99990
        {std::string(9990, '\n') + "x", "line 9991: Illegal line number"},
        {longest + "\n" + std::string(9988, '\n') + "x", "line 9990: Illegal line number"},  // 255: two numbers
    };
    std::vector<int> file_lines;
    for (const auto& c : cases) {
        c_scratch_directory scratch;
        std::ofstream(scratch.path("p.bas"), std::ios::binary) << c.text;
        const std::string expected = c.problem.empty() ? "" : '"' + scratch.path("p.bas") + "\" " + c.problem;
        EXPECT_EQ(program_file_problem(scratch.path("p.bas"), file_lines), expected) << c.problem;
    }
}

TEST(program_file, gives_each_number_the_file_line_the_load_reads_it_from)
{
    // The load reads 255 characters at a time: a line of 255 leaves its line end as a blank line.
    c_scratch_directory scratch;
    std::ofstream(scratch.path("p.bas"), std::ios::binary)
        << "a\r\n\n" + std::string(255, 'b') + "\r\n" + std::string(254, 'c') + "\r\nd";
    std::vector<int> file_lines;
    ASSERT_EQ(program_file_problem(scratch.path("p.bas"), file_lines), "");
    EXPECT_EQ(file_lines, std::vector<int>({1, 2, 3, 3, 4, 4, 5}));
}
