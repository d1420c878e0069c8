// The evaluator. Each left-to-right level evaluates its first operand into the caller's value, then,
// for every operator of its own, a right operand into a local value made only then; the left operand
// is promoted toward the right one's type and the operator's slot is called on it. A cleared `ok`
// returns through every level at once, so the first error is the one the caller receives.
#include "runtime/expression.h"

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

// Two integers: the operators whose slots cannot fail, and division and MOD by a divisor other than
// 0 and -1, give here exactly what the slots give; false leaves the rest to the slots.
bool integer_shortcut(c_value& value, unsigned char kind, int right)
{
    int& left = value.integer_value.value;
    switch (kind) {
    case token_plus:
        left = static_cast<int>(static_cast<unsigned>(left) + static_cast<unsigned>(right));
        return true;
    case token_minus:
        left = static_cast<int>(static_cast<unsigned>(left) - static_cast<unsigned>(right));
        return true;
    case token_multiply:
        left = static_cast<int>(static_cast<unsigned>(left) * static_cast<unsigned>(right));
        return true;
    case token_divide:
    case token_mod:
        if (right == 0 || right == -1)
            return false;
        left = kind == token_divide ? left / right : left % right;
        return true;
    case token_and:
        left &= right;
        return true;
    case token_or:
        left |= right;
        return true;
    case token_xor:
        left ^= right;
        return true;
    case token_equal:
        left = left == right ? -1 : 0;
        return true;
    case token_not_equal:
        left = left != right ? -1 : 0;
        return true;
    case token_less:
        left = left < right ? -1 : 0;
        return true;
    case token_less_equal:
        left = left <= right ? -1 : 0;
        return true;
    case token_greater:
        left = left > right ? -1 : 0;
        return true;
    case token_greater_equal:
        left = left >= right ? -1 : 0;
        return true;
    default:
        return false;
    }
}

// Two reals: as integer_shortcut, for the arithmetic and the comparisons (which give an integer).
bool real_shortcut(c_value& value, unsigned char kind, double right)
{
    double& left = value.real_value.value;
    switch (kind) {
    case token_plus:
        left += right;
        return true;
    case token_minus:
        left -= right;
        return true;
    case token_multiply:
        left *= right;
        return true;
    case token_divide:
        if (right == 0.0)
            return false;
        left /= right;
        return true;
    case token_equal:
        value.change_integer(left == right ? -1 : 0);
        return true;
    case token_not_equal:
        value.change_integer(!(left == right) ? -1 : 0);
        return true;
    case token_less:
        value.change_integer(left < right ? -1 : 0);
        return true;
    case token_less_equal:
        value.change_integer(left <= right ? -1 : 0);
        return true;
    case token_greater:
        value.change_integer(left > right ? -1 : 0);
        return true;
    case token_greater_equal:
        value.change_integer(left >= right ? -1 : 0);
        return true;
    default:
        return false;
    }
}

