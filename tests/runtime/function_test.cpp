// The built-in functions as a program sees them: lines typed at the prompt, results read off the screen.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdlib>
#include <string>

#include "language/code.h"
#include "runtime/function.h"
#include "support/test_console.h"

namespace {

struct line_case {
    const char* typed;
    const char* shown;  // row 1, just below the typed line
};

struct error_case {
    const char* typed;
    int code;
    const char* shown;  // what print shows before the message: the value the call left, if fixed
};

// Typed on a cleared screen, so the value prints on row 1.
std::string printed(test_console& console, const std::string& line)
{
    console.engine.text_editor.clear_screen();
    console.host.last_error = 0;
    console.enter(line);
    return console.row(1);
}

template <std::size_t count>
void expect_rows(const line_case (&cases)[count])
{
    for (const auto& c : cases) {
        test_console console;
        EXPECT_EQ(printed(console, c.typed), c.shown) << c.typed;
        EXPECT_EQ(console.host.last_error, 0) << c.typed;
    }
}

const line_case real_functions[] = {
    {"print sin(0)", "0.000000"},       {"print cos(0)", "1.000000"},
    {"print tan(1)", "1.557408"},       {"print log(1)", "0.000000"},
    {"print sqrt(16)", "4.000000"},     {"print sqrt(2) * sqrt(2)", "2.000000"},
    {"print exp(1)", "2.718282"},       {"print log10(1000)", "3.000000"},
    {"print asin(1)", "1.570796"},      {"print acos(1)", "0.000000"},
    {"print atan(1)", "0.785398"},      {"print sinh(1)", "1.175201"},
    {"print cosh(1)", "1.543081"},      {"print tanh(1)", "0.761594"},
    {"print log(0)", "-inf"},           // no domain checks: what the C library gives
    {"print sin(\"x\")", "0.000000"},  // a string reads as 0.0
    {"print abs(-2)", "2.000000"},      // always real, an integer argument included
    {"print abs(-3) / 2", "1.500000"},  {"print abs(-2.5)", "2.500000"},
};

TEST(functions, compute_reals_with_the_c_library)
{
    expect_rows(real_functions);
}

const line_case colours[] = {
    {"print rgb(1,1,1)", "32"},         // red and blue halve to 0
    {"print rgb(-5,70,64)", "2047"},    // each component saturates
    {"print rgb(255,255,255)", "65535"}, {"print rgb(63,63,63)", "65535"},
    {"print rgb(63,0,0)", "63488"},     {"print rgb(62,0,0)", "63488"},
    {"print rgb(61,0,0)", "61440"},     {"print rgb(0,63,0)", "2016"},
    {"print rgb(0,64,0)", "2016"},      {"print rgb(0,0,63)", "31"},
    {"print rgb(0,0,2)", "1"},          {"print rgb(-1,-1,-1)", "0"},
    {"print rgb(-2147483648,0,-2147483648)", "0"},
};

TEST(functions, rgb_halves_red_and_blue_and_saturates_every_component)
{
    expect_rows(colours);
}

const line_case strings[] = {
    {"print mid(\"HELLO\",1,3)", "ELL"},  {"print mid(\"HELLO\",3)", "LO"},
    {"print mid(\"HELLO\",-2,2)", "HE"},  {"print mid(\"HELLO\",9)", ""},
    {"print mid(\"HELLO\",2,-1)", ""},    {"print mid(12345,1,2)", "23"},
    {"print mid(\"ABC\",0)", "ABC"},      {"print mid(\"ABC\",2)", "C"},
    {"print mid(\"ABC\",3)", ""},         {"print mid(\"ABC\",1,2)", "BC"},
    {"print mid(\"ABC\",1,3)", "BC"},     {"print mid(\"ABC\",1,2147483647)", "BC"},
    {"print mid(\"ABC\",-2147483648)", "ABC"}, {"print mid(\"ABC\",)", "ABC"},
    {"print len(mid(\"ABC\",1,3))", "2"},  {"print len(mid(\"ABC\",1,-1))", "0"},
    {"print len(\"abc\")", "3"},          {"print len(12)", "2"},
    {"print len(1.5)", "8"},              {"print len()", "0"},
    {"print len(chr(0))", "1"},           {"print len(chr(256))", "1"},
    {"print hex(0)", "0"},                {"print hex(255)", "FF"},
    {"print hex(4096)", "1000"},          {"print hex(-1)", "FFFFFFFF"},
    {"print hex(-2147483648)", "80000000"}, {"print bin(0)", "0"},
    {"print bin(5)", "101"},              {"print bin(-1)", "11111111111111111111111111111111"},
    {"print bin(2147483647)", "1111111111111111111111111111111"},
    {"print chr(65)", "A"},               {"print chr(321)", "A"},
    {"print asc(\"A\")", "65"},           {"print asc(7)", "55"},
    {"print asc(\"\")", "0"},             {"print asc(chr(0))", "0"},
    {"print asc(chr(-1))", "255"},
};

TEST(functions, cut_count_and_write_strings)
{
    expect_rows(strings);
}

const error_case failures[] = {
    {"print sin 1", 4, ""},                 // no "(": no handler runs
    {"print sin(1,2)", 9, "0.841471"},      // the handler has already stored its result
    {"print rnd(5)", 9, nullptr},           {"print inkey(1)", 9, "0"},
    {"print len(1", 9, "1"},                {"print mid(\"ABC\")", 9, ""},
    {"print mid(\"ABC\" 1)", 9, ""},        {"print rgb(1,2)", 9, ""},
    {"print sqrt(16/0)", 5, "4.000000"},    // computed from the value the evaluator left
    {"print len(1/0)", 5, "1"},             {"print mid(\"ABC\",1/0)", 5, "BC"},
    {"print mid(\"ABC\",1,1/0)", 5, ""},    // a failing count leaves the result unchanged
    {"print hex(1/0)", 5, ""},              {"print bin(1/0)", 5, ""},
    {"print chr(65/0)", 5, ""},
    {"print rgb(1/0,2,3)", 5, "65"},        // a later argument that succeeds keeps the code
    {"print rgb(1/0,1.5 mod 2,3)", 5, "33"}, // the first failing argument's code stays
    {"print mid(\"ABC\",1.5 mod 2,1/0)", 6, ""},
};

TEST(functions, report_the_first_failing_argument)
{
    for (const auto& c : failures) {
        test_console console;
        std::string shown = printed(console, c.typed);
        if (c.shown != nullptr) {
            EXPECT_EQ(shown, c.shown) << c.typed;
        }
        EXPECT_EQ(console.host.last_error, c.code) << c.typed;
    }
}

TEST(functions, rnd_divides_rand_and_repeats_after_randomize)
{
    const unsigned char close[] = {token_close};
    for (unsigned seed = 1; seed < 200; ++seed) {
        std::srand(seed);
        double expected = std::rand() / 2147483647.0;
        std::srand(seed);
        const unsigned char* p = close;
        c_value result;
        fnc_rnd(result, p, nullptr);
        ASSERT_EQ(result.get_type(), type_real);
        EXPECT_EQ(result.current->get_real(), expected);
        EXPECT_GE(expected, 0.0);
        EXPECT_LE(expected, 1.0);
        EXPECT_EQ(p, close);  // stops before ")"
    }
    test_console console;
    std::string first = printed(console, "randomize 1: print rnd()");
    EXPECT_NE(printed(console, "print rnd()"), first);
    EXPECT_EQ(printed(console, "randomize 1: print rnd()"), first);
}

TEST(functions, inkey_takes_waiting_keys_oldest_first_and_never_waits)
{
    test_console console;
    console.queue("ab");
    EXPECT_EQ(printed(console, "print inkey()"), "97");
    EXPECT_EQ(printed(console, "print inkey()"), "98");
    EXPECT_EQ(printed(console, "print inkey()"), "0");
    EXPECT_EQ(console.host.slept_ms, 0u);
}

}  // namespace
