// The built-in functions, but for the two of the file channels. A handler reads its arguments from
// just after "(" and stops before ")"; every argument's evaluator code is raised, so the first failing
// one is reported, and unless a row below says otherwise the result is computed from what it left.
#include "runtime/function.h"

#include <cmath>
#include <cstdlib>

#include "console/keyboard.h"
#include "engine/error.h"
#include "engine/system_resource.h"
#include "language/code.h"
#include "runtime/expression.h"
#include "runtime/value.h"

namespace {

constexpr int red_maximum = 31;    // 5 bits of RGB565
constexpr int green_maximum = 63;  // 6 bits
constexpr int blue_maximum = 31;   // 5 bits

// Evaluates one argument into value and records its code; returns the code.
int read_argument(c_value& value, const unsigned char*& p, c_system_resource* res)
{
    int code = c_expression(res).expression(value, p);
    res->error_code.raise(code);
    return code;
}

// The same for an argument read as an integer, for callers that stop when it fails.
int read_argument(int& number, const unsigned char*& p, c_system_resource* res)
{
    int code = c_expression(res).integer_expression(number, p);
    res->error_code.raise(code);
    return code;
}

// The value's string form, as text and byte count; a number too large for its text reads as empty.
void read_text(c_value& value, const char*& text, int& length, c_system_resource* res)
{
    res->error_code.raise(value.string_form(text, length));
}

// The separator between two arguments; its absence is 9.
bool take_separator(const unsigned char*& p, c_system_resource* res)
{
    if (take_token(p, token_comma))
        return true;
    res->error_code.raise(error_illegal_parameter);
    return false;
}

void real_function(double (*operation)(double), c_value& result, const unsigned char*& p,
                   c_system_resource* res)
{
    c_value argument;
    read_argument(argument, p, res);
    result.change_real(operation(argument.current->get_real()));
}

// Halves a colour component, rounding down: C++20 defines >> of a negative int as the arithmetic shift.
int half_component(int component)
{
    return component >> 1;
}

int clamp_component(int component, int maximum)
{
    return component < 0 ? 0 : component > maximum ? maximum : component;
}

// Writes number in base 2 or 16, most significant digit first, without leading zeros.
void unsigned_digits(c_value& result, unsigned number, int bits_per_digit)
{
    constexpr int most_digits = 32;  // base 2 of 32 bits
    char digits[most_digits];
    unsigned mask = (1u << bits_per_digit) - 1;
    int first = most_digits;
    do {
        digits[--first] = "0123456789ABCDEF"[number & mask];
        number >>= bits_per_digit;
    } while (number != 0);
    result.change_string(digits + first, most_digits - first);
}

// Reads one integer and writes it in base 2 or 16; a failing argument leaves the result unchanged.
void digits_function(int bits_per_digit, c_value& result, const unsigned char*& p, c_system_resource* res)
{
    int argument = 0;
    if (read_argument(argument, p, res) != 0)
        return;
    unsigned_digits(result, static_cast<unsigned>(argument), bits_per_digit);
}

}  // namespace

// A fixed divisor, not RAND_MAX: the same values wherever RAND_MAX is 2^31 - 1, and never above 1.
void fnc_rnd(c_value& result, const unsigned char*&, c_system_resource*)
{
    result.change_real(std::rand() / 2147483647.0);
}

void fnc_sin(c_value& result, const unsigned char*& p, c_system_resource* res)
{
    real_function([](double x) { return std::sin(x); }, result, p, res);
}

void fnc_cos(c_value& result, const unsigned char*& p, c_system_resource* res)
{
    real_function([](double x) { return std::cos(x); }, result, p, res);
}

void fnc_tan(c_value& result, const unsigned char*& p, c_system_resource* res)
{
    real_function([](double x) { return std::tan(x); }, result, p, res);
}

void fnc_log(c_value& result, const unsigned char*& p, c_system_resource* res)
{
    real_function([](double x) { return std::log(x); }, result, p, res);
}

void fnc_sqrt(c_value& result, const unsigned char*& p, c_system_resource* res)
{
    real_function([](double x) { return std::sqrt(x); }, result, p, res);
}

void fnc_exp(c_value& result, const unsigned char*& p, c_system_resource* res)
{
    real_function([](double x) { return std::exp(x); }, result, p, res);
}

void fnc_log10(c_value& result, const unsigned char*& p, c_system_resource* res)
{
    real_function([](double x) { return std::log10(x); }, result, p, res);
}

