// The record through which the engine's objects reach each other. It owns nothing.
#pragma once

#include <atomic>

class c_graphic_layer;
class c_text_layer;
class c_text_editor;
class c_interpreter;
class c_variable_manager;
class c_vexil_callback;
class c_keyboard;

// The current error code. A break is stored by the host's thread while the engine's reads and writes it,
// so every load and store is one indivisible relaxed operation.
class c_error_code {
public:
    operator int() const { return value.load(std::memory_order_relaxed); }
    c_error_code& operator=(int code)
    {
        value.store(code, std::memory_order_relaxed);
        return *this;
    }
    // Records a failure: the first code stays, and success (0) never clears one, a break included.
    void raise(int code)
    {
        if (code == 0)
            return;
        int none = 0;
        value.compare_exchange_strong(none, code, std::memory_order_relaxed);
    }

private:
    std::atomic<int> value{0};
};

struct c_system_resource {
    std::atomic<bool> running{false};  // the key loop runs while set; `exit` clears it
    bool executing = false;            // the statement loop runs while set
    c_error_code error_code;
    c_graphic_layer* p_graphic_layer = nullptr;
    c_text_layer* p_text_layer = nullptr;
    c_text_editor* p_text_editor = nullptr;
    c_interpreter* p_interpreter = nullptr;
    c_variable_manager* p_variable_manager = nullptr;
    c_vexil_callback* p_callback = nullptr;
    c_keyboard* p_keyboard = nullptr;
};
