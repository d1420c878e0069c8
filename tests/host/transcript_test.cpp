// The transcript: characters as written, one line break per row moved down to, a step back up
// taking back a break not yet written, and the held breaks written at the end.
#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "host/transcript.h"

namespace {

// A transcript into a temporary file, read back as text.
class transcript_file {
public:
    transcript_file() : file(std::tmpfile()), transcript(file) {}
    ~transcript_file() { std::fclose(file); }
    void write(const std::string& text)
    {
        for (unsigned char c : text)
            transcript.character(c);
    }
    std::string contents()
    {
        transcript.flush();
        std::string text;
        std::rewind(file);
        for (int c; (c = std::fgetc(file)) != EOF;)
            text += static_cast<char>(c);
        return text;
    }
    std::FILE* file;
    c_transcript transcript;
};

}  // namespace

TEST(transcript, writes_a_break_before_the_next_character)
{
    transcript_file out;
    out.write("print 1");
    out.transcript.rows_moved(1);
    EXPECT_EQ(out.contents(), "print 1");  // held
    out.write("1");
    EXPECT_EQ(out.contents(), "print 1\n1");
}

TEST(transcript, writes_one_break_for_each_row_moved_down)
{
    transcript_file out;
    out.write("a");
    out.transcript.rows_moved(1);
    out.transcript.rows_moved(1);
    out.write("b");
    EXPECT_EQ(out.contents(), "a\n\nb");
}

TEST(transcript, a_step_back_takes_back_a_held_break)
{
    // An error report after Enter: the editor steps back up and the report starts with its own break.
    transcript_file out;
    out.write("x");
    out.transcript.rows_moved(1);
    out.transcript.rows_moved(-1);
    out.transcript.rows_moved(1);
    out.write("Syntax error.");
    EXPECT_EQ(out.contents(), "x\nSyntax error.");
}

TEST(transcript, a_step_back_with_no_held_break_changes_nothing)
{
    transcript_file out;
    out.write("x");
    out.transcript.rows_moved(-1);
    out.transcript.rows_moved(1);
    out.write("y");
    EXPECT_EQ(out.contents(), "x\ny");
}

TEST(transcript, finish_writes_the_held_breaks)
{
    transcript_file out;
    out.write("Ok");
    out.transcript.rows_moved(1);
    out.transcript.finish();
    EXPECT_EQ(out.contents(), "Ok\n");
}

TEST(transcript, keeps_every_byte_of_a_long_output)
{
    transcript_file out;
    std::string expected;
    for (int line = 0; line < 20000; ++line) {  // past the buffer several times
        std::string text = std::to_string(line);
        out.write(text);
        out.transcript.rows_moved(1);
        expected += text + "\n";
    }
    out.transcript.finish();
    EXPECT_EQ(out.contents(), expected);
}
