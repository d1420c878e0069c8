// The arithmetic of every operator on integers and reals, defined once: the value types' operations
// and the evaluator's shortcut for numbers both call these. Integers wrap modulo 2^32 through unsigned;
// reals follow IEEE double arithmetic. A function that can fail returns its code and then leaves the
// left operand unchanged.
#pragma once

#include <climits>
#include <cmath>

#include "engine/error.h"
#include "language/code.h"

inline int wrap(unsigned v) { return static_cast<int>(v); }  // modulo 2^32, defined since C++20

inline int truth(bool condition) { return condition ? -1 : 0; }

inline int integer_minus(int a) { return wrap(0u - static_cast<unsigned>(a)); }
inline int integer_not(int a) { return ~a; }
inline int integer_addition(int a, int b) { return wrap(static_cast<unsigned>(a) + static_cast<unsigned>(b)); }
inline int integer_subtraction(int a, int b) { return wrap(static_cast<unsigned>(a) - static_cast<unsigned>(b)); }
inline int integer_and_op(int a, int b) { return a & b; }
inline int integer_or_op(int a, int b) { return a | b; }
inline int integer_xor_op(int a, int b) { return a ^ b; }
inline int integer_multiplication(int a, int b) { return wrap(static_cast<unsigned>(a) * static_cast<unsigned>(b)); }

// A count above 31 gives 0; otherwise its low eight bits count, so -1 shifts by 255 (giving 0 too).
inline int integer_lshift(int a, int count)
{
    unsigned bits = static_cast<unsigned>(count) & 0xFFu;
    return count > 31 || bits > 31 ? 0 : wrap(static_cast<unsigned>(a) << bits);
}

// As integer_lshift, with the sign fill (0 or -1) in place of 0.
inline int integer_rshift(int a, int count)
{
    unsigned bits = static_cast<unsigned>(count) & 0xFFu;
    return count > 31 || bits > 31 ? (a < 0 ? -1 : 0) : a >> bits;
}

// Truncates toward zero; INT_MIN / -1 wraps to INT_MIN.
[[nodiscard]] inline int integer_division(int& a, int b)
{
    if (b == 0)
        return error_division_by_zero;
    a = b == -1 ? integer_minus(a) : a / b;
    return 0;
}

// The sign of the left operand; x MOD -1 is 0 (INT_MIN % -1 would trap).
[[nodiscard]] inline int integer_remainder(int& a, int b)
{
    if (b == 0)
        return error_division_by_zero;
    a = b == -1 ? 0 : a % b;
    return 0;
}

// b < 0 gives 0 and b = 0 gives 1 (0 ^ 0 too); otherwise square-and-multiply, wrapping like repeated *.
inline int integer_power(int a, int b)
{
    if (b < 0)
        return 0;
    unsigned base = static_cast<unsigned>(a);
    unsigned result = 1;
    for (unsigned bits = static_cast<unsigned>(b); bits != 0; bits >>= 1) {
        if (bits & 1u)
            result *= base;
        base *= base;
    }
    return wrap(result);
}

inline double real_minus(double a) { return -a; }
inline double real_addition(double a, double b) { return a + b; }
inline double real_subtraction(double a, double b) { return a - b; }
inline double real_multiplication(double a, double b) { return a * b; }

// 0.0 and -0.0 both compare equal to 0.0, so both give 5.
[[nodiscard]] inline int real_division(double& a, double b)
{
    if (b == 0.0)
        return error_division_by_zero;
    a /= b;
    return 0;
}

inline double real_power(double a, double b) { return std::pow(a, b); }

// Truncates toward zero. Outside the int range the result saturates (INT_MIN or INT_MAX) and a NaN
// reads as 0: converting such a double to int directly would be undefined.
inline int real_to_integer(double v)
{
    if (std::isnan(v))
        return 0;
    if (v >= 2147483648.0)
        return INT_MAX;
    if (v <= -2147483649.0)
        return INT_MIN;
    return static_cast<int>(v);
}

// The comparisons give -1 or 0. IEEE ordering for reals: a NaN is unequal to everything, so only
// not_equ is true for it.
template <class number>
int compare_equ(number a, number b) { return truth(a == b); }
template <class number>
int compare_not_equ(number a, number b) { return truth(!(a == b)); }
template <class number>
int compare_gt(number a, number b) { return truth(a > b); }
template <class number>
int compare_gt_equ(number a, number b) { return truth(a >= b); }
template <class number>
int compare_lt(number a, number b) { return truth(a < b); }
template <class number>
int compare_lt_equ(number a, number b) { return truth(a <= b); }

// By operator kind, for the evaluator's numbers: what the integer and real types' slots do.

inline bool is_comparison(unsigned char kind)
{
    return kind == token_equal || kind == token_not_equal || kind == token_less || kind == token_less_equal ||
           kind == token_greater || kind == token_greater_equal;
}

template <class number>
int comparison(unsigned char kind, number a, number b)
{
    switch (kind) {
    case token_equal:
        return compare_equ(a, b);
    case token_not_equal:
        return compare_not_equ(a, b);
    case token_less:
        return compare_lt(a, b);
    case token_less_equal:
        return compare_lt_equ(a, b);
    case token_greater:
        return compare_gt(a, b);
    default:
        return compare_gt_equ(a, b);
    }
}

// Any binary operator; a comparison's truth replaces a.
[[nodiscard]] inline int integer_operation(int& a, unsigned char kind, int b)
{
    switch (kind) {
    case token_plus:
        a = integer_addition(a, b);
        return 0;
    case token_minus:
        a = integer_subtraction(a, b);
        return 0;
    case token_multiply:
        a = integer_multiplication(a, b);
        return 0;
    case token_divide:
        return integer_division(a, b);
    case token_mod:
        return integer_remainder(a, b);
    case token_and:
        a = integer_and_op(a, b);
        return 0;
    case token_or:
        a = integer_or_op(a, b);
        return 0;
    case token_xor:
        a = integer_xor_op(a, b);
        return 0;
    case token_shift_left:
        a = integer_lshift(a, b);
        return 0;
    case token_shift_right:
        a = integer_rshift(a, b);
        return 0;
    case token_power:
        a = integer_power(a, b);
        return 0;
    default:
        a = comparison(kind, a, b);
        return 0;
    }
}

// Any binary operator but a comparison, whose truth is an integer (comparison above).
[[nodiscard]] inline int real_operation(double& a, unsigned char kind, double b)
{
    switch (kind) {
    case token_plus:
        a = real_addition(a, b);
        return 0;
    case token_minus:
        a = real_subtraction(a, b);
        return 0;
    case token_multiply:
        a = real_multiplication(a, b);
        return 0;
    case token_divide:
        return real_division(a, b);
    case token_power:
        a = real_power(a, b);
        return 0;
    case token_mod:
        return error_type_mismatch;
    default:
        return error_syntax;  // a real has no AND, OR, XOR or shifts
    }
}
