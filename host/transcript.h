// The console as a printing terminal would show it: each character as the editor writes it, and one
// line break for each row the cursor moves down to; other moves and clearing show nothing. A break is
// held back until the next character, so a step back up (before an error report) can take it back.
#pragma once

#include <cstdio>

class c_transcript {
public:
    explicit c_transcript(std::FILE* out) : out(out) {}
    c_transcript(const c_transcript&) = delete;
    c_transcript& operator=(const c_transcript&) = delete;

    void character(int c);
    void rows_moved(int count);  // positive: down; negative: back up, cancelling held breaks only
    void flush();                // what is buffered reaches the stream; held breaks stay held
    void finish();               // the held breaks too, then flush

private:
    void put(char c)
    {
        if (used == sizeof buffer)
            flush();
        buffer[used++] = c;
    }
    void put_breaks();

    std::FILE* out;
    int pending_breaks = 0;
    unsigned used = 0;
    char buffer[1 << 16];
};
