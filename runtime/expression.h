// The evaluator: recursive descent straight over the token bytes, one method per precedence level,
// from or_op (lowest) to term (highest). The first error ends the whole evaluation through `ok`.
#pragma once

#include "runtime/value.h"

struct c_system_resource;

class c_expression {
public:
    explicit c_expression(c_system_resource* resource) : p_system_resource(resource) {}

    // 0 or the first error code; p is left on the first token no level took. When p starts no operand
    // the result is 0 and value is unchanged.
    [[nodiscard]] int expression(c_value& value, const unsigned char*& p);
    // Promotes value toward the wanted type tag; only a real wanted as a string fails (6).
    [[nodiscard]] static int class_change(c_value& value, int wanted);

private:
    static bool is_flat(const unsigned char* p);
    int flat(c_value& value, const unsigned char*& p);
    int or_op(c_value& value, const unsigned char*& p, bool& ok);
    int and_op(c_value& value, const unsigned char*& p, bool& ok);
    int comparator(c_value& value, const unsigned char*& p, bool& ok);
    int addition(c_value& value, const unsigned char*& p, bool& ok);
    int shift(c_value& value, const unsigned char*& p, bool& ok);
    int multiplication(c_value& value, const unsigned char*& p, bool& ok);
    int power(c_value& value, const unsigned char*& p, bool& ok);
    int term(c_value& value, const unsigned char*& p, bool& ok);

    c_system_resource* p_system_resource;
};
