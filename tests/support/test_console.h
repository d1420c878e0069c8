// An engine behind a test host: no window, no thread. Keys go straight to the editor, as the key loop
// hands them over, and the grid is read back as text.
#pragma once

#include <mutex>
#include <string>

#include "engine/vexil.h"

struct c_test_host : c_vexil_callback {
    void sleep(unsigned int ms) override
    {
        slept_ms += ms;
        if (++sleeps == break_on_sleep)  // as Control+C during a long loop would
            p_engine->force_break();
    }
    void lock() override { mutex.lock(); }
    void unlock() override { mutex.unlock(); }
    void update_screen() override {}
    void update_text() override { ++text_updates; }
    void error_reported(int code, int) override { last_error = code; }
    void waiting_for_key() override
    {
        if (quit_when_idle)
            p_engine->quit();
    }

    unsigned long slept_ms = 0;
    int sleeps = 0;
    int break_on_sleep = 0;  // the sleep that asks for a break; 0: none does
    int text_updates = 0;
    int last_error = 0;
    bool quit_when_idle = true;
    c_vexil* p_engine = nullptr;
    std::mutex mutex;
};

// An engine of that size started behind the host: the banner shown, no key handled yet.
inline bool start_engine(c_vexil& engine, c_test_host& host, int width = 640, int height = 480)
{
    engine.screen_width = width;
    engine.screen_height = height;
    engine.line_step = height * 2;
    host.p_engine = &engine;
    return engine.initialize(&host);
}

class test_console {
public:
    explicit test_console(int width = 640, int height = 480)
    {
        start_engine(engine, host, width, height);
        engine.text_editor.clear_screen();
    }

    // One key, handled at once as the key loop would.
    void key(int code) { engine.text_editor.key(code); }
    void type(const std::string& keys)
    {
        for (unsigned char c : keys)
            key(c);
    }
    // A line typed and entered.
    void enter(const std::string& line)
    {
        type(line);
        key(13);
    }
    // Keys left waiting in the ring, for inkey and for the key loop.
    void queue(const std::string& keys)
    {
        for (unsigned char c : keys)
            engine.key(c);
    }
    // The engine's own start: loads and runs the program, then handles queued keys until none is left.
    void start(const char* program_name) { engine.run(program_name); }

    // A row as text: empty cells are spaces, trailing blanks dropped.
    std::string row(int y) const
    {
        std::string text;
        for (int x = 0; x < engine.columns(); ++x) {
            int c = engine.cell(x, y) & 0xFF;
            text += c == 0 ? ' ' : static_cast<char>(c);
        }
        text.erase(text.find_last_not_of(' ') + 1);
        return text;
    }
    // Every row down to the last that holds text, one line each.
    std::string screen() const
    {
        std::string text;
        for (int y = 0; y < engine.rows(); ++y)
            text += row(y) + "\n";
        text.erase(text.find_last_not_of('\n') + 1);
        return text.empty() ? text : text + "\n";
    }
    // Lines separated by '\n' entered in turn; the screen is cleared before the last one. Gives the rows
    // below the last line: what it printed, then "Ok" or the message.
    std::string output(const std::string& lines)
    {
        std::size_t last = lines.rfind('\n') + 1;  // 0 when there is one line
        for (std::size_t start = 0; start < last; start = lines.find('\n', start) + 1)
            enter(lines.substr(start, lines.find('\n', start) - start));
        engine.text_editor.clear_screen();
        enter(lines.substr(last));
        std::string text = screen();
        return text.substr(text.find('\n') + 1);
    }
    int cursor_x() const { return engine.text_editor.cursor_x; }
    int cursor_y() const { return engine.text_editor.cursor_y; }
    c_system_resource* resource() { return &engine.system_resource; }

    c_test_host host;
    c_vexil engine;
};
