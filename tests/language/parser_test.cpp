#include "language/parser.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "engine/error.h"
#include "engine/system_resource.h"
#include "runtime/variable.h"

namespace {

// A workspace wired to a registry of its own.
struct workspace {
    workspace() { resource.p_variable_manager = &manager; }
    std::vector<unsigned char> code() const { return {parser.code, parser.code + parser.code_length}; }
    bool registry_empty() const
    {
        return manager.variable_list.next == nullptr && manager.array_list.next == nullptr
               && manager.label_list.next == nullptr;
    }
    c_variable_label* label(const char* name)
    {
        return static_cast<c_variable_label*>(manager.search(manager.label_list.next, name));
    }

    c_variable_manager manager;
    c_system_resource resource;
    c_parser parser{&resource};
};

// Expected code written as words: a plain number is one byte, "#n" a 4-byte integer, "~x" an
// 8-byte real, "@name" the id of the variable that the kind byte before it names.
std::vector<unsigned char> expand(c_variable_manager& manager, const std::string& pattern)
{
    std::vector<unsigned char> bytes;
    auto append = [&bytes](const void* data, std::size_t size) {
        auto* first = static_cast<const unsigned char*>(data);
        bytes.insert(bytes.end(), first, first + size);
    };
    std::istringstream words(pattern);
    for (std::string word; words >> word;) {
        std::string rest = word.substr(1);
        if (word[0] == '#') {
            int value = static_cast<int>(std::stoll(rest));
            append(&value, sizeof value);
        } else if (word[0] == '~') {
            double value = std::stod(rest);
            append(&value, sizeof value);
        } else if (word[0] == '@') {
            unsigned char kind = bytes.back();
            c_variable* head = kind == token_label              ? &manager.label_list
                               : kind >= token_integer_array ? &manager.array_list
                                                             : &manager.variable_list;
            c_variable* variable = manager.search(head->next, rest.c_str());
            variable_id id = variable != nullptr ? variable->id : 0;
            append(&id, sizeof id);
        } else {
            bytes.push_back(static_cast<unsigned char>(std::stoi(word)));
        }
    }
    return bytes;
}

struct code_case { const char* text; const char* code; };

const code_case code_cases[] = {
    {"i=-5", "3 @i 34 29 0 #5 12"}, {"rnd (1)", "11 #0 32 0 #1 33 12"},
    {"i=4294967296", "3 @i 34 0 #0 12"},     // wraps
    {"i=2147483648", "3 @i 34 0 #-2147483648 12"}, {"i=0xfF", "3 @i 34 0 #255 12"},
    {"i=0x1ffffffff", "3 @i 34 0 #-1 12"},   // bits shifted out are lost
    {"i=0x", "3 @i 34 0 #0 12"}, {"i=0b101", "3 @i 34 0 #5 12"},
    {"i=0b", "3 @i 34 0 #0 12"}, {"i=0b12", "3 @i 34 0 #1 0 #2 12"},
    {"r=3.", "4 @r 34 1 ~3 12"}, {"r=12.25", "4 @r 34 1 ~12.25 12"},
    {"s=\"\"\"\"", "5 @s 34 2 1 34 12"},      // four quotes hold one
    {"s=\"\"", "5 @s 34 2 0 12"}, {"s=\"a 'b\"", "5 @s 34 2 4 97 32 39 98 12"},
    {"i = 1 'set i", "3 @i 34 0 #1 12"}, {"' only a comment", "12"},
    {"ifa=1", "3 @ifa 34 0 #1 12"}, {"for i=1 to10 step 2", "13 3 @i 34 0 #1 14 0 #10 15 0 #2 12"},
    {"next:return", "16 42 22 12"}, {"if i then $a else $b", "17 3 @i 18 9 @a 19 9 @b 12"},
    {"goto $a: gosub $b", "20 9 @a 42 21 9 @b 12"},
    {"i=1 ORrx", "3 @i 34 0 #1 24 4 @rx 12"},  // an operator word needs no boundary
    {"i=1 and 2 Or 3 xOr not 4 MoD 5", "3 @i 34 0 #1 23 0 #2 24 0 #3 25 26 0 #4 27 0 #5 12"},
    {"i=1<=2>=3<>4<<5>>6<7>8", "3 @i 34 0 #1 35 0 #2 36 0 #3 37 0 #4 38 0 #5 39 0 #6 40 0 #7 41 0 #8 12"},
    {"print 2^3*4/5-6;7,", "10 #2 0 #2 45 0 #3 30 0 #4 31 0 #5 29 0 #6 43 0 #7 44 12"},
    {"r (2)=1", "7 @r 32 0 #2 33 34 0 #1 12"},
    {"Rnd(1)", "7 @Rnd 32 0 #1 33 12"},        // functions are lower case
    {"s$(0)", "5 @s 9 @(0 33 12"},             // "$" ends the name; any character starts a label
    {"index=Index", "3 @index 34 3 @Index 12"}, {"print len(s(1))", "10 #2 11 #18 32 8 @s 32 0 #1 33 33 12"},
    {"\t  cls", "10 #5 12"},
    {"iabcdefghijklmnopqrstuvwxyz012345=1", "3 @iabcdefghijklmnopqrstuvwxyz01234 0 #5 34 0 #1 12"},
    {"$aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaai=1", "9 @aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa 3 @i 34 0 #1 12"},
};

// Each failing line leaves the syntax error, an empty code and no variable behind.
const char* const failure_cases[] = {
    "x=1",            // no I, R or S
    "i=1: Print 1",   // commands are lower case
    "fori=1to10",     // the name "fori"
    "i=1 order",      // "OR", then the name "der"
    "i=0X1F",         // 0 and the name "X1F"
    "r=.5",           // a point not after digits
    "print i?",  "print i#",  "print i%",  "print i[1]",  "print i\xC3\xA9",  // above 127
    "s=\"abc",        // not closed
    "s=\"abc\"\"",    // the doubled quote does not close it
    "$a: $",          // "$" at the end of the line
    "goto $ a",       // "$" with no name after it
    "$a i=1 y",
};

}  // namespace

