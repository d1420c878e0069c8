#include "runtime/variable.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

#include "engine/error.h"

namespace {

// Code holding one variable token for each of the given variables, then the end mark.
std::vector<unsigned char> code_naming(std::initializer_list<std::pair<unsigned char, c_variable*>> tokens)
{
    std::vector<unsigned char> code;
    for (const auto& [kind, variable] : tokens) {
        unsigned char bytes[operand_token_size] = {kind};
        write_operand<variable_id>(bytes + 1, variable->id);
        for (unsigned char byte : bytes)
            code.push_back(byte);
    }
    code.push_back(token_end);
    return code;
}

void release(c_variable_manager& manager, const std::vector<unsigned char>& code,
             const c_program_line* line = nullptr)
{
    manager.line_release(code.data(), static_cast<int>(code.size()), line);
}

}  // namespace

TEST(array_dimensioning, accepts_bound_65535_and_refuses_65536_and_minus_one)
{
    const int largest[] = {65535}, too_large[] = {65536}, negative[] = {-1};
    c_variable_integer_array accepted, refused, below;
    EXPECT_EQ(accepted.dim(1, largest), error_none);
    EXPECT_EQ(accepted.size[0], 65536);
    EXPECT_EQ(refused.dim(1, too_large), error_subscript);
    EXPECT_EQ(below.dim(1, negative), error_subscript);
    EXPECT_FALSE(refused.dimensioned());
    EXPECT_EQ(below.dimension_count, 0);
}

TEST(array_dimensioning, takes_eight_dimensions_and_refuses_nine)
{
    const int bounds[9] = {1, 1, 1, 1, 1, 1, 1, 1, 1};
    c_variable_real_array eight, nine;
    EXPECT_EQ(eight.dim(8, bounds), error_none);
    EXPECT_EQ(eight.dimension_count, 8);
    EXPECT_EQ(nine.dim(9, bounds), error_subscript);
    EXPECT_FALSE(nine.dimensioned());
}

TEST(array_dimensioning, refuses_a_second_dim_and_one_after_automatic_dimensioning)
{
    const int bounds[] = {3};
    c_variable_integer_array declared, automatic;
    ASSERT_EQ(declared.dim(1, bounds), error_none);
    EXPECT_EQ(declared.dim(1, bounds), error_redimensioned);
    int value = -1;
    ASSERT_EQ(automatic.get(1, bounds, value), error_none);
    EXPECT_EQ(automatic.dim(1, bounds), error_redimensioned);
}

TEST(array_dimensioning, a_product_too_large_to_allocate_is_out_of_memory_and_leaves_it_undimensioned)
{
    const int bounds[] = {65535, 65535, 65535, 65535};  // 2^64 elements
    c_variable_string_array array;
    EXPECT_EQ(array.dim(4, bounds), error_out_of_memory);
    EXPECT_FALSE(array.dimensioned());
    EXPECT_EQ(array.dimension_count, 0);
    const int one_bad[] = {65535, 65535, 65535, 65535, 65536};  // the bound is checked first
    EXPECT_EQ(array.dim(5, one_bad), error_subscript);
}

TEST(array_elements, start_zeroed_and_keep_what_is_set_in_row_major_order)
{
    const int bounds[] = {1, 2};
    c_variable_integer_array integers;
    ASSERT_EQ(integers.dim(2, bounds), error_none);
    for (int i = 0; i < 6; ++i)
        EXPECT_EQ(static_cast<int*>(integers.elements)[i], 0);
    const int last[] = {1, 2};
    ASSERT_EQ(integers.set(2, last, 7), error_none);
    EXPECT_EQ(static_cast<int*>(integers.elements)[5], 7);

    c_variable_string_array strings;
    const char* text = "unset";
    int length = -1;
    ASSERT_EQ(strings.get(2, last, text, length), error_none);
    EXPECT_EQ(length, 0);
    ASSERT_EQ(strings.set(2, last, "abc", 3), error_none);
    ASSERT_EQ(strings.get(2, last, text, length), error_none);
    EXPECT_EQ(std::string(text, length), "abc");
}

TEST(array_elements, dimension_themselves_with_eleven_per_dimension_on_first_use)
{
    c_variable_real_array array;
    const int indices[] = {10, 0, 10};
    ASSERT_EQ(array.set(3, indices, 2.5), error_none);
    EXPECT_EQ(array.dimension_count, 3);
    EXPECT_EQ(array.size[0], 11);
    EXPECT_EQ(array.size[2], 11);
    double value = 0;
    ASSERT_EQ(array.get(3, indices, value), error_none);
    EXPECT_EQ(value, 2.5);
}

TEST(array_elements, refuse_indices_outside_the_bounds_and_a_wrong_count)
{
    c_variable_integer_array array;
    const int ten[] = {10}, eleven[] = {11}, minus_one[] = {-1}, two[] = {1, 2};
    ASSERT_EQ(array.set(1, ten, 5), error_none);
    int value = 0;
    EXPECT_EQ(array.get(1, eleven, value), error_subscript);
    EXPECT_EQ(array.get(1, minus_one, value), error_subscript);
    EXPECT_EQ(array.set(2, two, 9), error_subscript);
    EXPECT_EQ(array.set(1, eleven, 9), error_subscript);
    for (int i = 0; i < 11; ++i)  // the failed sets changed nothing
        EXPECT_EQ(static_cast<int*>(array.elements)[i], i == 10 ? 5 : 0);
}

TEST(array_elements, nine_indices_on_an_undimensioned_array_leave_it_undimensioned)
{
    c_variable_integer_array array;
    const int indices[9] = {};
    int value = 0;
    EXPECT_EQ(array.get(9, indices, value), error_subscript);
    EXPECT_FALSE(array.dimensioned());
}

