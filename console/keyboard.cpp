// The key ring between the host's thread, which pushes key codes, and the engine's, which pops them.
// One slot always stays free, so equal indexes mean empty and the ring holds at most 127 keys.
// Every operation takes the host's lock and calls no other operation while holding it.
#include "console/keyboard.h"

#include "engine/system_resource.h"
#include "engine/vexil_callback.h"

namespace {

int next_slot(int index)
{
    return (index + 1) % c_keyboard::slot_count;
}

}  // namespace

void c_keyboard::push_key(int code)
{
    c_vexil_callback* host = p_system_resource->p_callback;
    host->lock();
    const int next = next_slot(write_index);
    if (next != read_index) {
        buffer[write_index] = code;
        write_index = next;
    }
    host->unlock();
}

int c_keyboard::pop_key()
{
    c_vexil_callback* host = p_system_resource->p_callback;
    host->lock();
    int code = 0;
    if (read_index != write_index) {
        code = buffer[read_index];
        read_index = next_slot(read_index);
    }
    host->unlock();
    return code;
}

bool c_keyboard::kbhit()
{
    c_vexil_callback* host = p_system_resource->p_callback;
    host->lock();
    const bool waiting = read_index != write_index;
    host->unlock();
    return waiting;
}

void c_keyboard::clear_keybuffer()
{
    c_vexil_callback* host = p_system_resource->p_callback;
    host->lock();
    write_index = 0;
    read_index = 0;
    host->unlock();
}
