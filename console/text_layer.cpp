// The pixel plane and the character grid drawn over it, and the grid edits the console needs.
// A cell is marked changed only when its value really changes, so that update redraws little; the
// extra cell after the last row stays empty and stops every forward scan.
#include "console/text_layer.h"

#include <atomic>
#include "console/font.h"
#include "engine/allocation.h"

namespace {

bool is_empty(std::uint32_t cell)
{
    return (cell & cell_character_mask) == 0;
}

// Stores a moving cell's new value, marking it changed only when the value differs.
void store_if_changed(c_text_layer& layer, int index, std::uint32_t value)
{
    if (value != layer.load(index))
        layer.store(index, value | cell_changed);
}

// Moves the rows from the one starting at `index` down by one, losing the last row, and blanks that row.
void open_row(c_text_layer& layer, int index)
{
    for (int i = (layer.rows - 1) * layer.columns - 1; i >= index; --i)
        store_if_changed(layer, i + layer.columns, layer.load(i));
    for (int i = index; i < index + layer.columns; ++i)
        layer.store(i, cell_cleared);
}

// Paints one 8 x 16 cell whose bottom-left pixel is at `origin` of the frame-buffer layout: glyph
// column j is frame-buffer line j from there, and bit b of its word is pixel b of that line, so a
// column is 16 consecutive pixels. A clear bit lets the graphic plane show through; its pixels are
// read one at a time, as the engine may be plotting while a host draws.
void paint_cell(std::uint32_t cell, int origin, int pitch, std::uint16_t* frame_buffer, const c_graphic_layer& graphic)
{
    const auto colour = static_cast<std::uint16_t>(cell >> 16);
    const unsigned invert = (cell & cell_cursor) != 0 ? 0xFFFF : 0;
    const int code = static_cast<int>(cell & cell_character_mask);
    for (int j = 0; j < glyph_width; ++j) {
        const unsigned word = glyph_column(code, j) ^ invert;
        const int line = origin + pitch * j;
        std::uint16_t* target = frame_buffer + line;
        // Without branches: which bits a glyph sets is too irregular to predict.
        for (int b = 0; b < glyph_height; ++b) {
            const auto ink = static_cast<std::uint16_t>(0 - ((word >> b) & 1));
            target[b] = static_cast<std::uint16_t>((colour & ink) | (graphic.load(line + b) & ~ink));
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
    pixels = allocate_array<std::uint16_t>(static_cast<std::size_t>(height) * width);
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
    cells = allocate_array<std::uint32_t>(static_cast<std::size_t>(columns) * rows + 1);
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
        store(i, cell_cleared);
}

void c_text_layer::draw(std::uint16_t* frame_buffer)
{
    for (int index = 0; index < cell_count(); ++index)
        draw_cell(index, frame_buffer);
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
            any |= load(index + k);
        if ((any & cell_changed) == 0)
            continue;
        for (int k = index; k < index + block; ++k) {
            if ((load(k) & cell_changed) != 0)
                draw_cell(k, frame_buffer);
        }
    }
    for (; index < count; ++index) {
        if ((load(index) & cell_changed) != 0)
            draw_cell(index, frame_buffer);
    }
}

void c_text_layer::scroll_up()
{
    const int moved = (rows - 1) * columns;
    for (int i = 0; i < moved; ++i)
        store_if_changed(*this, i, load(i + columns));
    for (int i = moved; i < moved + columns; ++i)
        store(i, cell_cleared);
}

bool c_text_layer::insert(int x, int y, std::uint32_t cell)
{
    int at_index = index(x, y);
    const bool in_first_row = y == 0;
    for (int left = at_index - 1; left >= at_index - x && is_empty(load(left)); --left)
        store(left, (load(left) & cell_colour_mask) | cell_changed | ' ');

    const int end = cell_count();
    std::uint32_t carry = cell;
    while (at_index < end && !is_empty(load(at_index))) {
        const std::uint32_t old = load(at_index);
        store_if_changed(*this, at_index, carry);
        carry = old;
        ++at_index;
    }

    bool scrolled = false;
    if (at_index < end) {
        store(at_index++, carry | cell_changed);
    } else if (!in_first_row) {
        scroll_up();
        scrolled = true;
        at_index -= columns;
        store(at_index++, carry | cell_changed);
    }
    // A line that now ends exactly at a row's end would run into the line on the next row.
    if (!is_empty(load(at_index)) && at_index % columns == 0)
        open_row(*this, at_index);
    return scrolled;
}

void c_text_layer::delete_char(int x, int y)
{
    int at_index = index(x, y);
    if (is_empty(load(at_index)))
        return;
    do {
        store_if_changed(*this, at_index, load(at_index + 1));
        ++at_index;
    } while (!is_empty(load(at_index)));
}

// The changed bit is cleared only if the cell still holds what was painted: a cell the engine writes
// meanwhile stays changed and is painted again next time.
void c_text_layer::draw_cell(int index, std::uint16_t* frame_buffer)
{
    const int row = index / columns;
    const int column = index - row * columns;
    std::uint32_t cell = load(index);
    const int origin = (rows - 1 - row) * glyph_height + pitch * glyph_width * column;
    paint_cell(cell, origin, pitch, frame_buffer, *p_graphic_layer);
    if ((cell & cell_changed) != 0)
        std::atomic_ref<std::uint32_t>(cells[index]).compare_exchange_strong(cell, cell & ~cell_changed,
            std::memory_order_relaxed);
}
