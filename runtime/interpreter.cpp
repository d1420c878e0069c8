// The statement loop and the statements that steer control, assign and dimension. The loop runs one
// statement per turn and stops after the first that nulls the cursor or leaves an error; both stacks
// are empty whenever no run is under way. The channel operations live in runtime/channel.cpp.
#include "runtime/interpreter.h"

#include "engine/error.h"
#include "engine/system_resource.h"
#include "engine/vexil_callback.h"
#include "language/parser.h"
#include "runtime/expression.h"
#include "runtime/value.h"
#include "runtime/variable.h"

namespace {

void step_over_label(const unsigned char*& p)
{
    p += operand_token_size;
}

void step_over_separator(const unsigned char*& p)
{
    ++p;
}

void run_command(const unsigned char*& p, c_system_resource* res)
{
    ++p;
    auto row = read_operand<std::uint32_t>(p);
    c_command::command_list[row].handler(p, res);
}

// A line whose translation failed has no code: reaching it stops the run there with a syntax error.
// After the last line the cursor is nulled, which ends the run.
void end_of_line(const unsigned char*& p, c_system_resource* res, c_program_list& program)
{
    if (program.current != nullptr)
        program.current = program.current->next;
    if (program.current == nullptr) {
        p = nullptr;
        return;
    }
    if (program.current->code == nullptr) {
        res->error_code.raise(error_syntax);
        return;
    }
    p = program.current->code;
}

// Through unsigned: signed overflow is undefined, and the counter wraps.
int add_wrapping(int a, int b)
{
    return static_cast<int>(static_cast<unsigned>(a) + static_cast<unsigned>(b));
}

bool loop_finished(int value, int step, int limit)
{
    if (step > 0)
        return value > limit;
    if (step < 0)
        return value < limit;
    return value != limit;
}

bool is_statement_end(unsigned char kind)
{
    return kind == token_colon || kind == token_end;
}

// Evaluates one expression at p into value and records a failure; the evaluator's code.
int evaluate(c_system_resource* res, c_value& value, const unsigned char*& p)
{
    int code = c_expression(res).expression(value, p);
    res->error_code.raise(code);
    return code;
}

// The same, the value read as get_integer or get_real reads it.
int evaluate(c_system_resource* res, int& result, const unsigned char*& p)
{
    int code = c_expression(res).integer_expression(result, p);
    res->error_code.raise(code);
    return code;
}

int evaluate(c_system_resource* res, double& result, const unsigned char*& p)
{
    int code = c_expression(res).real_expression(result, p);
    res->error_code.raise(code);
    return code;
}

// Moves a resume point that lies on its line's end mark on into the next line, as the end mark would
// when reached, so that a jump back to it (NEXT, RETURN, a label alone on its line) runs no end mark.
// An immediate line, the last line and a line with no code are left to the end mark itself.
void settle(const unsigned char*& p, c_program_line*& line)
{
    while (*p == token_end && line != nullptr && line->next != nullptr && line->next->code != nullptr) {
        line = line->next;
        p = line->code;
    }
}

// Sends the cursor to the label's definition. A label whose line is gone (deleted, replaced, finished
// as an immediate line) or never translated has no line or no code, and is refused: false.
bool jump_to_label(const unsigned char*& p, c_interpreter& interpreter, variable_id id)
{
    c_system_resource* res = interpreter.p_system_resource;
    auto* label = res->p_variable_manager->get<c_variable_label>(id);
    if (label->line == nullptr || label->line->code == nullptr) {
        res->error_code.raise(error_invalid_label);
        return false;
    }
    p = label->line->code + label->position;
    c_program_line* line = label->line;
    settle(p, line);
    interpreter.program_list.current = line;
    return true;
}

// Subscripts that are all integer variables or constants alone, the usual case, are read without an
// evaluator: they cannot fail and give the same indices. The count, with p after the ")"; 0, with p
// unmoved, for any other list, which the evaluator then reads.
int lone_subscripts(const unsigned char*& p, int* indices, c_system_resource* res)
{
    if (*p != token_open)
        return 0;
    const unsigned char* cursor = p + 1;
    int count = 0;
    for (;;) {
        unsigned char kind = *cursor;
        if (kind != token_integer_variable && kind != token_integer)
            return 0;
        auto operand = peek_operand<std::uint32_t>(cursor + 1);
        indices[count++] = kind == token_integer
                               ? static_cast<int>(operand)
                               : res->p_variable_manager->get<c_variable_integer>(operand)->value;
        cursor += operand_token_size;
        if (*cursor == token_close) {
            p = cursor + 1;
            return count;
        }
        if (*cursor != token_comma || count == max_dimensions)
            return 0;
        ++cursor;
    }
}

}  // namespace

