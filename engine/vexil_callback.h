// The host interface: everything the engine asks of the platform it runs on.
// The engine calls it only from its own thread. Operations 2 to 6 are what every host must give;
// the observation hooks after them default to nothing, and the engine never depends on them.
#pragma once

class c_vexil_callback {
public:
    virtual ~c_vexil_callback() = default;
    virtual void sleep(unsigned int ms) = 0;  // block the engine thread for ms milliseconds
    virtual void lock() = 0;                  // the host's one mutex, not recursive
    virtual void unlock() = 0;
    virtual void update_screen() = 0;         // answer with c_vexil::draw
    virtual void update_text() = 0;           // answer with c_vexil::update_draw

    // Observation hooks, for hosts that keep a transcript of the console.
    virtual void text_written(int character) { (void)character; }  // a character was put into a cell
    virtual void rows_moved(int count) { (void)count; }   // +1: cursor moved down to a new row; -1: the editor stepped back
    virtual void error_reported(int code, int line) { (void)code; (void)line; }
    virtual void waiting_for_key() {}         // the key loop found the ring empty and is about to sleep
};
