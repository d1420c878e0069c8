// The command line: options in any order, values joined by "=" or following, and one line of
// explanation for every argument that is wrong.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "host/command_line.h"

namespace {

// The options that differ from the defaults, host and size always; or "error: " and the message.
std::string outcome(std::vector<const char*> arguments)
{
    arguments.insert(arguments.begin(), "vexil");
    c_options o;
    std::string error;
    if (!parse_command_line(static_cast<int>(arguments.size()), arguments.data(), o, error))
        return "error: " + error;
    const char* hosts[] = {"automatic", "headless", "window", "terminal"};
    // Appended piece by piece: g++ 12 warns falsely about chains of + on strings at -O2.
    std::string text = hosts[static_cast<int>(o.host)];
    text.append(" ").append(std::to_string(o.screen_width)).append("x").append(std::to_string(o.screen_height));
    if (o.window_scale != 0)
        text.append(" scale ").append(std::to_string(o.window_scale));
    if (o.print_screen)
        text.append(" screen");
    if (!o.png_file.empty())
        text.append(" png ").append(o.png_file);
    if (!o.program_file.empty())
        text.append(" file ").append(o.program_file);
    if (o.size_given)
        text.append(" sized");
    if (o.timeout_seconds != 0)
        text.append(" timeout ").append(std::to_string(o.timeout_seconds));
    if (o.show_help)
        text.append(" help");
    if (o.show_version)
        text.append(" version");
    return text;
}

struct argument_case {
    std::vector<const char*> arguments;
    const char* outcome;
};

// Every valid form, then a wrong argument with one line naming it; --help alone, and an unknown option
// with its status and hint, are end-to-end cases.
const argument_case cases[] = {
    {{}, "automatic 640x480"},
    {{"--headless", "--screen"}, "headless 640x480 screen"},
    {{"--headless", "--window"}, "window 640x480"},              // the last wins
    {{"--terminal"}, "terminal 640x480"},
    {{"--size=320X240"}, "automatic 320x240 sized"},
    {{"--size", "8x16"}, "automatic 8x16 sized"},                // one cell
    {{"--size", "4096x4096"}, "automatic 4096x4096 sized"},
    {{"--size", "640x480"}, "automatic 640x480 sized"},          // the default, but given
    {{"--timeout", "5"}, "automatic 640x480 timeout 5.000000"},
    {{"--timeout=0.25"}, "automatic 640x480 timeout 0.250000"},
    {{"--png", "out.png", "p.bas"}, "automatic 640x480 png out.png file p.bas"},
    {{"p.bas", "--png=a=b.png"}, "automatic 640x480 png a=b.png file p.bas"},
    {{"-h", "--version"}, "automatic 640x480 help version"},
    {{"--", "--screen"}, "automatic 640x480 file --screen"},
    {{"-"}, "automatic 640x480 file -"},                         // a file name
    {{"--scale", "1"}, "automatic 640x480 scale 1"},
    {{"--scale=16"}, "automatic 640x480 scale 16"},
    {{"--size"}, "error: --size needs a value"},
    {{"--png="}, "error: --png needs a file name"},
    {{"--screen=yes"}, "error: --screen takes no value"},
    {{"--scale", "0"}, "error: bad --scale '0': give a whole number from 1 to 16"},
    {{"--scale", "17"}, "error: bad --scale '17': give a whole number from 1 to 16"},
    {{"--scale=2x"}, "error: bad --scale '2x': give a whole number from 1 to 16"},
    {{"a.bas", "b.bas"}, "error: more than one program file: 'b.bas'"},
    {{"--timeout"}, "error: --timeout needs a value"},
    {{"--timeout", "0"}, "error: bad --timeout '0': give a number of seconds above 0, at most a year"},
    {{"--timeout", "-1"}, "error: bad --timeout '-1': give a number of seconds above 0, at most a year"},
    {{"--timeout", "1e3"}, "error: bad --timeout '1e3': give a number of seconds above 0, at most a year"},
    {{"--timeout", "1.2.3"}, "error: bad --timeout '1.2.3': give a number of seconds above 0, at most a year"},
    {{"--timeout", "99999999"}, "error: bad --timeout '99999999': give a number of seconds above 0, at most a year"},
};

// Each side just past its limit, what is not two plain numbers around an x, and 2^32 + 640 (640 once wrapped).
const char* const bad_sizes[] = {"12", "7x16", "8x15", "4097x480", "640x4097", "-640x480", "x480", "4294967936x480"};

}  // namespace

TEST(command_line, accepts_every_valid_form_and_rejects_a_wrong_argument_with_one_line_naming_it)
{
    for (const auto& c : cases)
        EXPECT_EQ(outcome(c.arguments), c.outcome) << testing::PrintToString(c.arguments);
    for (const char* size : bad_sizes)
        EXPECT_EQ(outcome({"--size", size}),
            "error: bad --size '" + std::string(size) + "': give WxH in pixels, W from 8 and H from 16 to 4096");
}

TEST(command_line, a_rejected_size_leaves_the_size_as_it_was)
{
    int width = 640, height = 480;
    EXPECT_FALSE(parse_size("320x4097", width, height));  // the width alone was good
    EXPECT_EQ(width, 640);
    EXPECT_EQ(height, 480);
}
