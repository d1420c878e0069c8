// The host in a web page, on the shared session: the session's threads (the engine's and the key
// feeder's) run as workers sharing the page's memory, so the page's own thread (the browser's main
// thread) never blocks: it types keys into the session, asks for the break and, once per animation
// frame, takes the image when it changed.
#pragma once

#include <atomic>
#include <cstdint>
#include <mutex>
#include <string>
#include <vector>

#include "host/session.h"

class c_web_host : public c_session {
public:
    explicit c_web_host(const c_options& options);

    // Page thread. Prints the banner, brings back a program kept in kept_program_file by an earlier
    // page and keeps the unsaved program there from now on (see c_session::keep_program_in), and
    // starts the session, which loads and runs the program file when the options name one. False,
    // with a report, when the engine cannot have its memory.
    bool open(const std::string& kept_program_file);
    // Draws what changed into the upright image; true when the image and the text were taken anew.
    bool frame();
    const std::uint8_t* image() const { return reinterpret_cast<const std::uint8_t*>(upright.data()); }
    const std::string& text() const { return grid_text; }
    bool ended() const { return run_ended; }
    // The lines the session reported (a program file that cannot be loaded, an unsaved program brought
    // back), each ending in a line feed; taking them empties the list.
    std::string take_reports();

    void update_screen() override;
    void update_text() override;

protected:
    void report(const std::string& line) override;
    void on_engine_ended() override;

private:
    std::vector<std::uint16_t> frame_buffer;  // the engine's rotated layout
    std::vector<std::uint32_t> upright;       // RGBA, rows from the top: what the canvas shows
    std::string grid_text;
    std::atomic<bool> run_ended{false};
    std::atomic<bool> image_dirty{true};
    std::atomic<bool> full_draw_asked{true};
    std::mutex reports_mutex;                 // reports come from the page's thread and the engine's
    std::string reports;
};
