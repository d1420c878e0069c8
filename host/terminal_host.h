// The host in a text terminal: the character grid fills the terminal and is drawn there as text in
// its colours (pixels cannot be shown); keys come from the terminal in raw mode.
// The caller's thread owns the terminal: it reads keys into the session and draws, at most once a
// frame and only after the engine asked for an update. Cells are only read.
#pragma once

#include <atomic>
#include <string>
#include <vector>

#include "host/session.h"
#include "host/terminal_screen.h"

class c_terminal_host : public c_session {
public:
    explicit c_terminal_host(const c_options& options);

    // The whole session; returns the exit status (see c_session::finish; 1 too when the terminal
    // cannot be used or the PNG cannot be written).
    int run();

    void update_screen() override { dirty = true; }
    void update_text() override { dirty = true; }

protected:
    void report(const std::string& line) override;  // held until the terminal is given back

private:
    void serve_terminal();
    void give_back_terminal();  // closes the screen, then writes the reports held while it was open
    void take_key(int code, bool is_function_key);

    static constexpr int frame_ms = 16;  // about 60 draws a second

    c_terminal_screen screen;
    std::atomic<bool> dirty{true};       // the banner is the first thing to draw
    std::vector<std::string> held_reports;
    bool terminal_open = false;
};
