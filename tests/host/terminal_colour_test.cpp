// Colours in a terminal: which kind of colour it has, and the console's colours on its palette.
#include <gtest/gtest.h>

#include "host/terminal_colour.h"

TEST(terminal_colours, are_chosen_from_what_the_terminal_reports)
{
    using enum terminal_colours;
    struct choice_case {
        bool has_colours; int colour_count; bool rgb_flag, can_change; const char* colorterm; terminal_colours chosen;
    };
    const choice_case choices[] = {
        {false, 256, false, false, nullptr, none},
        {true, 7, false, false, nullptr, none},
        {true, 8, false, false, nullptr, palette_8},
        {true, 15, false, false, nullptr, palette_8},
        {true, 16, false, false, nullptr, palette_16},
        {true, 255, false, false, nullptr, palette_16},
        {true, 256, false, true, nullptr, palette_256},         // no promise of true colour
        {true, 256, false, false, "truecolor", palette_256},    // a palette that cannot change
        {true, 256, false, true, "truecolor", redefined},
        {true, 256, false, true, "24bit", redefined},
        {true, 256, false, true, "yes", palette_256},
        {true, 256, true, false, nullptr, direct},
        {true, (1 << 24) - 1, false, false, nullptr, palette_256},
        {true, 1 << 24, false, false, nullptr, direct},
    };
    for (const auto& c : choices)
        EXPECT_EQ(choose_colours(c.has_colours, c.colour_count, c.rgb_flag, c.can_change, c.colorterm), c.chosen)
            << c.colour_count << " colours, " << (c.colorterm != nullptr ? c.colorterm : "no COLORTERM");
}

// As the saved image has them too.
TEST(terminal_colours, widen_565_so_that_full_scale_stays_full_scale)
{
    EXPECT_EQ(rgb_of_565(0xFFFF), (c_rgb{255, 255, 255}));
    EXPECT_EQ(rgb_of_565(0xF810), (c_rgb{255, 0, 132}));    // each channel in its place
    EXPECT_EQ(rgb_of_565(0x0821), (c_rgb{8, 4, 8}));        // the lowest bit of each
}

TEST(terminal_colours, take_the_nearest_of_the_palette)
{
    struct nearest_case { c_rgb colour; int palette_size; int index; };
    const nearest_case nearest[] = {
        {{255, 255, 255}, 8, 7},
        {{255, 255, 255}, 16, 15},
        {{255, 255, 255}, 256, 231},  // the cube's white, not the restyled 15
        {{128, 128, 128}, 256, 244},  // grey 128 is the ramp's 13th step
        {{100, 100, 100}, 8, 0},      // dark grey is nearer black than the light grey of 7
    };
    for (const auto& c : nearest)
        EXPECT_EQ(nearest_palette_colour(c.colour, c.palette_size), c.index)
            << c.colour.red << "," << c.colour.green << "," << c.colour.blue << " of " << c.palette_size;
}

TEST(terminal_colours, palette_has_the_cube_and_the_grey_ramp)
{
    EXPECT_EQ(palette_colour(67), (c_rgb{95, 135, 175}));
    EXPECT_EQ(palette_colour(231), (c_rgb{255, 255, 255}));
    EXPECT_EQ(palette_colour(232), (c_rgb{8, 8, 8}));
}
