// The page's side (keys, break, frames) and the engine's (waits, image marks); the feeder between them.
#include "host/web/web_host.h"

#include <algorithm>
#include <chrono>

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

c_web_host::c_web_host(int width, int height)
{
    engine.screen_width = width;
    engine.screen_height = height;
    engine.line_step = height * 2;
}

void c_web_host::start(const std::string& program_file)
{
    program = program_file;
    engine.initialize(this);
    frame_buffer.assign(static_cast<std::size_t>(engine.screen_width) * engine.screen_height, 0);
    upright.assign(frame_buffer.size(), 0xFF000000u);
    // Neither thread is ever joined: the page's thread may not block, and the page ends them.
    feeder = std::thread([this] { feed_keys(); });
    feeder.detach();
    engine_thread = std::thread([this] {
        engine.run(program.empty() ? nullptr : program.c_str());
        {
            std::lock_guard<std::mutex> guard(mutex);
            stopping = true;
        }
        ring_changed.notify_all();
        image_dirty = true;
        engine_ended = true;
    });
    engine_thread.detach();
}

// Every key goes through the feeder, so that typed keys keep their order behind a paste.
void c_web_host::queue_keys(const int* codes, int count)
{
    if (count <= 0 || engine_ended)
        return;
    bool wake = false;
    {
        std::lock_guard<std::mutex> guard(mutex);
        pending_keys.insert(pending_keys.end(), codes, codes + count);
        wake = feeder_waiting;
    }
    if (wake)
        ring_changed.notify_all();
}

// The store and the wake-up under the lock, so that a sleep about to wait cannot miss the break.
void c_web_host::force_break()
{
    {
        std::lock_guard<std::mutex> guard(mutex);
        engine.force_break();
    }
    ring_changed.notify_all();
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

void c_web_host::sleep(unsigned int ms)
{
    std::unique_lock<std::mutex> guard(mutex);
    const auto duration = std::chrono::milliseconds(ms);
    if (!idle) {
        // A program's sleep: a break or the end of the session cuts it short.
        ring_changed.wait_for(guard, duration, [this] { return stopping || engine.system_resource.error_code != 0; });
        return;
    }
    // The key loop's pause ends as soon as a key arrives.
    idle = false;
    engine_waiting = true;
    ring_changed.wait_for(guard, duration, [this] { return ring_room() < ring_capacity || stopping; });
    engine_waiting = false;
}

// A waiter is woken only when its wait is over: a feeder held up by a full ring costs one thread switch
// per half ring, not one per key.
void c_web_host::unlock()
{
    const bool wake = (feeder_waiting && !pending_keys.empty() && ring_room() >= refill_room)
        || (engine_waiting && ring_room() < ring_capacity);
    mutex.unlock();
    if (wake)
        ring_changed.notify_all();
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

void c_web_host::feed_keys()
{
    std::unique_lock<std::mutex> guard(mutex);
    int batch[ring_capacity];
    for (;;) {
        feeder_waiting = true;
        ring_changed.wait(guard, [this] { return stopping || (!pending_keys.empty() && ring_room() > 0); });
        feeder_waiting = false;
        if (stopping)
            return;
        // Only this thread pushes, so the room counted under the lock is still there.
        const int count = std::min(ring_room(), static_cast<int>(pending_keys.size()));
        std::copy_n(pending_keys.begin(), count, batch);
        pending_keys.erase(pending_keys.begin(), pending_keys.begin() + count);
        guard.unlock();
        for (int index = 0; index < count; ++index)
            engine.key(batch[index]);
        guard.lock();
    }
}

int c_web_host::ring_room() const
{
    const c_keyboard& ring = engine.keyboard;
    int used = (ring.write_index - ring.read_index + c_keyboard::slot_count) % c_keyboard::slot_count;
    return ring_capacity - used;
}
