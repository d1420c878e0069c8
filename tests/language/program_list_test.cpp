// The stored program: ordering, replacing and deleting lines, renumbering, listing, and the program
// file format read and written in a temporary directory.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

#include "engine/error.h"
#include "language/parser.h"
#include "language/program_list.h"
#include "support/test_console.h"

namespace {

c_program_list& program_of(test_console& console)
{
    return console.engine.interpreter.program_list;
}

// The stored lines as "number source", in list order; also checks that the links agree both ways.
std::vector<std::string> stored(test_console& console)
{
    std::vector<std::string> lines;
    const c_program_line* previous = nullptr;
    for (const c_program_line* line = program_of(console).first; line != nullptr; line = line->next) {
        EXPECT_EQ(line->prev, previous);
        lines.push_back(std::to_string(line->number) + " " + line->source);
        previous = line;
    }
    return lines;
}

void enter_lines(test_console& console, const std::vector<const char*>& lines)
{
    for (const char* line : lines)
        console.enter(line);
}

// What an immediate line prints on a cleared screen.
std::string printed(test_console& console, const char* line)
{
    console.engine.text_editor.clear_screen();
    console.enter(line);
    return console.row(1);
}

// Adds one numbered line straight through the store, as the editor does.
void add(test_console& console, const char* typed)
{
    c_parser parser(console.resource());
    parser.check_line_no(typed);
    program_of(console).add(&parser, typed);
}

class program_files : public ::testing::Test {
protected:
    void SetUp() override
    {
        directory = std::filesystem::temp_directory_path() /
                    ("vexil_program_list_" + std::to_string(std::random_device{}()));
        std::filesystem::create_directories(directory);
    }
    void TearDown() override { std::filesystem::remove_all(directory); }

