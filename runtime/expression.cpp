// The evaluator. One loop (`operators`) walks every binary level by the operator levels: an operator
// of a left-to-right level takes as its right operand the levels above it, power's takes power again.
// It runs on c_value, which takes every expression. Expressions of numbers alone go first the numeric
// way: translated once into typed steps (runtime/number_code.h), which need no c_value and refuse
// anything else. The steps call no built-in function and change nothing, so a refusal or a failure
// followed by the full evaluation from the start repeats nothing a program could see; both ways call
// the one definition of each operator.
#include "runtime/expression.h"

#include <iterator>
#include <type_traits>

#include "engine/error.h"
#include "engine/system_resource.h"
#include "language/code.h"
#include "runtime/arithmetic.h"
#include "runtime/function.h"
#include "runtime/interpreter.h"
#include "runtime/number_code.h"
#include "runtime/operator_level.h"
#include "runtime/variable.h"

namespace {

// A binary operator's slot on the left operand's type (an operation or a comparison).
struct c_operator {
    int (c_base_type::*operation)(const c_base_type*);
    int (c_base_type::*comparison)(int&, const c_base_type*) const;
};

// Indexed by token kind - token_and: the code format fixes the kinds' order, so this table's too.
constexpr c_operator operator_table[] = {
    {&c_base_type::and_op, nullptr},            // 23 AND
    {&c_base_type::or_op, nullptr},             // 24 OR
    {&c_base_type::xor_op, nullptr},            // 25 XOR
    {nullptr, nullptr},                         // 26 NOT, prefix only
    {&c_base_type::remainder, nullptr},         // 27 MOD
    {&c_base_type::addition, nullptr},          // 28 +
    {&c_base_type::subtraction, nullptr},       // 29 -
    {&c_base_type::multiplication, nullptr},    // 30 *
    {&c_base_type::division, nullptr},          // 31 /
    {nullptr, nullptr},                         // 32 (
    {nullptr, nullptr},                         // 33 )
    {nullptr, &c_base_type::equ},               // 34 =
    {nullptr, &c_base_type::lt_equ},            // 35 <=
    {nullptr, &c_base_type::gt_equ},            // 36 >=
    {nullptr, &c_base_type::not_equ},           // 37 <>
    {&c_base_type::lshift, nullptr},            // 38 <<
    {&c_base_type::rshift, nullptr},            // 39 >>
    {nullptr, &c_base_type::lt},                // 40 <
    {nullptr, &c_base_type::gt},                // 41 >
    {nullptr, nullptr},                         // 42 :
    {nullptr, nullptr},                         // 43 ;
    {nullptr, nullptr},                         // 44 ,
    {&c_base_type::power, nullptr},             // 45 ^
};
static_assert(std::size(operator_table) == token_power - token_and + 1);

// Records a failure in the evaluation's flag and passes the code on (0 passes through untouched).
int fail_on(int code, bool& ok)
{
    if (code != 0)
        ok = false;
    return code;
}

// Two integers give an integer; otherwise both are read as reals, as promotion would have them, and
// the real type's slots are followed. On an error left is unchanged.
int operate(c_number& left, unsigned char kind, const c_number& right)
{
    if (!left.is_real && !right.is_real)
        return integer_operation(left.integer, kind, right.integer);
    double a = left.is_real ? left.real : left.integer;
    double b = right.is_real ? right.real : right.integer;
    if (is_comparison(kind)) {
        left = {false, comparison(kind, a, b), 0.0};
        return 0;
    }
    if (int code = real_operation(a, kind, b); code != 0)
        return code;
    left = {true, 0, a};
    return 0;
}

bool as_number(const c_value& value, c_number& number)
{
    if (value.current == &value.integer_value)
        number = {false, value.integer_value.value, 0.0};
    else if (value.current == &value.real_value)
        number = {true, 0, value.real_value.value};
    else
        return false;
    return true;
}

void store(c_value& value, const c_number& number)
{
    if (number.is_real)
        value.change_real(number.real);
    else
        value.change_integer(number.integer);
}

// Promotes the left operand toward the right one's type, then calls the operator's slot on it. Two
// numbers go the numeric way first, which gives what the slots give without the virtual calls; when it
// fails the slots run, so the code and the value left (promotion included) are theirs.
int operate(c_value& value, unsigned char kind, const c_value& right_value)
{
    c_number left, right;
    if (as_number(value, left) && as_number(right_value, right) && operate(left, kind, right) == 0) {
        store(value, left);
        return 0;
    }
    if (int code = c_expression::class_change(value, right_value.get_type()); code != 0)
        return code;
    const c_operator& slot = operator_table[kind - token_and];  // kind is a binary operator
    if (slot.operation != nullptr)
        return (value.current->*slot.operation)(right_value.current);
    int result = 0;
    if (int code = (value.current->*slot.comparison)(result, right_value.current); code != 0)
        return code;
    value.change_integer(result);
    return 0;
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

}  // namespace

int c_expression::expression(c_value& value, const unsigned char*& p)
{
    const unsigned char* start = p;
    c_number number;
    if (number_expression(number, p)) {
        store(value, number);
        return 0;
    }
    p = start;
    return value_expression(value, p);
}

int c_expression::integer_expression(int& result, const unsigned char*& p) { return read_number(result, p); }

int c_expression::real_expression(double& result, const unsigned char*& p) { return read_number(result, p); }

template <class number_type>
int c_expression::read_number(number_type& result, const unsigned char*& p)
{
    constexpr bool wants_integer = std::is_same_v<number_type, int>;
    const unsigned char* start = p;
    c_number number;
    if (number_expression(number, p)) {
        if constexpr (wants_integer)
            result = number.is_real ? real_to_integer(number.real) : number.integer;
        else
            result = number.is_real ? number.real : number.integer;
        return 0;
    }
    p = start;
    return read_value(result, p);
}

// The full evaluation's number, apart so that its c_value does not weigh on the numeric way's frame.
template <class number_type>
int c_expression::read_value(number_type& result, const unsigned char*& p)
{
    c_value value;
    int code = value_expression(value, p);
    if (code == 0) {
        if constexpr (std::is_same_v<number_type, int>)
            result = value.current->get_integer();
        else
            result = value.current->get_real();
    }
    return code;
}

// "s = s + operand" and nothing after it appends the operand's text to s where it lies, instead of
// copying s into a value and back; with anything after it, the evaluation goes on from s + operand.
int c_expression::string_assignment(c_variable_string* target, const unsigned char*& p)
{
    if (p[0] != token_string_variable || peek_operand<variable_id>(p + 1) != target->id ||
        p[operand_token_size] != token_plus)
        return assign(target, p, nullptr);
    p += operand_token_size + 1;
    bool ok = true;
    c_value right;
    if (int code = binary(right, p, ok, level_addition + 1); !ok)
        return code;
    if (level_of(*p) == level_none)
        return string_append(target->text, target->length, right.current);
    return assign(target, p, &right);
}

// Assigns the expression at p to target; given `right`, the expression is target + right followed by
// what is at p.
int c_expression::assign(c_variable_string* target, const unsigned char*& p, const c_value* right)
{
    c_value value;
    int code = 0;
    if (right == nullptr) {
        code = expression(value, p);
    } else {
        bool ok = true;
        value.change_string(target->text, target->length);
        if (code = fail_on(operate(value, token_plus, *right), ok); code == 0)
            code = operators(value, p, ok, level_or);
    }
    if (code != 0)
        return code;
    const char* text;
    int length;
    value.current->get_string(text, length);
    target->set(text, length);
    return 0;
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

// A variable or a constant read without a call; false, with nothing consumed, for any other operand.
inline bool c_expression::simple_operand(c_number& number, const unsigned char*& p)
{
    switch (*p) {
    case token_real_variable:
        number = {true, 0, p_system_resource->p_variable_manager->get<c_variable_real>(peek_operand<variable_id>(p + 1))->value};
        break;
    case token_integer_variable:
        number = {false, p_system_resource->p_variable_manager->get<c_variable_integer>(peek_operand<variable_id>(p + 1))->value, 0.0};
        break;
    case token_integer:
        number = {false, peek_operand<int>(p + 1), 0.0};
        break;
    case token_real:
        number = {true, 0, peek_operand<double>(p + 1)};
        p += 1 + sizeof(double);
        return true;
    default:
        return false;
    }
    p += operand_token_size;
    return true;
}

// A lone variable or constant, the commonest expression, is read here without the steps.
bool c_expression::number_expression(c_number& number, const unsigned char*& p)
{
    const unsigned char* start = p;
    if (simple_operand(number, p) && level_of(*p) == level_none)
        return true;
    p = start;
    c_interpreter* interpreter = p_system_resource->p_interpreter;
    const c_number_code* code = nullptr;
    if (interpreter != nullptr)
        code = interpreter->number_codes.at(p, p_system_resource->p_variable_manager);
    if (code == nullptr)
        return translated_expression(number, p);
    return run_code(*code, number, p);
}

// Without a table to keep it in, the translation is made for this evaluation alone.
bool c_expression::translated_expression(c_number& number, const unsigned char*& p)
{
    c_number_code code;
    code.translate(p, p_system_resource->p_variable_manager);
    return run_code(code, number, p);
}

bool c_expression::run_code(const c_number_code& code, c_number& number, const unsigned char*& p)
{
    if (code.step_count == 0 || !code.run(number))
        return false;
    p += code.length;
    return true;
}

int c_expression::value_expression(c_value& value, const unsigned char*& p)
{
    bool ok = true;
    return binary(value, p, ok, level_or);
}

// An operand and the operators of `level` or tighter after it, with their right operands.
template <class operand>
int c_expression::binary(operand& value, const unsigned char*& p, bool& ok, int level)
{
    int code = term(value, p, ok);
    // Most operands have no operator of the level after them: the loop is not entered for those.
    if (!ok || level_of(*p) < level)
        return code;
    return operators(value, p, ok, level);
}

// Takes every operator of `level` or a tighter one that follows value, each with its right operand,
// until a token that is no such operator.
template <class operand>
int c_expression::operators(operand& value, const unsigned char*& p, bool& ok, int level)
{
    for (;;) {
        unsigned char kind = *p;
        int binding = level_of(kind);
        if (binding < level)  // level_none stops every level
            return 0;
        ++p;
        operand right;  // a fresh one: an operator with no operand after it meets a none
        int code = binary(right, p, ok, right_level(binding));
        if (!ok)
            return code;
        if (code = fail_on(operate(value, kind, right), ok); code != 0)
            return code;
    }
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
    case token_minus:
        return prefix(value, p, ok);
    case token_open: {
        // A nested expression has its own ok flag; its error is passed on through this one.
        ++p;
        if (int code = expression(value, p); code != 0)
            return fail_on(code, ok);
        if (!take_token(p, token_close))
            return fail_on(error_right_bracket, ok);
        return 0;
    }
    default:
        return 0;  // no operand: nothing consumed, value unchanged
    }
}

// NOT, unary + and - bind to the term right after them, tighter than ^, so -2 ^ 2 is 4.
int c_expression::prefix(c_value& value, const unsigned char*& p, bool& ok)
{
    unsigned char kind = *p++;
    int code = term(value, p, ok);
    if (!ok)
        return code;
    c_base_type* operand = value.current;
    code = kind == token_not ? operand->not_op() : kind == token_plus ? operand->plus() : operand->minus();
    return fail_on(code, ok);
}
