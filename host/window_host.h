// The host with a window (SDL2). The caller's thread is the window's: it handles events, feeds the
// key ring and presents the image; the engine runs on a thread of its own, started once the window
// exists, and a feeder thread hands queued keys (typed or pasted) to the ring as slots free up, so a
// long paste never blocks the event loop and no key is dropped.
// The engine only marks the image dirty; the window draws the changed cells into a frame buffer of its
// own at the display's rate, so output as fast as the engine can print is not slowed by the screen.
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
#include "host/command_line.h"
#include "host/screen_capture.h"

struct SDL_Window;
struct SDL_Renderer;
struct SDL_Texture;
union SDL_Event;

class c_window_host : public c_vexil_callback {
public:
    explicit c_window_host(const c_options& options);
    ~c_window_host() override;
    c_window_host(const c_window_host&) = delete;
    c_window_host& operator=(const c_window_host&) = delete;

    // The whole session: open, step until the application ends, finish. Returns the exit status: 1 when
    // the window cannot be opened, an error report was shown or the PNG cannot be written, else 0.
    int run();

    // Opens the window and starts the engine; false with a one-line reason.
    bool open(std::string& error);
    bool start_engine(int width, int height);  // false when the engine cannot have its planes
    // One pass of the event loop: waits up to a frame for events, handles them, draws and presents
    // when the frame is due. False once the application has ended.
    bool step();
    // Stops the threads, writes --png and closes the window; returns the exit status.
    int finish();

    // The image as last presented, upright; for F12 and for tests.
    c_rgb_image presented_image() const;
    c_vexil& engine_for_reading() { return engine; }

    void sleep(unsigned int ms) override;
    void lock() override { mutex.lock(); }
    void unlock() override;
    void update_screen() override;
    void update_text() override;
    void waiting_for_key() override;
    void error_reported(int code, int line) override;

private:
    void handle_event(const SDL_Event& event);
    void handle_key_down(const SDL_Event& event);
    void queue_keys(const std::vector<int>& codes);
    void paste();
    void copy_text();
    void save_screenshot();
    void close_window();
    void toggle_full_screen();
    void draw_frame();
    void present();
    void feed_keys();
    int ring_room() const;  // free slots, read under the mutex

    static constexpr int ring_capacity = c_keyboard::slot_count - 1;  // one slot always stays free
    static constexpr int refill_room = ring_capacity / 2;             // a waiting feeder waits for this

    const c_options& options;
    c_vexil engine;
    SDL_Window* p_window = nullptr;
    SDL_Renderer* p_renderer = nullptr;
    SDL_Texture* p_texture = nullptr;
    bool video_started = false;
    std::vector<std::uint16_t> frame_buffer;  // the engine's rotated layout
    std::vector<std::uint16_t> upright;       // what the texture shows
    std::uint32_t frame_interval_ms = 16;
    std::uint32_t next_frame_ms = 0;
    bool needs_present = true;
    // The window was closed: break and quit until run returns. The Break that causes is no error.
    std::atomic<bool> closing{false};
    bool error_seen = false;                  // engine thread, read after it has ended
    int exit_status = 0;
    std::thread engine_thread;
    std::thread feeder;
    std::atomic<bool> engine_ended{false};
    std::atomic<bool> image_dirty{true};
    std::atomic<bool> full_draw_asked{true};
    std::uint32_t wake_event = 0;             // an SDL user event that wakes the event loop
    bool idle = false;                        // engine thread: the next sleep is the key loop's

    // Under the mutex: the keys waiting for the ring, the end of the session, who waits.
    std::deque<int> pending_keys;
    bool stopping = false;
    bool feeder_waiting = false;
    bool engine_waiting = false;
    std::mutex mutex;                         // the engine's one lock: it guards the key ring
    std::condition_variable ring_changed;
};

// Where the picture goes in a drawable of the given size: centred, its aspect kept, at a whole scale
// when one fits (so every pixel is the same size), otherwise shrunk to fit.
struct c_picture_place {
    int x, y, width, height;
};
c_picture_place picture_place(int drawable_width, int drawable_height, int width, int height);

// True when SDL can open a real display (not its offscreen or dummy driver): the automatic choice.
bool window_display_available();
