// The count of allocation calls and the failure plan. Relaxed atomics: the engine allocates on one
// thread at a time, but a host's thread may initialise an engine while another engine runs.
#include "engine/allocation.h"

#include <atomic>

namespace {

std::atomic<long long> calls{0};
std::atomic<long long> failing_call{0};
std::atomic<bool> failing_after{false};

}  // namespace

void allocation_fail_at(long long call, bool and_every_later)
{
    calls.store(0, std::memory_order_relaxed);
    failing_call.store(call, std::memory_order_relaxed);
    failing_after.store(and_every_later, std::memory_order_relaxed);
}

long long allocation_calls()
{
    return calls.load(std::memory_order_relaxed);
}

bool allocation_granted()
{
    const long long call = calls.fetch_add(1, std::memory_order_relaxed) + 1;
    const long long failing = failing_call.load(std::memory_order_relaxed);
    if (failing == 0 || call < failing)
        return true;
    return call > failing && !failing_after.load(std::memory_order_relaxed);
}