int c_interpreter::run(c_parser* parser)
{
    c_system_resource* res = p_system_resource;
    const unsigned char* p = parser->code;
    for_depth = 0;
    program_list.current = nullptr;
    res->executing = true;
    // One test a turn: a break stored by the host's thread is an error code too.
    do {
        switch (*p) {
        case token_integer_variable:
            process_ivar(p);
            break;
        case token_real_variable:
            process_rvar(p);
            break;
        case token_string_variable:
            process_svar(p);
            break;
        case token_integer_array:
            process_iarray(p);
            break;
        case token_real_array:
            process_rarray(p);
            break;
        case token_string_array:
            process_sarray(p);
            break;
        case token_label:
            step_over_label(p);
            break;
        case token_command:
            run_command(p, res);
            break;
        case token_end:
            end_of_line(p, res, program_list);
            break;
        case token_for:
            cmd_for(p);
            break;
        case token_next:
            cmd_next(p);
            break;
        case token_if:
            cmd_if(p);
            break;
        case token_goto:
            cmd_goto(p);
            break;
        case token_gosub:
            cmd_gosub(p);
            break;
        case token_return:
            cmd_return(p);
            break;
        case token_colon:
            step_over_separator(p);
            break;
        default:
            res->error_code.raise(error_syntax);
            break;
        }
    } while (p != nullptr && res->error_code == error_none);
    res->executing = false;
    parser->variable_release();
    for_depth = 0;
    gosub_depth = 0;
    res->p_callback->update_screen();
    return program_list.current != nullptr ? program_list.current->number : 0;
}

void c_interpreter::cmd_goto(const unsigned char*& p)
{
    ++p;
    if (!take_token(p, token_label)) {
        p_system_resource->error_code.raise(error_illegal_parameter);
        return;
    }
    jump_to_label(p, *this, read_operand<variable_id>(p));
}

void c_interpreter::cmd_if(const unsigned char*& p)
{
    c_system_resource* res = p_system_resource;
    ++p;
    int condition = 0;
    if (evaluate(res, condition, p) != 0 || res->error_code != error_none)
        return;
    if ((*p != token_then && *p != token_goto) || p[1] != token_label) {
        res->error_code.raise(error_syntax);
        return;
    }
    p += 2;
    auto target = read_operand<variable_id>(p);
    if (condition != 0) {
        jump_to_label(p, *this, target);
        return;
    }
    // Without an ELSE and its label the line goes on after the IF; a bare ELSE is then a syntax error.
    if (p[0] == token_else && p[1] == token_label) {
        p += 2;
        jump_to_label(p, *this, read_operand<variable_id>(p));
    }
}

