// The translation groups exactly as the evaluator's level loop does (term, then every operator of the
// level or a tighter one with its right operand) and types each part as the numeric way would: two
// integers give an integer, anything with a real is worked as reals, and a comparison gives an integer.
// Whatever the steps cannot take is refused whole, and the full evaluation takes it.
#include "runtime/number_code.h"

#include "engine/allocation.h"
#include "runtime/arithmetic.h"
#include "runtime/operator_level.h"
#include "runtime/variable.h"

namespace {

enum : unsigned char {
    op_integer,
    op_real,
    op_integer_variable,
    op_real_variable,
    op_integer_element,
    op_real_element,
    op_to_real,       // the top value
    op_left_to_real,  // the value below it
    op_to_integer,    // the top value, a subscript
    op_integer_minus,
    op_integer_not,
    op_real_minus,
    op_integer_operation,
    op_real_operation,
    op_real_comparison,
    // The same with the right operand a variable or a constant, read in place of a step of its own.
    op_integer_operation_variable,
    op_integer_operation_constant,
    op_real_operation_variable,
    op_real_operation_constant,
    op_real_comparison_variable,
    op_real_comparison_constant,
    // Real +, - and *, the commonest, each with its own step in the three forms: no second dispatch.
    op_real_addition,
    op_real_addition_variable,
    op_real_addition_constant,
    op_real_subtraction,
    op_real_subtraction_variable,
    op_real_subtraction_constant,
    op_real_multiplication,
    op_real_multiplication_variable,
    op_real_multiplication_constant,
};

// The step of a real operation in one of the three forms (stack, variable, constant), for +, - and *.
unsigned char specialised(unsigned char op, unsigned char kind)
{
    int form = 0;  // the forms come in this order in each operator's three steps
    if (op == op_real_operation_variable)
        form = 1;
    else if (op == op_real_operation_constant)
        form = 2;
    else if (op != op_real_operation)
        return op;
    switch (kind) {
    case token_plus:
        return static_cast<unsigned char>(op_real_addition + form);
    case token_minus:
        return static_cast<unsigned char>(op_real_subtraction + form);
    case token_multiply:
        return static_cast<unsigned char>(op_real_multiplication + form);
    default:
        return op;
    }
}

// The fused operation step for an operation on reals or integers whose right operand is the push
// step `operand`, which must be of the operation's type.
unsigned char fused(unsigned char operation, unsigned char operand)
{
    bool variable = operand == op_integer_variable || operand == op_real_variable;
    switch (operation) {
    case op_integer_operation:
        return variable ? op_integer_operation_variable : op_integer_operation_constant;
    case op_real_operation:
        return variable ? op_real_operation_variable : op_real_operation_constant;
    default:
        return variable ? op_real_comparison_variable : op_real_comparison_constant;
    }
}

union c_slot {
    int integer;
    double real;
};

// Each reader returns false when the steps cannot take what is at p; `real` is the part's type.
class c_translation {
public:
    c_translation(c_number_code& code, const unsigned char* start, c_variable_manager* variables)
        : p(start), code(code), variables(variables) {}

    bool binary(int level, bool& real)
    {
        return term(real) && operators(level, real);
    }

    const unsigned char* p;

private:
    bool operators(int level, bool& real)
    {
        for (;;) {
            unsigned char kind = *p;
            int binding = level_of(kind);
            if (binding < level)  // level_none stops every level
                return true;
            ++p;
            bool right_real;
            int right_start = code.step_count;
            if (!binary(right_level(binding), right_real) || !operation(kind, real, right_real, right_start))
                return false;
        }
    }

    bool operation(unsigned char kind, bool& real, bool right_real, int right_start)
    {
        // A right operand that is one push step is folded into the operation: an integer constant
        // met by a real is made a real now, as the step converting it would.
        c_step* right = code.step_count == right_start + 1 && code.steps[right_start].op <= op_real_variable
                            ? &code.steps[right_start] : nullptr;
        if (right != nullptr && real && right->op == op_integer) {
            double constant = right->integer;
            right->op = op_real;
            right->real = constant;
            right_real = true;
        }
        if (right != nullptr && right_real == (real || right_real)) {
            c_step operand = *right;
            --code.step_count;
            if (!real && right_real && !emit({op_to_real, 0, 0, {}}))
                return false;
            unsigned char op = 0;
            if (!operation_of(kind, real, right_real, op))
                return false;
            operand.op = fused(op, operand.op);
            operand.kind = kind;
            return emit(operand);
        }
        if ((real || right_real) && ((!real && !emit({op_left_to_real, 0, 0, {}})) ||
                                     (!right_real && !emit({op_to_real, 0, 0, {}}))))
            return false;
        unsigned char op = 0;
        return operation_of(kind, real, right_real, op) && emit({op, kind, 0, {}});
    }

