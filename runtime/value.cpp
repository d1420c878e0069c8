// The operators of the four value types. Integer arithmetic wraps through unsigned, reals follow IEEE
// double arithmetic, strings only concatenate. Every operation changes the left operand only when it
// succeeds, so an error always leaves the operand as it was.
#include "runtime/value.h"

#include <climits>
#include <cmath>
#include <cstdio>
#include <cstring>

#include "engine/error.h"

namespace {

constexpr int integer_text_capacity = 11;  // "-2147483648"
// "%f" of the largest double: a sign, 309 digits, the point, six decimals and the terminator.
constexpr int real_text_capacity = 320;

const char empty_text[] = "";

// The "%d" text of v, written without the C library because numbers are printed in loops.
int format_integer(int v, char* out)
{
    char reversed[integer_text_capacity];
    // Through unsigned: the magnitude of INT_MIN does not fit an int.
    unsigned magnitude = v < 0 ? 0u - static_cast<unsigned>(v) : static_cast<unsigned>(v);
    int count = 0;
    do {
        reversed[count++] = static_cast<char>('0' + magnitude % 10);
        magnitude /= 10;
    } while (magnitude != 0);
    int length = 0;
    if (v < 0)
        out[length++] = '-';
    while (count > 0)
        out[length++] = reversed[--count];
    return length;
}

// The "%f" text of v, or 8 when it would not fit a string (about 1e249 and above in magnitude).
int format_real(double v, char* out, int& length)
{
    char text[real_text_capacity];
    int needed = std::snprintf(text, sizeof text, "%f", v);
    if (needed < 0 || needed > string_capacity)
        return error_string_space;
    std::memcpy(out, text, static_cast<std::size_t>(needed));
    length = needed;
    return 0;
}

int wrap(unsigned v) { return static_cast<int>(v); }  // modulo 2^32, defined since C++20

int truth(bool condition) { return condition ? -1 : 0; }

}  // namespace

// ---- none, and the defaults of the other types ----

int c_base_type::get_integer() const { return 0; }

double c_base_type::get_real() const { return 0.0; }

void c_base_type::get_string(const char*& text, int& length) const
{
    text = empty_text;
    length = 0;
}

int c_base_type::convert_to_string(char*, int& length) const
{
    length = 0;
    return 0;
}

int c_base_type::minus() { return error_syntax; }
int c_base_type::plus() { return error_syntax; }
int c_base_type::not_op() { return error_syntax; }
int c_base_type::addition(const c_base_type*) { return error_syntax; }
int c_base_type::subtraction(const c_base_type*) { return error_syntax; }
int c_base_type::lshift(const c_base_type*) { return error_syntax; }
int c_base_type::rshift(const c_base_type*) { return error_syntax; }
int c_base_type::multiplication(const c_base_type*) { return error_syntax; }
int c_base_type::division(const c_base_type*) { return error_syntax; }
int c_base_type::power(const c_base_type*) { return error_syntax; }
int c_base_type::remainder(const c_base_type*) { return error_syntax; }
int c_base_type::and_op(const c_base_type*) { return error_syntax; }
int c_base_type::or_op(const c_base_type*) { return error_syntax; }
int c_base_type::xor_op(const c_base_type*) { return error_syntax; }
int c_base_type::equ(int&, const c_base_type*) const { return error_syntax; }
int c_base_type::not_equ(int&, const c_base_type*) const { return error_syntax; }
int c_base_type::gt(int&, const c_base_type*) const { return error_syntax; }
int c_base_type::gt_equ(int&, const c_base_type*) const { return error_syntax; }
int c_base_type::lt(int&, const c_base_type*) const { return error_syntax; }
int c_base_type::lt_equ(int&, const c_base_type*) const { return error_syntax; }

// ---- integer: the right operand is read through get_integer ----

int c_integer_type::get_integer() const { return value; }

double c_integer_type::get_real() const { return value; }

int c_integer_type::convert_to_string(char* buffer, int& length) const
{
    length = format_integer(value, buffer);
    return 0;
}

