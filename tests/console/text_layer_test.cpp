// The two planes: where a cell lands in the turned frame buffer, what draw and update repaint, and the
// grid edits with the changed bits they leave.
#include "console/text_layer.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "console/font.h"

namespace {

constexpr std::uint16_t red = 0xF800;
constexpr std::uint16_t untouched = 0x1234;  // a frame-buffer value the layer never writes

// A screen of its own size, with both planes and a frame buffer of the same layout.
struct small_screen {
    explicit small_screen(int width = 32, int height = 48)
    {
        EXPECT_TRUE(graphic.allocate(height, width));
        EXPECT_TRUE(text.allocate(height, width, height * 2, &graphic));
        frame.assign(static_cast<std::size_t>(width) * height, untouched);
    }
    std::uint16_t pixel(int x, int y) const { return frame[x * text.pitch + (text.height - 1 - y)]; }
    void reset_frame() { frame.assign(frame.size(), untouched); }
    void draw() { text.draw(frame.data()); }
    void update() { text.update(frame.data()); }
    // Writes text from cell index `index` on, colour white, no bits.
    void put(int index, const std::string& characters)
    {
        for (unsigned char c : characters)
            text.cells[index++] = 0xFFFF0000 | c;
    }
    // Characters of the grid as text, "_" for an empty cell, rows separated by "|".
    std::string grid() const
    {
        std::string shown;
        for (int i = 0; i < text.cell_count(); ++i) {
            if (i != 0 && i % text.columns == 0)
                shown += '|';
            int c = text.cells[i] & cell_character_mask;
            shown += c == 0 ? '_' : static_cast<char>(c);
        }
        return shown;
    }
    std::vector<int> changed() const
    {
        std::vector<int> indexes;
        for (int i = 0; i <= text.cell_count(); ++i) {
            if ((text.cells[i] & cell_changed) != 0)
                indexes.push_back(i);
        }
        return indexes;
    }

    c_graphic_layer graphic;
    c_text_layer text;
    std::vector<std::uint16_t> frame;
};

bool glyph_bit(int code, int column, int row)
{
    return ((glyph_column(code, column) >> (15 - row)) & 1) != 0;
}

}  // namespace

TEST(layer_geometry, sizes_the_grid_from_the_screen_and_truncates_spare_pixels)
{
    c_graphic_layer graphic;
    c_text_layer text;
    ASSERT_TRUE(text.allocate(487, 644, 1000, &graphic));
    EXPECT_EQ(text.columns, 80);
    EXPECT_EQ(text.rows, 30);
    EXPECT_EQ(text.pitch, 500);
    EXPECT_EQ(text.cells[text.cell_count()], cell_cleared);  // the extra cell, cleared like the rest
    EXPECT_EQ(text.cells[0], cell_cleared);
}

TEST(layer_geometry, allocates_a_black_pixel_plane)
{
    c_graphic_layer graphic;
    ASSERT_TRUE(graphic.allocate(48, 32));
    EXPECT_EQ(graphic.height, 48);
    EXPECT_EQ(graphic.width, 32);
    for (int i = 0; i < 48 * 32; ++i)
        ASSERT_EQ(graphic.pixels[i], 0) << i;
    graphic.release();
    EXPECT_EQ(graphic.pixels, nullptr);
}

TEST(cell_drawing, puts_a_cell_at_its_screen_position_in_the_turned_frame_buffer)
{
    small_screen screen;  // 4 columns, 3 rows
    screen.text.at(2, 1) = 0xF8000000 | cell_cursor | ' ';  // a solid red block
    screen.draw();
    for (int x = 0; x < 32; ++x) {
        for (int y = 0; y < 48; ++y) {
            bool inside = x >= 16 && x < 24 && y >= 16 && y < 32;
            ASSERT_EQ(screen.pixel(x, y) == red, inside) << x << "," << y;
        }
    }
}

