// The font's layout promises: blank codes, a blank spacing column, and letters standing on one baseline.
#include "console/font.h"

#include <gtest/gtest.h>

#include <cctype>

namespace {

constexpr int baseline_row = 12;

// Bit b of a column word is glyph row 15 - b: a mask of the rows below the baseline.
constexpr unsigned below_baseline = (1u << (15 - baseline_row)) - 1;

bool has_ink(int code, unsigned rows_mask = 0xFFFF)
{
    for (int column = 0; column < 8; ++column) {
        if ((glyph_column(code, column) & rows_mask) != 0)
            return true;
    }
    return false;
}

}  // namespace

TEST(font, inks_only_the_printable_characters_and_keeps_column_7_blank)
{
    for (int code = 0; code <= 0x7F; ++code) {
        EXPECT_EQ(has_ink(code), code > 0x20 && code < 0x7F) << code;
        EXPECT_EQ(glyph_column(code, 7), 0) << code;
    }
}

TEST(font, puts_letters_on_the_baseline_and_only_descenders_below_it)
{
    for (int code = 'A'; code <= 'z'; ++code) {
        if (std::isalpha(code) == 0)
            continue;
        const bool descends = code == 'g' || code == 'j' || code == 'p' || code == 'q' || code == 'y';
        EXPECT_EQ(has_ink(code, below_baseline), descends) << static_cast<char>(code);
        EXPECT_TRUE(has_ink(code, 1u << (15 - baseline_row))) << static_cast<char>(code);
    }
}