int c_integer_type::minus()
{
    value = wrap(0u - static_cast<unsigned>(value));
    return 0;
}

int c_integer_type::plus() { return 0; }

int c_integer_type::not_op()
{
    value = ~value;
    return 0;
}

int c_integer_type::addition(const c_base_type* right)
{
    value = wrap(static_cast<unsigned>(value) + static_cast<unsigned>(right->get_integer()));
    return 0;
}

int c_integer_type::subtraction(const c_base_type* right)
{
    value = wrap(static_cast<unsigned>(value) - static_cast<unsigned>(right->get_integer()));
    return 0;
}

// A count above 31 gives 0; otherwise its low eight bits count, so -1 shifts by 255 (giving 0 too).
int c_integer_type::lshift(const c_base_type* right)
{
    int count = right->get_integer();
    unsigned bits = static_cast<unsigned>(count) & 0xFFu;
    value = count > 31 || bits > 31 ? 0 : wrap(static_cast<unsigned>(value) << bits);
    return 0;
}

// As lshift, with the sign fill (0 or -1) in place of 0.
int c_integer_type::rshift(const c_base_type* right)
{
    int count = right->get_integer();
    unsigned bits = static_cast<unsigned>(count) & 0xFFu;
    value = count > 31 || bits > 31 ? (value < 0 ? -1 : 0) : value >> bits;
    return 0;
}

int c_integer_type::multiplication(const c_base_type* right)
{
    value = wrap(static_cast<unsigned>(value) * static_cast<unsigned>(right->get_integer()));
    return 0;
}

// Truncates toward zero; INT_MIN / -1 wraps to INT_MIN. On 5 the left operand is unchanged.
int c_integer_type::division(const c_base_type* right)
{
    int divisor = right->get_integer();
    if (divisor == 0)
        return error_division_by_zero;
    if (divisor == -1)
        return minus();
    value /= divisor;
    return 0;
}

// b < 0 gives 0 and b = 0 gives 1 (0 ^ 0 too); otherwise square-and-multiply, wrapping like repeated *.
int c_integer_type::power(const c_base_type* right)
{
    int exponent = right->get_integer();
    if (exponent < 0) {
        value = 0;
        return 0;
    }
    unsigned base = static_cast<unsigned>(value);
    unsigned result = 1;
    for (unsigned bits = static_cast<unsigned>(exponent); bits != 0; bits >>= 1) {
        if (bits & 1u)
            result *= base;
        base *= base;
    }
    value = wrap(result);
    return 0;
}

// The sign of the left operand; x MOD -1 is 0 (INT_MIN % -1 would trap). On 5 the operand is unchanged.
int c_integer_type::remainder(const c_base_type* right)
{
    int divisor = right->get_integer();
    if (divisor == 0)
        return error_division_by_zero;
    value = divisor == -1 ? 0 : value % divisor;
    return 0;
}

int c_integer_type::and_op(const c_base_type* right)
{
    value &= right->get_integer();
    return 0;
}

int c_integer_type::or_op(const c_base_type* right)
{
    value |= right->get_integer();
    return 0;
}

int c_integer_type::xor_op(const c_base_type* right)
{
    value ^= right->get_integer();
    return 0;
}

int c_integer_type::equ(int& result, const c_base_type* right) const
{
    result = truth(value == right->get_integer());
    return 0;
}

int c_integer_type::not_equ(int& result, const c_base_type* right) const
{
    result = truth(value != right->get_integer());
    return 0;
}

int c_integer_type::gt(int& result, const c_base_type* right) const
{
    result = truth(value > right->get_integer());
    return 0;
}

int c_integer_type::gt_equ(int& result, const c_base_type* right) const
{
    result = truth(value >= right->get_integer());
    return 0;
}

int c_integer_type::lt(int& result, const c_base_type* right) const
{
    result = truth(value < right->get_integer());
    return 0;
}

int c_integer_type::lt_equ(int& result, const c_base_type* right) const
{
    result = truth(value <= right->get_integer());
    return 0;
}