// Promotes the left operand toward the right one's type, then calls the operator's slot on it.
// Operands of one numeric type, the bulk of all arithmetic, first try the shortcuts above, which
// spare the promotion and the virtual calls.
int operate(c_value& value, unsigned char kind, const c_value& right_value)
{
    if (value.current == &value.integer_value && right_value.current == &right_value.integer_value) {
        if (integer_shortcut(value, kind, right_value.integer_value.value))
            return 0;
    } else if (value.current == &value.real_value && right_value.current == &right_value.real_value) {
        if (real_shortcut(value, kind, right_value.real_value.value))
            return 0;
    }
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

// The level whose loop takes each binary operator, loosest 1 to tightest 7; 0 for any other token.
constexpr int level_or = 1, level_and = 2, level_comparator = 3, level_addition = 4, level_shift = 5,
              level_multiplication = 6, level_power = 7;

int binding(unsigned char kind)
{
    switch (kind) {
    case token_or:
    case token_xor:
        return level_or;
    case token_and:
        return level_and;
    case token_equal:
    case token_less_equal:
    case token_greater_equal:
    case token_not_equal:
    case token_less:
    case token_greater:
        return level_comparator;
    case token_plus:
    case token_minus:
        return level_addition;
    case token_shift_left:
    case token_shift_right:
        return level_shift;
    case token_multiply:
    case token_divide:
    case token_mod:
        return level_multiplication;
    case token_power:
        return level_power;
    default:
        return 0;
    }
}

// A constant or scalar variable followed by no operator tighter than `level` is a whole operand of
// that level: term alone gives what the levels in between would, since none of them finds an operator.
// Level 0 asks for an operand that no operator follows at all.
bool lone_operand(const unsigned char* p, int level)
{
    return *p <= token_string_variable && binding(p[token_size(p)]) <= level;
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
    if (lone_operand(p, 0))
        return term(value, p, ok);
    if (is_flat(p))
        return flat(value, p);
    return or_op(value, p, ok);
}

// Two or three constants or scalar variables joined by binary operators, with nothing after them
// ("i+1", "i*i", "isum+i mod 7"): the next commonest expressions. The levels would only pass such
// operands down and back; here they are read, grouped by the operators' levels and operated on in the
// order the levels use, so results, codes and the cursor after an error are the same.
bool c_expression::is_flat(const unsigned char* p)
{
    for (int operands = 1; operands <= 3; ++operands) {
        if (*p > token_string_variable)
            return false;
        p += token_size(p);
        if (binding(*p) == 0)
            return operands >= 2;
        ++p;
    }
    return false;
}

int c_expression::flat(c_value& value, const unsigned char*& p)
{
    bool ok = true;
    (void)term(value, p, ok);
    unsigned char first = *p++;
    c_value middle;
    (void)term(middle, p, ok);
    if (binding(*p) == 0)
        return operate(value, first, middle);
    unsigned char second = *p;
    // The second operator binds tighter (or is a second "^", which groups to the right): its
    // operands are worked first, as the first operator's right operand.
    if (binding(second) > binding(first) || (first == token_power && second == token_power)) {
        ++p;
        c_value last;
        (void)term(last, p, ok);
        if (int code = operate(middle, second, last); code != 0)
            return code;
        return operate(value, first, middle);
    }
    if (int code = operate(value, first, middle); code != 0)
        return code;  // the cursor stays on the second operator, as the levels leave it
    ++p;
    c_value last;
    (void)term(last, p, ok);
    return operate(value, second, last);
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
    int code = lone_operand(p, level_or) ? term(value, p, ok) : and_op(value, p, ok);
    if (!ok)
        return code;
    while (*p == token_or || *p == token_xor) {
        unsigned char kind = *p++;
        c_value right;
        code = lone_operand(p, level_or) ? term(right, p, ok) : and_op(right, p, ok);
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
    int code = lone_operand(p, level_and) ? term(value, p, ok) : comparator(value, p, ok);
    if (!ok)
        return code;
    while (*p == token_and) {
        ++p;
        c_value right;
        code = lone_operand(p, level_and) ? term(right, p, ok) : comparator(right, p, ok);
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
    int code = lone_operand(p, level_comparator) ? term(value, p, ok) : addition(value, p, ok);
    if (!ok)
        return code;
    while (is_comparator(*p)) {
        unsigned char kind = *p++;
        c_value right;
        code = lone_operand(p, level_comparator) ? term(right, p, ok) : addition(right, p, ok);
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
    int code = lone_operand(p, level_addition) ? term(value, p, ok) : shift(value, p, ok);
    if (!ok)
        return code;
    while (*p == token_plus || *p == token_minus) {
        unsigned char kind = *p++;
        c_value right;
        code = lone_operand(p, level_addition) ? term(right, p, ok) : shift(right, p, ok);
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
    int code = lone_operand(p, level_shift) ? term(value, p, ok) : multiplication(value, p, ok);
    if (!ok)
        return code;
    while (*p == token_shift_left || *p == token_shift_right) {
        unsigned char kind = *p++;
        c_value right;
        code = lone_operand(p, level_shift) ? term(right, p, ok) : multiplication(right, p, ok);
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
    int code = lone_operand(p, level_multiplication) ? term(value, p, ok) : power(value, p, ok);
    if (!ok)
        return code;
    while (*p == token_multiply || *p == token_divide || *p == token_mod) {
        unsigned char kind = *p++;
        c_value right;
        code = lone_operand(p, level_multiplication) ? term(right, p, ok) : power(right, p, ok);
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
