// Every heap block the engine takes comes from here, so that a test can make any one of them fail as
// a full machine would: calls are counted, and a plan names the call that fails, alone or with every
// call after it. Without a plan nothing fails but what the system refuses.
#pragma once

#include <cstddef>
#include <new>

// From the next call on: call `call` (1 is the next) fails, and with `and_every_later` all after it
// too; 0 fails none. The count starts again from 0.
void allocation_fail_at(long long call, bool and_every_later = false);
long long allocation_calls();  // calls counted since the last plan
// Counts one call; false when the plan says it fails.
bool allocation_granted();

template <class T>
T* allocate_object()
{
    return allocation_granted() ? new (std::nothrow) T : nullptr;
}

// Zeroed, as every block the engine takes must start out.
template <class T>
T* allocate_array(std::size_t count)
{
    return allocation_granted() ? new (std::nothrow) T[count]() : nullptr;
}
