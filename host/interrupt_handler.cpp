// Each handler only stores into atomics (the break is one relaxed store), so it is safe in a signal.
#include "host/interrupt_handler.h"

#include <atomic>
#include <iterator>

#include "engine/vexil.h"

namespace {

std::atomic<c_vexil*> p_break_engine{nullptr};
std::atomic<int> end_signal{0};

void on_interrupt(int)
{
    if (c_vexil* engine = p_break_engine.load())
        engine->force_break();
}

void on_end_request(int signal)
{
    end_signal = signal;
    if (c_vexil* engine = p_break_engine.load()) {
        engine->force_break();
        engine->quit();
    }
}

struct sigaction handler_action(void (*handler)(int))
{
    struct sigaction action = {};
    action.sa_handler = handler;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    return action;
}

}  // namespace

c_interrupt_handler::c_interrupt_handler(c_vexil* engine, bool ends_on_hangup) : ends_on_hangup(ends_on_hangup)
{
    p_break_engine = engine;
    struct sigaction action = handler_action(on_interrupt);
    sigaction(SIGINT, &action, &previous);
    if (!ends_on_hangup)
        return;
    end_signal = 0;
    action = handler_action(on_end_request);
    for (std::size_t index = 0; index < std::size(end_signals); ++index)
        sigaction(end_signals[index], &action, &previous_end[index]);
}

c_interrupt_handler::~c_interrupt_handler()
{
    sigaction(SIGINT, &previous, nullptr);
    if (ends_on_hangup)
        for (std::size_t index = 0; index < std::size(end_signals); ++index)
            sigaction(end_signals[index], &previous_end[index], nullptr);
    p_break_engine = nullptr;
    end_signal = 0;
}

void c_interrupt_handler::set_engine(c_vexil* engine)
{
    p_break_engine = engine;
}

int c_interrupt_handler::end_requested()
{
    return end_signal.load();
}
