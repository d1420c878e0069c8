// The reader, the engine thread and the waits between them; Control+C; the output at the end.
#include "host/headless_host.h"

#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <string>
#include <thread>

#include "host/interrupt_handler.h"
#include "host/png_writer.h"
#include "host/screen_capture.h"

namespace {

// A pipe whose write end wakes the reader out of its wait for standard input.
struct c_wake_pipe {
    c_wake_pipe()
    {
        if (pipe(fds) != 0)
            fds[0] = fds[1] = -1;
    }
    ~c_wake_pipe()
    {
        for (int fd : fds)
            if (fd >= 0)
                close(fd);
    }
    void wake()
    {
        if (fds[1] >= 0)
            (void)!write(fds[1], "x", 1);
    }
    int fds[2];
};

}  // namespace

c_headless_host::c_headless_host(const c_options& options) : options(options), transcript(stdout)
{
    engine.screen_width = options.screen_width;
    engine.screen_height = options.screen_height;
    engine.line_step = options.screen_height * 2;
}

int c_headless_host::run()
{
    if (!engine.initialize(this)) {
        std::fputs("vexil: out of memory\n", stderr);
        return 1;
    }
    recording = !options.print_screen;
    c_interrupt_handler interrupt_handler(&engine);
    c_wake_pipe wake_pipe;

    const char* program = options.program_file.empty() ? nullptr : options.program_file.c_str();
    std::thread reader([&] { read_keys(wake_pipe.fds[0]); });
    auto stop_reader = [&] {
        {
            std::lock_guard<std::mutex> guard(mutex);
            stopping = true;
        }
        ring_changed.notify_all();
        wake_pipe.wake();
        reader.join();
    };
    std::thread engine_thread;
    try {
        engine_thread = std::thread([&] { engine.run(program); });
    } catch (...) {
        // No engine thread to be had: the reader is stopped before main reports the failure.
        stop_reader();
        throw;
    }
    engine_thread.join();
    stop_reader();
    return finish();
}

void c_headless_host::sleep(unsigned int ms)
{
    std::unique_lock<std::mutex> guard(mutex);
    if (!idle) {
        guard.unlock();
        std::this_thread::sleep_for(std::chrono::milliseconds(ms));
        return;
    }
    // The key loop's pause ends as soon as a key arrives or the input ends.
    idle = false;
    engine_waiting = true;
    ring_changed.wait_for(guard, std::chrono::milliseconds(ms),
        [this] { return ring_room() < ring_capacity || input_ended; });
    engine_waiting = false;
}

// A waiter is woken only when its wait is over, so a reader held up by a full ring costs one thread
// switch per half ring, not one per key.
void c_headless_host::unlock()
{
    bool wake = (reader_waiting && ring_room() >= refill_room) || (engine_waiting && ring_room() < ring_capacity);
    mutex.unlock();
    if (wake)
        ring_changed.notify_all();
}

void c_headless_host::text_written(int character)
{
    if (recording)
        transcript.character(character);
}

void c_headless_host::rows_moved(int count)
{
    if (recording)
        transcript.rows_moved(count);
}

void c_headless_host::error_reported(int, int)
{
    error_seen = true;
}

void c_headless_host::waiting_for_key()
{
    idle = true;
    // The ring was just found empty; a key pushed since then still counts, so look again.
    if (input_ended.load() && !engine.keyboard.kbhit()) {
        engine.quit();
        return;
    }
    if (recording)
        transcript.flush();  // someone reading a pipe sees the answer while the console waits
}

void c_headless_host::read_keys(int wake_fd)
{
    unsigned char bytes[4096];
    pollfd watched[2] = {{STDIN_FILENO, POLLIN, 0}, {wake_fd, POLLIN, 0}};
    for (;;) {
        int ready = poll(watched, wake_fd >= 0 ? 2 : 1, -1);
        if (ready < 0 && errno == EINTR)
            continue;
        if (ready < 0 || watched[1].revents != 0)
            break;
        long count = read(STDIN_FILENO, bytes, sizeof bytes);
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0 || !push_bytes(bytes, count))
            break;
    }
    {
        std::lock_guard<std::mutex> guard(mutex);
        input_ended = true;
    }
    ring_changed.notify_all();
}

// False when the session ended while the reader waited for room.
bool c_headless_host::push_bytes(const unsigned char* bytes, long count)
{
    int room = 0;
    for (long index = 0; index < count; ++index) {
        int code = byte_keys.take(bytes[index]);
        if (code == 0)
            continue;
        if (room == 0 && !wait_for_room(room))
            return false;
        // Only this thread pushes, so the room counted under the lock is still there.
        engine.key(code);
        --room;
    }
    return true;
}

bool c_headless_host::wait_for_room(int& room)
{
    std::unique_lock<std::mutex> guard(mutex);
    room = ring_room();
    if (room == 0) {
        reader_waiting = true;
        ring_changed.wait(guard, [this] { return ring_room() >= refill_room || stopping; });
        reader_waiting = false;
        room = ring_room();
    }
    return !stopping;
}

int c_headless_host::ring_room() const
{
    const c_keyboard& ring = engine.keyboard;
    int used = (ring.write_index - ring.read_index + c_keyboard::slot_count) % c_keyboard::slot_count;
    return ring_capacity - used;
}

int c_headless_host::finish()
{
    int status = error_seen ? 1 : 0;
    if (options.print_screen) {
        std::string text = screen_text(engine);
        std::fwrite(text.data(), 1, text.size(), stdout);
    } else {
        transcript.finish();
    }
    std::fflush(stdout);
    if (!options.png_file.empty()) {
        std::string error;
        if (!write_png(options.png_file.c_str(), screen_image(engine), error)) {
            std::fprintf(stderr, "vexil: %s\n", error.c_str());
            status = 1;
        }
    }
    return status;
}
