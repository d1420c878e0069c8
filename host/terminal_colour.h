// The console's RGB565 colours in a terminal: which colours the terminal can show, and the nearest
// colour of the standard xterm palette for terminals that have only 8, 16 or 256 of them.
#pragma once

#include <cstdint>

struct c_rgb {
    int red = 0;  // 0 to 255 each
    int green = 0;
    int blue = 0;
    bool operator==(const c_rgb&) const = default;
};

enum class terminal_colours {
    none,         // monochrome
    palette_8,
    palette_16,
    palette_256,
    redefined,    // a 256-colour palette whose entries may be set to the exact colours used
    direct,       // colour numbers are 24-bit RGB values
};

// colour_count and can_change as curses reports them; rgb_flag: the terminal description says direct
// colour; colorterm: the COLORTERM variable or null. Redefining the palette changes the terminal's
// own colours until it is reset, so it is done only where COLORTERM promises true colour.
terminal_colours choose_colours(bool has_colours, int colour_count, bool rgb_flag, bool can_change,
    const char* colorterm);

// The bits widened so that full scale stays full scale: 0x1F and 0x3F become 255.
c_rgb rgb_of_565(std::uint16_t colour);

c_rgb palette_colour(int index);  // index 0 to 255 of the xterm palette

// The palette index nearest to colour among the first palette_size (8, 16 or 256). With 256, only the
// colour cube and the greys (16 to 255) are chosen: users restyle the first sixteen.
int nearest_palette_colour(c_rgb colour, int palette_size);
