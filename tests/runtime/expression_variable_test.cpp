// The evaluator's operands that live outside the code: variables, array elements and function calls.
#include <gtest/gtest.h>

#include <string>

#include "engine/error.h"
#include "engine/system_resource.h"
#include "runtime/expression.h"
#include "runtime/interpreter.h"
#include "runtime/variable.h"
#include "support/code_builder.h"
#include "support/value_check.h"

namespace {

constexpr int row_rnd = 0;
constexpr int row_sin = 1;
constexpr int row_len = 18;

// A record with a variable manager and an interpreter for subscript lists; nothing else is wired.
struct c_runtime {
    c_runtime()
    {
        resource.p_variable_manager = &variables;
        resource.p_interpreter = &interpreter;
        interpreter.p_system_resource = &resource;
    }
    template <class T>
    T* acquire(unsigned char kind, const char* name)
    {
        return static_cast<T*>(variables.acquire(kind, name));
    }
    int evaluate(const c_code_builder& code, c_value& value, long* stop = nullptr)
    {
        c_expression evaluator(&resource);
        const unsigned char* p = code.code();
        int result = evaluator.expression(value, p);
        if (stop != nullptr)
            *stop = code.offset(p);
        return result;
    }

    c_system_resource resource;
    c_variable_manager variables;
    c_interpreter interpreter;
};

}  // namespace

TEST(evaluator_operands, scalar_variables_give_a_copy_of_their_value)
{
    c_runtime runtime;
    auto* count = runtime.acquire<c_variable_integer>(token_integer_variable, "icount");
    auto* ratio = runtime.acquire<c_variable_real>(token_real_variable, "ratio");
    auto* name = runtime.acquire<c_variable_string>(token_string_variable, "sname");
    count->value = 41;
    ratio->value = 0.5;
    name->set("ab", 2);
    c_code_builder sum, text;
    sum.variable(token_integer_variable, count->id).words("+ 1 +").variable(token_real_variable, ratio->id).end();
    text.variable(token_string_variable, name->id).words("+ \"c\"").end();
    c_value number, word;
    long stop = 0;
    EXPECT_EQ(runtime.evaluate(sum, number, &stop), 0);
    expect_holds(number, 42.5, "icount + 1 + ratio");
    EXPECT_EQ(stop, 17);
    EXPECT_EQ(runtime.evaluate(text, word), 0);
    expect_holds(word, "abc", "sname + \"c\"");
    EXPECT_EQ(std::string(name->text, 2), "ab");
    EXPECT_EQ(name->length, 2);
}

TEST(evaluator_operands, array_elements_are_read_through_their_subscripts)
{
    c_runtime runtime;
    auto* grid = runtime.acquire<c_variable_integer_array>(token_integer_array, "igrid");
    auto* reals = runtime.acquire<c_variable_real_array>(token_real_array, "rvalues");
    auto* texts = runtime.acquire<c_variable_string_array>(token_string_array, "stexts");
    const int bounds[] = {3, 4};
    ASSERT_EQ(grid->dim(2, bounds), 0);
    const int at[] = {2, 3};
    ASSERT_EQ(grid->set(2, at, 23), 0);
    c_code_builder code;
    code.variable(token_string_array, texts->id).words("( 0 ) +");
    code.variable(token_integer_array, grid->id).words("( 1 + 1 , 3 ) * 2 +");
    code.variable(token_real_array, reals->id).words("( 4 )").end();
    c_value value;
    EXPECT_EQ(runtime.evaluate(code, value), 0);
    // Undimensioned arrays dimension themselves and give "" and 0.0.
    expect_holds(value, "460.000000", "texts(0) + grid(2, 3) * 2 + reals(4)");
    EXPECT_TRUE(reals->dimensioned());
    EXPECT_TRUE(texts->dimensioned());
}

TEST(evaluator_operands, a_failing_element_read_ends_the_evaluation_with_its_code)
{
    struct element_case { const char* subscripts; int code; };
    const element_case cases[] = {
        {"( 11 )", error_subscript},   {"( -1 )", error_subscript},   {"( 1 , 1 )", error_subscript},
        {"( 10 )", 0},                 {"( 1", error_syntax},         {"1", error_syntax},
        {"( 1 / 0 )", error_division_by_zero},
    };
    for (const auto& c : cases) {
        c_runtime runtime;
        auto* list = runtime.acquire<c_variable_integer_array>(token_integer_array, "ilist");
        const int bound = 10;
        ASSERT_EQ(list->dim(1, &bound), 0);
        c_code_builder code;
        code.words("5 +").variable(token_integer_array, list->id).words(c.subscripts).words("+ 100").end();
        c_value value;
        EXPECT_EQ(runtime.evaluate(code, value), c.code) << c.subscripts;
        EXPECT_EQ(runtime.resource.error_code, c.code) << c.subscripts;
        expect_holds(value, c.code == 0 ? 105 : 5, c.subscripts);
    }
}

TEST(evaluator_operands, a_function_call_yields_the_handlers_result)
{
    c_runtime runtime;
    c_code_builder code;
    code.function(row_len).words("( \"abc\" ) +").function(row_sin).words("( 0 ) ,").end();
    c_value value;
    long stop = 0;
    EXPECT_EQ(runtime.evaluate(code, value, &stop), 0);
    expect_holds(value, 3.0, "len(\"abc\") + sin(0)");
    EXPECT_EQ(stop, static_cast<long>(code.bytes.size()) - 2);  // on the ","
}

TEST(evaluator_operands, a_function_call_fails_on_its_parentheses_and_on_error_code)
{
    struct call_case { int row; const char* arguments; int code; };
    const call_case cases[] = {
        {row_rnd, "( )", 0},
        {row_rnd, "( 5 )", error_illegal_parameter},   // no argument is read, so 5 stands before ")"
        {row_len, "( \"abc\"", error_illegal_parameter},
        {row_len, "\"abc\"", error_syntax},
        {row_sin, "( 1 / 0 )", error_division_by_zero},
    };
    for (const auto& c : cases) {
        c_runtime runtime;
        c_code_builder code;
        code.function(c.row).words(c.arguments).words("+ 1").end();
        c_value value;
        EXPECT_EQ(runtime.evaluate(code, value), c.code) << c.arguments;
    }
}

TEST(evaluator_operands, a_code_recorded_before_a_call_is_the_calls_outcome)
{
    c_runtime runtime;
    runtime.resource.error_code = error_break;
    c_code_builder code;
    code.function(row_rnd).words("( ) + 1").end();
    c_value value;
    long stop = 0;
    EXPECT_EQ(runtime.evaluate(code, value, &stop), error_break);
    EXPECT_EQ(stop, 7);  // stopped on the "+": nothing after the call is evaluated
}