    std::string path(const char* name) const { return (directory / name).string(); }
    void write(const char* name, const std::string& bytes) const
    {
        std::ofstream(path(name), std::ios::binary) << bytes;
    }
    std::string read(const char* name) const
    {
        std::ifstream file(path(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    }
    int load(const char* name, int start = 100, int step = 10)
    {
        return program_of(console).load(path(name).c_str(), start, step);
    }

    test_console console;
    std::filesystem::path directory;
};

}  // namespace

TEST(program_store, keeps_lines_in_ascending_order_whatever_the_order_of_entry)
{
    test_console console;
    enter_lines(console, {"20 i=2", "10 i=1", "30 i=3", "25 i=25"});
    EXPECT_EQ(stored(console), (std::vector<std::string>{"10 i=1", "20 i=2", "25 i=25", "30 i=3"}));
}

TEST(program_store, a_number_alone_deletes_its_line_and_changes_nothing_when_absent)
{
    test_console console;
    enter_lines(console, {"10 i=1", "20 i=2", "30 i=3", "20", "25"});
    EXPECT_EQ(stored(console), (std::vector<std::string>{"10 i=1", "30 i=3"}));
    console.enter("10");  // the first line: its successor becomes first
    EXPECT_EQ(stored(console), (std::vector<std::string>{"30 i=3"}));
    console.enter("30");
    EXPECT_EQ(program_of(console).first, nullptr);
}

TEST(program_store, an_existing_number_replaces_its_line)
{
    test_console console;
    enter_lines(console, {"10 i=1", "20 print i", "10 i=5"});
    EXPECT_EQ(stored(console), (std::vector<std::string>{"10 i=5", "20 print i"}));
    EXPECT_EQ(printed(console, "run"), "5");
}

TEST(program_store, leading_blanks_are_not_kept_in_the_source)
{
    test_console console;
    console.enter("10    print 1");
    EXPECT_EQ(stored(console), (std::vector<std::string>{"10 print 1"}));
}

TEST(program_store, reentering_a_line_gives_back_its_variables_first)
{
    test_console console;
    console.enter("10 i=i+1");
    console.enter("run");
    console.enter("run");
    EXPECT_EQ(printed(console, "print i"), "2");
    console.enter("10 i=i+1");  // no other line names i: it is deleted and made anew
    console.enter("run");
    EXPECT_EQ(printed(console, "print i"), "1");
}

TEST(program_store, a_variable_named_by_another_line_survives_a_deletion)
{
    test_console console;
    enter_lines(console, {"10 i=i+1", "20 print i", "run", "20"});
    console.enter("run");
    EXPECT_EQ(printed(console, "print i"), "2");
}

TEST(program_store, a_line_that_fails_to_translate_is_stored_with_its_source_and_no_code)
{
    test_console console;
    add(console, "10 x=1");
    EXPECT_EQ(console.resource()->error_code, error_syntax);
    const c_program_line* line = program_of(console).first;
    ASSERT_NE(line, nullptr);
    EXPECT_STREQ(line->source, "x=1");
    EXPECT_EQ(line->code, nullptr);
    EXPECT_EQ(line->code_length, 0);
    console.enter("10 i=1");  // replacing it gives it code again
    EXPECT_NE(program_of(console).first->code, nullptr);
}

TEST(program_store, renumber_gives_numbers_from_start_by_step_and_changes_nothing_else)
{
    test_console console;
    enter_lines(console, {"10 i=1", "20 i=2", "30 i=3"});
    program_of(console).renumber(1000, 5);
    EXPECT_EQ(stored(console), (std::vector<std::string>{"1000 i=1", "1005 i=2", "1010 i=3"}));
}

TEST(program_store, clear_empties_the_program_and_gives_back_its_variables)
{
    test_console console;
    enter_lines(console, {"10 i=7", "20 print i", "run"});
    program_of(console).clear();
    EXPECT_EQ(program_of(console).first, nullptr);
    EXPECT_EQ(program_of(console).current, nullptr);
    EXPECT_EQ(printed(console, "print i"), "0");
}

TEST(program_store, list_prints_the_lines_in_the_range_both_ends_included)
{
    test_console console;
    enter_lines(console, {"10 i=1", "20 print i", "30 end"});
    console.engine.text_editor.clear_screen();
    program_of(console).list(20, 30);
    EXPECT_EQ(console.screen(), "20 print i\n30 end\n");
    console.engine.text_editor.clear_screen();
    program_of(console).list(11, 19);
    EXPECT_EQ(console.screen(), "");
}

TEST_F(program_files, save_writes_each_source_and_a_carriage_return_and_line_feed)
{
    enter_lines(console, {"10 i=1", "20 print i"});
    EXPECT_EQ(program_of(console).save(path("saved.bas").c_str()), 1);
    EXPECT_EQ(read("saved.bas"), "i=1\r\nprint i\r\n");
}

TEST_F(program_files, save_of_an_empty_program_writes_an_empty_file)
{
    write("old.bas", "old contents\r\n");
    EXPECT_EQ(program_of(console).save(path("old.bas").c_str()), 1);
    EXPECT_EQ(read("old.bas"), "");
}

TEST_F(program_files, save_to_a_file_that_cannot_be_made_reports_a_device_error)
{
    console.enter("10 i=1");
    EXPECT_EQ(program_of(console).save(path("missing/saved.bas").c_str()), 0);
    EXPECT_EQ(console.resource()->error_code, error_device_io);
}

TEST_F(program_files, load_numbers_file_lines_from_start_by_step)
{
    write("program.bas", "i=1\r\nprint i\r\n");
    EXPECT_EQ(load("program.bas"), 1);
    EXPECT_EQ(stored(console), (std::vector<std::string>{"100 i=1", "110 print i"}));
    EXPECT_EQ(program_of(console).current, nullptr);
}

TEST_F(program_files, line_feeds_alone_load_the_same_program_as_carriage_return_and_line_feed)
{
    write("crlf.bas", "i=1\r\n  print i\r\n\r\nend\r\n");
    write("lf.bas", "i=1\n  print i\n\nend\n");
    ASSERT_EQ(load("crlf.bas"), 1);
    std::vector<std::string> from_crlf = stored(console);
    program_of(console).clear();
    ASSERT_EQ(load("lf.bas"), 1);
    EXPECT_EQ(stored(console), from_crlf);
    // A blank line stores nothing but uses up its number; indentation does not survive.
    EXPECT_EQ(from_crlf, (std::vector<std::string>{"100 i=1", "110 print i", "130 end"}));
}

TEST_F(program_files, load_adds_to_the_program_it_finds)
{
    console.enter("5 i=5");
    write("program.bas", "i=1\n");
    ASSERT_EQ(load("program.bas"), 1);
    EXPECT_EQ(stored(console), (std::vector<std::string>{"5 i=5", "100 i=1"}));
}

TEST_F(program_files, a_number_at_the_start_of_a_file_line_is_part_of_its_text)
{
    write("program.bas", "10 print 1\n");
    ASSERT_EQ(load("program.bas"), 1);
    EXPECT_EQ(stored(console), (std::vector<std::string>{"100 10 print 1"}));
}

TEST_F(program_files, load_stops_at_the_first_line_that_fails_and_keeps_it_and_those_before)
{
    write("program.bas", "print 1\nx=1\nprint 3\n");
    EXPECT_EQ(load("program.bas"), 0);
    EXPECT_EQ(console.resource()->error_code, error_syntax);
    EXPECT_EQ(stored(console), (std::vector<std::string>{"100 print 1", "110 x=1"}));
}

TEST_F(program_files, load_of_a_missing_file_reports_it_and_leaves_the_program)
{
    console.enter("10 i=1");
    EXPECT_EQ(load("missing.bas"), 0);
    EXPECT_EQ(console.resource()->error_code, error_cannot_open);
    EXPECT_EQ(stored(console), (std::vector<std::string>{"10 i=1"}));
}

TEST_F(program_files, load_refuses_a_number_past_99999_and_keeps_the_lines_before_it)
{
    write("program.bas", "i=1\ni=2\ni=3\n");
    EXPECT_EQ(load("program.bas", 99989, 5), 1);
    EXPECT_EQ(stored(console), (std::vector<std::string>{"99989 i=1", "99994 i=2", "99999 i=3"}));
    program_of(console).clear();
    write("longer.bas", "i=1\ni=2\ni=3\n\n");  // the blank fourth line would be 100004
    EXPECT_EQ(load("longer.bas", 99989, 5), 0);
    EXPECT_EQ(console.resource()->error_code, error_illegal_line_number);
    EXPECT_EQ(stored(console), (std::vector<std::string>{"99989 i=1", "99994 i=2", "99999 i=3"}));
}

TEST_F(program_files, load_refuses_a_start_below_one)
{
    write("program.bas", "i=1\n");
    EXPECT_EQ(load("program.bas", -10, 10), 0);  // "-10" has no digits to check
    EXPECT_EQ(console.resource()->error_code, error_illegal_line_number);
    EXPECT_EQ(program_of(console).first, nullptr);
}

TEST_F(program_files, a_file_line_longer_than_255_characters_is_split)
{
    std::string comment = "'" + std::string(254, 'a');  // exactly 255 characters
    write("program.bas", comment + "i=7\nprint i\n");
    ASSERT_EQ(load("program.bas"), 1);
    EXPECT_EQ(stored(console), (std::vector<std::string>{"100 " + comment, "110 i=7", "120 print i"}));
}