    // The operation step for two operands of these types; real becomes the result's type. False for
    // MOD, AND, OR, XOR and the shifts on reals, which always fail: the full evaluation reports them.
    static bool operation_of(unsigned char kind, bool& real, bool right_real, unsigned char& op)
    {
        if (!real && !right_real) {
            op = op_integer_operation;
            return true;
        }
        real = !is_comparison(kind);
        op = real ? op_real_operation : op_real_comparison;
        return !real || kind == token_plus || kind == token_minus || kind == token_multiply ||
               kind == token_divide || kind == token_power;
    }

    bool term(bool& real)
    {
        c_step step{};
        switch (*p) {
        case token_integer:
            step.op = op_integer;
            step.integer = peek_operand<int>(p + 1);
            p += operand_token_size;
            break;
        case token_real:
            step.op = op_real;
            step.real = peek_operand<double>(p + 1);
            p += 1 + sizeof(double);
            break;
        case token_integer_variable:
            step.op = op_integer_variable;
            step.integer_at = &variables->get<c_variable_integer>(peek_operand<variable_id>(p + 1))->value;
            p += operand_token_size;
            break;
        case token_real_variable:
            step.op = op_real_variable;
            step.real_at = &variables->get<c_variable_real>(peek_operand<variable_id>(p + 1))->value;
            p += operand_token_size;
            break;
        case token_integer_array:
        case token_real_array:
            return element(real);
        case token_not:
        case token_plus:
        case token_minus:
            return prefix(real);
        case token_open:
            ++p;
            return binary(level_or, real) && take_token(p, token_close);
        default:
            return false;  // strings, functions, a missing operand
        }
        real = step.op == op_real || step.op == op_real_variable;
        return emit(step);
    }

    // NOT, unary + and - bind to the term right after them, tighter than ^.
    bool prefix(bool& real)
    {
        unsigned char kind = *p++;
        if (!term(real))
            return false;
        if (kind == token_plus)
            return true;
        if (real)
            return kind == token_minus && emit({op_real_minus, 0, 0, {}});  // a real has no NOT
        return emit({kind == token_minus ? op_integer_minus : op_integer_not, 0, 0, {}});
    }

    // Subscripts as the interpreter reads them: each a whole expression, made an integer.
    bool element(bool& real)
    {
        c_step step{};
        step.op = *p == token_integer_array ? op_integer_element : op_real_element;
        step.array = variables->get<c_variable_array>(peek_operand<variable_id>(p + 1));
        p += operand_token_size;
        if (!take_token(p, token_open))
            return false;
        do {
            bool subscript_real;
            if (!binary(level_or, subscript_real) || (subscript_real && !emit({op_to_integer, 0, 0, {}})))
                return false;
            ++step.count;
        } while (step.count < max_dimensions && take_token(p, token_comma));
        real = step.op == op_real_element;
        return take_token(p, token_close) && emit(step);
    }

    bool emit(c_step step)
    {
        if (code.step_count == step_limit)
            return false;
        step.op = specialised(step.op, step.kind);
        code.steps[code.step_count++] = step;
        return true;
    }

    c_number_code& code;
    c_variable_manager* variables;
};

// Reads the element whose subscripts start at `subscripts` into `value`; false while the array is
// undimensioned (the full evaluation dimensions it) or a subscript is out of range.
bool read_element(const c_step& step, const c_slot* subscripts, c_slot& value)
{
    if (!step.array->dimensioned())
        return false;
    int indices[max_dimensions];
    for (int index = 0; index < step.count; ++index)
        indices[index] = subscripts[index].integer;
    if (step.op == op_integer_element)
        return static_cast<c_variable_integer_array*>(step.array)->get(step.count, indices, value.integer) == 0;
    return static_cast<c_variable_real_array*>(step.array)->get(step.count, indices, value.real) == 0;
}

}  // namespace

