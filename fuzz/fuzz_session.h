// A whole engine behind a host made for fuzzing: no window, sleeps only counted, keys handed to the
// ring as it empties. An input that runs too long is broken as a user would break it: from its deadline
// on, a watchdog thread calls force_break until the session ends.
#pragma once

#include <cstddef>
#include <cstdint>
#include <mutex>
#include <string>

#include "engine/vexil.h"

class c_fuzz_session : public c_vexil_callback {
public:
    c_fuzz_session();   // an initialised engine on a 640 x 480 screen; the clock starts
    ~c_fuzz_session();  // the clock stops and the scratch folder is emptied
    c_fuzz_session(const c_fuzz_session&) = delete;
    c_fuzz_session& operator=(const c_fuzz_session&) = delete;

    void sleep(unsigned int) override {}
    void lock() override { mutex.lock(); }
    void unlock() override { mutex.unlock(); }
    void update_screen() override {}
    void update_text() override {}
    void waiting_for_key() override;

    // The engine's run, with the named program if any, then the key loop fed every byte but 0 (which
    // means no key) as a key; it ends when they are used up.
    void run(const char* program_name, const std::uint8_t* data, std::size_t size);
    // Writes the line into the cleared grid's first rows, as if typed, and presses Enter.
    void enter_line(const std::string& line);

    c_vexil engine;

private:
    const std::uint8_t* keys = nullptr;
    std::size_t key_count = 0;
    std::mutex mutex;
};
