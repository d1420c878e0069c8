// The operators of each value type as print shows them. A failing operator leaves its left operand,
// which print still shows before the message. The types' operation slots are checked against a plain
// reference through the evaluator, by its differential test; the language reference's examples (run by
// their own test) are not repeated here.
#include <gtest/gtest.h>

#include <climits>
#include <string>

#include "support/value_check.h"

// Integers wrap, truncate and take a shift count as its low byte (-256 acts as 0, -225 as 31, -224 as
// 32); power multiplies modulo 2 to the 32. Reals follow IEEE arithmetic; (-8.0)^0.5 is a NaN, unequal to
// everything, as unary minus binds tighter than ^.
TEST(number_operators, give_what_print_shows_or_stop_with_the_left_operand_and_the_message)
{
    expect_printed({
        {"-2147483648-1", "2147483647"},  {"65536*65536", "0"},     {"-46341*46341", "2147479015"},
        {"-(-2147483648)", "-2147483648"}, {"not 5", "-6"},         {"12 and 10", "8"},    {"12 or 10", "14"},
        {"12 xor 10", "6"},  {"7/-2", "-3"},  {"-2147483648/-1", "-2147483648"},  {"7/0", "7\nDivision by zero."},
        {"7 mod -2", "1"},   {"-2147483648 mod -1", "0"},  {"7 mod 0", "7\nDivision by zero."},
        {"1<<31", "-2147483648"}, {"1<<32", "0"},   {"1<<-1", "0"},   {"1<<-256", "1"},
        {"1<<-225", "-2147483648"}, {"1<<-224", "0"}, {"-8>>1", "-4"}, {"-8>>40", "-1"},
        {"8>>40", "0"},           {"-8>>-1", "-1"}, {"8>>-1", "0"},   {"-2147483648>>31", "-1"},
        {"-8>>-256", "-8"},       {"0^0", "1"},     {"1^-1", "0"},    {"-1^-2", "0"},
        {"2^31", "-2147483648"},         {"2^32", "0"},          {"-3^5", "-243"},  {"-1^2147483647", "-1"},
        {"3^21", "1870418611"},          {"65537^3", "196609"},  {"2^ ", "1"},  // no exponent reads as 0
        {"0.5+3", "3.500000"},  {"2.5-0.25", "2.250000"}, {"1.5*4", "6.000000"},
        {"7.0/0.0", "7.000000\nDivision by zero."},  {"7.0/-0.0", "7.000000\nDivision by zero."},
        {"0.0^-1", "inf"},      {"10.0^308*10", "inf"},  {"-1.5", "-1.500000"},
        {"not 1.5", "1.500000\nSyntax error."},      {"1.5<<1", "1.500000\nSyntax error."},
        {"1.5>>1", "1.500000\nSyntax error."},       {"1.5 and 1", "1.500000\nSyntax error."},
        {"1.5 or 1", "1.500000\nSyntax error."},     {"1.5 xor 1", "1.500000\nSyntax error."},
        {"3=3", "-1"},    {"3<>2", "-1"},    {"3>=3", "-1"},     {"2<=3", "-1"},   {"2>3", "0"},
        {"2.5>2", "-1"},  {"2.5<=2.5", "-1"}, {"-8.0^0.5=-8.0^0.5", "0"},         {"-8.0^0.5<>-8.0^0.5", "-1"},
        {"-8.0^0.5<1.0", "0"},               {"-8.0^0.5>=1.0", "0"},
    });
}

// That strings have no other operator, unary ones included, the evaluator's differential test checks.
TEST(strings, add_the_right_operands_text)
{
    expect_printed({
        {"\"A\"+-2147483648", "A-2147483648"}, {"\"\"+\"\"", ""}, {"\"A\"+", "A0"},  // no operand reads as 0
    });
}

TEST(strings, hold_256_bytes_and_refuse_the_257th_leaving_the_left_operand)
{
    const char* x255 = "s=\"\": for i=1 to 255: s=s+\"x\": next: ";
    EXPECT_EQ(test_console().output(x255 + std::string("print len(s+7)")), "256\nOk\n");
    EXPECT_EQ(test_console().output(x255 + std::string("print len(s+7+7)")), "256\nOut of string space.\nOk\n");
    expect_printed({
        {"len(\"\"+10.0^248*5)", "256"},  // 249 digits and ".000000"
        {"len(\"\"+10.0^249*2)", "0\nOut of string space."}, {"len(\"\"+(0-10.0^247*5))", "256"},
        {"len(\"\"+(0-10.0^248*2))", "0\nOut of string space."},
    });
}

TEST(text_forms, integers_read_as_printf_d_and_reals_as_printf_f)
{
    for (int n : {0, 9, 10, -12, 99, 100, 1000000000, INT_MIN, INT_MAX})
        expect_printed({{std::to_string(n), std::to_string(n)}});
    expect_printed({{"0.0000001", "0.000000"}, {"-0.5", "-0.500000"}, {"1000000.0", "1000000.000000"},
                    {"-10.0^309", "-inf"}});
}

// Outside the int range a real saturates and a NaN reads as 0.
TEST(reading_a_real_as_an_integer, truncates_toward_zero_and_saturates_outside_the_range)
{
    const print_case cases[] = {
        {"2147483647.9", "2147483647"},  {"2147483648.0", "2147483647"},
        {"10.0^309", "2147483647"},  {"-2147483648.9", "-2147483648"},  {"-2147483649.0", "-2147483648"},
        {"-8.0^0.5", "0"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(test_console().output("i=" + c.expression + ": print i"), c.shown + "\nOk\n") << c.expression;
}