TEST(variable_registry, two_uses_share_one_variable_and_the_last_release_deletes_it)
{
    c_variable_manager manager;
    c_variable* first = manager.acquire(token_integer_variable, "i");
    c_variable* second = manager.acquire(token_integer_variable, "i");
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(first, second);
    EXPECT_EQ(first->reference_count, 2);
    manager.get<c_variable_integer>(first->id)->value = 42;
    auto code = code_naming({{token_integer_variable, first}});
    release(manager, code);
    ASSERT_EQ(manager.search(manager.variable_list.next, "i"), first);
    EXPECT_EQ(manager.get<c_variable_integer>(first->id)->value, 42);
    release(manager, code);
    EXPECT_EQ(manager.search(manager.variable_list.next, "i"), nullptr);
}

TEST(variable_registry, names_differing_in_case_and_a_scalar_and_array_of_one_name_are_distinct)
{
    c_variable_manager manager;
    c_variable* lower = manager.acquire(token_integer_variable, "Ia");
    c_variable* upper = manager.acquire(token_integer_variable, "IA");
    c_variable* array = manager.acquire(token_integer_array, "Ia");
    EXPECT_NE(lower, upper);
    EXPECT_NE(lower, array);
    EXPECT_EQ(lower->reference_count, 1);
    EXPECT_EQ(manager.search(manager.array_list.next, "Ia"), array);
    EXPECT_EQ(manager.variable_list.next, upper);  // new variables stand at the front
}

TEST(variable_registry, deleting_an_older_variable_leaves_a_newer_one_findable)
{
    c_variable_manager manager;
    c_variable* older = manager.acquire(token_real_variable, "r1");
    c_variable* newer = manager.acquire(token_real_variable, "r2");
    release(manager, code_naming({{token_real_variable, older}}));
    EXPECT_EQ(manager.search(manager.variable_list.next, "r2"), newer);
    EXPECT_EQ(newer->prev, &manager.variable_list);
    EXPECT_EQ(newer->next, nullptr);
}

TEST(variable_registry, reuses_freed_ids_and_grows_its_table)
{
    c_variable_manager manager;
    c_variable* gone = manager.acquire(token_string_variable, "s");
    variable_id freed = gone->id;
    release(manager, code_naming({{token_string_variable, gone}}));
    EXPECT_EQ(manager.acquire(token_label, "a")->id, freed);
    std::vector<c_variable*> many;
    for (int i = 0; i < 300; ++i)
        {
        std::string name = "i";
        name += std::to_string(i);
        many.push_back(manager.acquire(token_integer_variable, name.c_str()));
    }
    for (c_variable* variable : many) {
        EXPECT_NE(variable->id, 0u);
        EXPECT_EQ(manager.at(variable->id), variable);
    }
}

TEST(variable_registry, keeps_the_first_32_characters_of_a_name)
{
    c_variable_manager manager;
    std::string name(40, 'i');
    c_variable* variable = manager.acquire(token_integer_variable, name.c_str());
    EXPECT_EQ(std::string(variable->name), std::string(32, 'i'));
}

TEST(variable_registry, releasing_steps_over_constants_whose_bytes_look_like_variables)
{
    c_variable_manager manager;
    c_variable* i = manager.acquire(token_integer_variable, "i");
    manager.acquire(token_integer_variable, "i");  // count 2
    // A string holding a variable token's bytes, an integer and a real made of 3s, then i.
    std::vector<unsigned char> code = {token_string, 5, token_integer_variable, 0, 0, 0, 0,
                                       token_integer, 3, 3, 3, 3, token_real, 3, 3, 3, 3, 3, 3, 3, 3};
    write_operand<variable_id>(code.data() + 3, i->id);
    auto tail = code_naming({{token_integer_variable, i}});
    code.insert(code.end(), tail.begin(), tail.end());
    release(manager, code);
    EXPECT_EQ(i->reference_count, 1);
}

TEST(variable_registry, array_clear_undimensions_every_array_and_leaves_scalars)
{
    c_variable_manager manager;
    auto* array = static_cast<c_variable_integer_array*>(manager.acquire(token_integer_array, "i"));
    auto* scalar = static_cast<c_variable_integer*>(manager.acquire(token_integer_variable, "i"));
    const int bounds[] = {4};
    ASSERT_EQ(array->dim(1, bounds), error_none);
    scalar->value = 3;
    manager.array_clear();
    EXPECT_FALSE(array->dimensioned());
    EXPECT_EQ(array->dimension_count, 0);
    EXPECT_EQ(scalar->value, 3);
    EXPECT_EQ(array->dim(1, bounds), error_none);
}

TEST(variable_registry, releasing_a_line_clears_the_labels_it_defines_and_no_others)
{
    c_variable_manager manager;
    c_program_line defining, other;
    auto* label = static_cast<c_variable_label*>(manager.acquire(token_label, "top"));
    manager.acquire(token_label, "top");  // also referred to elsewhere
    label->line = &defining;
    label->position = 5;
    auto code = code_naming({{token_label, label}});
    release(manager, code, &other);
    EXPECT_EQ(label->line, &defining);
    EXPECT_EQ(label->position, 5);
    manager.acquire(token_label, "top");
    release(manager, code, &defining);
    EXPECT_EQ(label->line, nullptr);
    EXPECT_EQ(label->position, 0);
    EXPECT_EQ(label->reference_count, 1);
}

TEST(variable_string, set_keeps_at_most_256_bytes_and_accepts_its_own_text)
{
    c_variable_string s;
    std::string long_text(300, 'x');
    s.set(long_text.c_str(), 300);
    EXPECT_EQ(s.length, 256);
    s.set("hello", 5);
    s.set(s.text + 1, 3);
    EXPECT_EQ(std::string(s.text, s.length), "ell");
}
