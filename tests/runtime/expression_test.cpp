// The evaluator as print shows it: precedence, promotion toward the right operand's type, operands that
// live outside the code, and where it stops on an error (print shows the value it had reached).
#include "runtime/expression.h"

#include <gtest/gtest.h>

#include "engine/error.h"
#include "engine/system_resource.h"
#include "language/parser.h"
#include "runtime/variable.h"
#include "support/value_check.h"

TEST(evaluator, binds_by_precedence_and_groups_power_to_the_right)
{
    expect_printed({
        {"1+2*3", "7"},       {"2^3^2", "512"},     {"-2^2", "4"},        {"1+2<<3", "17"},
        {"7 mod 3*2", "2"},   {"1<<2*3", "64"},     {"2^2*3", "12"},      {"10-4-3", "3"},
        {"100/10/5", "2"},    {"2*(3+4)", "14"},    {"1<2<3", "-1"},      {"3>2>1", "0"},
        {"not 1=1", "0"},     {"not 0+1", "0"},     {"1+2=3", "-1"},      {"1=1 and 2=2", "-1"},
        {"4 or 2 and 1", "4"}, {"5 or 3 xor 1", "6"}, {"--3", "3"},       {"+3", "3"},
        {"2*3^2", "18"},      {"1-2<<1", "-3"},     {"8>>1+1", "5"},       {"7-2-1", "4"},
        {"2*3+1", "7"},       {"5=5.0", "-1"},      {"2<>2", "0"},        {"2.5<>2.5", "0"},
    });
}

TEST(evaluator, promotes_the_left_operand_toward_the_right_ones_type_and_never_a_real_to_a_string)
{
    expect_printed({
        {"1+2.5", "3.500000"},   {"7/2", "3"},          {"7/2.0", "3.500000"},   {"1=1.0", "-1"},
        {"()+1", "1"},           {"2+\"ab\"", "2ab"},    {"\"ab\"+2.5", "ab2.500000"}, {"\"ab\"+1+2", "ab12"},
        {"2.5+\"ab\"", "2.500000\nType mismatch."},
        {"1<\"a\"", "1\nSyntax error."},  // promoted to a string, which has no comparisons
    });
}

TEST(evaluator, stops_at_the_first_error_keeping_what_it_had_reached)
{
    expect_printed({
        {"2+3/0", "2\nDivision by zero."},  // the level that evaluated the right operand keeps 2
        {"(1+2", "3\nNot found right blacket ')'."},   {"not (1+2", "3\nNot found right blacket ')'."},
        {"(1/0+2)", "1\nDivision by zero."},           {"1/", "1\nDivision by zero."},
        {"1+", "1"},  {"1*", "0"},  {"1+()", "1"},     // a missing operand reads as none
        {"-", "\nSyntax error."},
        // The short forms the evaluator takes without its level chain must stop in the same place.
        {"1+1/0", "1\nDivision by zero."},  {"1/0+2", "1\nDivision by zero."},
        {"1.5 mod 2", "1.500000\nType mismatch."},
        {"(1/0) and 1", "1\nDivision by zero."},  {"3 and 1/0", "3\nDivision by zero."},
        {"(1/0)<<1", "1\nDivision by zero."},     {"3<<(1/0)", "3\nDivision by zero."},
    });
}

TEST(evaluator_operands, variables_and_elements_give_a_copy_and_undimensioned_arrays_read_empty)
{
    expect_outputs({
        {"i=41: r=0.5: print i+1+r", "42.500000\nOk\n"}, {"s=\"ab\": print s+\"c\": print s", "abc\nab\nOk\n"},
        {"ig(2,3)=23: print st(0)+ig(1+1,3)*2+rv(4)", "460.000000\nOk\n"},
        {"print len(\"abc\")+sin(0)", "3.000000\nOk\n"}, {"dim il(10): print 5+il(10)+100", "105\nOk\n"},
        {"dim il(10): print 5+il(11)+100", "5\nSubscript out of range.\nOk\n"},
        {"dim il(10): print 5+il(-1)+100", "5\nSubscript out of range.\nOk\n"},
        {"dim il(10): print 5+il(1,1)+100", "5\nSubscript out of range.\nOk\n"},
        {"dim il(10): print 5+il(1/0)+100", "5\nDivision by zero.\nOk\n"},
        {"dim il(10): print 5+il(1", "5\nSyntax error.\nOk\n"},
        {"dim il(10): print 5+il 1", "5\nSyntax error.\nOk\n"},
    });
}

TEST(evaluator_operands, a_code_recorded_before_a_call_is_the_calls_outcome)
{
    c_system_resource resource;
    c_variable_manager variables;
    resource.p_variable_manager = &variables;
    c_parser parser(&resource);
    ASSERT_EQ(parser.precompile("i=rnd()+1", nullptr), 0);
    resource.error_code = error_break;  // a break that arrived while the line ran
    const unsigned char* p = parser.code + operand_token_size + 1;  // past "i ="
    c_value value;
    EXPECT_EQ(c_expression(&resource).expression(value, p), error_break);
    EXPECT_EQ(*p, token_plus);  // nothing after the call is evaluated
}

// Numeric expressions are translated once and kept by code address: the same address holding other
// code later (the immediate line's buffer, a replaced line) must be translated again.
TEST(evaluator, translations_kept_by_address_follow_the_code_now_there)
{
    expect_outputs({
        {"print 1+2\nprint 1.5+2", "3.500000\nOk\n"},
        {"i=4: print i*2\nr=0.5: print r*2", "1.000000\nOk\n"},
        {"10 print 1+2\nrun\n10 print 2.5*2\nrun", "5.000000\nOk\n"},
        {"for i=1 to 3: print i*1.5;: next", "1.5000003.0000004.500000\nOk\n"},
    });
}