TEST(tokenizer_code, lines_give_their_exact_bytes)
{
    for (const auto& c : code_cases) {
        workspace w;
        EXPECT_EQ(w.parser.precompile(c.text, nullptr), 0) << c.text;
        EXPECT_EQ(w.resource.error_code, error_none) << c.text;
        EXPECT_EQ(w.code(), expand(w.manager, c.code)) << c.text;
    }
}

TEST(tokenizer_code, strings_hold_255_characters_and_a_line_too_long_for_its_code_is_refused)
{
    workspace w;
    ASSERT_EQ(w.parser.precompile(("s=\"" + std::string(255, 'a') + "\"").c_str(), nullptr), 0);
    EXPECT_EQ(w.parser.code_length, 5 + 1 + 257 + 1);
    EXPECT_EQ(w.parser.code[7], 255);
    w.parser.variable_release();
    EXPECT_EQ(w.parser.precompile(("s=\"" + std::string(256, 'a') + "\"").c_str(), nullptr), 0);
    EXPECT_EQ(w.resource.error_code, error_syntax);
    EXPECT_TRUE(w.registry_empty());
    std::string text = "print i";
    for (int i = 0; i < 600; ++i)
        text += ",i";
    EXPECT_EQ(w.parser.precompile(text.c_str(), nullptr), 0);
    EXPECT_EQ(w.resource.error_code, error_too_long_line);
    EXPECT_TRUE(w.registry_empty());
}

