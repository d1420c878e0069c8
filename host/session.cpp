// The engine's thread and the feeder's; the waits, the end and the exit status; the start-up report.
#include "host/session.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <vector>

#include "console/text_layer.h"
#include "engine/error.h"
#include "language/program_list.h"

namespace {

// A break stored from a signal handler wakes no one: a program's sleep looks at least this often.
constexpr auto break_poll = std::chrono::milliseconds(20);
// Once ending, the feeder breaks again this often: a line entered just before the end starts afresh.
constexpr auto rebreak_interval = std::chrono::milliseconds(10);
constexpr int file_line_limit = 255;  // longer file lines are split by the load

std::string in_quotes(const std::string& name)
{
    return "\"" + name + "\"";
}

}  // namespace

// The load reads at most 255 characters at a time: a file line of exactly 255 leaves its line end to
// be read as a blank line of its own, which takes a number too. Each piece read takes the next number.
std::string program_file_problem(const std::string& name, std::vector<int>& file_lines)
{
    file_lines.clear();
    std::FILE* file = std::fopen(name.c_str(), "rb");
    if (file == nullptr)
        return "cannot load " + in_quotes(name) + ": " + std::strerror(errno);
    struct stat status = {};
    if (fstat(fileno(file), &status) == 0 && S_ISDIR(status.st_mode)) {
        std::fclose(file);
        return "cannot load " + in_quotes(name) + ": " + std::strerror(EISDIR);
    }
    std::string problem;
    int line = 1;
    int line_length = 0;   // characters of this file line, line end left out
    int piece_length = 0;  // characters of the piece the load reads, 0: the next starts a piece
    for (int c = std::fgetc(file); c != EOF && problem.empty(); c = std::fgetc(file)) {
        int code = error_none;
        if (piece_length == 0 && load_first_number + static_cast<long long>(file_lines.size()) * load_number_step > max_line_number)
            code = error_illegal_line_number;
        else if (c != '\n' && c != '\r' && ++line_length > file_line_limit)
            code = error_too_long_line;
        if (code != error_none) {
            problem = in_quotes(name) + " line " + std::to_string(line) + ": " + error_message(code);
            break;
        }
        if (piece_length++ == 0)
            file_lines.push_back(line);
        if (c == '\n') {
            ++line;
            line_length = piece_length = 0;
        } else if (piece_length == file_line_limit) {
            piece_length = 0;
        }
    }
    if (problem.empty() && std::ferror(file))
        problem = "cannot load " + in_quotes(name) + ": " + std::strerror(errno);
    std::fclose(file);
    return problem;
}

std::string unused_file_name(const std::string& stem, const std::string& extension, int first_number)
{
    for (int number = first_number;; ++number) {
        // Appended piece by piece: g++ 12 warns falsely about chains of + on strings at -O2.
        std::string name = stem;
        if (number > 1 || first_number > 0)
            name.append("-").append(std::to_string(number));
        name.append(extension);
        std::error_code error;
        // A directory that cannot be searched gives up at once: writing the file then says why.
        if (!std::filesystem::exists(name, error) || error)
            return name;
    }
}

c_session::c_session(const c_options& options) : options(options)
{
    char name[name_buffer_size];
    copy_program_name(name, options.program_file.c_str());
    program_name = name;
    set_geometry();
}

c_session::~c_session()
{
    // Reached with the engine still running only when a host failed half-way (a thread refused):
    // end the session so that finish does not wait for keys that will never come.
    if (engine_thread.joinable()) {
        end();
        (void)finish();
    }
}

void c_session::set_geometry(int fallback_columns, int fallback_rows)
{
    int width = options.screen_width;
    int height = options.screen_height;
    if (!options.size_given && fallback_columns > 0 && fallback_rows > 0) {
        width = std::clamp(fallback_columns, 1, max_screen_side / glyph_width) * glyph_width;
        height = std::clamp(fallback_rows, 1, max_screen_side / glyph_height) * glyph_height;
    }
    engine.screen_width = width;
    engine.screen_height = height;
    engine.line_step = height * 2;
}

bool c_session::initialize()
{
    if (!engine.initialize(this)) {
        report("out of memory");
        return false;
    }
    if (!program_name.empty() && !check_program_file())
        program_name.clear();
    return true;
}

void c_session::start()
{
    feeder = std::thread([this] { feed_keys(); });
    try {
        engine_thread = std::thread([this] { run_engine(); });
    } catch (...) {
        // No engine thread to be had: the feeder leaves before main reports the failure.
        {
            std::lock_guard<std::mutex> guard(mutex);
            ending = run_returned = true;
        }
        changed.notify_all();
        feeder.join();
        throw;
    }
}

