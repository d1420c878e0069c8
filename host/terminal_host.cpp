// The terminal's thread: keys into the ring, the grid onto the terminal; Control+C as a break.
#include "host/terminal_host.h"

#include <signal.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <string>
#include <thread>

#include "host/interrupt_handler.h"
#include "host/png_writer.h"
#include "host/screen_capture.h"
#include "host/terminal_keys.h"

namespace {

using host_clock = std::chrono::steady_clock;

// Whether the command line gave a size: one equal to the default cannot be told from none.
bool size_given(const c_options& options)
{
    c_options defaults;
    return options.screen_width != defaults.screen_width || options.screen_height != defaults.screen_height;
}

}  // namespace

c_terminal_host::c_terminal_host(const c_options& options) : options(options)
{
}

int c_terminal_host::run()
{
    // Installed before the terminal opens, so curses keeps its own handler out of the way. Raw mode turns
    // Control+C into a key; a SIGINT sent from elsewhere still only breaks.
    c_interrupt_handler interrupt_handler;
    std::string error;
    if (!screen.open(error)) {
        std::fprintf(stderr, "vexil: %s\n", error.c_str());
        return 1;
    }
    p_engine = std::make_unique<c_vexil>();
    c_vexil& engine = *p_engine;
    set_geometry();
    if (!engine.initialize(this)) {
        screen.close();
        std::fputs("vexil: out of memory\n", stderr);
        return 1;
    }
    interrupt_handler.set_engine(&engine);
    const char* program = options.program_file.empty() ? nullptr : options.program_file.c_str();
    std::thread engine_thread;
    try {
        engine_thread = std::thread([&] {
            engine.run(program);
            finished = true;
        });
    } catch (...) {
        screen.close();  // the terminal in its normal mode again before main reports the failure
        throw;
    }
    serve_terminal();
    engine_thread.join();
    screen.close();
    return finish();
}

void c_terminal_host::sleep(unsigned int ms)
{
    std::unique_lock<std::mutex> guard(mutex);
    if (!idle) {
        // A program's sleep ends early at Control+C, so a long one can be broken at once.
        key_pushed.wait_for(guard, std::chrono::milliseconds(ms), [this] { return p_engine->system_resource.error_code != 0; });
        return;
    }
    // The key loop's pause ends as soon as a key arrives.
    idle = false;
    engine_waiting = true;
    key_pushed.wait_for(guard, std::chrono::milliseconds(ms), [this] { return ring_room() < ring_capacity; });
    engine_waiting = false;
}

void c_terminal_host::unlock()
{
    bool wake = engine_waiting && ring_room() < ring_capacity;
    mutex.unlock();
    if (wake)
        key_pushed.notify_all();
}

void c_terminal_host::error_reported(int, int)
{
    error_seen = true;
}

void c_terminal_host::set_geometry()
{
    int width = options.screen_width, height = options.screen_height;
    if (!size_given(options)) {
        width = std::clamp(screen.columns(), 1, max_screen_side / glyph_width) * glyph_width;
        height = std::clamp(screen.rows(), 1, max_screen_side / glyph_height) * glyph_height;
    }
    p_engine->screen_width = width;
    p_engine->screen_height = height;
    p_engine->line_step = height * 2;
}

// The image is the one thing a terminal cannot show, so --png still writes it.
int c_terminal_host::finish()
{
    int status = error_seen ? 1 : 0;
    if (!options.png_file.empty()) {
        std::string error;
        if (!write_png(options.png_file.c_str(), screen_image(*p_engine), error)) {
            std::fprintf(stderr, "vexil: %s\n", error.c_str());
            status = 1;
        }
    }
    return status;
}

// Until the engine's run returns: read keys, and draw when the engine asked for it and a frame is due.
// With nothing to draw the wait for a key is one frame, so an update waits at most that long.
void c_terminal_host::serve_terminal()
{
    auto next_frame = host_clock::now();
    while (!finished) {
        long long wait = frame_ms;
        if (dirty)
            wait = std::chrono::duration_cast<std::chrono::milliseconds>(next_frame - host_clock::now()).count();
        int code = 0;
        bool is_function_key = false;
        if (screen.read_key(static_cast<int>(std::clamp<long long>(wait, 0, frame_ms)), code, is_function_key))
            take_key(code, is_function_key);
        push_pending_keys();
        auto now = host_clock::now();
        if (now >= next_frame && dirty.exchange(false)) {
            screen.draw(*p_engine);
            next_frame = now + std::chrono::milliseconds(frame_ms);
        }
    }
}

void c_terminal_host::take_key(int code, bool is_function_key)
{
    int key = terminal_key(code, is_function_key);
    if (key == terminal_break) {
        p_engine->force_break();
        // Through the mutex, so a sleep that has just looked at the code cannot miss the wake-up.
        { std::lock_guard<std::mutex> guard(mutex); }
        key_pushed.notify_all();
    } else if (key == terminal_resize) {
        screen.resized();
        dirty = true;
    } else if (key != 0) {
        pending_keys.push_back(key);
    }
}

void c_terminal_host::push_pending_keys()
{
    if (pending_keys.empty())
        return;
    int room = 0;
    {
        std::lock_guard<std::mutex> guard(mutex);
        room = ring_room();
    }
    // Only this thread pushes, so the room counted under the lock is still there.
    for (; room > 0 && !pending_keys.empty(); --room) {
        p_engine->key(pending_keys.front());
        pending_keys.pop_front();
    }
}

// Free slots of the key ring; the caller holds the mutex.
int c_terminal_host::ring_room()
{
    const c_keyboard& ring = p_engine->keyboard;
    int used = (ring.write_index - ring.read_index + c_keyboard::slot_count) % c_keyboard::slot_count;
    return ring_capacity - used;
}
