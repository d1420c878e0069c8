// The host with a window (SDL2). The caller's thread is the window's: it handles events, types keys
// into the session and presents the image; the session's threads, started once the window exists, run
// the engine and feed the ring, so a long paste never blocks the event loop and no key is dropped.
// The engine only marks the image dirty; the window draws the changed cells into a frame buffer of its
// own at the display's rate, so output as fast as the engine can print is not slowed by the screen.
#pragma once

#include <atomic>
#include <cstdint>
#include <string>
#include <vector>

#include "host/screen_capture.h"
#include "host/session.h"

struct SDL_Window;
struct SDL_Renderer;
struct SDL_Texture;
union SDL_Event;

class c_window_host : public c_session {
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
    // One pass of the event loop: waits up to a frame for events, handles them, draws and presents
    // when the frame is due. False once the application has ended.
    bool step();
    // Stops the threads, writes --png and closes the window; returns the exit status.
    int finish();

    // The image as last presented, upright; for F12 and for tests.
    c_rgb_image presented_image() const;
    std::string title() const;
    c_vexil& engine_for_reading() { return engine; }

    void update_screen() override;
    void update_text() override;

protected:
    void on_engine_ended() override;

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

    SDL_Window* p_window = nullptr;
    SDL_Renderer* p_renderer = nullptr;
    SDL_Texture* p_texture = nullptr;
    bool video_started = false;
    std::vector<std::uint16_t> frame_buffer;  // the engine's rotated layout
    std::vector<std::uint16_t> upright;       // what the texture shows
    std::uint32_t frame_interval_ms = 16;
    std::uint32_t next_frame_ms = 0;
    bool needs_present = true;
    bool closing = false;                     // the window was closed: keys are no longer taken
    bool started = false;
    int exit_status = 0;
    std::atomic<bool> image_dirty{true};
    std::atomic<bool> full_draw_asked{true};
    std::uint32_t wake_event = 0;             // an SDL user event that wakes the event loop
    std::uint32_t title_reset_ms = 0;         // when the title names a screenshot: the tick to reset it
};

// Where the picture goes in a drawable of the given size: centred, its aspect kept, at a whole scale
// when one fits (so every pixel is the same size), otherwise shrunk to fit.
struct c_picture_place {
    int x, y, width, height;
};
c_picture_place picture_place(int drawable_width, int drawable_height, int width, int height);

// The room a window's frame takes around its picture, across and down.
struct c_window_frame {
    int width, height;
};
// The largest whole scale at which the screen and the window's frame fit the desktop's usable area
// (without its panels), at least 1.
int fitting_scale(int usable_width, int usable_height, c_window_frame frame, int width, int height);

// True when SDL can open a real display (not its offscreen or dummy driver): the automatic choice.
bool window_display_available();
