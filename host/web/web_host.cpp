// The page's frames and the session's image marks and reports.
#include "host/web/web_host.h"

#include <cstdio>

#include "host/screen_capture.h"

namespace {

// RGB565 as the canvas's RGBA bytes, read as one little-endian word: red first, alpha last.
std::uint32_t rgba_word(std::uint16_t colour)
{
    std::uint8_t rgb[3];
    rgb565_to_rgb888(colour, rgb);
    return rgb[0] | static_cast<std::uint32_t>(rgb[1]) << 8 | static_cast<std::uint32_t>(rgb[2]) << 16 | 0xFF000000u;
}

}  // namespace

c_web_host::c_web_host(const c_options& options) : c_session(options) {}

bool c_web_host::open(const std::string& kept_program_file)
{
    if (!initialize())
        return false;
    keep_program_in(kept_program_file);
    frame_buffer.assign(static_cast<std::size_t>(engine.screen_width) * engine.screen_height, 0);
    upright.assign(frame_buffer.size(), 0xFF000000u);
    start();
    return true;
}

// The flags are taken before drawing, so that what the engine changes meanwhile is drawn next frame.
bool c_web_host::frame()
{
    const bool full = full_draw_asked.exchange(false);
    const bool dirty = image_dirty.exchange(false);
    if (!full && !dirty)
        return false;
    if (full)
        engine.draw(frame_buffer.data());
    else
        engine.update_draw(frame_buffer.data());
    // One pass: a frame-buffer line is a screen column, and its pixel 0 is at the bottom.
    const int width = engine.screen_width;
    const int height = engine.screen_height;
    for (int x = 0; x < width; ++x) {
        const std::uint16_t* line = frame_buffer.data() + static_cast<std::size_t>(x) * height;
        for (int y = 0; y < height; ++y)
            upright[static_cast<std::size_t>(height - 1 - y) * width + x] = rgba_word(line[y]);
    }
    grid_text = screen_text(engine);
    return true;
}

std::string c_web_host::take_reports()
{
    std::lock_guard<std::mutex> guard(reports_mutex);
    std::string taken;
    taken.swap(reports);
    return taken;
}

// Both only mark the image: the page draws once per animation frame.
void c_web_host::update_screen()
{
    full_draw_asked = true;
    image_dirty = true;
}

void c_web_host::update_text()
{
    image_dirty = true;
}

void c_web_host::report(const std::string& line)
{
    std::lock_guard<std::mutex> guard(reports_mutex);
    reports += line + '\n';
}

// The engine lives on with the page, so a channel left open at `exit` is not closed as it is when a
// process ends: its data is flushed into the file, which the page then keeps.
void c_web_host::on_engine_ended()
{
    std::fflush(nullptr);
    image_dirty = true;
    run_ended = true;
}
