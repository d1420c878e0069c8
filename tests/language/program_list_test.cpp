// The stored program: ordering, replacing and deleting lines as the screen shows them, and the program
// file format read and written in a temporary directory.
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "engine/error.h"
#include "language/program_list.h"
#include "support/scratch_directory.h"
#include "support/value_check.h"

TEST(program_store, keeps_lines_in_order_replaces_deletes_and_gives_back_variables)
{
    expect_outputs({
        {"20 i=2\n10 i=1\n30 i=3\n25 i=25\nlist", "10 i=1\n20 i=2\n25 i=25\n30 i=3\nOk\n"},
        {"10 i=1\n20 i=2\n30 i=3\n20\n25\nlist", "10 i=1\n30 i=3\nOk\n"},  // an absent number changes nothing
        {"10 i=1\n20 i=2\n10\nlist", "20 i=2\nOk\n"}, {"10 i=1\n20 i=2\n20\n10\nlist", "Ok\n"},
        {"10 i=1\n20 print i\n10 i=5\nlist: run", "10 i=5\n20 print i\n5\nOk\n"},
        {"10    print 1\nlist", "10 print 1\nOk\n"},  // leading blanks are not kept
        {"10 x=1\n20 i=2\nlist", "10 x=1\n20 i=2\nOk\n"},  // a line that fails to translate keeps its source
        {"10 x=1\n10 print 5\nrun", "5\nOk\n"},             // and gets code once replaced
        // Re-entering a line gives back its variables first: no other line names i, so it starts again.
        {"10 i=i+1\nrun\nrun\n10 i=i+1\nrun\nprint i", "1\nOk\n"},
        {"10 i=i+1\n20 print i\nrun\n20\nrun\nprint i", "2\nOk\n"},  // line 10 still names i
        {"10 r1=1\n20 r2=2\nrun\n10\nprint r2", "2.000000\nOk\n"},
    });
}

class program_files : public ::testing::Test {
protected:
    std::string path(const char* name) const { return scratch.path(name); }
    std::string listed()
    {
        std::string text;
        for (const c_program_line* line = program.first; line != nullptr; line = line->next) {
            EXPECT_EQ(line->next == nullptr || line->next->prev == line, true);
            text += std::to_string(line->number) + " " + line->source + "\n";
        }
        return text;
    }

    c_scratch_directory scratch;
    test_console console;
    c_program_list& program = console.engine.interpreter.program_list;
};

TEST_F(program_files, save_writes_each_source_and_cr_lf_and_an_empty_program_empties_the_file)
{
    std::ofstream(path("old.bas")) << "old contents\r\n";
    EXPECT_EQ(program.save(path("old.bas").c_str()), 1);
    console.enter("10 i=1");
    console.enter("20 print i");
    EXPECT_EQ(program.save(path("saved.bas").c_str()), 1);
    EXPECT_EQ(file_text(path("old.bas")), "");
    EXPECT_EQ(file_text(path("saved.bas")), "i=1\r\nprint i\r\n");
}

// A save that fails leaves the old file whole and no temporary file beside it: past a file-size limit
// (a full disk fails the same way) and on a device that is always full, which is written in place and
// must stay a device. A save that succeeds keeps the old file's permissions, and a link stays a link.
TEST_F(program_files, save_replaces_a_file_only_when_every_byte_is_written)
{
    for (int line = 1; line <= 200; ++line)
        console.enter(std::to_string(line) + " print \"" + std::string(60, 'x') + "\"");
    std::ofstream(path("old.bas")) << "old contents\r\n";
    std::filesystem::permissions(path("old.bas"), std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
    const rlimit unlimited = {RLIM_INFINITY, RLIM_INFINITY}, small = {4096, RLIM_INFINITY};
    auto old_action = std::signal(SIGXFSZ, SIG_IGN);  // as the hosts do
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
    EXPECT_EQ(program.save(path("old.bas").c_str()), 0);
    EXPECT_EQ(setrlimit(RLIMIT_FSIZE, &unlimited), 0);
    std::signal(SIGXFSZ, old_action);
    EXPECT_EQ(console.resource()->error_code, error_device_io);
    EXPECT_EQ(file_text(path("old.bas")), "old contents\r\n");
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(scratch.folder), {}), 1);

    console.resource()->error_code = 0;
    EXPECT_EQ(program.save("/dev/full"), 0);
    EXPECT_EQ(console.resource()->error_code, error_device_io);
    EXPECT_TRUE(std::filesystem::is_character_file("/dev/full"));

    std::filesystem::create_symlink(path("old.bas"), path("link.bas"));
    EXPECT_EQ(program.save(path("link.bas").c_str()), 1);
    EXPECT_TRUE(std::filesystem::is_symlink(path("link.bas")));  // the file it leads to is replaced
    EXPECT_EQ(std::filesystem::file_size(path("old.bas")), 200u * 70);
    EXPECT_EQ(std::filesystem::status(path("old.bas")).permissions(),
        std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
}

TEST_F(program_files, load_of_a_directory_fails_as_a_file_that_cannot_be_opened)
{
    console.enter("5 i=5");
    EXPECT_EQ(program.load(scratch.folder.c_str(), 100, 10), 0);
    EXPECT_EQ(console.resource()->error_code, error_cannot_open);
    EXPECT_EQ(listed(), "5 i=5\n");
}

// The file is loaded after a line 5 typed at the prompt, to which it adds.
TEST_F(program_files, load_numbers_file_lines_from_start_by_step_and_keeps_the_lines_before_a_failure)
{
    struct load_case { std::string bytes; int start, step, code; std::string listed; };
    const std::string comment = "'" + std::string(254, 'a');  // 255 characters: the longest line
    const load_case cases[] = {
        {"i=1\r\n  print i\r\n\r\nend\r\n", 100, 10, 0, "5 i=5\n100 i=1\n110 print i\n130 end\n"},
        {"i=1\n  print i\n\nend\n", 100, 10, 0, "5 i=5\n100 i=1\n110 print i\n130 end\n"},  // a blank uses a number
        {"10 print 1\n", 100, 10, 0, "5 i=5\n100 10 print 1\n"},  // a number is part of the text
        {"print 1\nx=1\nprint 3\n", 100, 10, error_syntax, "5 i=5\n100 print 1\n110 x=1\n"},
        {"i=1\ni=2\ni=3\n", 99989, 5, 0, "5 i=5\n99989 i=1\n99994 i=2\n99999 i=3\n"},
        {"i=1\ni=2\n\n", 99990, 5, error_illegal_line_number, "5 i=5\n99990 i=1\n99995 i=2\n"},  // 100000
        {"i=1\n", -10, 10, error_illegal_line_number, "5 i=5\n"},  // "-10" has no digits to check
        {comment + "i=7\n", 100, 10, 0, "5 i=5\n100 " + comment + "\n110 i=7\n"},  // split after 255
    };
    for (const auto& c : cases) {
        program.clear();
        console.enter("5 i=5");
        std::ofstream(path("p.bas"), std::ios::binary) << c.bytes;
        EXPECT_EQ(program.load(path("p.bas").c_str(), c.start, c.step), c.code == 0 ? 1 : 0) << c.bytes;
        EXPECT_EQ(console.resource()->error_code, c.code) << c.bytes;
        EXPECT_EQ(listed(), c.listed) << c.bytes;
        EXPECT_EQ(program.current, nullptr);
    }
}