TEST(cell_drawing, shows_the_colour_where_the_glyph_is_set_and_the_graphic_plane_elsewhere)
{
    small_screen screen;
    for (int i = 0; i < 48 * 32; ++i)
        screen.graphic.pixels[i] = static_cast<std::uint16_t>(i + 1);
    screen.text.at(1, 2) = 0xF8000000 | 'A';
    screen.draw();
    int set_pixels = 0;
    for (int column = 0; column < 8; ++column) {
        for (int row = 0; row < 16; ++row) {
            int x = 8 + column, y = 32 + row;
            std::uint16_t behind = screen.graphic.pixels[screen.graphic.pixel_index(x, y)];
            bool set = glyph_bit('A', column, row);
            set_pixels += set;
            EXPECT_EQ(screen.pixel(x, y), set ? red : behind) << column << "," << row;
        }
    }
    EXPECT_GT(set_pixels, 10);
}

TEST(cell_drawing, inverts_the_glyph_under_the_cursor)
{
    small_screen screen;
    screen.text.at(0, 0) = 0xF8000000 | cell_cursor | 'A';
    screen.draw();
    for (int column = 0; column < 8; ++column) {
        for (int row = 0; row < 16; ++row)
            EXPECT_EQ(screen.pixel(column, row), glyph_bit('A', column, row) ? 0 : red) << column << "," << row;
    }
}

TEST(cell_drawing, draws_codes_above_127_with_the_glyph_of_the_code_less_128)
{
    small_screen plain, high;
    plain.text.at(3, 0) = 0xF8000000 | 'g';
    high.text.at(3, 0) = 0xF8000000 | ('g' + 0x80);
    plain.draw();
    high.draw();
    EXPECT_EQ(plain.frame, high.frame);
}

TEST(cell_drawing, shows_only_the_graphic_plane_for_empty_and_space_cells)
{
    small_screen screen;
    screen.text.at(0, 0) = 0xF8000000 | ' ';
    screen.text.at(1, 0) = 0xF8000000;
    screen.draw();
    for (int x = 0; x < 16; ++x) {
        for (int y = 0; y < 16; ++y)
            ASSERT_EQ(screen.pixel(x, y), 0) << x << "," << y;
    }
}

TEST(cell_drawing, leaves_the_spare_rows_at_the_top_when_the_height_is_not_a_multiple_of_16)
{
    small_screen screen(32, 56);  // 3 rows of text and 8 spare pixel rows
    for (int i = 0; i < screen.text.cell_count(); ++i)
        screen.text.cells[i] = 0xF8000000 | cell_cursor | ' ';
    screen.draw();
    for (int x = 0; x < 32; ++x) {
        for (int y = 0; y < 56; ++y)
            ASSERT_EQ(screen.pixel(x, y), y < 8 ? untouched : red) << x << "," << y;
    }
}

TEST(cell_drawing, draw_repaints_every_cell_and_clears_every_changed_bit)
{
    small_screen screen;
    screen.draw();
    EXPECT_EQ(screen.changed(), std::vector<int>{12});  // the extra cell is never drawn
    for (std::uint16_t value : screen.frame)
        ASSERT_EQ(value, 0);
}

TEST(cell_drawing, update_repaints_changed_cells_only)
{
    small_screen screen(160, 48);  // 20 columns, so that the 60 cells span several blocks of the scan
    screen.draw();
    screen.reset_frame();
    screen.text.at(17, 1) = 0xF8000000 | cell_changed | cell_cursor | ' ';
    screen.text.at(19, 2) = 0xF8000000 | cell_changed | cell_cursor | ' ';
    screen.update();
    for (int x = 0; x < 160; ++x) {
        for (int y = 0; y < 48; ++y) {
            bool inside = (x >= 136 && x < 144 && y >= 16 && y < 32) || (x >= 152 && y >= 32);
            ASSERT_EQ(screen.pixel(x, y), inside ? red : untouched) << x << "," << y;
        }
    }
    EXPECT_EQ(screen.changed(), std::vector<int>{60});  // the extra cell is never drawn
}

TEST(cell_drawing, after_clear_update_draws_every_cell_once)
{
    small_screen screen(160, 48);
    screen.text.clear();
    screen.update();
    for (std::uint16_t value : screen.frame)
        ASSERT_EQ(value, 0);
    screen.reset_frame();
    screen.update();
    for (std::uint16_t value : screen.frame)
        ASSERT_EQ(value, untouched);
}

