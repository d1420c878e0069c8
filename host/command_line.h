// The command line of every host: which front end, the screen size, what to write at the end and the
// program to load. Parsing only reads its arguments, so a table of argument lists can test it.
#pragma once

#include <string>

constexpr const char* vexil_version = "VEXIL v0.0.7";

// Automatic: headless when standard input is a pipe or a file, else the window when a display can be
// opened, else the terminal when standard input and output are a terminal that can move the cursor,
// else headless.
enum class host_kind { automatic, headless, window, terminal };

// One cell is the smallest screen; the largest keeps the planes and the image within a few tens of MB.
constexpr int min_screen_width = 8;
constexpr int min_screen_height = 16;
constexpr int max_screen_side = 4096;
constexpr int max_window_scale = 16;

struct c_options {
    host_kind host = host_kind::automatic;
    int screen_width = 640;   // 80 columns
    int screen_height = 480;  // 30 rows
    bool size_given = false;  // --size was given: a terminal's own size does not replace it
    bool print_screen = false;
    int window_scale = 0;      // 0: the largest whole scale that fits the desktop
    std::string png_file;      // empty: no image
    std::string program_file;  // empty: none; handed to the engine as written, quotes included
    double timeout_seconds = 0;  // 0: none; else the session is broken and ended after this wall time
    bool show_help = false;
    bool show_version = false;
};

// Fills options from the arguments after the program name; false with a one-line message, naming the
// offending argument, at the first one that is wrong.
bool parse_command_line(int argc, const char* const* argv, c_options& options, std::string& error);

// "WxH" (or "WXH") with both numbers in range; false leaves width and height unchanged.
bool parse_size(const std::string& text, int& width, int& height);

const char* usage_text();
