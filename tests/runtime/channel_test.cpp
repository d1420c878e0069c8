// File channels driven from the prompt, with the files' bytes compared exactly in a directory of their own.
// In a typed line, @name stands for the quoted path of that file in the directory.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "support/test_console.h"

namespace {

struct step {
    const char* typed;
    int code;  // reported by the line, 0 for none
};

struct session {
    const char* about;
    std::vector<std::pair<const char*, const char*>> given;     // files and their bytes before
    std::vector<step> steps;
    std::vector<std::pair<const char*, const char*>> expected;  // bytes after; null: no such file
};

class channels : public ::testing::Test {
protected:
    void SetUp() override
    {
        std::random_device random;
        directory = std::filesystem::temp_directory_path() /
                    ("vexil_channels_" + std::to_string(random()) + std::to_string(random()));
        ASSERT_TRUE(std::filesystem::create_directory(directory));
    }
    void TearDown() override
    {
        console.engine.interpreter.all_file_close();
        std::filesystem::remove_all(directory);
    }

    std::string with_paths(const std::string& line) const
    {
        std::string text;
        for (std::size_t i = 0; i < line.size(); ++i) {
            if (line[i] != '@') {
                text += line[i];
                continue;
            }
            std::size_t end = line.find_first_of(" :;+", i);
            end = end == std::string::npos ? line.size() : end;
            text += '"';
            text += (directory / line.substr(i + 1, end - i - 1)).string();
            text += '"';
            i = end - 1;
        }
        return text;
    }
    std::string bytes_of(const std::string& name) const
    {
        std::ifstream file(directory / name, std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
    }
    void write_file(const std::string& name, const std::string& bytes) const
    {
        std::ofstream(directory / name, std::ios::binary) << bytes;
    }
    int error_of(const std::string& line)
    {
        console.host.last_error = 0;
        console.enter(with_paths(line));
        return console.host.last_error;
    }
    // What the line printed, typed on a cleared screen.
    std::string printed(const std::string& line)
    {
        console.engine.text_editor.clear_screen();
        EXPECT_EQ(error_of(line), 0) << line;
        return console.row(1);
    }
    // Each session starts from an empty directory and leaves every channel closed.
    void play(const session& s)
    {
        for (const auto& entry : std::filesystem::directory_iterator(directory))
            std::filesystem::remove_all(entry.path());
        for (const auto& [name, bytes] : s.given)
            write_file(name, bytes);
        for (const step& line : s.steps)
            EXPECT_EQ(error_of(line.typed), line.code) << s.about << ": " << line.typed;
        console.engine.interpreter.all_file_close();
        for (const auto& [name, bytes] : s.expected) {
            EXPECT_EQ(std::filesystem::exists(directory / name), bytes != nullptr) << s.about << ": " << name;
            if (bytes != nullptr) {
                EXPECT_EQ(bytes_of(name), bytes) << s.about << ": " << name;
            }
        }
    }

    std::filesystem::path directory;
    test_console console;
};

TEST_F(channels, fprint_ends_each_value_with_cr_lf_unless_a_semicolon_follows)
{
    for (const char* line : {"fwopen 0,@out", "fprint 0,\"A\"", "fprint 0,12;", "fprint 0,1.5", "fprint 0,",
                             "fprint 0,;"})
        EXPECT_EQ(error_of(line), 0) << line;
    EXPECT_EQ(bytes_of("out"), "");  // no flush of its own: the bytes wait in the C library's buffer
    EXPECT_EQ(error_of("fclose 0"), 0);
    EXPECT_EQ(bytes_of("out"), "A\r\n121.500000\r\n\r\n");
}

TEST_F(channels, finput_gives_lines_with_their_ends_and_feof_turns_only_when_a_read_hits_the_end)
{
    write_file("in", "A\r\n121.500000\r\nlast");
    EXPECT_EQ(error_of("fropen 0,@in: fwopen 1,@copy"), 0);
    EXPECT_EQ(printed("s = finput(0): fprint 1,s;: print len(s)"), "3");
    EXPECT_EQ(printed("print feof(0)"), "0");
    EXPECT_EQ(printed("s = finput(0): fprint 1,s;: print len(s)"), "12");
    EXPECT_EQ(printed("print feof(0)"), "0");  // the line end was read, not the end of the file
    EXPECT_EQ(printed("s = finput(0): fprint 1,s;: print feof(0)"), "-1");
    EXPECT_EQ(error_of("print finput(0)"), 11);
    EXPECT_EQ(error_of("fclose 1"), 0);
    EXPECT_EQ(bytes_of("copy"), "A\r\n121.500000\r\nlast");
}

TEST_F(channels, a_long_line_comes_back_in_pieces_of_256_bytes)
{
    std::string line;
    for (int i = 0; i < 300; ++i)
        line += static_cast<char>('0' + i % 10);
    write_file("long", line + "\r\n");
    EXPECT_EQ(error_of("fropen 2,@long: fwopen 3,@copy"), 0);
    EXPECT_EQ(printed("s = finput(2): fprint 3,s;: print len(s)"), "256");
    EXPECT_EQ(printed("s = finput(2): fprint 3,s;: print len(s)"), "46");  // 44 bytes and CR LF
    EXPECT_EQ(error_of("fclose 3"), 0);
    EXPECT_EQ(bytes_of("copy"), line + "\r\n");
}

TEST_F(channels, a_name_ends_at_a_zero_byte_and_may_be_256_bytes_long)
{
    EXPECT_EQ(error_of("fwopen 0,@zero+chr(0)+\"tail\": fclose 0"), 0);
    EXPECT_TRUE(std::filesystem::exists(directory / "zero"));
    std::string prefix = (directory / "").string();
    std::string name(256 - prefix.size(), 'n');
    EXPECT_EQ(error_of("s = \"" + prefix + "\": for i = 1 to " + std::to_string(name.size()) +
                       ": s = s + \"n\": next: fwopen 0,s: fprint 0,len(s): fclose 0"),
              0);
    EXPECT_EQ(bytes_of(name), "256\r\n");
}

TEST_F(channels, feof_gives_0_when_it_fails)
{
    console.engine.text_editor.clear_screen();
    EXPECT_EQ(error_of("print feof(5)"), 19);
    EXPECT_EQ(console.row(1), "0");
}

const session failures[] = {
    {"channel numbers outside 0 to 9",
     {},
     {{"fropen 10,@made", 9}, {"fropen -1,@made", 9}, {"fwopen 10,@made", 9}, {"fwopen -2147483648,@made", 9},
      {"fclose 10", 9}, {"fclose -1", 9}, {"fprint 10,\"x\"", 9}, {"fprint -1,\"x\"", 9},
      {"print finput(10)", 9}, {"print feof(-1)", 9}},
     {{"made", nullptr}}},
    {"a missing comma",
     {},
     {{"fwopen 0 @made", 9}, {"fwopen 0,@out", 0}, {"fprint 0 \"x\"", 9}},
     {{"made", nullptr}, {"out", ""}}},
    {"a file that cannot be opened leaves the channel closed",
     {},
     {{"fropen 3,@missing", 11}, {"fclose 3", 0}, {"print feof(3)", 19}, {"fwopen 4,@no/such/out", 11},
      {"fprint 4,\"x\"", 19}},
     {}},
    {"an empty file",
     {{"empty", ""}},
     {{"fropen 0,@empty", 0}, {"print finput(0)", 11}, {"fwopen 1,@copy: fprint 1,feof(0)", 0}},
     {{"copy", "-1\r\n"}}},
    {"reading a write channel and writing a read channel",
     {{"in", "kept\r\n"}},
     {{"fwopen 0,@out: fropen 1,@in", 0}, {"print finput(0)", 11}, {"fprint 1,\"x\"", 11}},
     {{"in", "kept\r\n"}, {"out", ""}}},
    {"opening an open channel keeps its stream",
     {{"a", "first\r\n"}, {"b", "second\r\n"}},
     {{"fropen 0,@a", 0}, {"fropen 0,@b", 18}, {"fwopen 0,@b", 18}, {"fwopen 1,@copy: fprint 1,finput(0);", 0}},
     {{"b", "second\r\n"}, {"copy", "first\r\n"}}},
    {"closed channels",
     {},
     {{"fprint 5,\"x\"", 19}, {"print finput(5)", 19}, {"print feof(5)", 19},
      {"fwopen 5,@out: fclose 5: fclose 5", 0}, {"fprint 5,\"x\"", 19}},
     {{"out", ""}}},
    {"a failing argument touches no channel",
     {},
     {{"fwopen 1,@out", 0}, {"fclose 1/0", 5}, {"fprint 1,1/0", 5}, {"fprint 1,\"x\"", 0}},
     {{"out", "x\r\n"}}},
    {"fwopen empties a file that exists",
     {{"old", "stale\r\n"}},
     {{"fwopen 0,@old: fprint 0,\"new\"", 0}},
     {{"old", "new\r\n"}}},
    {"run closes every channel, writing what waited",
     {},
     {{"fwopen 0,@out: fwopen 9,@out9", 0}, {"fprint 0,\"before\": run", 0}, {"fprint 0,\"x\"", 19},
      {"fprint 9,\"x\"", 19}},
     {{"out", "before\r\n"}, {"out9", ""}}},
};

TEST_F(channels, report_every_failure_and_leave_the_files_as_they_were)
{
    for (const session& s : failures)
        play(s);
}

}  // namespace
