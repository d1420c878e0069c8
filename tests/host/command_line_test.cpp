// The command line: options in any order, values joined by "=" or following, and one line of
// explanation for every argument that is wrong.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "host/command_line.h"

namespace {

struct accepted_case {
    std::vector<const char*> arguments;  // after the program name
    host_kind host;
    int width;
    int height;
    bool print_screen;
    const char* png_file;
    const char* program_file;
    bool help;
    bool version;
    int scale = 0;
};

const accepted_case accepted[] = {
    {{}, host_kind::automatic, 640, 480, false, "", "", false, false},
    {{"prog.bas"}, host_kind::automatic, 640, 480, false, "", "prog.bas", false, false},
    {{"--headless", "--screen"}, host_kind::headless, 640, 480, true, "", "", false, false},
    {{"--size", "320x240"}, host_kind::automatic, 320, 240, false, "", "", false, false},
    {{"--size=320X240"}, host_kind::automatic, 320, 240, false, "", "", false, false},
    {{"--size", "8x16"}, host_kind::automatic, 8, 16, false, "", "", false, false},          // one cell
    {{"--size", "4096x4096"}, host_kind::automatic, 4096, 4096, false, "", "", false, false},
    {{"--size", "644x490"}, host_kind::automatic, 644, 490, false, "", "", false, false},    // cut grid
    {{"--size", "100x100", "--size", "200x200"}, host_kind::automatic, 200, 200, false, "", "", false, false},
    {{"--png", "out.png", "p.bas"}, host_kind::automatic, 640, 480, false, "out.png", "p.bas", false, false},
    {{"p.bas", "--png=a=b.png"}, host_kind::automatic, 640, 480, false, "a=b.png", "p.bas", false, false},
    {{"--help"}, host_kind::automatic, 640, 480, false, "", "", true, false},
    {{"-h"}, host_kind::automatic, 640, 480, false, "", "", true, false},
    {{"--version"}, host_kind::automatic, 640, 480, false, "", "", false, true},
    {{"--", "--screen"}, host_kind::automatic, 640, 480, false, "", "--screen", false, false},
    {{"-"}, host_kind::automatic, 640, 480, false, "", "-", false, false},                  // a file name
    {{"\"my prog.bas\""}, host_kind::automatic, 640, 480, false, "", "\"my prog.bas\"", false, false},
    {{"--window"}, host_kind::window, 640, 480, false, "", "", false, false},
    {{"--terminal"}, host_kind::terminal, 640, 480, false, "", "", false, false},
    {{"--window", "--headless"}, host_kind::headless, 640, 480, false, "", "", false, false},  // the last wins
    {{"--scale", "1"}, host_kind::automatic, 640, 480, false, "", "", false, false, 1},
    {{"--scale=16", "--window"}, host_kind::window, 640, 480, false, "", "", false, false, 16},
};

struct rejected_case {
    std::vector<const char*> arguments;
    const char* message;  // the whole one-line message
};

const rejected_case rejected[] = {
    {{"--size"}, "--size needs a value"},
    {{"--png"}, "--png needs a value"},
    {{"--png="}, "--png needs a file name"},
    {{"--screen=yes"}, "--screen takes no value"},
    {{"--full-screen"}, "unknown option '--full-screen'"},
    {{"--window=yes"}, "--window takes no value"},
    {{"--scale"}, "--scale needs a value"},
    {{"--scale", "0"}, "bad --scale '0': give a whole number from 1 to 16"},
    {{"--scale", "17"}, "bad --scale '17': give a whole number from 1 to 16"},
    {{"--scale=2x"}, "bad --scale '2x': give a whole number from 1 to 16"},
    {{"--scale="}, "bad --scale '': give a whole number from 1 to 16"},
    {{"-x"}, "unknown option '-x'"},
    {{"a.bas", "b.bas"}, "more than one program file: 'b.bas'"},
};

// Each side just past its limit, and what is not two plain numbers around an x.
const char* const bad_sizes[] = {"12", "7x16", "8x15", "4097x480", "640x4097", "-640x480", "640x", "x480",
    "640 x 480", "99999999999x480", "0x0"};

std::vector<const char*> with_program_name(const std::vector<const char*>& arguments)
{
    std::vector<const char*> argv{"vexil"};
    argv.insert(argv.end(), arguments.begin(), arguments.end());
    return argv;
}

std::string joined(const std::vector<const char*>& arguments)
{
    std::string text;
    for (const char* argument : arguments)
        text += std::string(" ") + argument;
    return text;
}

}  // namespace

TEST(command_line, accepts_every_valid_form)
{
    for (const auto& c : accepted) {
        auto argv = with_program_name(c.arguments);
        c_options options;
        std::string error;
        ASSERT_TRUE(parse_command_line(static_cast<int>(argv.size()), argv.data(), options, error))
            << joined(c.arguments) << ": " << error;
        EXPECT_EQ(options.host, c.host) << joined(c.arguments);
        EXPECT_EQ(options.screen_width, c.width) << joined(c.arguments);
        EXPECT_EQ(options.screen_height, c.height) << joined(c.arguments);
        EXPECT_EQ(options.print_screen, c.print_screen) << joined(c.arguments);
        EXPECT_EQ(options.png_file, c.png_file) << joined(c.arguments);
        EXPECT_EQ(options.program_file, c.program_file) << joined(c.arguments);
        EXPECT_EQ(options.show_help, c.help) << joined(c.arguments);
        EXPECT_EQ(options.show_version, c.version) << joined(c.arguments);
        EXPECT_EQ(options.window_scale, c.scale) << joined(c.arguments);
    }
}

TEST(command_line, rejects_a_wrong_argument_with_one_line_naming_it)
{
    for (const auto& c : rejected) {
        auto argv = with_program_name(c.arguments);
        c_options options;
        std::string error;
        EXPECT_FALSE(parse_command_line(static_cast<int>(argv.size()), argv.data(), options, error))
            << joined(c.arguments);
        EXPECT_EQ(error, c.message) << joined(c.arguments);
    }
}

TEST(command_line, rejects_a_size_out_of_range_or_out_of_form)
{
    for (const char* size : bad_sizes) {
        const char* argv[] = {"vexil", "--size", size};
        c_options options;
        std::string error;
        EXPECT_FALSE(parse_command_line(3, argv, options, error)) << size;
        EXPECT_EQ(error, "bad --size '" + std::string(size) + "': give WxH in pixels, W from 8 and H from 16 to 4096");
    }
}

TEST(command_line, a_rejected_size_leaves_the_default_size)
{
    int width = 640;
    int height = 480;
    EXPECT_FALSE(parse_size("0x0", width, height));
    EXPECT_EQ(width, 640);
    EXPECT_EQ(height, 480);
    EXPECT_TRUE(parse_size("320x240", width, height));
    EXPECT_EQ(width, 320);
    EXPECT_EQ(height, 240);
}

TEST(command_line, usage_lists_every_option)
{
    std::string usage = usage_text();
    for (const char* option : {"--window", "--terminal", "--headless", "--size WxH", "--scale N", "--screen",
             "--png FILE", "--help", "--version"})
        EXPECT_NE(usage.find(option), std::string::npos) << option;
}
