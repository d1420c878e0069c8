// The two planes of the screen image: pixels that programs plot, and character cells drawn over them.
// The display is turned a quarter turn against the frame buffer: a frame-buffer line is a screen column
// and pixel 0 of a line is at the bottom, so screen (x, y) is index x * line_length + (line_length - 1 - y).
// A host may draw on its own thread while the engine writes: every cell and pixel access goes through
// load/store, one indivisible relaxed access (a plain move on x86), so a frame may mix old and new cells
// but never tears one; drawing also repaints any cell that differs from what it last painted there, so
// the next frame is right whatever moved meanwhile.
#pragma once

#include <atomic>
#include <cstdint>

// A cell:  31-16 colour (RGB565) | 15-10 zero | 9 changed | 8 cursor | 7-0 character
// Character 0 is an empty cell, which ends a logical line; a space (0x20) belongs to it.
constexpr std::uint32_t cell_character_mask = 0x000000FF;
constexpr std::uint32_t cell_cursor = 0x00000100;
constexpr std::uint32_t cell_changed = 0x00000200;
constexpr std::uint32_t cell_colour_mask = 0xFFFF0000;
constexpr std::uint32_t cell_cleared = 0xFFFF0200;  // white, changed, empty

constexpr int glyph_width = 8;
constexpr int glyph_height = 16;

class c_graphic_layer {
public:
    ~c_graphic_layer() { release(); }
    void release();
    // Allocates and blacks out height * width pixels; false when the memory cannot be had.
    bool allocate(int line_length, int line_count);
    int pixel_index(int x, int y) const { return x * height + (height - 1 - y); }
    std::uint16_t load(int index) const
    {
        return std::atomic_ref<std::uint16_t>(pixels[index]).load(std::memory_order_relaxed);
    }
    void store(int index, std::uint16_t colour)
    {
        std::atomic_ref<std::uint16_t>(pixels[index]).store(colour, std::memory_order_relaxed);
    }

    int height = 0;                    // pixels in one frame-buffer line: the visible height
    int width = 0;                     // frame-buffer lines: the visible width
    std::uint16_t* pixels = nullptr;   // height * width pixels in the frame-buffer layout
};

// The grid is stored as a ring of rows, so that scrolling moves no cell: `first_cell` is where the top
// left cell is stored. Indexes in the interface are screen order, row by row from the top left, the extra
// empty cell last; they run on across row ends as the screen does.
class c_text_layer {
public:
    c_text_layer() = default;
    c_text_layer(const c_text_layer&) = delete;
    c_text_layer& operator=(const c_text_layer&) = delete;
    ~c_text_layer() { release(); }
    // Sizes the grid for the screen and clears it; false when the memory cannot be had.
    bool allocate(int screen_height, int screen_width, int line_step, c_graphic_layer* graphic_layer);
    void release();

    void clear();
    void draw(std::uint16_t* frame_buffer);    // every cell
    void update(std::uint16_t* frame_buffer);  // only changed cells, and cells that differ from what was drawn
    void scroll_up();
    bool insert(int x, int y, std::uint32_t cell);  // true when the grid had to scroll up
    void delete_char(int x, int y);

    std::uint32_t load(int index) const
    {
        return std::atomic_ref<std::uint32_t>(cells[place(index)]).load(std::memory_order_relaxed);
    }
    void store(int index, std::uint32_t cell)
    {
        const int stored = place(index);
        std::atomic_ref<std::uint32_t>(cells[stored]).store(cell, std::memory_order_relaxed);
        if ((cell & cell_changed) == 0)
            forget_row_marked(stored);
    }
    int index(int x, int y) const { return y * columns + x; }
    std::uint32_t at(int x, int y) const { return load(index(x, y)); }
    void put(int x, int y, std::uint32_t cell) { store(index(x, y), cell); }
    int cell_count() const { return columns * rows; }  // the extra empty cell is not counted

    int columns = 0;
    int rows = 0;
    int height = 0;
    int width = 0;
    int pitch = 0;                     // pixels from one frame-buffer line to the next
    std::uint32_t* cells = nullptr;    // columns * rows + 1, stored as a ring of rows; the last one always empty
    c_graphic_layer* p_graphic_layer = nullptr;

private:
    // Where the cell at a screen index is stored; the extra cell stays last.
    int place(int index) const
    {
        if (index >= cell_count())
            return index;
        const int stored = index + first_cell.load(std::memory_order_relaxed);
        return stored < cell_count() ? stored : stored - cell_count();
    }
    int stored_row(int row) const { return place(index(0, row)) / columns; }
    void forget_row_marked(int stored);
    void mark_moved_row(int stored, int stored_before);
    void draw_cell(int row, int column, std::uint16_t* frame_buffer);

    std::atomic<int> first_cell{0};    // stored index of the top left cell, a multiple of columns
    // Per stored row: every cell of it is known to carry the changed bit, so a scroll need not look at
    // it. Only ever a hint: set when it is known, cleared by any store that drops the bit.
    std::atomic<bool>* row_marked = nullptr;
    // Per screen cell: what the last draw or update painted there, without the changed bit. The drawing
    // thread's own, so what it shows never depends on changed bits a scroll may move under it.
    std::uint32_t* shown = nullptr;
};
