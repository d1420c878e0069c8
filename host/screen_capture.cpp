// The grid read as text, and the image composed the way the text layer draws it, then turned upright.
#include "host/screen_capture.h"

#include "engine/vexil.h"

std::string screen_text(const c_vexil& engine)
{
    std::string text;
    std::size_t kept = 0;  // length up to the end of the last row that holds text
    for (int y = 0; y < engine.rows(); ++y) {
        std::string row;
        for (int x = 0; x < engine.columns(); ++x) {
            int c = engine.cell(x, y) & cell_character_mask;
            row += c == 0 ? ' ' : static_cast<char>(c);
        }
        row.erase(row.find_last_not_of(' ') + 1);
        text += row + '\n';
        if (!row.empty())
            kept = text.size();
    }
    text.resize(kept);
    return text;
}

c_rgb_image screen_image(c_vexil& engine)
{
    // The text layer draws only whole cells, so the spare pixels past the last row and column must
    // already hold the pixel plane: start from a copy of it.
    const int width = engine.graphic_layer.width;
    const int height = engine.graphic_layer.height;
    std::vector<std::uint16_t> frame_buffer(engine.graphic_layer.pixels,
        engine.graphic_layer.pixels + static_cast<std::size_t>(width) * height);
    engine.draw(frame_buffer.data());

    c_rgb_image image;
    image.width = width;
    image.height = height;
    image.pixels.resize(static_cast<std::size_t>(width) * height * 3);
    std::uint8_t* out = image.pixels.data();
    // A frame-buffer line is a screen column, and its pixel 0 is at the bottom.
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x, out += 3)
            rgb565_to_rgb888(frame_buffer[static_cast<std::size_t>(x) * height + (height - 1 - y)], out);
    return image;
}
