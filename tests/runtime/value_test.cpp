#include "runtime/value.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <string>

#include "engine/error.h"
#include "support/value_check.h"

namespace {

const double infinity = std::numeric_limits<double>::infinity();
const double not_a_number = std::numeric_limits<double>::quiet_NaN();

// Calls the slot of an operator word on the left value's active type object.
int operate(c_value& left, const std::string& op, const c_value& right)
{
    c_base_type* a = left.current;
    const c_base_type* b = right.current;
    if (op == "neg") return a->minus();
    if (op == "pos") return a->plus();
    if (op == "NOT") return a->not_op();
    if (op == "+") return a->addition(b);
    if (op == "-") return a->subtraction(b);
    if (op == "<<") return a->lshift(b);
    if (op == ">>") return a->rshift(b);
    if (op == "*") return a->multiplication(b);
    if (op == "/") return a->division(b);
    if (op == "^") return a->power(b);
    if (op == "MOD") return a->remainder(b);
    if (op == "AND") return a->and_op(b);
    if (op == "OR") return a->or_op(b);
    if (op == "XOR") return a->xor_op(b);
    int truth = 99, code = 0;
    if (op == "=") code = a->equ(truth, b);
    else if (op == "<>") code = a->not_equ(truth, b);
    else if (op == ">") code = a->gt(truth, b);
    else if (op == ">=") code = a->gt_equ(truth, b);
    else if (op == "<") code = a->lt(truth, b);
    else if (op == "<=") code = a->lt_equ(truth, b);
    else ADD_FAILURE() << "no operator " << op;
    if (code == 0)
        left.change_integer(truth);  // as the evaluator does with a comparison's truth
    return code;
}

struct operator_case {
    literal left;
    const char* op;
    literal right;
    int code;
    literal result;  // the left operand afterwards: on an error, the left operand itself
};

void run_cases(const operator_case* begin, const operator_case* end)
{
    for (const operator_case* c = begin; c != end; ++c) {
        c_value left, right;
        load(left, c->left);
        load(right, c->right);
        std::string context = std::string("operator ") + c->op + " case " + std::to_string(c - begin);
        EXPECT_EQ(operate(left, c->op, right), c->code) << context;
        expect_holds(left, c->result, context);
    }
}

const char* const all_operators[] = {"neg", "pos", "NOT", "+", "-", "<<", ">>", "*", "/", "^", "MOD",
                                     "AND", "OR", "XOR", "=", "<>", ">", ">=", "<", "<="};

}  // namespace

TEST(value_types, a_fresh_value_is_none_and_reads_as_zero_and_empty_text)
{
    c_value value;
    EXPECT_EQ(value.get_type(), type_none);
    EXPECT_EQ(value.current->get_integer(), 0);
    EXPECT_EQ(value.current->get_real(), 0.0);
    EXPECT_EQ(text_of(value), "");
    ASSERT_EQ(value.convert_to_string(), 0);
    expect_holds(value, "", "none as text");
}

TEST(value_types, every_operator_of_none_is_a_syntax_error_and_leaves_it_none)
{
    for (const char* op : all_operators) {
        c_value left, right;
        right.change_integer(1);
        EXPECT_EQ(operate(left, op, right), error_syntax) << op;
        EXPECT_EQ(left.get_type(), type_none) << op;
    }
}

TEST(value_types, a_string_has_only_addition_and_no_comparisons)
{
    for (const char* op : all_operators) {
        if (std::string(op) == "+")
            continue;
        c_value left, right;
        left.change_string("ab", 2);
        right.change_string("ab", 2);
        EXPECT_EQ(operate(left, op, right), error_syntax) << op;
        expect_holds(left, "ab", op);
    }
}

const operator_case integer_cases[] = {
    {2147483647, "+", 1, 0, INT_MIN},        // wraps
    {INT_MIN, "-", 1, 0, 2147483647},
    {65536, "*", 65536, 0, 0},               // low 32 bits
    {-46341, "*", 46341, 0, 2147479015},
    {INT_MIN, "neg", {}, 0, INT_MIN},
    {5, "neg", {}, 0, -5},
    {5, "pos", {}, 0, 5},
    {0, "NOT", {}, 0, -1},
    {5, "NOT", {}, 0, -6},
    {12, "AND", 10, 0, 8},
    {12, "OR", 10, 0, 14},
    {12, "XOR", 10, 0, 6},
    {-7, "/", 2, 0, -3},                     // truncates toward zero
    {7, "/", -2, 0, -3},
    {INT_MIN, "/", -1, 0, INT_MIN},
    {7, "/", 0, error_division_by_zero, 7},
    {7, "/", literal(), error_division_by_zero, 7},  // a none divisor reads as 0
    {-7, "MOD", 2, 0, -1},                   // the sign of the left operand
    {7, "MOD", -2, 0, 1},
    {INT_MIN, "MOD", -1, 0, 0},
    {7, "MOD", 0, error_division_by_zero, 7},
    {7, "+", literal(), 0, 7},
    {7, "+", 2.9, 0, 9},                     // an integer slot reads a real right operand truncated
};

