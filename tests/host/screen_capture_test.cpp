// The final screen as text and as an upright PNG: row order, blanks left out, text over pixels,
// and the spare pixels of a screen that the grid does not fill.
#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <string>

#include <unistd.h>

#include "host/png_reader.h"
#include "host/png_writer.h"
#include "host/screen_capture.h"
#include "support/test_console.h"

namespace {

constexpr std::uint32_t white = 0xFFFF0000;
constexpr std::uint16_t red = 0xF800;

void put_text(test_console& console, int x, int y, const std::string& text)
{
    for (unsigned char c : text)
        console.engine.text_layer.put(x++, y, white | c);
}

void set_pixel(test_console& console, int x, int y)
{
    console.engine.graphic_layer.pixels[console.engine.graphic_layer.pixel_index(x, y)] = red;
}

// The image written as a PNG in the temporary folder and read back.
c_png_picture written_and_read(test_console& console)
{
    const std::string name = std::filesystem::temp_directory_path() / ("vexil_" + std::to_string(getpid()) + ".png");
    std::string error;
    EXPECT_TRUE(write_png(name.c_str(), screen_image(console.engine), error)) << error;
    c_png_picture picture;
    EXPECT_TRUE(read_png(name.c_str(), picture) && picture.plain_rgb);
    std::remove(name.c_str());
    return picture;
}

}  // namespace

TEST(screen_text, prints_rows_from_the_top_without_trailing_blanks)
{
    test_console console(320, 240);  // 40 x 15
    EXPECT_EQ(screen_text(console.engine), "");
    put_text(console, 0, 0, "10 a");
    put_text(console, 3, 2, "b  ");  // the empty cells before it read as spaces
    put_text(console, 0, 14, std::string(40, 'x'));  // a full last row
    EXPECT_EQ(screen_text(console.engine), "10 a\n\n   b\n" + std::string(11, '\n') + std::string(40, 'x') + "\n");
}

TEST(screen_image, is_upright_with_text_over_the_pixels_and_the_pixels_above_a_grid_that_does_not_fill_the_height)
{
    test_console console(64, 56);  // 8 x 3 cells at the bottom, 8 spare rows above them
    console.engine.text_editor.hide_cursor();
    set_pixel(console, 0, 0);    // in the spare rows
    set_pixel(console, 5, 15);   // under an empty cell
    set_pixel(console, 63, 55);
    set_pixel(console, 9, 9);    // under the block
    console.engine.text_layer.put(1, 0, 0x07E00000 | cell_cursor);  // green, empty: a solid block
    c_png_picture picture = written_and_read(console);
    ASSERT_EQ(picture.width, 64);
    ASSERT_EQ(picture.height, 56);
    for (auto [x, y] : {std::pair(0, 0), {5, 15}, {63, 55}})
        EXPECT_EQ(picture.at(x, y), 0xFF0000ul) << x << "," << y;
    for (auto [x, y] : {std::pair(15, 5), {8, 7}, {16, 8}, {8, 24}})  // turned, and the block's neighbours
        EXPECT_EQ(picture.at(x, y), 0x000000ul) << x << "," << y;
    for (auto [x, y] : {std::pair(9, 9), {8, 8}, {15, 23}})  // text over pixels, the block's corners
        EXPECT_EQ(picture.at(x, y), 0x00FF00ul) << x << "," << y;
}