void c_session::run_engine()
{
    engine.run(program_name.empty() ? nullptr : options.program_file.c_str());
    if (!kept_program_path.empty())
        keep_program();  // a line stored just before exit, with no wait for a key after it
    {
        std::lock_guard<std::mutex> guard(mutex);
        run_returned = true;
    }
    changed.notify_all();
    on_engine_ended();
}

void c_session::type_keys(const int* codes, std::size_t count)
{
    bool wake = false;
    {
        std::lock_guard<std::mutex> guard(mutex);
        if (ending)
            return;
        pending_keys.insert(pending_keys.end(), codes, codes + count);
        wake = feeder_waiting;
    }
    if (wake)
        changed.notify_all();
}

bool c_session::wait_until_fed()
{
    std::unique_lock<std::mutex> guard(mutex);
    changed.wait(guard, [this] { return ending || run_returned || (pending_keys.empty() && keys_in_flight == 0); });
    return !ending && !run_returned;
}

void c_session::end_input()
{
    (void)wait_until_fed();
    {
        std::lock_guard<std::mutex> guard(mutex);
        input_ended = true;
    }
    changed.notify_all();
}

void c_session::break_program()
{
    engine.force_break();
    // Through the mutex, so a sleep that has just looked at the code cannot miss the wake-up.
    { std::lock_guard<std::mutex> guard(mutex); }
    changed.notify_all();
}

void c_session::end(int signal)
{
    {
        std::lock_guard<std::mutex> guard(mutex);
        if (!ending && signal != 0)
            end_signal = signal;
        ending = true;
        pending_keys.clear();
    }
    engine.force_break();
    engine.quit();
    changed.notify_all();
}

bool c_session::engine_ended()
{
    std::lock_guard<std::mutex> guard(mutex);
    return run_returned;
}

int c_session::finish()
{
    if (engine_thread.joinable())
        engine_thread.join();
    {
        std::lock_guard<std::mutex> guard(mutex);
        ending = true;
    }
    changed.notify_all();
    if (feeder.joinable())
        feeder.join();
    if (end_signal != 0)
        return exit_signal_base + end_signal;
    if (timed_out)
        return exit_timed_out;
    return error_seen || load_failed ? exit_error : 0;
}

void c_session::recover_program()
{
    const c_program_list& program = engine.interpreter.program_list;
    if (program.first == nullptr || !program.differs_from_file())
        return;
    const std::string name = unused_file_name("vexil-recovered", ".bas", 0);
    if (!program.write(name.c_str())) {
        report("the program was not saved and cannot be written to " + in_quotes(name) + ": " + std::strerror(errno));
        return;
    }
    report("the program was not saved: it is in " + in_quotes(name) + "; type load " + in_quotes(name) + " to get it back");
}

void c_session::keep_program_in(const std::string& path)
{
    kept_program_path = path;
    c_program_list& program = engine.interpreter.program_list;
    std::error_code failure;
    if (std::filesystem::exists(path, failure)) {
        (void)program.load(path.c_str(), load_first_number, load_number_step);
        engine.system_resource.error_code = error_none;
        if (program.first != nullptr) {
            program.changes_at_file = program.changes - 1;  // from no file of the user's
            report("the program not saved in the last session is back: list shows it, save keeps it");
        }
    }
    note_kept_program();
}

void c_session::sleep(unsigned int ms)
{
    std::unique_lock<std::mutex> guard(mutex);
    if (idle) {
        // The key loop's pause ends as soon as a key arrives, the input ends or the session does.
        idle = false;
        engine_waiting = true;
        changed.wait_for(guard, std::chrono::milliseconds(ms),
            [this] { return engine.keyboard.room() < c_keyboard::capacity || input_ended || ending; });
        engine_waiting = false;
        return;
    }
    // A program's sleep ends early at a break, so a long one can be broken at once.
    const auto wake_time = host_clock::now() + std::chrono::milliseconds(ms);
    auto broken = [this] { return engine.system_resource.error_code != error_none || ending; };
    while (!broken() && host_clock::now() < wake_time)
        changed.wait_until(guard, std::min(wake_time, host_clock::now() + break_poll), broken);
}

// A waiter is woken only when its wait is over: a feeder held up by a full ring costs one thread
// switch per half ring, not one per key.
void c_session::unlock()
{
    const int room = engine.keyboard.room();
    const bool wake = (feeder_waiting && !pending_keys.empty() && room >= c_keyboard::capacity / 2)
        || (engine_waiting && room < c_keyboard::capacity);
    mutex.unlock();
    if (wake)
        changed.notify_all();
}

