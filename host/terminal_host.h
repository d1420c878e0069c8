// The host in a text terminal: the character grid fills the terminal and is drawn there as text in
// its colours (pixels cannot be shown); keys come from the terminal in raw mode.
// Two threads: the caller's owns the terminal, reads keys and draws, at most once a frame and only
// after the engine asked for an update; the engine's runs c_vexil::run. Cells are only read.
#pragma once

#include <atomic>
#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>

#include "engine/vexil.h"
#include "host/command_line.h"
#include "host/terminal_screen.h"

class c_terminal_host : public c_vexil_callback {
public:
    explicit c_terminal_host(const c_options& options);
    c_terminal_host(const c_terminal_host&) = delete;
    c_terminal_host& operator=(const c_terminal_host&) = delete;

    // The whole session; returns the exit status: 1 when the terminal cannot be used, an error report
    // was shown or the PNG cannot be written, else 0.
    int run();

    void sleep(unsigned int ms) override;
    void lock() override { mutex.lock(); }
    void unlock() override;
    void update_screen() override { dirty = true; }
    void update_text() override { dirty = true; }
    void error_reported(int code, int line) override;
    void waiting_for_key() override { idle = true; }

private:
    void set_geometry();
    int finish();
    void serve_terminal();
    void take_key(int code, bool is_function_key);
    void push_pending_keys();
    int ring_room();

    static constexpr int ring_capacity = c_keyboard::slot_count - 1;  // one slot always stays free
    static constexpr int frame_ms = 16;                               // about 60 draws a second

    const c_options& options;
    c_terminal_screen screen;
    std::unique_ptr<c_vexil> p_engine;  // made once the terminal is open and its size known
    std::deque<int> pending_keys;   // typed faster than the key ring takes them (a paste)
    std::atomic<bool> dirty{true};  // the banner is the first thing to draw
    std::atomic<bool> finished{false};
    bool error_seen = false;        // engine thread, read after it has ended
    bool idle = false;              // engine thread: the next sleep is the key loop's and may end early
    bool engine_waiting = false;    // under the mutex
    std::mutex mutex;               // the engine's one lock: it guards the key ring
    std::condition_variable key_pushed;
};
