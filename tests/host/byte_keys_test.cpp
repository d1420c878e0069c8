// Standard input as keys: one key per byte, every kind of line end one Enter, NUL no key.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "host/byte_keys.h"

namespace {

struct bytes_case {
    std::string bytes;
    std::vector<int> keys;
};

const bytes_case cases[] = {
    {"ab", {'a', 'b'}},
    {"a\n", {'a', 13}},
    {"a\r", {'a', 13}},
    {"a\r\nb", {'a', 13, 'b'}},                    // the pair is one Enter
    {"\n\r", {13, 13}},                            // LF CR is two
    {"\r\r\n", {13, 13}},                          // the second CR pairs with the LF
    {"\r\n\n", {13, 13}},
    {std::string("a\0b", 3), {'a', 'b'}},          // NUL skipped
    {std::string("\r\0\n", 3), {13, 13}},          // a NUL between CR and LF breaks the pair
    {"\x08\x0c\x0b\x12\x13\x1c\x1d\x1e\x1f", {8, 12, 11, 18, 19, 28, 29, 30, 31}},
    {"\x03\x7f\xff", {3, 127, 255}},               // every other byte as it is
};

}  // namespace

TEST(byte_keys, turn_standard_input_into_key_codes)
{
    for (const auto& c : cases) {
        c_byte_keys byte_keys;
        std::vector<int> keys;
        for (unsigned char byte : c.bytes)
            if (int key = byte_keys.take(byte); key != 0)
                keys.push_back(key);
        EXPECT_EQ(keys, c.keys) << testing::PrintToString(c.bytes);
    }
}

TEST(byte_keys, pair_a_line_feed_with_a_carriage_return_across_reads)
{
    c_byte_keys byte_keys;  // one object lives across the reader's reads
    EXPECT_EQ(byte_keys.take('\r'), 13);
    EXPECT_EQ(byte_keys.take('\n'), 0);
    EXPECT_EQ(byte_keys.take('\n'), 13);
}
