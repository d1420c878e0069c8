// The evaluator. Each left-to-right level evaluates its first operand into the caller's value, then,
// for every operator of its own, a right operand into a local value made only then; the left operand
// is promoted toward the right one's type and the operator's slot is called on it. A cleared `ok`
// returns through every level at once, so the first error is the one the caller receives.
#include "runtime/expression.h"

#include <cstdint>

#include "engine/error.h"
#include "engine/system_resource.h"
#include "language/code.h"
#include "runtime/function.h"
#include "runtime/interpreter.h"
#include "runtime/variable.h"

namespace {

// Records a failure in the evaluation's flag and passes the code on (0 passes through untouched).
int fail_on(int code, bool& ok)
{
    if (code != 0)
        ok = false;
    return code;
}

// A comparison's truth (-1 or 0) becomes the value, an integer whatever the operand types were.
int compare(c_value& value, unsigned char kind, const c_base_type* right)
{
    const c_base_type* left = value.current;
    int result = 0;
    int code = 0;
    switch (kind) {
    case token_equal:
        code = left->equ(result, right);
        break;
    case token_less_equal:
        code = left->lt_equ(result, right);
        break;
    case token_greater_equal:
        code = left->gt_equ(result, right);
        break;
    case token_not_equal:
        code = left->not_equ(result, right);
        break;
    case token_less:
        code = left->lt(result, right);
        break;
    default:
        code = left->gt(result, right);
        break;
    }
    if (code == 0)
        value.change_integer(result);
    return code;
}

// Promotes the left operand toward the right one's type, then calls the operator's slot on it.
int operate(c_value& value, unsigned char kind, const c_value& right_value)
{
    if (int code = c_expression::class_change(value, right_value.get_type()); code != 0)
        return code;
    c_base_type* left = value.current;
    const c_base_type* right = right_value.current;
    switch (kind) {
    case token_or:
        return left->or_op(right);
    case token_xor:
        return left->xor_op(right);
    case token_and:
        return left->and_op(right);
    case token_plus:
        return left->addition(right);
    case token_minus:
        return left->subtraction(right);
    case token_shift_left:
        return left->lshift(right);
    case token_shift_right:
        return left->rshift(right);
    case token_multiply:
        return left->multiplication(right);
    case token_divide:
        return left->division(right);
    case token_mod:
        return left->remainder(right);
    case token_power:
        return left->power(right);
    default:
        return compare(value, kind, right);
    }
}

// The tokens some level takes after an operand: the binary operators.
bool is_binary_operator(unsigned char kind)
{
    constexpr std::uint64_t binary_operators =
        (1ull << token_and) | (1ull << token_or) | (1ull << token_xor) | (0x1Full << token_mod) |
        (0xFFull << token_equal) | (1ull << token_power);
    return kind < 64 && ((binary_operators >> kind) & 1u) != 0;
}

bool is_comparator(unsigned char kind)
{
    return (kind >= token_equal && kind <= token_not_equal) || kind == token_less || kind == token_greater;
}

// The variable whose id follows the kind byte; p ends past the id.
template <class variable_type>
const variable_type* variable_at(const unsigned char*& p, c_system_resource* res)
{
    ++p;
    return res->p_variable_manager->get<variable_type>(read_operand<variable_id>(p));
}

// An array element: subscripts through the interpreter, then the array's get. A failing get leaves
// value as it was and records its code, as a failing function does.
int element(c_value& value, const unsigned char*& p, c_system_resource* res)
{
    unsigned char kind = *p++;
    c_variable* array = res->p_variable_manager->at(read_operand<variable_id>(p));
    int indices[max_dimensions];
    int count = res->p_interpreter->dimension_check(p, indices);
    if (count == 0) {
        int recorded = res->error_code;
        return recorded != 0 ? recorded : error_syntax;  // a failed subscript list always records one
    }
    int code = 0;
    if (kind == token_integer_array) {
        int number = 0;
        code = static_cast<c_variable_integer_array*>(array)->get(count, indices, number);
        if (code == 0)
            value.change_integer(number);
    } else if (kind == token_real_array) {
        double number = 0.0;
        code = static_cast<c_variable_real_array*>(array)->get(count, indices, number);
        if (code == 0)
            value.change_real(number);
    } else {
        const char* text = nullptr;
        int length = 0;
        code = static_cast<c_variable_string_array*>(array)->get(count, indices, text, length);
        if (code == 0)
            value.change_string(text, length);
    }
    res->error_code.raise(code);
    return code;
}

// The handler reads its own arguments between "(" and ")" and reports only through error_code, which
// is therefore the outcome of the call (a code recorded before the call counts too).
int function_call(c_value& value, const unsigned char*& p, c_system_resource* res, bool& ok)
{
    ++p;
    int row = read_operand<int>(p);
    if (!take_token(p, token_open))
        return fail_on(error_syntax, ok);
    c_function::function_list[row].handler(value, p, res);
    if (!take_token(p, token_close))
        return fail_on(error_illegal_parameter, ok);
    int code = res->error_code;
    ok = code == 0;
    return code;
}

// A nested expression has its own ok flag; its error is passed on through this one.
int parenthesis(c_expression& evaluator, c_value& value, const unsigned char*& p, bool& ok)
{
    ++p;
    if (int code = evaluator.expression(value, p); code != 0)
        return fail_on(code, ok);
    if (!take_token(p, token_close))
        return fail_on(error_right_bracket, ok);
    return 0;
}

}  // namespace

