// Times the text layer's two ways of painting a 640 x 480 screen: a full draw, and an update that
// finds no changed cell. Standalone: g++ -std=c++20 -O2 -I. bench/draw_bench.cpp
// console/text_layer.cpp console/font.cpp -o draw_bench && ./draw_bench
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <vector>

#include "console/text_layer.h"

namespace {

constexpr int screen_width = 640;
constexpr int screen_height = 480;

// Mean microseconds of one call of `paint`, over `runs` calls after a few unmeasured ones.
template <class F>
double mean_microseconds(int runs, F paint)
{
    for (int i = 0; i < 10; ++i)
        paint();
    auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < runs; ++i)
        paint();
    std::chrono::duration<double, std::micro> elapsed = std::chrono::steady_clock::now() - start;
    return elapsed.count() / runs;
}

}  // namespace

int main()
{
    c_graphic_layer graphic;
    c_text_layer text;
    if (!graphic.allocate(screen_height, screen_width)
        || !text.allocate(screen_height, screen_width, screen_height * 2, &graphic))
        return 1;
    // A full screen of text in changing colours, with the cursor on one cell.
    for (int i = 0; i < text.cell_count(); ++i)
        text.store(i, (static_cast<std::uint32_t>(i * 2654435761u) & cell_colour_mask) | (0x21 + i % 94));
    text.store(100, text.load(100) | cell_cursor);
    std::vector<std::uint16_t> frame(static_cast<std::size_t>(screen_width) * screen_height);

    double draw = mean_microseconds(2000, [&] { text.draw(frame.data()); });
    double update = mean_microseconds(200000, [&] { text.update(frame.data()); });

    unsigned checksum = 0;
    for (std::uint16_t pixel : frame)
        checksum = checksum * 31 + pixel;
    std::printf("draw   %dx%d, %d cells: %8.2f us\n", screen_width, screen_height, text.cell_count(), draw);
    std::printf("update with no changed cell:  %8.3f us\n", update);
    std::printf("(frame checksum %08x)\n", checksum);
    return 0;
}
