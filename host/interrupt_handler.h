// SIGINT as the break key: while the handler lives, an interrupt breaks the engine it has been given
// (none yet: the interrupt is ignored). For the interactive faces SIGHUP (the terminal closed) and
// SIGTERM also ask for the session to end, so that the program can be kept: the engine is broken and
// its key loop told to stop, and the host's loop, which polls end_requested, ends the session.
// The previous handlers come back when it goes.
#pragma once

#include <signal.h>

class c_vexil;

class c_interrupt_handler {
public:
    explicit c_interrupt_handler(c_vexil* engine = nullptr, bool ends_on_hangup = false);
    ~c_interrupt_handler();
    c_interrupt_handler(const c_interrupt_handler&) = delete;
    c_interrupt_handler& operator=(const c_interrupt_handler&) = delete;

    void set_engine(c_vexil* engine);
    // The signal that asked for the end, or 0.
    static int end_requested();

private:
    static constexpr int end_signals[] = {SIGHUP, SIGTERM};
    struct sigaction previous = {};
    struct sigaction previous_end[2] = {};
    bool ends_on_hangup;
};