int c_expression::expression(c_value& value, const unsigned char*& p)
{
    bool ok = true;
    // A lone constant or scalar variable, the commonest expression (subscripts, FOR bounds, PRINT i),
    // gives the same through term alone as through all eight levels, in about a quarter of the time.
    if (*p <= token_string_variable && !is_binary_operator(p[token_size(p)]))
        return term(value, p, ok);
    return or_op(value, p, ok);
}

// Only upward: none to anything, integer to real or string. A real wanted as a string is 6.
int c_expression::class_change(c_value& value, int wanted)
{
    int current = value.get_type();
    if (wanted <= current)
        return 0;
    switch (wanted) {
    case type_integer:
        value.change_integer(0);
        return 0;
    case type_real:
        value.change_real(value.current->get_real());
        return 0;
    default:
        if (current == type_real)
            return error_type_mismatch;
        return value.convert_to_string();
    }
}

int c_expression::or_op(c_value& value, const unsigned char*& p, bool& ok)
{
    int code = and_op(value, p, ok);
    if (!ok)
        return code;
    while (*p == token_or || *p == token_xor) {
        unsigned char kind = *p++;
        c_value right;
        code = and_op(right, p, ok);
        if (!ok)
            return code;
        code = fail_on(operate(value, kind, right), ok);
        if (!ok)
            return code;
    }
    return 0;
}

int c_expression::and_op(c_value& value, const unsigned char*& p, bool& ok)
{
    int code = comparator(value, p, ok);
    if (!ok)
        return code;
    while (*p == token_and) {
        ++p;
        c_value right;
        code = comparator(right, p, ok);
        if (!ok)
            return code;
        code = fail_on(operate(value, token_and, right), ok);
        if (!ok)
            return code;
    }
    return 0;
}

int c_expression::comparator(c_value& value, const unsigned char*& p, bool& ok)
{
    int code = addition(value, p, ok);
    if (!ok)
        return code;
    while (is_comparator(*p)) {
        unsigned char kind = *p++;
        c_value right;
        code = addition(right, p, ok);
        if (!ok)
            return code;
        code = fail_on(operate(value, kind, right), ok);
        if (!ok)
            return code;
    }
    return 0;
}

int c_expression::addition(c_value& value, const unsigned char*& p, bool& ok)
{
    int code = shift(value, p, ok);
    if (!ok)
        return code;
    while (*p == token_plus || *p == token_minus) {
        unsigned char kind = *p++;
        c_value right;
        code = shift(right, p, ok);
        if (!ok)
            return code;
        code = fail_on(operate(value, kind, right), ok);
        if (!ok)
            return code;
    }
    return 0;
}

int c_expression::shift(c_value& value, const unsigned char*& p, bool& ok)
{
    int code = multiplication(value, p, ok);
    if (!ok)
        return code;
    while (*p == token_shift_left || *p == token_shift_right) {
        unsigned char kind = *p++;
        c_value right;
        code = multiplication(right, p, ok);
        if (!ok)
            return code;
        code = fail_on(operate(value, kind, right), ok);
        if (!ok)
            return code;
    }
    return 0;
}

int c_expression::multiplication(c_value& value, const unsigned char*& p, bool& ok)
{
    int code = power(value, p, ok);
    if (!ok)
        return code;
    while (*p == token_multiply || *p == token_divide || *p == token_mod) {
        unsigned char kind = *p++;
        c_value right;
        code = power(right, p, ok);
        if (!ok)
            return code;
        code = fail_on(operate(value, kind, right), ok);
        if (!ok)
            return code;
    }
    return 0;
}

// Right to left: each right operand is a whole power of its own, so 2 ^ 3 ^ 2 is 2 ^ 9.
int c_expression::power(c_value& value, const unsigned char*& p, bool& ok)
{
    int code = term(value, p, ok);
    if (!ok)
        return code;
    while (*p == token_power) {
        ++p;
        c_value right;
        code = power(right, p, ok);
        if (!ok)
            return code;
        code = fail_on(operate(value, token_power, right), ok);
        if (!ok)
            return code;
    }
    return 0;
}

int c_expression::term(c_value& value, const unsigned char*& p, bool& ok)
{
    switch (*p) {
    case token_integer:
        ++p;
        value.change_integer(read_operand<int>(p));
        return 0;
    case token_real:
        ++p;
        value.change_real(read_operand<double>(p));
        return 0;
    case token_string: {
        int length = p[1];
        value.change_string(reinterpret_cast<const char*>(p + 2), length);
        p += 2 + length;
        return 0;
    }
    case token_integer_variable:
        value.change_integer(variable_at<c_variable_integer>(p, p_system_resource)->value);
        return 0;
    case token_real_variable:
        value.change_real(variable_at<c_variable_real>(p, p_system_resource)->value);
        return 0;
    case token_string_variable: {
        const auto* variable = variable_at<c_variable_string>(p, p_system_resource);
        value.change_string(variable->text, variable->length);
        return 0;
    }
    case token_integer_array:
    case token_real_array:
    case token_string_array:
        return fail_on(element(value, p, p_system_resource), ok);
    case token_function:
        return function_call(value, p, p_system_resource, ok);
    case token_not:
    case token_plus:
    case token_minus: {
        // They bind to the term right after them, tighter than ^, so -2 ^ 2 is 4.
        unsigned char kind = *p++;
        int code = term(value, p, ok);
        if (!ok)
            return code;
        c_base_type* operand = value.current;
        code = kind == token_not ? operand->not_op() : kind == token_plus ? operand->plus() : operand->minus();
        return fail_on(code, ok);
    }
    case token_open:
        return parenthesis(*this, value, p, ok);
    default:
        return 0;  // no operand: nothing consumed, value unchanged
    }
}
