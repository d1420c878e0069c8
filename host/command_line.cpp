// Options come before or after the program file, in any order; a later one overrides an earlier one.
// "--name=value" and "--name value" are the same, and "--" makes every later argument a file name.
#include "host/command_line.h"

#include <cstdlib>
#include <cstring>

namespace {

// Decimal digits only, no sign, no blanks; false past the largest side.
bool parse_side(const std::string& text, int& value)
{
    if (text.empty() || text.size() > 5)
        return false;
    int number = 0;
    for (char c : text) {
        if (c < '0' || c > '9')
            return false;
        number = number * 10 + (c - '0');
    }
    value = number;
    return true;
}

// Splits "--name=value" into name and value; plain arguments keep an empty value.
void split_argument(const char* argument, std::string& name, std::string& value, bool& has_value)
{
    const char* equals = std::strchr(argument, '=');
    has_value = std::strncmp(argument, "--", 2) == 0 && equals != nullptr;
    name = has_value ? std::string(argument, equals) : std::string(argument);
    value = has_value ? std::string(equals + 1) : std::string();
}

// Seconds as a decimal number, fractions allowed, above 0 and at most a year.
bool parse_seconds(const std::string& text, double& seconds)
{
    if (text.empty() || text.find_first_not_of("0123456789.") != std::string::npos)
        return false;
    char* end = nullptr;
    const double value = std::strtod(text.c_str(), &end);
    if (*end != '\0' || !(value > 0) || value > 366.0 * 24 * 3600)
        return false;
    seconds = value;
    return true;
}

bool is_option(const char* argument)
{
    return argument[0] == '-' && argument[1] != '\0';
}

}  // namespace

bool parse_size(const std::string& text, int& width, int& height)
{
    std::size_t cross = text.find_first_of("xX");
    if (cross == std::string::npos)
        return false;
    int w = 0;
    int h = 0;
    if (!parse_side(text.substr(0, cross), w) || !parse_side(text.substr(cross + 1), h))
        return false;
    if (w < min_screen_width || w > max_screen_side || h < min_screen_height || h > max_screen_side)
        return false;
    width = w;
    height = h;
    return true;
}

bool parse_command_line(int argc, const char* const* argv, c_options& options, std::string& error)
{
    bool options_ended = false;
    bool have_program = false;
    for (int index = 1; index < argc; ++index) {
        const char* argument = argv[index];
        if (options_ended || !is_option(argument)) {
            if (have_program) {
                error = "more than one program file: '" + std::string(argument) + "'";
                return false;
            }
            options.program_file = argument;
            have_program = true;
            continue;
        }
        std::string name, value;
        bool has_value = false;
        split_argument(argument, name, value, has_value);
        bool takes_value = name == "--size" || name == "--png" || name == "--scale" || name == "--timeout";
        if (!takes_value && has_value) {
            error = name + " takes no value";
            return false;
        }
        if (takes_value && !has_value) {
            if (index + 1 >= argc) {
                error = name + " needs a value";
                return false;
            }
            value = argv[++index];
        }
        if (name == "--") {
            options_ended = true;
        } else if (name == "--headless") {
            options.host = host_kind::headless;
        } else if (name == "--window") {
            options.host = host_kind::window;
        } else if (name == "--terminal") {
            options.host = host_kind::terminal;
        } else if (name == "--scale") {
            int scale = 0;
            if (!parse_side(value, scale) || scale < 1 || scale > max_window_scale) {
                error = "bad --scale '" + value + "': give a whole number from 1 to 16";
                return false;
            }
            options.window_scale = scale;
        } else if (name == "--screen") {
            options.print_screen = true;
        } else if (name == "--help" || name == "-h") {
            options.show_help = true;
        } else if (name == "--version") {
            options.show_version = true;
        } else if (name == "--size") {
            if (!parse_size(value, options.screen_width, options.screen_height)) {
                error = "bad --size '" + value + "': give WxH in pixels, W from 8 and H from 16 to 4096";
                return false;
            }
            options.size_given = true;
        } else if (name == "--timeout") {
            if (!parse_seconds(value, options.timeout_seconds)) {
                error = "bad --timeout '" + value + "': give a number of seconds above 0, at most a year";
                return false;
            }
        } else if (name == "--png") {
            if (value.empty()) {
                error = "--png needs a file name";
                return false;
            }
            options.png_file = value;
        } else {
            error = "unknown option '" + name + "'";
            return false;
        }
    }
    return true;
}

const char* usage_text()
{
    return "Usage: vexil [OPTION]... [PROGRAM-FILE]\n"
           "Run a line-numbered BASIC in a full-screen console, as on a home computer's BASIC screen.\n"
           "A PROGRAM-FILE is loaded and run at start; then the console waits for lines at Ok.\n"
           "\n"
           "The face is chosen by default: headless when standard input is a pipe or a file, else the\n"
           "window when a display can be opened, else the terminal when it can address the cursor.\n"
           "  --window           a window: F11 or Alt+Enter full screen, F12 saves vexil-N.png,\n"
           "                     Control+V or Shift+Insert pastes, Control+Shift+C copies the text\n"
           "  --terminal         full screen in the terminal (text only: pixels are not shown)\n"
           "  --headless         no screen: keys from standard input, console text to standard output;\n"
           "                     the session ends when the input has ended and the console waits\n"
           "  --size WxH         screen size in pixels, default 640x480 (80 columns x 30 rows)\n"
           "  --timeout SECONDS  after SECONDS of wall time break the program as Control+C does and\n"
           "                     end the session, with exit status 124\n"
           "  --png FILE         at the end write the final screen (text over pixels) as a PNG image\n"
           "  --scale N          window: show every pixel N x N (1 to 16); default the largest that\n"
           "                     fits the desktop\n"
           "  --screen           headless: at the end print the final character grid instead of the\n"
           "                     transcript\n"
           "  -h, --help         display this help and exit\n"
           "      --version      output version information and exit\n"
           "\n"
           "Control+C breaks a running program. Closing the window or the terminal while the program\n"
           "differs from what was last saved or loaded writes it to vexil-recovered.bas.\n"
           "\n"
           "Exit status:\n"
           "  0    the session ended without an error report\n"
           "  1    an error was reported, the program file could not be loaded, the face could not\n"
           "       be opened or the PNG could not be written\n"
           "  2    a mistake on the command line\n"
           "  124  --timeout ended the session\n";
}
