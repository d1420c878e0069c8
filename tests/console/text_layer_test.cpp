// The two planes: where a cell lands in the turned frame buffer, what draw and update repaint, and the
// grid edits with the changed bits they leave.
#include "console/text_layer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "console/font.h"

namespace {

constexpr std::uint32_t red = 0xF8000000;
constexpr std::uint16_t red_pixel = 0xF800;
constexpr std::uint16_t untouched = 0x1234;  // a frame-buffer value the layer never writes

// A screen of its own size, with both planes and a frame buffer of the same layout.
struct small_screen {
    explicit small_screen(int width = 32, int height = 56)
    {
        EXPECT_TRUE(graphic.allocate(height, width));
        EXPECT_TRUE(text.allocate(height, width, height * 2, &graphic));
        frame.assign(static_cast<std::size_t>(width) * height, untouched);
    }
    void draw() { text.draw(frame.data()); }
    void update() { text.update(frame.data()); }
    void reset_frame() { frame.assign(frame.size(), untouched); }
    // Every frame-buffer pixel, addressed as on the screen, against `expected(x, y)`.
    template <class expectation> void expect_frame(expectation expected) const
    {
        for (int x = 0; x < text.width; ++x)
            for (int y = 0; y < text.height; ++y)
                ASSERT_EQ(frame[x * text.pitch + (text.height - 1 - y)], expected(x, y)) << x << "," << y;
    }
    // Characters of the grid as text, "_" for an empty cell, rows separated by "|".
    std::string grid() const
    {
        std::string shown;
        for (int i = 0; i < text.cell_count(); ++i) {
            int c = text.load(i) & cell_character_mask;
            shown += std::string(i != 0 && i % text.columns == 0 ? "|" : "") + (c == 0 ? '_' : static_cast<char>(c));
        }
        return shown;
    }
    std::vector<int> changed() const
    {
        std::vector<int> indexes;
        for (int i = 0; i <= text.cell_count(); ++i)
            if ((text.load(i) & cell_changed) != 0)
                indexes.push_back(i);
        return indexes;
    }

    c_graphic_layer graphic;
    c_text_layer text;
    std::vector<std::uint16_t> frame;
};

bool glyph_bit(int code, int column, int row) { return ((glyph_column(code, column) >> (15 - row)) & 1) != 0; }

}  // namespace

TEST(layer_geometry, sizes_the_grid_from_the_screen_truncating_spare_pixels_and_blacks_the_pixel_plane)
{
    small_screen screen(644, 487);
    EXPECT_EQ(screen.text.columns, 80);
    EXPECT_EQ(screen.text.rows, 30);
    EXPECT_EQ(screen.text.pitch, 487);
    EXPECT_EQ(screen.changed().size(), 80u * 30 + 1);  // the extra cell is cleared like the rest
    EXPECT_EQ(screen.text.load(80 * 30), cell_cleared);
    for (int i = 0; i < 644 * 487; ++i)
        ASSERT_EQ(screen.graphic.pixels[i], 0) << i;
    screen.graphic.release();
    EXPECT_EQ(screen.graphic.pixels, nullptr);
}

TEST(cell_drawing, paints_each_glyph_in_its_colour_at_its_cell_over_the_graphic_plane)
{
    small_screen screen;  // 4 columns and 3 rows, below 8 spare pixel rows that stay untouched
    for (int i = 0; i < 56 * 32; ++i)
        screen.graphic.pixels[i] = static_cast<std::uint16_t>(i + 1);
    for (int i = 0; i < 12; ++i)
        screen.text.store(i, red | (i % 2 == 0 ? ' ' : 0));  // spaces and empty cells show the plane alone
    screen.text.put(1, 2, red | 'A');
    screen.text.put(3, 0, red | cell_cursor | ('g' + 0x80));  // above 127: the glyph of the code less 128
    screen.draw();
    screen.expect_frame([&](int x, int y) {
        const std::uint16_t behind = screen.graphic.pixels[screen.graphic.pixel_index(x, y)];
        const int column = x % 8, row = (y - 8) % 16;
        if (y < 8)
            return untouched;
        if (x / 8 == 1 && (y - 8) / 16 == 2)
            return glyph_bit('A', column, row) ? red_pixel : behind;
        if (x / 8 == 3 && (y - 8) / 16 == 0)  // the cursor inverts the glyph
            return glyph_bit('g', column, row) ? behind : red_pixel;
        return behind;
    });
}

