// The pixel plane and the character grid drawn over it, and the grid edits the console needs.
// A cell is marked changed only when its value really changes, so that update redraws little; the
// extra cell after the last row stays empty and stops every forward scan.
#include "console/text_layer.h"

#include <array>
#include <bit>
#include <cstring>
#include <new>

#include "console/font.h"

namespace {

bool is_empty(std::uint32_t cell)
{
    return (cell & cell_character_mask) == 0;
}

// Stores a moving cell's new value, marking it changed only when the value differs.
void store_if_changed(std::uint32_t& cell, std::uint32_t value)
{
    if (value != cell)
        cell = value | cell_changed;
}

// Moves the rows from the one starting at `index` down by one, losing the last row, and blanks that row.
void open_row(c_text_layer& layer, int index)
{
    std::uint32_t* cells = layer.cells;
    for (int i = (layer.rows - 1) * layer.columns - 1; i >= index; --i)
        store_if_changed(cells[i + layer.columns], cells[i]);
    for (int i = index; i < index + layer.columns; ++i)
        cells[i] = cell_cleared;
}

// Four pixels at a time: for each 4-bit piece of a glyph word, the 64-bit mask whose 16-bit lanes are
// all ones where the piece's bits are set. Lane k holds the pixel at the k-th lowest address.
constexpr std::array<std::uint64_t, 16> piece_masks = [] {
    std::array<std::uint64_t, 16> masks{};
    for (unsigned piece = 0; piece < 16; ++piece) {
        for (unsigned k = 0; k < 4; ++k) {
            const unsigned lane = std::endian::native == std::endian::little ? k : 3 - k;
            if ((piece >> k) & 1)
                masks[piece] |= std::uint64_t{0xFFFF} << (16 * lane);
        }
    }
    return masks;
}();

// Paints one 8 x 16 cell whose bottom-left pixel is at `origin` of the frame-buffer layout: glyph
// column j is frame-buffer line j from there, and bit b of its word is pixel b of that line, so a
// column is 16 consecutive pixels. A clear bit lets the graphic plane show through.
void paint_cell(std::uint32_t cell, int origin, int pitch, std::uint16_t* frame_buffer, const std::uint16_t* pixels)
{
    const std::uint64_t colour = (cell >> 16) * std::uint64_t{0x0001000100010001};
    const unsigned invert = (cell & cell_cursor) != 0 ? 0xFFFF : 0;
    const int code = static_cast<int>(cell & cell_character_mask);
    for (int j = 0; j < glyph_width; ++j) {
        const unsigned word = glyph_column(code, j) ^ invert;
        std::uint16_t* target = frame_buffer + origin + pitch * j;
        const std::uint16_t* source = pixels + origin + pitch * j;
        if (word == 0) {
            std::memcpy(target, source, glyph_height * sizeof *target);
            continue;
        }
        for (int piece = 0; piece < glyph_height / 4; ++piece) {
            const std::uint64_t mask = piece_masks[(word >> (4 * piece)) & 0xF];
            std::uint64_t behind;
            std::memcpy(&behind, source + 4 * piece, sizeof behind);
            const std::uint64_t mixed = (colour & mask) | (behind & ~mask);
            std::memcpy(target + 4 * piece, &mixed, sizeof mixed);
        }
    }
}

}  // namespace

void c_graphic_layer::release()
{
    delete[] pixels;
    pixels = nullptr;
}

bool c_graphic_layer::allocate(int line_length, int line_count)
{
    release();
    height = line_length;
    width = line_count;
    pixels = new (std::nothrow) std::uint16_t[static_cast<std::size_t>(height) * width]();
    return pixels != nullptr;
}

bool c_text_layer::allocate(int screen_height, int screen_width, int line_step, c_graphic_layer* graphic_layer)
{
    release();
    height = screen_height;
    width = screen_width;
    pitch = line_step / 2;
    columns = screen_width / glyph_width;
    rows = screen_height / glyph_height;
    p_graphic_layer = graphic_layer;
    cells = new (std::nothrow) std::uint32_t[static_cast<std::size_t>(columns) * rows + 1];
    if (cells == nullptr)
        return false;
    clear();
    return true;
}

void c_text_layer::release()
{
    delete[] cells;
    cells = nullptr;
}

void c_text_layer::clear()
{
    const int count = cell_count() + 1;
    for (int i = 0; i < count; ++i)
        cells[i] = cell_cleared;
}

void c_text_layer::draw(std::uint16_t* frame_buffer)
{
    const std::uint16_t* pixels = p_graphic_layer->pixels;
    std::uint32_t* cell = cells;
    for (int row = 0; row < rows; ++row) {
        // Text row 0 lies at the far end of every line: the top of the screen.
        int origin = (rows - 1 - row) * glyph_height;
        for (int column = 0; column < columns; ++column, ++cell, origin += glyph_width * pitch) {
            *cell &= ~cell_changed;
            paint_cell(*cell, origin, pitch, frame_buffer, pixels);
        }
    }
}

void c_text_layer::update(std::uint16_t* frame_buffer)
{
    // Most calls find nothing to do: blocks of cells are tested at once for any changed bit.
    constexpr int block = 16;
    const int count = cell_count();
    int index = 0;
    for (; index + block <= count; index += block) {
        std::uint32_t any = 0;
        for (int k = 0; k < block; ++k)
            any |= cells[index + k];
        if ((any & cell_changed) == 0)
            continue;
        for (int k = index; k < index + block; ++k) {
            if ((cells[k] & cell_changed) != 0)
                draw_cell(k, frame_buffer);
        }
    }
    for (; index < count; ++index) {
        if ((cells[index] & cell_changed) != 0)
            draw_cell(index, frame_buffer);
    }
}

void c_text_layer::scroll_up()
{
    const int moved = (rows - 1) * columns;
    for (int i = 0; i < moved; ++i)
        store_if_changed(cells[i], cells[i + columns]);
    for (int i = moved; i < moved + columns; ++i)
        cells[i] = cell_cleared;
}

bool c_text_layer::insert(int x, int y, std::uint32_t cell)
{
    int index = y * columns + x;
    const bool in_first_row = y == 0;
    for (int left = index - 1; left >= index - x && is_empty(cells[left]); --left)
        cells[left] = (cells[left] & cell_colour_mask) | cell_changed | ' ';

    const int end = cell_count();
    std::uint32_t carry = cell;
    while (index < end && !is_empty(cells[index])) {
        const std::uint32_t old = cells[index];
        store_if_changed(cells[index], carry);
        carry = old;
        ++index;
    }

    bool scrolled = false;
    if (index < end) {
        cells[index++] = carry | cell_changed;
    } else if (!in_first_row) {
        scroll_up();
        scrolled = true;
        index -= columns;
        cells[index++] = carry | cell_changed;
    }
    // A line that now ends exactly at a row's end would run into the line on the next row.
    if (!is_empty(cells[index]) && index % columns == 0)
        open_row(*this, index);
    return scrolled;
}

void c_text_layer::delete_char(int x, int y)
{
    int index = y * columns + x;
    if (is_empty(cells[index]))
        return;
    do {
        store_if_changed(cells[index], cells[index + 1]);
        ++index;
    } while (!is_empty(cells[index]));
}

void c_text_layer::draw_cell(int index, std::uint16_t* frame_buffer)
{
    const int row = index / columns;
    const int column = index - row * columns;
    cells[index] &= ~cell_changed;
    const int origin = (rows - 1 - row) * glyph_height + pitch * glyph_width * column;
    paint_cell(cells[index], origin, pitch, frame_buffer, p_graphic_layer->pixels);
}
