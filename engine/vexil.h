// The engine: owns every run-time object and the record through which they reach each other.
// The host sets the geometry, calls initialize on its own thread, then run on the engine thread;
// afterwards it only pushes keys, asks for a break and asks for the image.
#pragma once

#include <cstdint>

#include "console/keyboard.h"
#include "console/text_editor.h"
#include "console/text_layer.h"
#include "engine/system_resource.h"
#include "engine/vexil_callback.h"
#include "runtime/interpreter.h"
#include "runtime/variable.h"

constexpr int name_buffer_size = 260;  // a program name from the command line

// A name in double quotes ends at the next double quote; an unquoted name is taken as it stands.
// The buffer always ends with a terminator, so a name of 260 characters or more is cut to 259.
void copy_program_name(char (&name)[name_buffer_size], const char* argument);

class c_vexil {
public:
    c_vexil() = default;
    c_vexil(const c_vexil&) = delete;
    c_vexil& operator=(const c_vexil&) = delete;
    ~c_vexil();

    // False, with no banner and no planes, when the planes cannot be allocated: the engine cannot run.
    bool initialize(c_vexil_callback* callback);
    void run(const char* program_name);  // returns when `exit` has run
    void key(int code);                  // host thread
    void force_break();                  // host thread
    void quit();                         // host thread: the key loop ends after the current line
    void draw(std::uint16_t* frame_buffer);
    void update_draw(std::uint16_t* frame_buffer);

    // Reading the character grid, for hosts that show or print text.
    int columns() const { return text_layer.columns; }
    int rows() const { return text_layer.rows; }
    std::uint32_t cell(int column, int row) const { return text_layer.at(column, row); }

    int screen_height = 0;  // pixels in one frame-buffer line: the visible height
    int screen_width = 0;   // frame-buffer lines used: the visible width
    int line_step = 0;      // bytes from one frame-buffer line to the next
    c_graphic_layer graphic_layer;
    c_text_layer text_layer;
    c_text_editor text_editor;
    c_interpreter interpreter;
    c_variable_manager variable_manager;
    c_system_resource system_resource;
    c_keyboard keyboard;

private:
    void startup_run(const char* program_name);
};