void c_session::error_reported(int, int)
{
    // The Break that ends a closed window's program is no error of the program's.
    std::lock_guard<std::mutex> guard(mutex);
    if (!ending)
        error_seen = true;
}

void c_session::waiting_for_key()
{
    idle = true;
    if (!kept_program_path.empty())
        keep_program();
    std::lock_guard<std::mutex> guard(mutex);
    // The ring was just found empty, and input_ended is set only once every key is in it.
    if (ending || (input_ended && engine.keyboard.room() == c_keyboard::capacity))
        engine.quit();
}

void c_session::startup_loaded(int code)
{
    c_program_list& program = engine.interpreter.program_list;
    note_kept_program();  // a program file loaded at the start is no change to keep
    if (code == error_none) {
        program_as_loaded = true;
        loaded_changes = program.changes;
        return;
    }
    // The load stops at the line that failed, and that line is stored, as the last.
    const c_program_line* last = program.first;
    while (last != nullptr && last->next != nullptr)
        last = last->next;
    load_failed = true;
    report(in_quotes(program_name) + " line " + std::to_string(file_line_of(last != nullptr ? last->number : 0)) + ": "
        + error_message(code));
}

void c_session::report(const std::string& line)
{
    std::fprintf(stderr, "vexil: %s\n", line.c_str());
}

int c_session::file_line(int program_line)
{
    const c_program_list& program = engine.interpreter.program_list;
    if (program_line == 0 || !program_as_loaded || program.changes != loaded_changes)
        return program_line;
    return file_line_of(program_line);
}

int c_session::file_line_of(int program_line) const
{
    const long long index = (static_cast<long long>(program_line) - load_first_number) / load_number_step;
    return index >= 0 && index < static_cast<long long>(file_lines.size()) ? file_lines[index] : program_line;
}

void c_session::keep_program()
{
    const c_program_list& program = engine.interpreter.program_list;
    if (program.changes == kept_at_changes && program.changes_at_file == kept_at_file_changes)
        return;
    note_kept_program();
    if (program.first == nullptr || !program.differs_from_file())
        std::remove(kept_program_path.c_str());
    else if (!program.write(kept_program_path.c_str()))
        report("the program cannot be kept in " + in_quotes(kept_program_path) + ": " + std::strerror(errno));
    ++kept_changes;
}

void c_session::note_kept_program()
{
    kept_at_changes = engine.interpreter.program_list.changes;
    kept_at_file_changes = engine.interpreter.program_list.changes_at_file;
}

void c_session::feed_keys()
{
    std::unique_lock<std::mutex> guard(mutex);
    const bool has_deadline = options.timeout_seconds > 0;
    const auto deadline = host_clock::now()
        + std::chrono::duration_cast<host_clock::duration>(std::chrono::duration<double>(options.timeout_seconds));
    int batch[c_keyboard::capacity];
    while (!run_returned) {
        auto ready = [this] { return ending || run_returned || (!pending_keys.empty() && engine.keyboard.room() > 0); };
        feeder_waiting = true;
        if (!has_deadline)
            changed.wait(guard, ready);
        else if (!changed.wait_until(guard, deadline, ready) && !ending)
            timed_out = ending = true;
        feeder_waiting = false;
        if (ending) {
            keep_breaking(guard);
            return;
        }
        // Only this thread pushes, so the room counted under the lock is still there.
        const int count = std::min(engine.keyboard.room(), static_cast<int>(pending_keys.size()));
        std::copy_n(pending_keys.begin(), count, batch);
        pending_keys.erase(pending_keys.begin(), pending_keys.begin() + count);
        keys_in_flight = count;
        guard.unlock();
        for (int index = 0; index < count; ++index)
            engine.key(batch[index]);
        guard.lock();
        keys_in_flight = 0;
        changed.notify_all();
    }
}

// Until run returns: the line that was running, or one entered just before the end, is broken, and
// the key loop ends after it.
void c_session::keep_breaking(std::unique_lock<std::mutex>& guard)
{
    pending_keys.clear();
    while (!run_returned) {
        engine.force_break();
        engine.quit();
        changed.notify_all();
        changed.wait_for(guard, rebreak_interval, [this] { return run_returned; });
    }
}

bool c_session::check_program_file()
{
    const std::string problem = program_file_problem(program_name, file_lines);
    if (problem.empty())
        return true;
    load_failed = true;
    report(problem);
    return false;
}
