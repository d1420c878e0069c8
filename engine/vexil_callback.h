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

    // Observation hooks, for hosts that keep a transcript of the console or report to their user.
    // The line-break protocol: text_written for every character put into a cell; rows_moved(+1) for
    // every move down to a new row by a line break (Enter, "\r\n" written while no line is being
    // entered), never for the wrap at a row's end; rows_moved(-1) when the editor steps back up a row
    // around an error report after an immediate line (the report's own line break counts +1). Cursor placement, clearing
    // and scrolling are not reported. So a transcript writes one line break per +1, held back until
    // the next character, and a -1 takes back one held break.
    virtual void text_written(int character) { (void)character; }
    virtual void rows_moved(int count) { (void)count; }
    virtual void error_reported(int code, int line) { (void)code; (void)line; }
    virtual void waiting_for_key() {}         // the key loop found the ring empty and is about to sleep
    virtual void startup_loaded(int code) { (void)code; }  // the program file's load ended: 0 or its error
};
