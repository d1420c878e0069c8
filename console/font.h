// The 8 x 16 console font: 128 glyphs of 16 bytes. Glyph n is at byte 16 * n; it is 8 little-endian
// 16-bit words, word j is pixel column j from the left, bit b is glyph row 15 - b from the top.
#pragma once

#include <cstdint>

extern const std::uint8_t font_glyphs[2048];

// Column j of glyph (code AND 0x7F): bit 15 is the top row.
inline std::uint16_t glyph_column(int code, int j)
{
    const std::uint8_t* glyph = font_glyphs + 16 * (code & 0x7F);
    return static_cast<std::uint16_t>(glyph[2 * j] | (glyph[2 * j + 1] << 8));
}
