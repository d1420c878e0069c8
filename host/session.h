// One session of the engine, the part every host shares: the geometry, the start-up check of the
// program file, the engine's thread, keys fed into the ring as it has room, the waits the engine asks
// for, the end of the session and its exit status. A host derives from it, draws, and turns its own
// events into type_keys, break_program and end.
// Threads: the engine's runs c_vexil::run; a feeder moves typed keys into the ring, ends the session
// at --timeout and, once it is ending, keeps breaking until run returns; the host's own call the rest.
#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "engine/vexil.h"
#include "host/command_line.h"

constexpr int exit_error = 1;      // an error was reported, the program file or the PNG failed
constexpr int exit_usage = 2;      // a command-line mistake
constexpr int exit_timed_out = 124;  // --timeout ended the session, as timeout(1) does
constexpr int exit_signal_base = 128;  // plus the signal that ended the session

// Why a program file cannot be loaded, found before the engine tries, as a line for standard error;
// "" when it can be. A file line the load would split, or one past the last line number, is refused.
// file_lines receives, for each number the load will give in turn, the file line it comes from.
std::string program_file_problem(const std::string& name, std::vector<int>& file_lines);

// The first of STEM EXTENSION (only when first_number is 0), STEM-2 EXTENSION, STEM-3 EXTENSION, ...
// (from STEM-1 when first_number is 1) that does not exist in the current directory: never overwriting.
std::string unused_file_name(const std::string& stem, const std::string& extension, int first_number);

class c_session : public c_vexil_callback {
public:
    explicit c_session(const c_options& options);
    ~c_session() override;
    c_session(const c_session&) = delete;
    c_session& operator=(const c_session&) = delete;

    // The one place the geometry is set: the size the command line gave, or, when it gave none,
    // `fallback_columns` x `fallback_rows` cells (a terminal's size); 0 keeps the default.
    void set_geometry(int fallback_columns = 0, int fallback_rows = 0);
    // Initialises the engine (the banner) and checks the program file; then start runs the threads.
    // False, after one line on standard error, when the engine cannot have its memory.
    [[nodiscard]] bool initialize();
    void start();

    // Keys in order, from any host thread: they wait here and go into the ring as it has room.
    void type_keys(const int* codes, std::size_t count);
    // Blocks until every typed key is in the ring; false once the session is ending.
    bool wait_until_fed();
    // No more keys will come (headless): the session ends when the console next waits for one.
    void end_input();
    // Control+C: the running program stops with Break, a program's sleep at once.
    void break_program();
    // The window was closed or a signal came: break, and end once the current line has finished.
    void end(int signal = 0);
    bool engine_ended();
    // Waits for the engine's end and the feeder's; 128 + the signal after an end a signal asked for,
    // as a shell shows a process the signal ended; 124 after --timeout; 1 after an error report or a
    // program file that could not be loaded; else 0.
    int finish();
    // Writes the stored program to vexil-recovered.bas (-2, -3, ... beside an older one) when it differs
    // from what was last saved or loaded, and says so; after finish.
    void recover_program();
    // For a host whose end comes without warning (a web page closed), after initialize and before start:
    // a program an earlier session kept in `path` is loaded, numbered as load numbers it, and says so;
    // it counts as unsaved. From then on, each time the console waits for a key after the program
    // changed, `path` holds the program while it differs from what was last saved or loaded, and is
    // removed while it does not. Never partly written: a reader finds the old program or the new one.
    void keep_program_in(const std::string& path);
    // How often the kept file was rewritten or removed; any thread.
    unsigned kept_program_changes() const { return kept_changes.load(); }

    c_vexil engine;

    void sleep(unsigned int ms) override;
    void lock() override { mutex.lock(); }
    void unlock() override;
    void error_reported(int code, int line) override;
    void waiting_for_key() override;
    void startup_loaded(int code) override;

protected:
    // One line for standard error, "vexil: " already in front: at once, unless a host that owns the
    // terminal holds them until it is given back.
    virtual void report(const std::string& line);
    // On the engine's thread, once run has returned: wake the host's loop.
    virtual void on_engine_ended() {}
    // The file line of a stored line while the program is as the command line's file loaded it,
    // else the line's own number; 0 stays 0.
    int file_line(int program_line);

    const c_options& options;
    std::string program_name;  // as the engine opens it: quotes taken off; empty: none

    using host_clock = std::chrono::steady_clock;

private:
    void run_engine();
    void keep_program();  // engine thread
    void note_kept_program();
    void feed_keys();
    void keep_breaking(std::unique_lock<std::mutex>& guard);
    bool check_program_file();
    int file_line_of(int program_line) const;  // as loaded: the file line the number was given to

    std::thread engine_thread;
    std::thread feeder;
    bool error_seen = false;       // engine thread until it ends
    bool load_failed = false;
    bool idle = false;             // engine thread: the next sleep is the key loop's and may end early
    std::vector<int> file_lines;   // by load order: the file line each number was given to
    unsigned loaded_changes = 0;   // the program's change count after the start-up load
    bool program_as_loaded = false;
    std::string kept_program_path;  // empty: no program is kept
    unsigned kept_at_changes = 0;   // the program's counts when the kept file was last brought up to date
    unsigned kept_at_file_changes = 0;
    std::atomic<unsigned> kept_changes{0};

    // Under the mutex.
    std::deque<int> pending_keys;
    int keys_in_flight = 0;        // taken from pending_keys, not yet in the ring
    bool input_ended = false;
    bool ending = false;
    bool timed_out = false;
    int end_signal = 0;
    bool run_returned = false;
    bool feeder_waiting = false;
    bool engine_waiting = false;
    std::mutex mutex;              // the engine's one lock: it guards the key ring and the above
    std::condition_variable changed;
};