void c_interpreter::cmd_for(const unsigned char*& p)
{
    c_system_resource* res = p_system_resource;
    ++p;
    if (*p != token_integer_variable) {
        res->error_code.raise(error_loop_counter);
        return;
    }
    c_variable_integer* counter = process_ivar(p);
    if (res->error_code != error_none)
        return;
    if (!take_token(p, token_to)) {
        res->error_code.raise(error_illegal_parameter);
        return;
    }
    int limit = 0;
    if (evaluate(res, limit, p) != 0)
        return;
    int step = 1;
    if (take_token(p, token_step) && evaluate(res, step, p) != 0)
        return;
    // The body runs at least once: FOR never tests its condition.
    if (for_depth >= for_stack_size) {
        res->error_code.raise(error_for_overflow);
        return;
    }
    c_program_line* body_line = program_list.current;
    const unsigned char* body = p;
    settle(body, body_line);
    for_stack[for_depth++] = {counter, step, limit, body_line, body};
}

// NEXT closes the innermost loop and takes no operand: a name after it runs as the next statement.
void c_interpreter::cmd_next(const unsigned char*& p)
{
    if (for_depth <= 0) {
        ++p;
        p_system_resource->error_code.raise(error_next_without_for);
        return;
    }
    const c_for_entry& entry = for_stack[for_depth - 1];
    // Step and limit are read before the counter is stored, which the compiler must assume aliases them.
    int step = entry.step;
    int limit = entry.limit;
    int value = add_wrapping(entry.counter->value, step);
    entry.counter->value = value;
    if (loop_finished(value, step, limit)) {
        --for_depth;
        ++p;
        return;
    }
    p = entry.resume_position;
    program_list.current = entry.resume_line;
}

// The jump comes before the depth test, so an overflow is reported at the target line.
void c_interpreter::cmd_gosub(const unsigned char*& p)
{
    c_system_resource* res = p_system_resource;
    ++p;
    if (!take_token(p, token_label)) {
        res->error_code.raise(error_illegal_parameter);
        return;
    }
    auto target = read_operand<variable_id>(p);
    c_gosub_entry resume = {program_list.current, p};
    settle(resume.resume_position, resume.resume_line);
    if (!jump_to_label(p, *this, target))
        return;
    if (gosub_depth >= gosub_stack_size) {
        res->error_code.raise(error_gosub_overflow);
        return;
    }
    gosub_stack[gosub_depth++] = resume;
}

void c_interpreter::cmd_return(const unsigned char*& p)
{
    ++p;
    if (gosub_depth <= 0) {
        p_system_resource->error_code.raise(error_return_without_gosub);
        return;
    }
    const c_gosub_entry& entry = gosub_stack[--gosub_depth];
    p = entry.resume_position;
    program_list.current = entry.resume_line;
}

// Null when the assignment failed; the variable then keeps its value.
c_variable_integer* c_interpreter::process_ivar(const unsigned char*& p)
{
    c_system_resource* res = p_system_resource;
    ++p;
    auto* variable = res->p_variable_manager->get<c_variable_integer>(read_operand<variable_id>(p));
    if (!take_token(p, token_equal)) {
        res->error_code.raise(error_syntax);
        return nullptr;
    }
    int value = 0;
    if (evaluate(res, value, p) != 0)
        return nullptr;
    variable->value = value;
    return variable;
}

void c_interpreter::process_rvar(const unsigned char*& p)
{
    c_system_resource* res = p_system_resource;
    ++p;
    auto* variable = res->p_variable_manager->get<c_variable_real>(read_operand<variable_id>(p));
    if (!take_token(p, token_equal)) {
        res->error_code.raise(error_syntax);
        return;
    }
    double value = 0.0;
    if (evaluate(res, value, p) != 0)
        return;
    variable->value = value;
}

// A number assigned to a string variable gives the empty string: only a string yields text here.
void c_interpreter::process_svar(const unsigned char*& p)
{
    c_system_resource* res = p_system_resource;
    ++p;
    auto* variable = res->p_variable_manager->get<c_variable_string>(read_operand<variable_id>(p));
    if (!take_token(p, token_equal)) {
        res->error_code.raise(error_syntax);
        return;
    }
    res->error_code.raise(c_expression(res).string_assignment(variable, p));
}

