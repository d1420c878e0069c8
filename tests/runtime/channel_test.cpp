// File channels driven from the prompt, run in a directory of their own so that plain names are files
// there; each session's files are compared byte for byte afterwards.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <utility>
#include <vector>

#include "support/scratch_directory.h"
#include "support/test_console.h"

namespace {

using files = std::vector<std::pair<std::string, const char*>>;  // name and bytes; null: no such file

struct session {
    const char* about;
    files given;
    std::vector<std::pair<std::string, int>> steps;  // a typed line and the code it reports
    files expected;
};

class channels : public ::testing::Test {
protected:
    // Each session starts from an empty directory and leaves every channel closed.
    void play(const session& s)
    {
        for (const auto& entry : std::filesystem::directory_iterator("."))
            std::filesystem::remove_all(entry.path());
        for (const auto& [name, bytes] : s.given)
            std::ofstream(name, std::ios::binary) << bytes;
        for (const auto& [typed, code] : s.steps) {
            console.host.last_error = 0;
            console.enter(typed);
            EXPECT_EQ(console.host.last_error, code) << s.about << ": " << typed;
        }
        console.engine.interpreter.all_file_close();
        for (const auto& [name, bytes] : s.expected) {
            EXPECT_EQ(std::filesystem::exists(name), bytes != nullptr) << s.about << ": " << name;
            if (bytes != nullptr) {
                EXPECT_EQ(file_text(name), bytes) << s.about << ": " << name;
            }
        }
    }

    c_scratch_directory scratch{true};
    test_console console;
};

TEST_F(channels, write_and_read_lines_with_their_ends_and_turn_feof_only_when_a_read_hits_the_end)
{
    std::string digits;
    for (int i = 0; i < 300; ++i)
        digits += static_cast<char>('0' + i % 10);
    const std::string long_line = digits + "\r\n";
    const std::string pieces = "256\r\n" + digits.substr(0, 256) + "46\r\n" + digits.substr(256) + "\r\n";
    const std::string piece = "s=finput(2): fprint 3,len(s): fprint 3,s;";
    const session sessions[] = {
        {"fprint ends each value with CR LF unless a semicolon follows", {},
         {{"fwopen 0,\"out\": fprint 0,\"A\": fprint 0,12;: fprint 0,1.5: fprint 0,: fprint 0,;", 0}},
         {{"out", "A\r\n121.500000\r\n\r\n"}}},
        {"finput keeps the line ends", {{"in", "A\r\n12\r\nlast"}},
         {{"fropen 0,\"in\": fwopen 1,\"copy\"", 0}, {"s=finput(0): fprint 1,s;: fprint 1,feof(0)", 0},
          {"s=finput(0): fprint 1,s;: fprint 1,feof(0)", 0}, {"s=finput(0): fprint 1,s;: fprint 1,feof(0)", 0},
          {"print finput(0)", 11}},
         {{"copy", "A\r\n0\r\n12\r\n0\r\nlast-1\r\n"}}},
        {"a long line comes back in pieces of 256 bytes", {{"long", long_line.c_str()}},
         {{"fropen 2,\"long\": fwopen 3,\"copy\"", 0}, {piece, 0}, {piece, 0}}, {{"copy", pieces.c_str()}}},
        {"a name ends at a zero byte and may be 256 bytes long", {},
         {{"fwopen 0,\"zero\"+chr(0)+\"tail\": fclose 0", 0},
          {"s=\"./\": for i=1 to 254: s=s+\"n\": next: fwopen 0,s: fprint 0,len(s)", 0}},
         {{"zero", ""}, {std::string(254, 'n'), "256\r\n"}}},
    };
    for (const session& s : sessions)
        play(s);
    EXPECT_EQ(console.output("print feof(5)"), "0\nInvalid descriptor.\nOk\n");  // feof gives 0 when it fails
}

const session failures[] = {
    {"channel numbers outside 0 to 9",
     {},
     {{"fropen 10,\"made\"", 9}, {"fropen -1,\"made\"", 9}, {"fwopen 10,\"made\"", 9},
      {"fwopen -2147483648,\"made\"", 9},
      {"fclose 10", 9}, {"fclose -1", 9}, {"fprint 10,\"x\"", 9}, {"fprint -1,\"x\"", 9},
      {"print finput(10)", 9}, {"print feof(-1)", 9}},
     {{"made", nullptr}}},
    {"a missing comma",
     {},
     {{"fwopen 0 \"made\"", 9}, {"fwopen 0,\"out\"", 0}, {"fprint 0 \"x\"", 9}},
     {{"made", nullptr}, {"out", ""}}},
    {"a file that cannot be opened leaves the channel closed",
     {},
     {{"fropen 3,\"missing\"", 11}, {"fclose 3", 0}, {"print feof(3)", 19}, {"fwopen 4,\"no/such/out\"", 11},
      {"fprint 4,\"x\"", 19}},
     {}},
    {"an empty file",
     {{"empty", ""}},
     {{"fropen 0,\"empty\"", 0}, {"print finput(0)", 11}, {"fwopen 1,\"copy\": fprint 1,feof(0)", 0}},
     {{"copy", "-1\r\n"}}},
    {"reading a write channel and writing a read channel",
     {{"in", "kept\r\n"}},
     {{"fwopen 0,\"out\": fropen 1,\"in\"", 0}, {"print finput(0)", 11}, {"fprint 1,\"x\"", 11}},
     {{"in", "kept\r\n"}, {"out", ""}}},
    {"opening an open channel keeps its stream",
     {{"a", "first\r\n"}, {"b", "second\r\n"}},
     {{"fropen 0,\"a\"", 0}, {"fropen 0,\"b\"", 18}, {"fwopen 0,\"b\"", 18},
      {"fwopen 1,\"copy\": fprint 1,finput(0);", 0}},
     {{"b", "second\r\n"}, {"copy", "first\r\n"}}},
    {"closed channels",
     {},
     {{"fprint 5,\"x\"", 19}, {"print finput(5)", 19}, {"print feof(5)", 19},
      {"fwopen 5,\"out\": fclose 5: fclose 5", 0}, {"fprint 5,\"x\"", 19}},
     {{"out", ""}}},
    {"a failing argument touches no channel",
     {},
     {{"fwopen 1,\"out\"", 0}, {"fclose 1/0", 5}, {"fprint 1,1/0", 5}, {"fprint 1,\"x\"", 0}},
     {{"out", "x\r\n"}}},
    {"fwopen empties a file that exists",
     {{"old", "stale\r\n"}},
     {{"fwopen 0,\"old\": fprint 0,\"new\"", 0}},
     {{"old", "new\r\n"}}},
    {"run closes every channel, writing what waited",
     {},
     {{"fwopen 0,\"out\": fwopen 9,\"out9\"", 0}, {"fprint 0,\"before\": run", 0}, {"fprint 0,\"x\"", 19},
      {"fprint 9,\"x\"", 19}},
     {{"out", "before\r\n"}, {"out9", ""}}},
};

TEST_F(channels, report_every_failure_and_leave_the_files_as_they_were)
{
    for (const session& s : failures)
        play(s);
}

}  // namespace
