// The built-in functions as print shows them; a failing argument shows the value the call left.
// Cases the language reference shows as examples (run by its own test) are not repeated here.
#include <gtest/gtest.h>

#include <iterator>

#include "runtime/function.h"
#include "support/value_check.h"

// Stored code holds row numbers: every function must keep its row; asc came last so that none moved.
TEST(function_table, keeps_every_function_in_the_row_stored_code_names)
{
    const char* const rows[] = {"rnd", "sin", "cos", "tan", "log", "sqrt", "exp", "log10", "abs", "asin", "acos",
        "atan", "sinh", "cosh", "tanh", "inkey", "rgb", "mid", "len", "finput", "feof", "hex", "chr", "bin", "asc"};
    for (int row = 0; row < static_cast<int>(std::size(rows)); ++row) {
        EXPECT_EQ(c_function::get_code(rows[row]), row) << rows[row];
        EXPECT_STREQ(c_function::function_list[row].name, rows[row]);
    }
}

TEST(functions, compute_reals_with_the_c_library_colours_and_strings)
{
    expect_printed({
        {"sin(0)", "0.000000"},     {"cos(0)", "1.000000"},    {"tan(1)", "1.557408"},    {"log(1)", "0.000000"},
        {"sqrt(16)", "4.000000"},   {"exp(1)", "2.718282"},    {"asin(1)", "1.570796"},   {"acos(1)", "0.000000"},
        {"atan(1)", "0.785398"},    {"sinh(1)", "1.175201"},   {"cosh(1)", "1.543081"},   {"tanh(1)", "0.761594"},
        {"log(0)", "-inf"},         // no domain checks: what the C library gives
        {"sin(\"x\")", "0.000000"}, // a string reads as 0.0
        {"abs(-2.5)", "2.500000"},
        // rgb halves red and blue and saturates every component.
        {"rgb(1,1,1)", "32"},       {"rgb(-5,70,64)", "2047"},  {"rgb(63,63,63)", "65535"},
        {"rgb(62,0,0)", "63488"},   {"rgb(61,0,0)", "61440"},   {"rgb(0,63,0)", "2016"},
        {"rgb(0,64,0)", "2016"},    {"rgb(0,0,2)", "1"},        {"rgb(-2147483648,0,-2147483648)", "0"},
        {"mid(\"HELLO\",3)", "LO"},   {"mid(\"HELLO\",-2,2)", "HE"}, {"mid(\"HELLO\",9)", ""},
        {"mid(\"HELLO\",2,-1)", ""},  {"mid(12345,1,2)", "23"},      {"mid(\"ABC\",2)", "C"},
        {"mid(\"ABC\",3)", ""},       {"mid(\"ABC\",1,2)", "BC"},    {"mid(\"ABC\",1,3)", "BC"},
        {"mid(\"ABC\",1,2147483647)", "BC"}, {"mid(\"ABC\",-2147483648)", "ABC"}, {"mid(\"ABC\",)", "ABC"},
        {"len(12)", "2"},             {"len(1.5)", "8"},   {"len()", "0"},  {"len(chr(0))", "1"},
        {"hex(0)", "0"},              {"hex(-1)", "FFFFFFFF"},    {"hex(-2147483648)", "80000000"},
        {"bin(0)", "0"},              {"bin(-1)", "11111111111111111111111111111111"},
        {"chr(321)", "A"},            {"asc(7)", "55"},    {"asc(\"\")", "0"},  {"asc(chr(-1))", "255"},
    });
}

TEST(functions, report_the_first_failing_argument)
{
    expect_printed({
        {"sin 1", "\nSyntax error."},                  // no "(": no handler runs
        {"sin(1,2)", "0.841471\nIllegal parameter."},  // the handler has already stored its result
        {"0*rnd(5)", "0\nIllegal parameter."},  // rnd reads no argument: 5 stands before ")"
        {"inkey(1)", "0\nIllegal parameter."},         {"len(1", "1\nIllegal parameter."},
        {"mid(\"ABC\" 1)", "\nIllegal parameter."},
        {"rgb(1,2)", "\nIllegal parameter."},
        {"sqrt(16/0)", "4.000000\nDivision by zero."}, // computed from the value the evaluator left
        {"len(1/0)", "1\nDivision by zero."},          {"mid(\"ABC\",1/0)", "BC\nDivision by zero."},
        {"mid(\"ABC\",1,1/0)", "\nDivision by zero."}, // a failing count leaves the result unchanged
        {"hex(1/0)", "\nDivision by zero."},           {"bin(1/0)", "\nDivision by zero."},
        {"chr(65/0)", "\nDivision by zero."},
        {"rgb(1/0,2,3)", "65\nDivision by zero."},     // a later argument that succeeds keeps the code
        {"rgb(1/0,1.5 mod 2,3)", "33\nDivision by zero."},  // the first failing argument's code stays
        {"mid(\"ABC\",1.5 mod 2,1/0)", "\nType mismatch."},
    });
}

TEST(functions, inkey_takes_waiting_keys_oldest_first_and_never_waits)
{
    test_console console;
    console.queue("ab");
    EXPECT_EQ(console.output("print inkey()"), "97\nOk\n");
    EXPECT_EQ(console.output("print inkey()"), "98\nOk\n");
    EXPECT_EQ(console.output("print inkey()"), "0\nOk\n");
    EXPECT_EQ(console.host.slept_ms, 0u);
}
