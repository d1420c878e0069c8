// The reader of standard input, Control+C, the error lines for editors, and the output at the end.
#include "host/headless_host.h"

#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <string>
#include <thread>

#include "engine/error.h"
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

c_headless_host::c_headless_host(const c_options& options) : c_session(options), transcript(stdout)
{
}

int c_headless_host::run()
{
    c_interrupt_handler interrupt_handler(&engine);
    if (!initialize())
        return exit_error;
    recording = !options.print_screen;
    start();
    c_wake_pipe wake_pipe;
    std::thread reader;
    try {
        reader = std::thread([&] { read_keys(wake_pipe.fds[0]); });
    } catch (...) {
        end();  // no key will come: the engine's thread ends before main reports the failure
        (void)finish();
        throw;
    }
    int status = finish();
    wake_pipe.wake();
    reader.join();
    write_output();
    if (!options.png_file.empty()) {
        std::string error;
        if (!write_png(options.png_file.c_str(), screen_image(engine), error)) {
            report(error);
            if (status == 0)
                status = exit_error;
        }
    }
    return status;
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

// With a program file, each report also goes to standard error as FILE:LINE: message, which editors
// and CI jump to; a report from a typed line names no line.
void c_headless_host::error_reported(int code, int line)
{
    c_session::error_reported(code, line);
    if (program_name.empty())
        return;
    if (line == 0)
        report(error_message(code));
    else
        std::fprintf(stderr, "%s:%d: %s\n", program_name.c_str(), file_line(line), error_message(code));
}

void c_headless_host::waiting_for_key()
{
    c_session::waiting_for_key();
    if (recording)
        transcript.flush();  // someone reading a pipe sees the answer while the console waits
}

void c_headless_host::read_keys(int wake_fd)
{
    unsigned char bytes[4096];
    int codes[sizeof bytes];
    pollfd watched[2] = {{STDIN_FILENO, POLLIN, 0}, {wake_fd, POLLIN, 0}};
    for (;;) {
        int ready = poll(watched, wake_fd >= 0 ? 2 : 1, -1);
        if (ready < 0 && errno == EINTR)
            continue;
        if (ready < 0 || watched[1].revents != 0)
            return;
        long count = read(STDIN_FILENO, bytes, sizeof bytes);
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            break;
        std::size_t used = 0;
        for (long index = 0; index < count; ++index)
            if (int code = byte_keys.take(bytes[index]); code != 0)
                codes[used++] = code;
        type_keys(codes, used);
        if (!wait_until_fed())
            return;
    }
    end_input();
}

void c_headless_host::write_output()
{
    if (options.print_screen) {
        std::string text = screen_text(engine);
        std::fwrite(text.data(), 1, text.size(), stdout);
    } else {
        transcript.finish();
    }
    std::fflush(stdout);
}
