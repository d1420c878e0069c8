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

    static constexpr int slot_count = 128;
    c_system_resource* p_system_resource = nullptr;
    int buffer[slot_count] = {};
    int write_index = 0;
    int read_index = 0;
};