TEST(integer_operators, wrap_truncate_and_refuse_division_by_zero)
{
    run_cases(std::begin(integer_cases), std::end(integer_cases));
}

const operator_case shift_cases[] = {
    {1, "<<", 31, 0, INT_MIN},   {1, "<<", 32, 0, 0},    {1, "<<", 255, 0, 0},   {1, "<<", -1, 0, 0},
    {1, "<<", -256, 0, 1},       {1, "<<", -225, 0, INT_MIN},  // -225 acts as 31
    {1, "<<", -224, 0, 0},       // acts as 32
    {-8, ">>", 1, 0, -4},        {-8, ">>", 40, 0, -1},  {8, ">>", 40, 0, 0},    {-8, ">>", -1, 0, -1},
    {8, ">>", -1, 0, 0},         {INT_MIN, ">>", 31, 0, -1},   {-8, ">>", -256, 0, -8},
    {3, "<<", 0, 0, 3},          {INT_MAX, ">>", 30, 0, 1},
};

TEST(integer_operators, shift_counts_above_31_give_zero_or_the_sign_fill)
{
    run_cases(std::begin(shift_cases), std::end(shift_cases));
}

const operator_case power_cases[] = {
    {2, "^", 10, 0, 1024}, {2, "^", 0, 0, 1},   {0, "^", 0, 0, 1},   {2, "^", -1, 0, 0},
    {1, "^", -1, 0, 0},    {-1, "^", -2, 0, 0}, {2, "^", 31, 0, INT_MIN}, {2, "^", 32, 0, 0},
    {7, "^", 1, 0, 7},     {-3, "^", 5, 0, -243}, {-1, "^", INT_MAX, 0, -1}, {3, "^", literal(), 0, 1},
};

TEST(integer_operators, power_multiplies_modulo_two_to_the_32)
{
    run_cases(std::begin(power_cases), std::end(power_cases));
    for (int base : {-3, 3, 7, 12345, 65537, INT_MIN, INT_MAX}) {
        std::uint32_t expected = 1;
        for (int exponent = 0; exponent <= 70; ++exponent) {
            c_value left, right;
            left.change_integer(base);
            right.change_integer(exponent);
            ASSERT_EQ(left.current->power(right.current), 0);
            EXPECT_EQ(left.current->get_integer(), static_cast<int>(expected)) << base << " ^ " << exponent;
            expected *= static_cast<std::uint32_t>(base);
        }
    }
}

const operator_case real_cases[] = {
    {0.5, "+", 3, 0, 3.5},       // the integer is read exactly
    {2.5, "-", 0.25, 0, 2.25},   {1.5, "*", 4, 0, 6.0},   {7.0, "/", 2, 0, 3.5},
    {7.0, "/", 0.0, error_division_by_zero, 7.0},
    {7.0, "/", -0.0, error_division_by_zero, 7.0},
    {7.5, "MOD", 2, error_type_mismatch, 7.5},
    {2.0, "^", -1, 0, 0.5},      {0.0, "^", -1, 0, infinity}, {-8.0, "^", 0.5, 0, not_a_number},
    {1e308, "*", 10, 0, infinity},
    {1.5, "neg", {}, 0, -1.5},   {1.5, "pos", {}, 0, 1.5},
    {1.5, "NOT", {}, error_syntax, 1.5},  {1.5, "<<", 1, error_syntax, 1.5},
    {1.5, ">>", 1, error_syntax, 1.5},    {1.5, "AND", 1, error_syntax, 1.5},
    {1.5, "OR", 1, error_syntax, 1.5},    {1.5, "XOR", 1, error_syntax, 1.5},
};

TEST(real_operators, follow_ieee_arithmetic_and_refuse_what_reals_lack)
{
    run_cases(std::begin(real_cases), std::end(real_cases));
}

const operator_case comparison_cases[] = {
    {3, "=", 3, 0, -1},    {3, "<", 2, 0, 0},       {3, "<>", 2, 0, -1},    {3, ">=", 3, 0, -1},
    {2, "<=", 3, 0, -1},   {2, ">", 3, 0, 0},       {2.5, ">", 2, 0, -1},   {2.5, "<=", 2.5, 0, -1},
    {not_a_number, "=", not_a_number, 0, 0},        {not_a_number, "<>", not_a_number, 0, -1},
    {not_a_number, "<", 1.0, 0, 0},                 {not_a_number, ">=", 1.0, 0, 0},
    {0, "=", literal(), 0, -1},                     // a none reads as 0
};

TEST(comparisons, give_minus_one_or_zero_and_a_nan_is_unequal_to_everything)
{
    run_cases(std::begin(comparison_cases), std::end(comparison_cases));
}

