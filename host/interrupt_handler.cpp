// The break is one relaxed atomic store, so calling force_break from a signal handler is safe.
#include "host/interrupt_handler.h"

#include <atomic>

#include "engine/vexil.h"

namespace {

std::atomic<c_vexil*> p_break_engine{nullptr};

void on_interrupt(int)
{
    if (c_vexil* engine = p_break_engine.load())
        engine->force_break();
}

}  // namespace

c_interrupt_handler::c_interrupt_handler(c_vexil* engine)
{
    p_break_engine = engine;
    struct sigaction action = {};
    action.sa_handler = on_interrupt;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    sigaction(SIGINT, &action, &previous);
}

c_interrupt_handler::~c_interrupt_handler()
{
    sigaction(SIGINT, &previous, nullptr);
    p_break_engine = nullptr;
}

void c_interrupt_handler::set_engine(c_vexil* engine)
{
    p_break_engine = engine;
}
