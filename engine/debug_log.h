// The trace log: the engine passes its trace lines here and they go nowhere.
// Kept as a real object so the trace points stay in the code and cost nothing.
#pragma once

class c_debug_log {
public:
    void printf(const char*, ...) {}
};

inline c_debug_log dlog;
