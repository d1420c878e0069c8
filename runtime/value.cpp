// The operators of the four value types. Integer arithmetic wraps through unsigned, reals follow IEEE
// double arithmetic, strings only concatenate. Every operation changes the left operand only when it
// succeeds, so an error always leaves the operand as it was.
#include "runtime/value.h"

#include <cstdio>
#include <cstring>

#include "engine/error.h"
#include "runtime/arithmetic.h"

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
    value = integer_minus(value);
    return 0;
}

int c_integer_type::plus() { return 0; }

int c_integer_type::not_op()
{
    value = integer_not(value);
    return 0;
}

int c_integer_type::addition(const c_base_type* right)
{
    value = integer_addition(value, right->get_integer());
    return 0;
}

int c_integer_type::subtraction(const c_base_type* right)
{
    value = integer_subtraction(value, right->get_integer());
    return 0;
}

int c_integer_type::lshift(const c_base_type* right)
{
    value = integer_lshift(value, right->get_integer());
    return 0;
}

int c_integer_type::rshift(const c_base_type* right)
{
    value = integer_rshift(value, right->get_integer());
    return 0;
}

int c_integer_type::multiplication(const c_base_type* right)
{
    value = integer_multiplication(value, right->get_integer());
    return 0;
}

int c_integer_type::division(const c_base_type* right) { return integer_division(value, right->get_integer()); }

int c_integer_type::power(const c_base_type* right)
{
    value = integer_power(value, right->get_integer());
    return 0;
}

int c_integer_type::remainder(const c_base_type* right) { return integer_remainder(value, right->get_integer()); }

int c_integer_type::and_op(const c_base_type* right)
{
    value = integer_and_op(value, right->get_integer());
    return 0;
}

int c_integer_type::or_op(const c_base_type* right)
{
    value = integer_or_op(value, right->get_integer());
    return 0;
}

int c_integer_type::xor_op(const c_base_type* right)
{
    value = integer_xor_op(value, right->get_integer());
    return 0;
}

int c_integer_type::equ(int& result, const c_base_type* right) const
{
    result = compare_equ(value, right->get_integer());
    return 0;
}

int c_integer_type::not_equ(int& result, const c_base_type* right) const
{
    result = compare_not_equ(value, right->get_integer());
    return 0;
}

int c_integer_type::gt(int& result, const c_base_type* right) const
{
    result = compare_gt(value, right->get_integer());
    return 0;
}

int c_integer_type::gt_equ(int& result, const c_base_type* right) const
{
    result = compare_gt_equ(value, right->get_integer());
    return 0;
}

int c_integer_type::lt(int& result, const c_base_type* right) const
{
    result = compare_lt(value, right->get_integer());
    return 0;
}

int c_integer_type::lt_equ(int& result, const c_base_type* right) const
{
    result = compare_lt_equ(value, right->get_integer());
    return 0;
}

// ---- real: the right operand is read through get_real ----

int c_real_type::get_integer() const { return real_to_integer(value); }

double c_real_type::get_real() const { return value; }

int c_real_type::convert_to_string(char* buffer, int& length) const
{
    return format_real(value, buffer, length);
}

int c_real_type::minus()
{
    value = real_minus(value);
    return 0;
}

int c_real_type::plus() { return 0; }

int c_real_type::addition(const c_base_type* right)
{
    value = real_addition(value, right->get_real());
    return 0;
}

int c_real_type::subtraction(const c_base_type* right)
{
    value = real_subtraction(value, right->get_real());
    return 0;
}

int c_real_type::multiplication(const c_base_type* right)
{
    value = real_multiplication(value, right->get_real());
    return 0;
}

int c_real_type::division(const c_base_type* right) { return real_division(value, right->get_real()); }

int c_real_type::power(const c_base_type* right)
{
    value = real_power(value, right->get_real());
    return 0;
}

int c_real_type::remainder(const c_base_type*) { return error_type_mismatch; }

int c_real_type::equ(int& result, const c_base_type* right) const
{
    result = compare_equ(value, right->get_real());
    return 0;
}

int c_real_type::not_equ(int& result, const c_base_type* right) const
{
    result = compare_not_equ(value, right->get_real());
    return 0;
}

int c_real_type::gt(int& result, const c_base_type* right) const
{
    result = compare_gt(value, right->get_real());
    return 0;
}

int c_real_type::gt_equ(int& result, const c_base_type* right) const
{
    result = compare_gt_equ(value, right->get_real());
    return 0;
}

int c_real_type::lt(int& result, const c_base_type* right) const
{
    result = compare_lt(value, right->get_real());
    return 0;
}

int c_real_type::lt_equ(int& result, const c_base_type* right) const
{
    result = compare_lt_equ(value, right->get_real());
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

int c_string_type::addition(const c_base_type* right) { return string_append(text, length, right); }

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

int string_append(char* text, int& length, const c_base_type* right)
{
    char number[string_capacity];
    const char* tail = number;
    int tail_length = 0;
    switch (right->get_type()) {
    case type_string: {
        // The tag says which object this is: its text is read without a virtual call.
        const auto* string = static_cast<const c_string_type*>(right);
        tail = string->text;
        tail_length = string->length;
        break;
    }
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
    // One byte, what chr gives a string built a character at a time, is stored without a library call.
    if (tail_length == 1)
        text[length] = tail[0];
    else
        std::memcpy(text + length, tail, static_cast<std::size_t>(tail_length));
    length += tail_length;
    return 0;
}