// Always a real, an integer argument included.
void fnc_abs(c_value& result, const unsigned char*& p, c_system_resource* res)
{
    real_function([](double x) { return std::fabs(x); }, result, p, res);
}

void fnc_asin(c_value& result, const unsigned char*& p, c_system_resource* res)
{
    real_function([](double x) { return std::asin(x); }, result, p, res);
}

void fnc_acos(c_value& result, const unsigned char*& p, c_system_resource* res)
{
    real_function([](double x) { return std::acos(x); }, result, p, res);
}

void fnc_atan(c_value& result, const unsigned char*& p, c_system_resource* res)
{
    real_function([](double x) { return std::atan(x); }, result, p, res);
}

void fnc_sinh(c_value& result, const unsigned char*& p, c_system_resource* res)
{
    real_function([](double x) { return std::sinh(x); }, result, p, res);
}

void fnc_cosh(c_value& result, const unsigned char*& p, c_system_resource* res)
{
    real_function([](double x) { return std::cosh(x); }, result, p, res);
}

void fnc_tanh(c_value& result, const unsigned char*& p, c_system_resource* res)
{
    real_function([](double x) { return std::tanh(x); }, result, p, res);
}

// Never waits: an empty ring gives 0.
void fnc_inkey(c_value& result, const unsigned char*&, c_system_resource* res)
{
    result.change_integer(res->p_keyboard->pop_key());
}

// All three components on one scale of 0 to 63: red and blue lose their lowest bit, and each saturates.
void fnc_rgb(c_value& result, const unsigned char*& p, c_system_resource* res)
{
    c_value component;
    read_argument(component, p, res);
    int red = half_component(component.current->get_integer());
    if (!take_separator(p, res))
        return;
    read_argument(component, p, res);
    int green = component.current->get_integer();
    if (!take_separator(p, res))
        return;
    read_argument(component, p, res);
    int blue = half_component(component.current->get_integer());
    red = clamp_component(red, red_maximum);
    green = clamp_component(green, green_maximum);
    blue = clamp_component(blue, blue_maximum);
    result.change_integer(blue + green * 32 + red * 2048);
}

// Positions count from 0; a start before the string reads as 0 and a count is cut to what is there.
void fnc_mid(c_value& result, const unsigned char*& p, c_system_resource* res)
{
    c_value source;
    read_argument(source, p, res);
    const char* text;
    int length;
    read_text(source, text, length, res);
    if (!take_separator(p, res))
        return;
    // Start and count share one value, so an absent count (a "," and nothing) reads as the start.
    c_value number;
    read_argument(number, p, res);
    int start = number.current->get_integer();
    int count = length;
    if (take_token(p, token_comma)) {
        if (read_argument(number, p, res) != 0)
            return;
        count = number.current->get_integer();
    }
    if (start < 0)
        start = 0;
    if (start >= length) {
        result.change_string(text, 0);
        return;
    }
    count = count < 0 ? 0 : count > length - start ? length - start : count;
    result.change_string(text + start, count);
}

// Counts the string form, so a number counts the characters it prints as.
void fnc_len(c_value& result, const unsigned char*& p, c_system_resource* res)
{
    c_value argument;
    read_argument(argument, p, res);
    const char* text;
    int length;
    read_text(argument, text, length, res);
    result.change_integer(length);
}

// The integer's 32 bits unsigned: -1 is FFFFFFFF.
void fnc_hex(c_value& result, const unsigned char*& p, c_system_resource* res)
{
    digits_function(4, result, p, res);
}

// The low 8 bits; 0 makes a one-byte string holding a zero byte.
void fnc_chr(c_value& result, const unsigned char*& p, c_system_resource* res)
{
    int argument = 0;
    if (read_argument(argument, p, res) != 0)
        return;
    result.change_byte(static_cast<char>(static_cast<unsigned char>(argument & 0xFF)));
}

void fnc_bin(c_value& result, const unsigned char*& p, c_system_resource* res)
{
    digits_function(1, result, p, res);
}

// The first byte of the string form as 0 to 255; an empty string gives 0.
void fnc_asc(c_value& result, const unsigned char*& p, c_system_resource* res)
{
    c_value argument;
    read_argument(argument, p, res);
    const char* text;
    int length;
    read_text(argument, text, length, res);
    result.change_integer(length == 0 ? 0 : static_cast<unsigned char>(text[0]));
}
