// The xterm palette: sixteen named colours, a 6 x 6 x 6 cube and 24 greys.
#include "host/terminal_colour.h"

#include <cstring>

#include "host/screen_capture.h"

namespace {

constexpr c_rgb named_colours[16] = {
    {0, 0, 0}, {205, 0, 0}, {0, 205, 0}, {205, 205, 0}, {0, 0, 238}, {205, 0, 205}, {0, 205, 205},
    {229, 229, 229}, {127, 127, 127}, {255, 0, 0}, {0, 255, 0}, {255, 255, 0}, {92, 92, 255},
    {255, 0, 255}, {0, 255, 255}, {255, 255, 255},
};
constexpr int cube_levels[6] = {0, 95, 135, 175, 215, 255};
constexpr int cube_start = 16;
constexpr int grey_start = 232;
constexpr int direct_colour_count = 1 << 24;

int distance(c_rgb a, c_rgb b)
{
    int red = a.red - b.red, green = a.green - b.green, blue = a.blue - b.blue;
    return red * red + green * green + blue * blue;
}

bool promises_true_colour(const char* colorterm)
{
    return colorterm != nullptr && (std::strcmp(colorterm, "truecolor") == 0 || std::strcmp(colorterm, "24bit") == 0);
}

}  // namespace

terminal_colours choose_colours(bool has_colours, int colour_count, bool rgb_flag, bool can_change,
    const char* colorterm)
{
    if (!has_colours || colour_count < 8)
        return terminal_colours::none;
    if (rgb_flag || colour_count >= direct_colour_count)
        return terminal_colours::direct;
    if (colour_count >= 256)
        return can_change && promises_true_colour(colorterm) ? terminal_colours::redefined : terminal_colours::palette_256;
    return colour_count >= 16 ? terminal_colours::palette_16 : terminal_colours::palette_8;
}

c_rgb rgb_of_565(std::uint16_t colour)
{
    std::uint8_t rgb[3];
    rgb565_to_rgb888(colour, rgb);  // as the saved image has it
    return {rgb[0], rgb[1], rgb[2]};
}

c_rgb palette_colour(int index)
{
    if (index < cube_start)
        return named_colours[index];
    if (index < grey_start) {
        int cube = index - cube_start;
        return {cube_levels[cube / 36], cube_levels[cube / 6 % 6], cube_levels[cube % 6]};
    }
    int grey = 8 + 10 * (index - grey_start);
    return {grey, grey, grey};
}

int nearest_palette_colour(c_rgb colour, int palette_size)
{
    int first = palette_size >= 256 ? cube_start : 0;
    int best = first;
    for (int index = first; index < palette_size && index < 256; ++index)
        if (distance(colour, palette_colour(index)) < distance(colour, palette_colour(best)))
            best = index;
    return best;
}