// Reads the array, the subscripts, the "=" and the value of an element assignment, the value as
// `value_type` (int, double or a c_value); null when the statement stops there (its error is recorded).
template <class array_type, class value_type>
array_type* c_interpreter::element_assignment(const unsigned char*& p, int* indices, int& count, value_type& value)
{
    c_system_resource* res = p_system_resource;
    ++p;
    auto* array = res->p_variable_manager->get<array_type>(read_operand<variable_id>(p));
    // As dimension_check, with the lone subscripts read here where the compiler can inline them.
    count = lone_subscripts(p, indices, res);
    if (count == 0)
        count = evaluated_subscripts(p, indices);
    if (count == 0 || res->error_code != error_none)
        return nullptr;
    if (!take_token(p, token_equal)) {
        res->error_code.raise(error_syntax);
        return nullptr;
    }
    if (evaluate(res, value, p) != 0)
        return nullptr;
    return array;
}

void c_interpreter::process_iarray(const unsigned char*& p)
{
    int indices[max_dimensions];
    int count;
    int value = 0;
    if (auto* array = element_assignment<c_variable_integer_array>(p, indices, count, value))
        p_system_resource->error_code.raise(array->set(count, indices, value));
}

void c_interpreter::process_rarray(const unsigned char*& p)
{
    int indices[max_dimensions];
    int count;
    double value = 0.0;
    if (auto* array = element_assignment<c_variable_real_array>(p, indices, count, value))
        p_system_resource->error_code.raise(array->set(count, indices, value));
}

void c_interpreter::process_sarray(const unsigned char*& p)
{
    int indices[max_dimensions];
    int count;
    c_value value;
    auto* array = element_assignment<c_variable_string_array>(p, indices, count, value);
    if (array == nullptr)
        return;
    const char* text;
    int length;
    value.current->get_string(text, length);
    p_system_resource->error_code.raise(array->set(count, indices, text, length));
}

// A break stored while the subscripts were read stops the statement here.
int c_interpreter::dimension_check(const unsigned char*& p, int* indices)
{
    int count = lone_subscripts(p, indices, p_system_resource);
    if (count == 0)
        count = evaluated_subscripts(p, indices);
    return p_system_resource->error_code == error_none ? count : 0;
}

// A comma after the eighth subscript is left for the ")" test, which makes a ninth a syntax error.
int c_interpreter::evaluated_subscripts(const unsigned char*& p, int* indices)
{
    c_system_resource* res = p_system_resource;
    if (!take_token(p, token_open)) {
        res->error_code.raise(error_syntax);
        return 0;
    }
    int count = 0;
    do {
        int subscript = 0;  // an empty subscript reads as 0
        if (evaluate(res, subscript, p) != 0)
            return 0;
        indices[count++] = subscript;
    } while (count < max_dimensions && take_token(p, token_comma));
    if (!take_token(p, token_close)) {
        res->error_code.raise(error_syntax);
        return 0;
    }
    return count;
}

// The list goes on after a failing array, but dimension_check refuses every array once an error is
// set, so nothing after the first failure is dimensioned. A trailing comma is accepted.
void c_interpreter::dimension_alloc(const unsigned char*& p)
{
    c_system_resource* res = p_system_resource;
    if (is_statement_end(*p))
        return;
    do {
        if (*p < token_integer_array || *p > token_string_array) {
            res->error_code.raise(error_syntax);
            return;
        }
        ++p;
        auto* array = res->p_variable_manager->get<c_variable_array>(read_operand<variable_id>(p));
        int bounds[max_dimensions];
        int count = dimension_check(p, bounds);
        if (count != 0 && res->error_code == error_none)
            res->error_code.raise(array->dim(count, bounds));
    } while (take_token(p, token_comma) && !is_statement_end(*p));
    if (!is_statement_end(*p))
        res->error_code.raise(error_syntax);
}

void c_interpreter::dimension_free()
{
    p_system_resource->p_variable_manager->array_clear();
}
