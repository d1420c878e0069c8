// The key ring between the host's thread, which pushes key codes, and the engine's, which pops them.
// One slot always stays free, so equal indexes mean empty and the ring holds at most 127 keys.
// Every operation takes the host's lock and calls no other operation while holding it.
#pragma once

struct c_system_resource;

class c_keyboard {
public:
    void push_key(int code);  // a key pushed into a full ring is dropped
    int pop_key();            // 0 when the ring is empty
    bool kbhit();
    void clear_keybuffer();
    // Keys the ring can still take; the caller holds the host's lock, as hosts do when they feed it.
    int room() const { return capacity - (write_index - read_index + slot_count) % slot_count; }

    static constexpr int capacity = 127;  // one slot always stays free

    static constexpr int slot_count = capacity + 1;
    c_system_resource* p_system_resource = nullptr;
    int buffer[slot_count] = {};
    int write_index = 0;
    int read_index = 0;
};