TEST(cell_drawing, update_repaints_cells_changed_or_unlike_what_it_painted_once_and_draw_repaints_all)
{
    small_screen screen(160, 48);  // 20 columns and 3 rows
    screen.text.put(17, 1, red | cell_cursor | ' ');  // not changed: draw must paint it anyway
    screen.draw();
    screen.expect_frame([](int x, int y) { return x >= 136 && x < 144 && y >= 16 && y < 32 ? red_pixel : 0; });
    EXPECT_EQ(screen.changed(), std::vector<int>{60});
    screen.reset_frame();
    screen.text.put(15, 0, red | cell_changed | cell_cursor | ' ');
    screen.text.put(19, 2, red | cell_changed | cell_cursor | ' ');
    // Unmarked, but not what was painted there: a mark that a scroll on the engine's thread moved away
    // from under a drawing one.
    screen.text.put(0, 1, red | cell_cursor | ' ');
    screen.update();
    screen.expect_frame([](int x, int y) {
        return (x >= 120 && x < 128 && y < 16) || (x >= 152 && y >= 32) || (x < 8 && y >= 16 && y < 32) ? red_pixel : untouched;
    });
    EXPECT_EQ(screen.changed(), std::vector<int>{60});
    screen.text.clear();
    screen.update();
    screen.expect_frame([](int, int) { return 0; });
    screen.reset_frame();
    screen.update();
    screen.expect_frame([](int, int) { return untouched; });
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

// Each edit also on a grid scrolled beforehand 1 to 3 times, whose rows are stored from the middle on,
// so that lines run across the place where the stored rows wrap round.
TEST(grid_edits, move_cells_and_mark_only_the_cells_whose_value_changed)
{
    for (const grid_edit& edit : grid_edits) {
        for (int turns = 0; turns < 4; ++turns) {
            small_screen screen;
            for (int turn = 0; turn < turns; ++turn)
                screen.text.scroll_up();
            for (int i = 0, c = 0; edit.before[c] != '\0'; ++c)
                if (edit.before[c] != '|')
                    screen.text.store(i++, 0xFFFF0000 | (edit.before[c] == '_' ? 0 : edit.before[c]));
            screen.text.store(12, 0xFFFF0000);
            const bool scrolled = edit.operation == 'i' && screen.text.insert(edit.x, edit.y, 0xFFFF0000 | 'X');
            if (edit.operation == 's')
                screen.text.scroll_up();
            if (edit.operation == 'd')
                screen.text.delete_char(edit.x, edit.y);
            const std::string where = std::string(edit.before) + " " + edit.operation + " " + std::to_string(turns);
            EXPECT_EQ(screen.grid(), edit.after) << where;
            EXPECT_EQ(scrolled, edit.scrolled) << where;
            EXPECT_EQ(screen.changed(), edit.changed) << where;
        }
    }
}

// Cells written and scrolled at random against a plain grid that moves every cell one row up, as the
// layer behaved before it stored its rows as a ring: the same cells and marks after every step, and
// after each update a frame equal to one drawn afresh. Few letters, so that many moves change nothing.
TEST(grid_edits, many_scrolls_leave_the_cells_marks_and_updated_frame_of_a_grid_that_moves_every_cell)
{
    small_screen screen;  // 4 x 3
    for (int i = 0; i < 56 * 32; ++i)
        screen.graphic.pixels[i] = static_cast<std::uint16_t>(i * 7);
    std::vector<std::uint32_t> moving(13, cell_cleared);
    unsigned random = 7;
    for (int step = 0; step < 400; ++step) {
        random = random * 1103515245u + 12345u;
        const int at = static_cast<int>((random >> 8) % 12);
        const std::uint32_t cell = red | cell_changed | "ab "[(random >> 16) % 3];
        screen.text.store(at, cell);
        moving[at] = cell;
        if ((random >> 20) % 3 != 0) {
            screen.text.scroll_up();
            for (int i = 0; i < 8; ++i)
                moving[i] = moving[i + 4] != moving[i] ? moving[i + 4] | cell_changed : moving[i];
            std::fill(moving.begin() + 8, moving.begin() + 12, cell_cleared);
        }
        if ((random >> 24) % 4 == 0) {
            screen.update();
            for (std::uint32_t& kept : moving)
                kept &= ~cell_changed;
            moving[12] = cell_cleared;  // never drawn
            std::vector<std::uint16_t> updated = screen.frame;
            screen.draw();
            ASSERT_EQ(screen.frame, updated) << step;
        }
        for (int i = 0; i <= 12; ++i)
            ASSERT_EQ(screen.text.load(i), moving[i]) << step << " " << i;
    }
}

TEST(grid_edits, keep_each_cells_colour_when_an_insertion_fills_a_gap_with_spaces)
{
    small_screen screen;
    screen.text.store(4, 0x07E00000);  // empty, green
    screen.text.insert(2, 1, 0xFFFF0000 | 'X');
    EXPECT_EQ(screen.text.load(4), 0x07E00000 | cell_changed | ' ');
    EXPECT_EQ(screen.text.load(5), 0xFFFF0000 | cell_changed | ' ');
}
