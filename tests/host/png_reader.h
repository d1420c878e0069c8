// Reads a PNG file back as 8-bit RGB, for the checks of written images.
#pragma once

#include <cstdint>
#include <vector>

struct c_png_picture {
    int width = 0;
    int height = 0;
    bool plain_rgb = false;            // the file itself is 8-bit RGB without alpha or palette
    std::vector<std::uint8_t> pixels;  // rows from the top, red, green, blue

    // 0xRRGGBB of pixel (x, y).
    unsigned long at(int x, int y) const
    {
        const std::uint8_t* p = pixels.data() + (static_cast<std::size_t>(y) * width + x) * 3;
        return static_cast<unsigned long>(p[0]) << 16 | p[1] << 8 | p[2];
    }
};

bool read_png(const char* file_name, c_png_picture& picture);