// The grid edits on a 4 x 3 grid written as rows, "_" for an empty cell; X is the inserted character.
struct grid_edit {
    const char* before;
    char operation;  // 's' scroll_up, 'd' delete_char at (x, y), 'i' insert X at (x, y)
    int x, y;
    const char* after;
    bool scrolled;
    std::vector<int> changed;  // every cell marked changed afterwards, 12 being the extra cell
};

const grid_edit grid_edits[] = {
    {"abcd|efgh|ijkl", 's', 0, 0, "efgh|ijkl|____", false, {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11}},
    {"abcd|abcd|abcd", 's', 0, 0, "abcd|abcd|____", false, {8, 9, 10, 11}},  // unchanged rows stay unmarked
    {"ab__|____|____", 'd', 2, 0, "ab__|____|____", false, {}},              // an empty cell: nothing
    {"ab__|____|____", 'd', 1, 0, "a___|____|____", false, {1}},             // the last character goes
    {"abcd|efg_|xy__", 'd', 2, 0, "abde|fg__|xy__", false, {2, 3, 4, 5, 6}}, // across the row end
    {"abcd|efgh|ijkl", 'd', 0, 0, "bcde|fghi|jkl_", false, {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11}},
    {"abc_|____|____", 'i', 1, 0, "aXbc|____|____", false, {1, 2, 3}},
    {"____|____|____", 'i', 3, 1, "____|   X|____", false, {4, 5, 6, 7}},    // the gap becomes spaces
    {"____|efgh|ijkl", 'i', 0, 1, "Xefg|hijk|l___", true, {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11}},
    {"abcd|efgh|ijkl", 'i', 1, 0, "aXbc|defg|hijk", false, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11}},
    {"abc_|xy__|____", 'i', 0, 0, "Xabc|____|xy__", false, {0, 1, 2, 3, 4, 5, 6, 7, 8, 9}},  // a row opens
    {"abc_|_xy_|____", 'i', 0, 0, "Xabc|_xy_|____", false, {0, 1, 2, 3}},  // the next row starts empty
};

TEST(grid_edits, move_cells_and_mark_only_the_cells_whose_value_changed)
{
    for (const grid_edit& edit : grid_edits) {
        small_screen screen;
        int index = 0;
        for (const char* c = edit.before; *c != '\0'; ++c) {
            if (*c != '|')
                screen.text.cells[index++] = 0xFFFF0000 | (*c == '_' ? 0 : *c);
        }
        screen.text.cells[index] = 0xFFFF0000;
        bool scrolled = false;
        if (edit.operation == 's')
            screen.text.scroll_up();
        else if (edit.operation == 'd')
            screen.text.delete_char(edit.x, edit.y);
        else
            scrolled = screen.text.insert(edit.x, edit.y, 0xFFFF0000 | 'X');
        EXPECT_EQ(screen.grid(), edit.after) << edit.before << " " << edit.operation;
        EXPECT_EQ(scrolled, edit.scrolled) << edit.before << " " << edit.operation;
        EXPECT_EQ(screen.changed(), edit.changed) << edit.before << " " << edit.operation;
    }
}

TEST(grid_edits, scrolling_blanks_the_last_row_in_white_whatever_the_colours)
{
    small_screen screen;
    screen.put(0, "abcdefghijkl");
    screen.text.at(1, 2) = 0x001F0000 | 'j';  // blue
    screen.text.scroll_up();
    EXPECT_EQ(screen.text.at(1, 1), 0x001F0000 | cell_changed | 'j');
    for (int x = 0; x < 4; ++x)
        EXPECT_EQ(screen.text.at(x, 2), cell_cleared);
}

TEST(grid_edits, insertion_fills_the_gap_with_spaces_of_each_cells_colour)
{
    small_screen screen;
    screen.text.cells[4] = 0x07E00000;  // empty, green
    screen.text.insert(2, 1, 0xFFFF0000 | 'X');
    EXPECT_EQ(screen.text.cells[4], 0x07E00000 | cell_changed | ' ');
    EXPECT_EQ(screen.text.cells[5], 0xFFFF0000 | cell_changed | ' ');
}
