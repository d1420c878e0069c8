// The view onto a grid larger than the terminal follows the cursor and moves as little as it can.
#include <gtest/gtest.h>

#include "host/terminal_screen.h"

TEST(terminal_view, follows_the_cursor_and_stays_within_the_grid)
{
    struct view_case { int origin, target, view, grid, moved_to; };
    const view_case views[] = {
        {0, 39, 40, 80, 0},    // the last cell in sight: no move
        {0, 40, 40, 80, 1},    // one past it: one step
        {30, 29, 40, 80, 29},  // just before: one step back
        {60, 70, 40, 80, 40},  // an origin past the end is pulled back
        {5, 5, 80, 80, 0},     // the whole grid fits
        {5, 5, 100, 80, 0},    // a terminal larger than the grid
    };
    for (const auto& c : views)
        EXPECT_EQ(follow_cursor(c.origin, c.target, c.view, c.grid), c.moved_to)
            << "origin " << c.origin << ", cursor " << c.target << ", view " << c.view << " of " << c.grid;
}
