// The final screen in the two forms a host hands out: the character grid as text, and the composed
// image (text over pixels) turned upright, 8 bits a channel.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

class c_vexil;

// One line per row from the top; an empty cell is a space; trailing blanks of each row and trailing
// blank rows are left out; each row ends with a line feed.
std::string screen_text(const c_vexil& engine);

struct c_rgb_image {
    int width = 0;
    int height = 0;
    std::vector<std::uint8_t> pixels;  // rows from the top, red, green, blue
};

// Composes the whole screen into a frame buffer of the host's own (the pixel plane under every cell
// redrawn) and turns it upright. Marks every cell as drawn.
c_rgb_image screen_image(c_vexil& engine);

// RGB565 to 8-bit channels, the top bits repeated into the low ones so that 0x1F becomes 0xFF.
inline void rgb565_to_rgb888(std::uint16_t colour, std::uint8_t* rgb)
{
    unsigned red = colour >> 11, green = (colour >> 5) & 0x3F, blue = colour & 0x1F;
    rgb[0] = static_cast<std::uint8_t>(red << 3 | red >> 2);
    rgb[1] = static_cast<std::uint8_t>(green << 2 | green >> 4);
    rgb[2] = static_cast<std::uint8_t>(blue << 3 | blue >> 2);
}
