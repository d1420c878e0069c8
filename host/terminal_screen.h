// The terminal as a screen for the character grid, through curses: opens it in raw mode, draws the
// part of the grid around the cursor that fits, and restores the terminal when closed, also when the
// process dies of a crash signal. Only the thread that opened it may call it.
#pragma once

#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

#include "host/terminal_colour.h"

class c_vexil;
struct screen;  // curses' SCREEN

// The first cell of a view of view cells onto a line of grid cells that keeps the target in sight and
// moves as little as possible from origin.
int follow_cursor(int origin, int target, int view, int grid);

class c_terminal_screen {
public:
    c_terminal_screen() = default;
    c_terminal_screen(const c_terminal_screen&) = delete;
    c_terminal_screen& operator=(const c_terminal_screen&) = delete;
    ~c_terminal_screen() { close(); }

    bool open(std::string& error);  // standard input and output must be a terminal
    void close();                   // the terminal as it was; nothing when not open

    int columns() const;            // the terminal's size in cells
    int rows() const;
    // Waits at most wait_ms for a key; false when none came.
    bool read_key(int wait_ms, int& code, bool& is_function_key);
    void resized();                 // the next draw clears and draws every cell
    void draw(const c_vexil& engine);

private:
    int colour_pair(std::uint16_t colour);
    int colour_number(std::uint16_t colour);
    void put_cell(int x, int y, std::uint32_t cell);
    void take_snapshot(const c_vexil& engine);
    void move_view(int grid_columns, int grid_rows);

    screen* p_terminal = nullptr;             // null while closed
    terminal_colours colours = terminal_colours::none;
    int next_pair = 1;                        // pair 0 is the terminal's own colours
    int next_slot = 16;                       // redefined palette: the next entry to set
    std::unordered_map<int, int> pairs;       // colour number -> pair
    std::vector<int> numbers;                 // RGB565 -> colour number, -1 until asked
    std::vector<std::uint32_t> snapshot;      // the grid as read for this draw
    std::vector<std::uint32_t> shadow;        // what each terminal cell shows; invalid_cell to redraw
    int shadow_columns = 0;
    int shadow_rows = 0;
    int origin_column = 0;                    // the grid cell in the terminal's top left corner
    int origin_row = 0;
    int cursor_column = -1;                   // the first cell with the cursor mark, -1 when none
    int cursor_row = -1;
};
