#include "runtime/expression.h"

#include <gtest/gtest.h>

#include <climits>
#include <iterator>
#include <string>

#include "engine/error.h"
#include "engine/system_resource.h"
#include "support/code_builder.h"
#include "support/value_check.h"

namespace {

struct expression_case {
    const char* words;
    int code;
    literal value;  // the result, or on an error what the evaluation had reached
};

struct evaluation {
    int code;
    long stop;  // where the cursor was left, counted from the start of the code
};

evaluation evaluate(const c_code_builder& code, c_value& value, c_system_resource& resource)
{
    c_expression evaluator(&resource);
    const unsigned char* p = code.code();
    int result = evaluator.expression(value, p);
    return {result, code.offset(p)};
}

void run_cases(const expression_case* begin, const expression_case* end)
{
    for (const expression_case* c = begin; c != end; ++c) {
        c_system_resource resource;
        c_code_builder code;
        code.words(c->words).end();
        c_value value;
        EXPECT_EQ(evaluate(code, value, resource).code, c->code) << c->words;
        expect_holds(value, c->value, c->words);
    }
}

}  // namespace

const expression_case precedence_cases[] = {
    {"1 + 2 * 3", 0, 7},         {"2 ^ 3 ^ 2", 0, 512},       {"- 2 ^ 2", 0, 4},
    {"1 + 2 << 3", 0, 17},       {"7 MOD 3 * 2", 0, 2},       {"1 << 2 * 3", 0, 64},
    {"2 ^ 2 * 3", 0, 12},        {"10 - 4 - 3", 0, 3},        {"100 / 10 / 5", 0, 2},
    {"2 * ( 3 + 4 )", 0, 14},    {"1 < 2", 0, -1},            {"1 < 2 < 3", 0, -1},
    {"3 > 2 > 1", 0, 0},         {"NOT 1 = 1", 0, 0},         {"NOT 0 + 1", 0, 0},
    {"1 + 2 = 3", 0, -1},        {"1 = 1 AND 2 = 2", 0, -1},  {"4 OR 2 AND 1", 0, 4},
    {"5 OR 3 XOR 1", 0, 6},      {"- - 3", 0, 3},             {"+ 3", 0, 3},
    {"2 ^ - 1", 0, 0},           {"0x7fffffff + 1", 0, INT_MIN},  {"2 * 3 ^ 2", 0, 18},
    {"1 + 2 * 3 - 4", 0, 3},     {"1 - 2 << 1", 0, -3},       {"8 >> 1 + 1", 0, 5},
};

TEST(evaluator, binds_by_precedence_and_groups_power_to_the_right)
{
    run_cases(std::begin(precedence_cases), std::end(precedence_cases));
}

const expression_case promotion_cases[] = {
    {"1 + 2.5", 0, 3.5},          {"7 / 2", 0, 3},             {"7 / 2.0", 0, 3.5},
    {"2.0 ^ - 1", 0, 0.5},        {"1 = 1.0", 0, -1},          {"2 + \"ab\"", 0, "2ab"},
    {"\"ab\" + 2.5", 0, "ab2.500000"},  {"\"ab\" + 1 + 2", 0, "ab12"},
    {"2.5 + \"ab\"", error_type_mismatch, 2.5},
    {"1 < \"a\"", error_syntax, "1"},      // promoted to a string, which has no comparisons
    {"\"a\" = \"a\"", error_syntax, "a"},
    {"7.5 MOD 2", error_type_mismatch, 7.5},
    {"1 - \"x\"", error_syntax, "1"},      // the promotion stays after the failing operation
};

TEST(evaluator, promotes_the_left_operand_toward_the_right_ones_type)
{
    run_cases(std::begin(promotion_cases), std::end(promotion_cases));
}

const expression_case failure_cases[] = {
    {"2 + 3 / 0", error_division_by_zero, 2},    // the level that evaluated the right operand keeps 2
    {"( 1 + 2", error_right_bracket, 3},
    {"( 1 / 0 + 2 )", error_division_by_zero, 1},
    {"NOT ( 1 + 2", error_right_bracket, 3},
    {"1 +", 0, 1},                               // an operand that is missing reads as none
    {"1 *", 0, 0},
    {"1 /", error_division_by_zero, 1},
    {"- \"a\"", error_syntax, "a"},
    {"NOT 1.5", error_syntax, 1.5},
    {"-", error_syntax, literal()},
    {"1 + ( )", 0, 1},
};

TEST(evaluator, stops_at_the_first_error_keeping_what_it_had_reached)
{
    run_cases(std::begin(failure_cases), std::end(failure_cases));
}

TEST(evaluator, leaves_the_cursor_on_the_first_token_it_did_not_take)
{
    struct stop_case { const char* words; int code; long stop; };
    const stop_case cases[] = {
        {"1 + 2 , 3", 0, 11},        {"( 1 ) ; 2", 0, 7},         {"\"abc\" : 1", 0, 5},
        {"1.5 )", 0, 9},             {"1 / 0 + 5", error_division_by_zero, 11},
        {"( 1 + 2", error_right_bracket, 12},
    };
    for (const auto& c : cases) {
        c_system_resource resource;
        c_code_builder code;
        code.words(c.words).end();
        c_value value;
        evaluation result = evaluate(code, value, resource);
        EXPECT_EQ(result.code, c.code) << c.words;
        EXPECT_EQ(result.stop, c.stop) << c.words;
    }
}

TEST(evaluator, an_empty_expression_takes_nothing_and_leaves_the_value_none)
{
    for (const char* words : {",", ")", ":", ""}) {
        c_system_resource resource;
        c_code_builder code;
        code.words(words).end();
        c_value value;
        evaluation result = evaluate(code, value, resource);
        EXPECT_EQ(result.code, 0) << words;
        EXPECT_EQ(result.stop, 0) << words;
        EXPECT_EQ(value.get_type(), type_none) << words;
    }
}

TEST(evaluator, a_function_name_not_followed_by_an_open_parenthesis_is_a_syntax_error)
{
    c_system_resource resource;
    c_code_builder code;
    code.function(18).words("\"abc\"").end();  // len "abc": the handler must not run
    c_value value;
    value.change_integer(5);
    evaluation result = evaluate(code, value, resource);
    EXPECT_EQ(result.code, error_syntax);
    EXPECT_EQ(result.stop, 5);
    expect_holds(value, 5, "value untouched");
    EXPECT_EQ(resource.error_code, 0);
}

TEST(class_change, promotes_only_upward_and_refuses_a_real_as_a_string)
{
    struct change_case { literal from; int wanted; int code; literal to; };
    const change_case cases[] = {
        {literal(), type_integer, 0, 0},   {literal(), type_real, 0, 0.0},  {literal(), type_string, 0, ""},
        {literal(), type_none, 0, literal()},  {-7, type_real, 0, -7.0},    {-7, type_string, 0, "-7"},
        {2.5, type_integer, 0, 2.5},       {2.5, type_string, error_type_mismatch, 2.5},
        {"x", type_integer, 0, "x"},       {"x", type_real, 0, "x"},        {3, type_none, 0, 3},
    };
    for (const auto& c : cases) {
        c_value value;
        load(value, c.from);
        EXPECT_EQ(c_expression::class_change(value, c.wanted), c.code) << c.wanted;
        expect_holds(value, c.to, "class_change to " + std::to_string(c.wanted));
    }
}
