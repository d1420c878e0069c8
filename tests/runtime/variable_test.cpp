// What the interpreter cannot reach: nine dimensions, and the registry's counts, ids and links.
// Limits it can reach (bounds, 8 dimensions, redimensioning, out of memory) are checked on the screen;
// here the byte count all arrays share.
#include "runtime/variable.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "engine/allocation.h"
#include "engine/error.h"

namespace {

// Releases code naming the variable once, after the given bytes, as a deleted line would.
void release(c_variable_manager& manager, unsigned char kind, const c_variable* variable,
             std::vector<unsigned char> code = {})
{
    unsigned char token[operand_token_size] = {kind};
    write_operand<variable_id>(token + 1, variable->id);
    code.insert(code.end(), token, token + operand_token_size);
    code.push_back(token_end);
    manager.line_release(code.data(), static_cast<int>(code.size()));
}

}  // namespace

TEST(arrays, take_eight_dimensions_and_refuse_nine_declared_or_automatic)
{
    const int bounds[9] = {1, 1, 1, 1, 1, 1, 1, 1, 1};
    c_variable_real_array eight, nine, automatic;
    EXPECT_EQ(eight.dim(8, bounds), error_none);
    EXPECT_EQ(nine.dim(9, bounds), error_subscript);
    double value = 0;
    EXPECT_EQ(automatic.get(9, bounds, value), error_subscript);
    EXPECT_FALSE(nine.dimensioned());
    EXPECT_FALSE(automatic.dimensioned());
}

TEST(arrays, count_their_bytes_together_against_one_limit)
{
    const std::size_t before = array_memory_used();
    const int ten_by_ten[2] = {9, 9}, gibibyte[2] = {16383, 16383};  // 2 to the 28 ints: the limit exactly
    c_variable_integer_array small, large;
    ASSERT_EQ(small.dim(2, ten_by_ten), error_none);
    EXPECT_EQ(array_memory_used(), before + 400);
    EXPECT_EQ(large.dim(2, gibibyte), error_out_of_memory);  // with the small one, one past the limit
    EXPECT_FALSE(large.dimensioned());
    small.clear();
    EXPECT_EQ(array_memory_used(), before);
}

TEST(arrays, report_automatic_storage_that_cannot_be_had_as_out_of_memory)
{
    const int index[1] = {1};
    c_variable_string_array automatic;
    const char* text = nullptr;
    int length = 0;
    allocation_fail_at(1);
    EXPECT_EQ(automatic.get(1, index, text, length), error_out_of_memory);
    allocation_fail_at(0);
    EXPECT_FALSE(automatic.dimensioned());
    EXPECT_EQ(automatic.get(1, index, text, length), error_none);
}

TEST(variable_registry, uses_share_a_variable_until_the_last_release_and_the_rest_stay_linked)
{
    c_variable_manager manager;
    c_variable* older = manager.acquire(token_integer_variable, "i");
    c_variable* newer = manager.acquire(token_integer_variable, "i2");
    EXPECT_EQ(manager.acquire(token_integer_variable, "i"), older);
    EXPECT_EQ(older->reference_count, 2);
    release(manager, token_integer_variable, older);
    EXPECT_EQ(manager.search(manager.variable_list.next, "i"), older);
    release(manager, token_integer_variable, older);
    EXPECT_EQ(manager.search(manager.variable_list.next, "i"), nullptr);
    EXPECT_EQ(manager.search(manager.variable_list.next, "i2"), newer);
    EXPECT_EQ(newer->prev, &manager.variable_list);
    EXPECT_EQ(newer->next, nullptr);
}

TEST(variable_registry, reuses_freed_ids_and_grows_its_table)
{
    c_variable_manager manager;
    c_variable* gone = manager.acquire(token_string_variable, "s");
    variable_id freed = gone->id;
    release(manager, token_string_variable, gone);
    EXPECT_EQ(manager.acquire(token_label, "a")->id, freed);
    std::vector<c_variable*> many;
    for (int i = 0; i < 300; ++i)
        many.push_back(manager.acquire(token_integer_variable, std::to_string(i).insert(0, 1, 'i').c_str()));
    for (c_variable* variable : many)
        EXPECT_EQ(manager.at(variable->id), variable);
}

TEST(variable_registry, releasing_steps_over_constants_whose_bytes_look_like_variables)
{
    c_variable_manager manager;
    c_variable* i = manager.acquire(token_integer_variable, "i");
    manager.acquire(token_integer_variable, "i");  // count 2
    // A string holding a variable token's bytes, an integer and a real made of 3s, then i.
    std::vector<unsigned char> constants = {token_string, 5, token_integer_variable, 0, 0, 0, 0,
                                            token_integer, 3, 3, 3, 3, token_real, 3, 3, 3, 3, 3, 3, 3, 3};
    write_operand<variable_id>(constants.data() + 3, i->id);
    release(manager, token_integer_variable, i, constants);
    EXPECT_EQ(i->reference_count, 1);
}

TEST(variable_string, set_keeps_at_most_256_bytes_and_accepts_its_own_text)
{
    c_variable_string s;
    s.set(std::string(300, 'x').c_str(), 300);
    EXPECT_EQ(s.length, 256);
    s.set("hello", 5);
    s.set(s.text + 1, 3);
    EXPECT_EQ(std::string(s.text, s.length), "ell");
}
