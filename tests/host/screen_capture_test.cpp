// The final screen as text and as an upright PNG: row order, blanks left out, text over pixels,
// and the spare pixels of a screen that the grid does not fill.
#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <string>

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
        console.engine.text_layer.at(x++, y) = white | c;
}

void set_pixel(test_console& console, int x, int y, std::uint16_t colour)
{
    c_graphic_layer& layer = console.engine.graphic_layer;
    layer.pixels[layer.pixel_index(x, y)] = colour;
}

// The image written as a PNG in the temporary folder and read back.
c_png_picture written_and_read(test_console& console)
{
    std::string name = (std::filesystem::temp_directory_path() /
                        ("vexil_host_" + std::to_string(::testing::UnitTest::GetInstance()->random_seed()) + ".png"))
                           .string();
    std::string error;
    EXPECT_TRUE(write_png(name.c_str(), screen_image(console.engine), error)) << error;
    c_png_picture picture;
    EXPECT_TRUE(read_png(name.c_str(), picture));
    std::remove(name.c_str());
    return picture;
}

}  // namespace

TEST(screen_text, prints_rows_from_the_top_without_trailing_blanks)
{
    test_console console;
    put_text(console, 0, 0, "10 a");
    put_text(console, 3, 2, "b  ");  // the empty cells before it read as spaces
    EXPECT_EQ(screen_text(console.engine), "10 a\n\n   b\n");
}

TEST(screen_text, of_an_empty_screen_is_empty)
{
    test_console console;
    EXPECT_EQ(screen_text(console.engine), "");
}

TEST(screen_text, keeps_a_full_last_row)
{
    test_console console(320, 240);  // 40 x 15
    put_text(console, 0, 14, std::string(40, 'x'));
    EXPECT_EQ(screen_text(console.engine), std::string(14, '\n') + std::string(40, 'x') + "\n");
}

TEST(screen_image, is_upright_with_pixels_under_empty_cells)
{
    test_console console(64, 48);  // 8 x 3
    console.engine.text_editor.hide_cursor();  // no cell left over the pixels
    set_pixel(console, 5, 7, red);
    set_pixel(console, 63, 47, red);
    c_rgb_image image = screen_image(console.engine);
    ASSERT_EQ(image.width, 64);
    ASSERT_EQ(image.height, 48);
    auto at = [&](int x, int y) {
        const std::uint8_t* p = &image.pixels[(static_cast<std::size_t>(y) * 64 + x) * 3];
        return static_cast<unsigned long>(p[0]) << 16 | p[1] << 8 | p[2];
    };
    EXPECT_EQ(at(5, 7), 0xFF0000ul);
    EXPECT_EQ(at(63, 47), 0xFF0000ul);
    EXPECT_EQ(at(7, 5), 0x000000ul);
    EXPECT_EQ(at(0, 0), 0x000000ul);
}

TEST(screen_image, draws_a_cursor_cell_as_a_block_of_its_colour_over_the_pixels)
{
    test_console console(64, 48);
    set_pixel(console, 9, 1, red);
    console.engine.text_layer.at(1, 0) = 0x07E00000 | cell_cursor;  // green, empty: a solid block
    c_png_picture picture = written_and_read(console);
    ASSERT_EQ(picture.width, 64);
    ASSERT_EQ(picture.height, 48);
    EXPECT_TRUE(picture.plain_rgb);
    EXPECT_EQ(picture.at(9, 1), 0x00FF00ul);   // text over pixels
    EXPECT_EQ(picture.at(8, 0), 0x00FF00ul);   // the cell's corners
    EXPECT_EQ(picture.at(15, 15), 0x00FF00ul);
    EXPECT_EQ(picture.at(16, 0), 0x000000ul);  // its neighbours
    EXPECT_EQ(picture.at(8, 16), 0x000000ul);
}

TEST(screen_image, keeps_the_pixels_above_a_grid_that_does_not_fill_the_height)
{
    test_console console(40, 40);  // 5 x 2 cells; the grid sits at the bottom, 8 spare rows above it
    set_pixel(console, 0, 0, red);
    console.engine.text_layer.at(0, 0) = white | cell_cursor;
    c_png_picture picture = written_and_read(console);
    ASSERT_EQ(picture.width, 40);
    ASSERT_EQ(picture.height, 40);
    EXPECT_EQ(picture.at(0, 0), 0xFF0000ul);
    EXPECT_EQ(picture.at(0, 7), 0x000000ul);
    EXPECT_EQ(picture.at(0, 8), 0xFFFFFFul);   // row 0 starts here
    EXPECT_EQ(picture.at(7, 23), 0xFFFFFFul);
    EXPECT_EQ(picture.at(0, 24), 0x000000ul);
}

TEST(screen_image, spreads_each_colour_channel_over_eight_bits)
{
    std::uint8_t rgb[3];
    rgb565_to_rgb888(0xFFFF, rgb);
    EXPECT_EQ(rgb[0], 0xFF);
    EXPECT_EQ(rgb[1], 0xFF);
    EXPECT_EQ(rgb[2], 0xFF);
    rgb565_to_rgb888(0x0821, rgb);  // the lowest bit of each channel
    EXPECT_EQ(rgb[0], 0x08);
    EXPECT_EQ(rgb[1], 0x04);
    EXPECT_EQ(rgb[2], 0x08);
    rgb565_to_rgb888(0x8410, rgb);  // the top bit of each channel
    EXPECT_EQ(rgb[0], 0x84);
    EXPECT_EQ(rgb[1], 0x82);
    EXPECT_EQ(rgb[2], 0x84);
}

TEST(png_writer, reports_a_file_it_cannot_create)
{
    test_console console(64, 48);
    std::string error;
    EXPECT_FALSE(write_png("/nonexistent-folder/x.png", screen_image(console.engine), error));
    EXPECT_NE(error.find("cannot create '/nonexistent-folder/x.png'"), std::string::npos) << error;
}
