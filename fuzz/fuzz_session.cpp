// The fuzzing host and its watchdog. The watchdog is one thread for the whole process; it holds its
// lock while it breaks, so an engine is never broken after its session has let it go.
#include "fuzz/fuzz_session.h"

#include <chrono>
#include <condition_variable>
#include <thread>

#include "console/text_layer.h"
#include "fuzz/scratch_files.h"

namespace {

// Long enough for thousands of statements under the sanitizers, short enough for hundreds of inputs a second.
constexpr auto time_per_input = std::chrono::milliseconds(20);
constexpr auto break_interval = std::chrono::milliseconds(1);

class c_watchdog {
public:
    c_watchdog() { std::thread([this] { watch(); }).detach(); }

    void start(c_vexil* engine)
    {
        std::lock_guard<std::mutex> guard(mutex);
        p_engine = engine;
        deadline = std::chrono::steady_clock::now() + time_per_input;
        changed.notify_one();
    }
    void stop()
    {
        std::lock_guard<std::mutex> guard(mutex);
        p_engine = nullptr;
    }

private:
    // Every line entered resets the error code, so the break is repeated until the session ends.
    void watch()
    {
        std::unique_lock<std::mutex> guard(mutex);
        for (;;) {
            if (p_engine == nullptr)
                changed.wait(guard);
            else if (std::chrono::steady_clock::now() < deadline)
                changed.wait_until(guard, deadline);
            else {
                p_engine->force_break();
                changed.wait_for(guard, break_interval);
            }
        }
    }

    std::mutex mutex;
    std::condition_variable changed;
    c_vexil* p_engine = nullptr;
    std::chrono::steady_clock::time_point deadline;
};

// Never destroyed: its thread lives as long as the process.
c_watchdog& watchdog()
{
    static c_watchdog* p_watchdog = new c_watchdog;
    return *p_watchdog;
}

}  // namespace

c_fuzz_session::c_fuzz_session()
{
    engine.screen_width = 640;
    engine.screen_height = 480;
    engine.line_step = 480 * 2;
    engine.initialize(this);
    watchdog().start(&engine);
}

c_fuzz_session::~c_fuzz_session()
{
    watchdog().stop();
    scratch_clear();
}

void c_fuzz_session::waiting_for_key()
{
    if (key_count == 0) {
        engine.quit();
        return;
    }
    // The loop asks only when the ring is empty, and a zero is never pushed: a whole ring fits.
    for (int pushed = 0; pushed < c_keyboard::slot_count - 1 && key_count > 0; --key_count, ++keys)
        if (*keys != 0) {
            engine.key(*keys);
            ++pushed;
        }
}

void c_fuzz_session::run(const char* program_name, const std::uint8_t* data, std::size_t size)
{
    keys = data;
    key_count = size;
    engine.run(program_name);
}

void c_fuzz_session::enter_line(const std::string& line)
{
    c_text_layer& layer = engine.text_layer;
    engine.text_editor.clear_screen();
    for (std::size_t i = 0; i < line.size() && static_cast<int>(i) < layer.cell_count(); ++i)
        layer.store(static_cast<int>(i), engine.text_editor.text_color | static_cast<unsigned char>(line[i]));
    engine.text_editor.key(13);
}