// ---- real: the right operand is read through get_real ----

// Truncates toward zero. Outside the int range the result saturates (INT_MIN or INT_MAX) and a NaN
// reads as 0: converting such a double to int directly would be undefined.
int c_real_type::get_integer() const
{
    if (std::isnan(value))
        return 0;
    if (value >= 2147483648.0)
        return INT_MAX;
    if (value <= -2147483649.0)
        return INT_MIN;
    return static_cast<int>(value);
}

double c_real_type::get_real() const { return value; }

int c_real_type::convert_to_string(char* buffer, int& length) const
{
    return format_real(value, buffer, length);
}

int c_real_type::minus()
{
    value = -value;
    return 0;
}

int c_real_type::plus() { return 0; }

int c_real_type::addition(const c_base_type* right)
{
    value += right->get_real();
    return 0;
}

int c_real_type::subtraction(const c_base_type* right)
{
    value -= right->get_real();
    return 0;
}

int c_real_type::multiplication(const c_base_type* right)
{
    value *= right->get_real();
    return 0;
}

// 0.0 and -0.0 both compare equal to 0.0, so both give 5.
int c_real_type::division(const c_base_type* right)
{
    double divisor = right->get_real();
    if (divisor == 0.0)
        return error_division_by_zero;
    value /= divisor;
    return 0;
}

int c_real_type::power(const c_base_type* right)
{
    value = std::pow(value, right->get_real());
    return 0;
}

int c_real_type::remainder(const c_base_type*) { return error_type_mismatch; }

// IEEE ordering: a NaN is unequal to everything, so only not_equ is true for it.
int c_real_type::equ(int& result, const c_base_type* right) const
{
    result = truth(value == right->get_real());
    return 0;
}

int c_real_type::not_equ(int& result, const c_base_type* right) const
{
    result = truth(!(value == right->get_real()));
    return 0;
}

int c_real_type::gt(int& result, const c_base_type* right) const
{
    result = truth(value > right->get_real());
    return 0;
}

int c_real_type::gt_equ(int& result, const c_base_type* right) const
{
    result = truth(value >= right->get_real());
    return 0;
}

int c_real_type::lt(int& result, const c_base_type* right) const
{
    result = truth(value < right->get_real());
    return 0;
}

int c_real_type::lt_equ(int& result, const c_base_type* right) const
{
    result = truth(value <= right->get_real());
    return 0;
}

// ---- string ----

void c_string_type::set(const char* source, int source_length)
{
    std::memcpy(text, source, static_cast<std::size_t>(source_length));
    length = source_length;
}

void c_string_type::get_string(const char*& result, int& result_length) const
{
    result = text;
    result_length = length;
}

int c_string_type::convert_to_string(char* buffer, int& result_length) const
{
    std::memcpy(buffer, text, static_cast<std::size_t>(length));
    result_length = length;
    return 0;
}

// Appends the right operand's text: a string's own, a real's "%f", otherwise the "%d" of get_integer
// (so a none appends "0"). More than 256 bytes in all gives 8 and leaves the left operand unchanged.
int c_string_type::addition(const c_base_type* right)
{
    char number[string_capacity];
    const char* tail = number;
    int tail_length = 0;
    switch (right->get_type()) {
    case type_string:
        right->get_string(tail, tail_length);
        break;
    case type_real:
        if (int code = right->convert_to_string(number, tail_length); code != 0)
            return code;
        break;
    default:
        tail_length = format_integer(right->get_integer(), number);
        break;
    }
    if (tail_length > string_capacity - length)
        return error_string_space;
    std::memcpy(text + length, tail, static_cast<std::size_t>(tail_length));
    length += tail_length;
    return 0;
}

// ---- c_value ----

int c_value::convert_to_string()
{
    if (current == &string_value)
        return 0;
    // The string object is stale while another type is current, so the text is made in place.
    int length = 0;
    if (int code = current->convert_to_string(string_value.text, length); code != 0)
        return code;
    string_value.length = length;
    current = &string_value;
    return 0;
}