TEST(tokenizer_failures, leave_the_end_mark_alone_and_give_back_only_the_failed_lines_references)
{
    for (const char* text : failure_cases) {
        workspace w;
        EXPECT_EQ(w.parser.precompile(text, nullptr), 0) << text;
        EXPECT_EQ(w.resource.error_code, error_syntax) << text;
        EXPECT_EQ(w.parser.code_length, 0) << text;
        EXPECT_EQ(w.parser.code[0], token_end) << text;
        EXPECT_TRUE(w.registry_empty()) << text;
    }
    workspace w;
    c_parser stored(&w.resource);
    ASSERT_EQ(stored.precompile("i=1", nullptr), 0);
    ASSERT_EQ(w.parser.precompile("i=i+x", nullptr), 0);
    EXPECT_EQ(w.manager.search(w.manager.variable_list.next, "i")->reference_count, 1);
}

struct line_number_case { const char* text; int result; int error; const char* rest; };

const line_number_case line_number_cases[] = {
    {"10", 10, error_none, ""}, {"  99999 print 1", 99999, error_none, " print 1"},
    {"00010 print", 10, error_none, " print"}, {"10print", 10, error_none, "print"},
    {"0 print 1", 0, error_illegal_line_number, " print 1"},
    {"123456 print 1", 0, error_illegal_line_number, "6 print 1"}, {"  print 1", 0, error_none, "print 1"},
    {"   ", -1, error_none, ""},
};

TEST(line_number_check, reads_up_to_five_digits)
{
    for (const auto& c : line_number_cases) {
        workspace w;
        w.resource.error_code = error_syntax;  // reset by the check
        const char* text = c.text;
        EXPECT_EQ(w.parser.check_line_no(text), c.result) << c.text;
        EXPECT_EQ(w.resource.error_code, c.error) << c.text;
        EXPECT_STREQ(text, c.rest) << c.text;
    }
}

// A blank line returns -1 and changes nothing: not the code, the source or the error code.
TEST(line_number_check, a_numbered_line_returns_its_number_which_stays_for_a_line_without_one_or_a_blank_one)
{
    workspace w;
    const char* numbered = "10 i=-5";
    ASSERT_EQ(w.parser.check_line_no(numbered), 10);
    EXPECT_EQ(w.parser.precompile(numbered, nullptr), 10);
    const char* plain = "print 1";
    EXPECT_EQ(w.parser.check_line_no(plain), 10);
    const char* alone = "20";
    ASSERT_EQ(w.parser.check_line_no(alone), 20);
    w.resource.error_code = error_type_mismatch;
    EXPECT_EQ(w.parser.precompile(alone, nullptr), -1);
    EXPECT_EQ(w.parser.precompile(" \t ", nullptr), -1);
    EXPECT_EQ(w.resource.error_code, error_type_mismatch);
    EXPECT_EQ(w.code(), expand(w.manager, "3 @i 34 29 0 #5 12"));
    EXPECT_STREQ(w.parser.source, "i=-5");
}

TEST(tokenizer_labels, definitions_at_a_statement_start_bind_to_the_record_and_the_latest_wins)
{
    workspace w;
    c_program_line record, later;
    c_parser referring(&w.resource), defining(&w.resource);
    ASSERT_EQ(referring.precompile("gosub $c", nullptr), 0);
    EXPECT_EQ(w.label("c")->line, nullptr);  // a reference does not define
    ASSERT_EQ(w.parser.precompile("$a: $b print 1: $c goto $a", &record), 0);
    EXPECT_EQ(w.parser.p_line, &record);
    for (const char* name : {"a", "b", "c"})
        EXPECT_EQ(w.label(name)->line, &record) << name;
    EXPECT_EQ(w.label("a")->position, 5);
    EXPECT_EQ(w.label("b")->position, 11);
    EXPECT_EQ(w.label("c")->position, 27);
    EXPECT_EQ(w.label("a")->reference_count, 2);
    ASSERT_EQ(defining.precompile("i=0:$b", &later), 0);
    EXPECT_EQ(w.label("b")->line, &later);
    EXPECT_EQ(w.label("b")->position, 17);
}
