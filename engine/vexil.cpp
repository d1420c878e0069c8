// The engine's wiring, its banner, the start-up run of a named program and the key loop.
#include "engine/vexil.h"

#include <cstring>

#include "engine/debug_log.h"
#include "engine/error.h"
#include "language/parser.h"

void copy_program_name(char (&name)[name_buffer_size], const char* argument)
{
    std::memset(name, 0, sizeof name);
    if (argument[0] != '"') {
        std::strncpy(name, argument, sizeof name - 1);
        return;
    }
    std::strncpy(name, argument + 1, sizeof name - 1);
    char* quote = std::strchr(name, '"');
    if (quote != nullptr)
        *quote = '\0';
}

c_vexil::~c_vexil()
{
    // An engine that was never initialised has nothing wired to take apart.
    if (system_resource.p_callback == nullptr)
        return;
    interpreter.dimension_free();
    interpreter.all_file_close();
    interpreter.program_list.clear();
    text_layer.release();
    graphic_layer.release();
}

bool c_vexil::initialize(c_vexil_callback* callback)
{
    c_system_resource& res = system_resource;
    res.p_graphic_layer = &graphic_layer;
    res.p_text_layer = &text_layer;
    res.p_text_editor = &text_editor;
    res.p_interpreter = &interpreter;
    res.p_variable_manager = &variable_manager;
    res.p_keyboard = &keyboard;
    res.p_callback = callback;
    res.error_code = error_none;
    interpreter.p_system_resource = &res;
    interpreter.program_list.p_system_resource = &res;
    text_editor.p_system_resource = &res;
    keyboard.p_system_resource = &res;

    // Without both planes there is no console to say anything on: the host reports it and ends.
    if (!graphic_layer.allocate(screen_height, screen_width)
        || !text_layer.allocate(screen_height, screen_width, line_step, &graphic_layer)) {
        text_layer.release();
        graphic_layer.release();
        return false;
    }

    text_editor.input_mode = false;
    text_editor.put_str("VEXIL v0.0.7\r\n");
    text_editor.put_str("A line-numbered BASIC for the home-computer screen.\r\n");
    text_editor.put_str("Ok\r\n");
    text_editor.input_mode = true;
    return true;
}

void c_vexil::run(const char* program_name)
{
    dlog.printf("VEXIL start\n");
    system_resource.running = true;
    if (program_name != nullptr && program_name[0] != '\0')
        startup_run(program_name);
    while (system_resource.running) {
        int code = keyboard.pop_key();
        if (code != 0) {
            text_editor.key(code);
            continue;
        }
        system_resource.p_callback->waiting_for_key();
        system_resource.p_callback->sleep(10);
    }
}

// Loads the named program and runs it as if `run` had been typed; a program that cannot be loaded
// is dropped without a word on the console (the host is told), and a clean run prints no "Ok".
void c_vexil::startup_run(const char* program_name)
{
    dlog.printf("detect command line parameter.\n");
    char name[name_buffer_size];
    copy_program_name(name, program_name);
    dlog.printf("command line parameter is:\n \"%s\"\n", name);
    interpreter.program_list.load(name, load_first_number, load_number_step);
    system_resource.p_callback->startup_loaded(system_resource.error_code);
    if (system_resource.error_code != error_none) {
        dlog.printf("failed program load.\n");
        // A program that memory could not hold is said so: it is not simply missing.
        if (system_resource.error_code == error_out_of_memory)
            text_editor.put_error(error_out_of_memory, 0);
        system_resource.error_code = error_none;
        return;
    }
    dlog.printf("success program load.\n");
    c_parser parser(&system_resource);
    const char* text = "run";
    parser.check_line_no(text);
    parser.precompile(text, nullptr);
    (void)text_editor.run_line(parser, false);
    text_editor.cursor_visible = true;
    text_editor.show_cursor();
    system_resource.p_callback->update_text();
}

void c_vexil::key(int code)
{
    keyboard.push_key(code);
}

void c_vexil::force_break()
{
    system_resource.error_code = error_break;
}

void c_vexil::quit()
{
    system_resource.running = false;
}

void c_vexil::draw(std::uint16_t* frame_buffer)
{
    text_layer.draw(frame_buffer);
}

void c_vexil::update_draw(std::uint16_t* frame_buffer)
{
    text_layer.update(frame_buffer);
}
