// The host with no screen: keys are the bytes of standard input, the console's text goes to standard
// output as a transcript (or, at the end, as the final grid), and the image can be saved as a PNG.
// Three threads: the caller's waits for the session, the engine's runs c_vexil::run, a reader's feeds
// the key ring and waits whenever it is full, so no key is ever dropped.
#pragma once

#include <atomic>
#include <condition_variable>
#include <mutex>

#include "engine/vexil.h"
#include "host/byte_keys.h"
#include "host/command_line.h"
#include "host/transcript.h"

class c_headless_host : public c_vexil_callback {
public:
    explicit c_headless_host(const c_options& options);
    c_headless_host(const c_headless_host&) = delete;
    c_headless_host& operator=(const c_headless_host&) = delete;

    // The whole session; returns the exit status: 1 when an error report was printed, else 0
    // (1 too when the PNG cannot be written).
    int run();

    void sleep(unsigned int ms) override;
    void lock() override { mutex.lock(); }
    void unlock() override;
    void update_screen() override {}  // the image is composed once, at the end
    void update_text() override {}
    void text_written(int character) override;
    void rows_moved(int count) override;
    void error_reported(int code, int line) override;
    void waiting_for_key() override;

private:
    void read_keys(int wake_fd);
    bool push_bytes(const unsigned char* bytes, long count);
    bool wait_for_room(int& room);
    int ring_room() const;  // free slots, read under the mutex
    int finish();

    static constexpr int ring_capacity = c_keyboard::slot_count - 1;  // one slot always stays free
    static constexpr int refill_room = ring_capacity / 2;             // a full ring waits for this

    const c_options& options;
    c_vexil engine;
    c_transcript transcript;
    c_byte_keys byte_keys;
    bool recording = false;       // from the end of the banner on, and only for the transcript
    bool error_seen = false;      // engine thread, read after it has ended
    bool idle = false;            // engine thread: the next sleep is the key loop's and may end early
    std::atomic<bool> input_ended{false};
    // Under the mutex: the session is over, the reader leaves; who waits on ring_changed.
    bool stopping = false;
    bool reader_waiting = false;
    bool engine_waiting = false;
    std::mutex mutex;             // the engine's one lock: it guards the key ring
    std::condition_variable ring_changed;
};
