// The transcript: characters as written, one line break per row moved down to, a step back up
// taking back a break not yet written, and the held breaks written at the end.
#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "host/transcript.h"

namespace {

// Plays a script into a transcript on a temporary file and reads the file back: '\n' moves a row
// down, '^' a row back up, '$' finishes; every other character is written.
std::string played(const std::string& script)
{
    std::FILE* file = std::tmpfile();
    c_transcript transcript(file);
    for (char c : script)
        c == '\n' ? transcript.rows_moved(1) : c == '^' ? transcript.rows_moved(-1)
            : c == '$' ? transcript.finish() : transcript.character(static_cast<unsigned char>(c));
    transcript.flush();
    std::string text;
    std::rewind(file);
    for (int c; (c = std::fgetc(file)) != EOF;)
        text += static_cast<char>(c);
    std::fclose(file);
    return text;
}

}  // namespace

TEST(transcript, holds_each_break_until_the_next_character_and_a_step_back_takes_one_back)
{
    struct script_case { const char* script; const char* written; };
    const script_case cases[] = {
        {"print 1\n", "print 1"},  // held
        {"a\n\nb", "a\n\nb"},      // one break for each row moved down
        {"x\n\n^y", "x\ny"},       // a step back (before an error report) takes back one
        {"x^\ny", "x\ny"},         // and with none held changes nothing
    };
    for (const auto& c : cases)
        EXPECT_EQ(played(c.script), c.written) << testing::PrintToString(c.script);
}

TEST(transcript, finish_writes_the_held_breaks_and_every_byte_of_a_long_output)
{
    std::string script;
    for (int line = 0; line < 20000; ++line)  // past the buffer several times
        script += std::to_string(line) + "\n";
    EXPECT_EQ(played(script + "$"), script);
}
