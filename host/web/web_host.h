// The host in a web page. The page's thread (the browser's main thread) never blocks: it queues keys,
// asks for the break and, once per animation frame, takes the image. The engine runs on a thread of its
// own (a worker sharing the memory), and a feeder thread hands queued keys to the ring as slots free up,
// so a long paste is typed at the console's pace and none is lost.
#pragma once

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "engine/vexil.h"

class c_web_host : public c_vexil_callback {
public:
    c_web_host(int width, int height);
    c_web_host(const c_web_host&) = delete;
    c_web_host& operator=(const c_web_host&) = delete;

    // Page thread. Starts the engine, which loads and runs the program file when one is named.
    void start(const std::string& program_file);
    void queue_keys(const int* codes, int count);
    void force_break();
    // Draws what changed into the upright image; true when the image (or the text) changed since the
    // last frame.
    bool frame();
    const std::uint8_t* image() const { return reinterpret_cast<const std::uint8_t*>(upright.data()); }
    const std::string& text() const { return grid_text; }
    bool ended() const { return engine_ended; }
    int width() const { return engine.screen_width; }
    int height() const { return engine.screen_height; }

    void sleep(unsigned int ms) override;
    void lock() override { mutex.lock(); }
    void unlock() override;
    void update_screen() override;
    void update_text() override;
    void waiting_for_key() override { idle = true; }

private:
    void feed_keys();
    int ring_room() const;  // free slots, read under the mutex

    static constexpr int ring_capacity = c_keyboard::slot_count - 1;  // one slot always stays free
    static constexpr int refill_room = ring_capacity / 2;             // a waiting feeder waits for this

    c_vexil engine;
    std::string program;
    std::vector<std::uint16_t> frame_buffer;  // the engine's rotated layout
    std::vector<std::uint32_t> upright;       // RGBA, rows from the top, what the canvas shows
    std::string grid_text;
    std::thread engine_thread;
    std::thread feeder;
    std::atomic<bool> engine_ended{false};
    std::atomic<bool> image_dirty{true};
    std::atomic<bool> full_draw_asked{true};
    bool idle = false;  // engine thread: the next sleep is the key loop's

    // Under the mutex: the keys waiting for the ring, the end of the session, who waits.
    std::deque<int> pending_keys;
    bool stopping = false;
    bool feeder_waiting = false;
    bool engine_waiting = false;
    std::mutex mutex;  // the engine's one lock: it guards the key ring
    std::condition_variable ring_changed;
};
