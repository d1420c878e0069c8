// The terminal's thread: keys into the session, the grid onto the terminal; Control+C as a break.
#include "host/terminal_host.h"

#include <algorithm>
#include <chrono>
#include <cstdio>

#include "host/interrupt_handler.h"
#include "host/png_writer.h"
#include "host/screen_capture.h"
#include "host/terminal_keys.h"

c_terminal_host::c_terminal_host(const c_options& options) : c_session(options)
{
}

int c_terminal_host::run()
{
    // Installed before the terminal opens, so curses keeps its own handler out of the way. Raw mode turns
    // Control+C into a key; a SIGINT sent from elsewhere still only breaks.
    c_interrupt_handler interrupt_handler(nullptr, true);
    std::string error;
    if (!screen.open(error)) {
        report(error);
        return exit_error;
    }
    terminal_open = true;
    set_geometry(screen.columns(), screen.rows());
    if (!initialize()) {
        give_back_terminal();
        return exit_error;
    }
    interrupt_handler.set_engine(&engine);
    try {
        start();
    } catch (...) {
        give_back_terminal();  // in its normal mode again before main reports the failure
        throw;
    }
    serve_terminal();
    int status = finish();
    give_back_terminal();
    recover_program();
    // The image is the one thing a terminal cannot show, so --png still writes it.
    if (!options.png_file.empty()) {
        if (!write_png(options.png_file.c_str(), screen_image(engine), error)) {
            report(error);
            if (status == 0)
                status = exit_error;
        }
    }
    return status;
}

void c_terminal_host::give_back_terminal()
{
    screen.close();
    terminal_open = false;
    for (const std::string& line : held_reports)
        report(line);
    held_reports.clear();
}

void c_terminal_host::report(const std::string& line)
{
    if (terminal_open)
        held_reports.push_back(line);
    else
        c_session::report(line);
}

// Until the engine's run returns: read keys, and draw when the engine asked for it and a frame is due.
// With nothing to draw the wait for a key is one frame, so an update waits at most that long.
void c_terminal_host::serve_terminal()
{
    auto next_frame = host_clock::now();
    while (!engine_ended()) {
        if (int signal = c_interrupt_handler::end_requested(); signal != 0)
            end(signal);
        long long wait = frame_ms;
        if (dirty)
            wait = std::chrono::duration_cast<std::chrono::milliseconds>(next_frame - host_clock::now()).count();
        int code = 0;
        bool is_function_key = false;
        if (screen.read_key(static_cast<int>(std::clamp<long long>(wait, 0, frame_ms)), code, is_function_key))
            take_key(code, is_function_key);
        auto now = host_clock::now();
        if (now >= next_frame && dirty.exchange(false)) {
            screen.draw(engine);
            next_frame = now + std::chrono::milliseconds(frame_ms);
        }
    }
}

void c_terminal_host::take_key(int code, bool is_function_key)
{
    int key = terminal_key(code, is_function_key);
    if (key == terminal_break) {
        break_program();
    } else if (key == terminal_resize) {
        screen.resized();
        dirty = true;
    } else if (key != 0) {
        type_keys(&key, 1);
    }
}