bool c_number_code::translate(const unsigned char* p, c_variable_manager* variables)
{
    step_count = 0;
    c_translation translation(*this, p, variables);
    if (!translation.binary(level_or, is_real)) {
        step_count = 0;
        return false;
    }
    length = static_cast<int>(translation.p - p);
    return true;
}

// The top value is kept apart from the stack, in a register: an operation reads no memory for it.
bool c_number_code::run(c_number& result) const
{
    c_slot stack[step_limit + 1];  // the values under the top; the first push stores a blank
    c_slot* below = stack;         // just above the value under the top
    c_slot top{};
    const c_step* end = steps + step_count;
    for (const c_step* step = steps; step != end; ++step) {
        switch (step->op) {
        case op_integer:
            *below++ = top;
            top.integer = step->integer;
            break;
        case op_real:
            *below++ = top;
            top.real = step->real;
            break;
        case op_integer_variable:
            *below++ = top;
            top.integer = *step->integer_at;
            break;
        case op_real_variable:
            *below++ = top;
            top.real = *step->real_at;
            break;
        case op_integer_element:
        case op_real_element: {
            *below++ = top;
            below -= step->count;
            c_slot element;  // not top itself, which would then have to live in memory
            if (!read_element(*step, below, element))
                return false;
            top = element;
            break;
        }
        case op_to_real:
            top.real = top.integer;
            break;
        case op_left_to_real:
            below[-1].real = below[-1].integer;
            break;
        case op_to_integer:
            top.integer = real_to_integer(top.real);
            break;
        case op_integer_minus:
            top.integer = integer_minus(top.integer);
            break;
        case op_integer_not:
            top.integer = integer_not(top.integer);
            break;
        case op_real_minus:
            top.real = real_minus(top.real);
            break;
        case op_integer_operation: {
            int left = (--below)->integer;
            if (integer_operation(left, step->kind, top.integer) != 0)
                return false;
            top.integer = left;
            break;
        }
        case op_real_operation: {
            double left = (--below)->real;
            if (real_operation(left, step->kind, top.real) != 0)
                return false;
            top.real = left;
            break;
        }
        case op_real_comparison: {
            double left = (--below)->real;
            top.integer = comparison(step->kind, left, top.real);
            break;
        }
        case op_integer_operation_variable:
            if (integer_operation(top.integer, step->kind, *step->integer_at) != 0)
                return false;
            break;
        case op_integer_operation_constant:
            if (integer_operation(top.integer, step->kind, step->integer) != 0)
                return false;
            break;
        case op_real_operation_variable:
            if (real_operation(top.real, step->kind, *step->real_at) != 0)
                return false;
            break;
        case op_real_operation_constant:
            if (real_operation(top.real, step->kind, step->real) != 0)
                return false;
            break;
        case op_real_comparison_variable:
            top.integer = comparison(step->kind, top.real, *step->real_at);
            break;
        case op_real_comparison_constant:
            top.integer = comparison(step->kind, top.real, step->real);
            break;
        case op_real_addition:
            top.real = real_addition((--below)->real, top.real);
            break;
        case op_real_addition_variable:
            top.real = real_addition(top.real, *step->real_at);
            break;
        case op_real_addition_constant:
            top.real = real_addition(top.real, step->real);
            break;
        case op_real_subtraction:
            top.real = real_subtraction((--below)->real, top.real);
            break;
        case op_real_subtraction_variable:
            top.real = real_subtraction(top.real, *step->real_at);
            break;
        case op_real_subtraction_constant:
            top.real = real_subtraction(top.real, step->real);
            break;
        case op_real_multiplication:
            top.real = real_multiplication((--below)->real, top.real);
            break;
        case op_real_multiplication_variable:
            top.real = real_multiplication(top.real, *step->real_at);
            break;
        default:  // op_real_multiplication_constant
            top.real = real_multiplication(top.real, step->real);
            break;
        }
    }
    result = is_real ? c_number{true, 0, top.real} : c_number{false, top.integer, 0.0};
    return true;
}

c_number_codes::~c_number_codes() { delete[] slots; }

const c_number_code* c_number_codes::translate(const unsigned char* p, c_variable_manager* variables)
{
    if (slots == nullptr && (slots = allocate_array<c_number_code>(slot_count)) == nullptr)
        return nullptr;
    c_number_code& code = slots[slot_of(p)];
    code.translate(p, variables);
    code.start = p;
    code.generation = variables->code_generation;
    return &code;
}
