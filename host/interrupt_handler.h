// SIGINT as the break key: while the handler lives, an interrupt breaks the engine it has been given
// (none yet: the interrupt is ignored); the previous handler comes back when it goes.
#pragma once

#include <signal.h>

class c_vexil;

class c_interrupt_handler {
public:
    explicit c_interrupt_handler(c_vexil* engine = nullptr);
    ~c_interrupt_handler();
    c_interrupt_handler(const c_interrupt_handler&) = delete;
    c_interrupt_handler& operator=(const c_interrupt_handler&) = delete;

    void set_engine(c_vexil* engine);

private:
    struct sigaction previous = {};
};
