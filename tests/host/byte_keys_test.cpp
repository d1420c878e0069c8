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
    {"\n\r", {13, 13}},                            // LF CR is two
    {"\r\r\n", {13, 13}},                          // the second CR pairs with the LF: the pair is one
    {"\r\n\n", {13, 13}},                          // a pair ends the pairing
    {std::string("\r\0\n", 3), {13, 13}},          // a NUL between CR and LF breaks the pair
    {"\x03\x7f\xff", {3, 127, 255}},               // every other byte as it is
};

}  // namespace

TEST(byte_keys, turn_standard_input_into_key_codes)
{
    for (const auto& c : cases) {
        c_byte_keys byte_keys;  // one object across the bytes, as across the reader's reads
        std::vector<int> keys;
        for (unsigned char byte : c.bytes)
            if (int key = byte_keys.take(byte); key != 0)
                keys.push_back(key);
        EXPECT_EQ(keys, c.keys) << testing::PrintToString(c.bytes);
    }
}
