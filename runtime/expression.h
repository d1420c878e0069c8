// The evaluator: straight over the token bytes, one loop over the precedence levels from OR and XOR
// (loosest) to ^, driven by one table of operators; term takes operands and prefix operators.
// The first error ends the whole evaluation through `ok`.
#pragma once

#include "runtime/value.h"

struct c_system_resource;
class c_variable_string;
struct c_number_code;

// A number on the evaluator's way for expressions of numbers alone: no text, nothing to build.
struct c_number {
    bool is_real;
    int integer;
    double real;
};

class c_expression {
public:
    explicit c_expression(c_system_resource* resource) : p_system_resource(resource) {}

    // 0 or the first error code; p is left on the first token no level took. When p starts no operand
    // the result is 0 and value is unchanged.
    [[nodiscard]] int expression(c_value& value, const unsigned char*& p);
    // The expression's value as get_integer or get_real reads it, written only on success.
    [[nodiscard]] int integer_expression(int& result, const unsigned char*& p);
    [[nodiscard]] int real_expression(double& result, const unsigned char*& p);
    // Assigns the expression's text (empty for a number) to target, which is unchanged on an error.
    // "target + operand" alone appends to target in place.
    [[nodiscard]] int string_assignment(c_variable_string* target, const unsigned char*& p);
    // Promotes value toward the wanted type tag; only a real wanted as a string fails (6).
    [[nodiscard]] static int class_change(c_value& value, int wanted);

private:
    // The numeric way first, the full one when it gives up; result as get_integer or get_real reads it.
    template <class number_type>
    int read_number(number_type& result, const unsigned char*& p);
    template <class number_type>
    int read_value(number_type& result, const unsigned char*& p);
    int assign(c_variable_string* target, const unsigned char*& p, const c_value* right);
    bool number_expression(c_number& number, const unsigned char*& p);
    int value_expression(c_value& value, const unsigned char*& p);
    template <class operand>
    int binary(operand& value, const unsigned char*& p, bool& ok, int level);
    template <class operand>
    int operators(operand& value, const unsigned char*& p, bool& ok, int level);
    int term(c_value& value, const unsigned char*& p, bool& ok);
    bool translated_expression(c_number& number, const unsigned char*& p);
    static bool run_code(const c_number_code& code, c_number& number, const unsigned char*& p);
    bool simple_operand(c_number& number, const unsigned char*& p);
    int prefix(c_value& value, const unsigned char*& p, bool& ok);

    c_system_resource* p_system_resource;
};