const operator_case concatenation_cases[] = {
    {"A", "+", 1, 0, "A1"},     {"A", "+", 1.5, 0, "A1.500000"},   {"A", "+", literal(), 0, "A0"},
    {"A", "+", INT_MIN, 0, "A-2147483648"},  {"", "+", "", 0, ""},  {"ab", "+", "cd", 0, "abcd"},
    {"A", "+", 5e248, error_string_space, "A"},   // 256 bytes of text: one too many with the A
    {"A", "+", 2e249, error_string_space, "A"},   // that real's text alone passes 256 bytes
};

TEST(string_addition, appends_the_right_operands_text)
{
    run_cases(std::begin(concatenation_cases), std::end(concatenation_cases));
}

TEST(string_addition, accepts_exactly_256_bytes_and_refuses_257_leaving_the_left_operand)
{
    std::string left_text(200, 'x');
    for (int right_length : {56, 57}) {
        c_value left, right;
        left.change_string(left_text.data(), 200);
        std::string right_text(static_cast<std::size_t>(right_length), 'y');
        right.change_string(right_text.data(), right_length);
        int code = left.current->addition(right.current);
        EXPECT_EQ(code, right_length == 56 ? 0 : error_string_space);
        expect_holds(left, right_length == 56 ? (left_text + right_text).c_str() : left_text.c_str(), "256");
    }
    c_value full;
    full.change_string(std::string(255, 'x').data(), 255);
    c_value digit;
    digit.change_integer(7);
    EXPECT_EQ(full.current->addition(digit.current), 0);
    EXPECT_EQ(full.current->addition(digit.current), error_string_space);
}

TEST(text_forms, integers_read_as_printf_d)
{
    std::uint32_t seed = 12345;
    int samples[1000 + 6] = {0, -12, 9, 10, INT_MIN, INT_MAX};
    for (int i = 6; i < 1006; ++i) {
        seed = seed * 1664525u + 1013904223u;
        samples[i] = static_cast<int>(seed) >> (seed % 31);  // all magnitudes
    }
    for (int sample : samples) {
        char expected[16];
        std::snprintf(expected, sizeof expected, "%d", sample);
        c_value value;
        value.change_integer(sample);
        ASSERT_EQ(value.convert_to_string(), 0);
        EXPECT_EQ(text_of(value), expected);
    }
}

TEST(text_forms, reals_read_as_printf_f_within_256_bytes)
{
    struct real_text { double real; const char* text; };
    const real_text cases[] = {{3.14, "3.140000"},  {1e-7, "0.000000"}, {1e6, "1000000.000000"},
                               {-0.5, "-0.500000"}, {infinity, "inf"},  {-infinity, "-inf"}};
    for (const auto& c : cases) {
        c_value value;
        value.change_real(c.real);
        ASSERT_EQ(value.convert_to_string(), 0);
        EXPECT_EQ(text_of(value), c.text);
    }
    // 249 digits and ".000000" fill 256 bytes; one digit more, or the sign, is refused.
    struct boundary { double real; int code; };
    for (const boundary& b : {boundary{5e248, 0}, boundary{2e249, error_string_space},
                              boundary{-5e247, 0}, boundary{-2e248, error_string_space}}) {
        c_value value;
        value.change_real(b.real);
        EXPECT_EQ(value.convert_to_string(), b.code) << b.real;
        EXPECT_EQ(value.get_type(), b.code == 0 ? type_string : type_real) << b.real;
        if (b.code == 0) {
            EXPECT_EQ(text_of(value).size(), 256u);
        }
    }
}

TEST(text_forms, a_string_converts_to_itself_and_numbers_yield_no_text_before_conversion)
{
    c_value value;
    value.change_string("hi", 2);
    ASSERT_EQ(value.convert_to_string(), 0);
    expect_holds(value, "hi", "string");
    value.change_integer(42);
    EXPECT_EQ(text_of(value), "");
    ASSERT_EQ(value.convert_to_string(), 0);
    expect_holds(value, "42", "integer");
}

// Outside the int range a real saturates and a NaN reads as 0.
TEST(reading_a_real_as_an_integer, truncates_toward_zero_and_saturates_outside_the_range)
{
    struct reading { double real; int integer; };
    const reading cases[] = {{2.7, 2},
                             {-2.7, -2},
                             {2147483647.9, INT_MAX},
                             {2147483648.0, INT_MAX},
                             {1e300, INT_MAX},
                             {infinity, INT_MAX},
                             {-2147483648.9, INT_MIN},
                             {-2147483649.0, INT_MIN},
                             {-infinity, INT_MIN},
                             {not_a_number, 0}};
    for (const auto& c : cases) {
        c_value value;
        value.change_real(c.real);
        EXPECT_EQ(value.current->get_integer(), c.integer) << c.real;
    }
}
