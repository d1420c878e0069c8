// The transcript is buffered here and reaches its stream when the console waits and at the end.
#include "host/transcript.h"

void c_transcript::character(int c)
{
    put_breaks();
    put(static_cast<char>(c));
}

void c_transcript::rows_moved(int count)
{
    if (count > 0)
        pending_breaks += count;
    else if (count < 0)
        pending_breaks = pending_breaks + count > 0 ? pending_breaks + count : 0;
}

void c_transcript::flush()
{
    if (used > 0)
        std::fwrite(buffer, 1, used, out);
    used = 0;
    std::fflush(out);
}

void c_transcript::finish()
{
    put_breaks();
    flush();
}

void c_transcript::put_breaks()
{
    for (; pending_breaks > 0; --pending_breaks)
        put('\n');
}
