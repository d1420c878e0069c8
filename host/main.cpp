// The entry point: reads the command line, answers --help and --version, and runs the chosen host.
#include <unistd.h>

#include <cstdio>
#include <memory>
#include <string>

#include "host/command_line.h"
#include "host/headless_host.h"
#include "host/terminal_host.h"
#include "host/window_host.h"

namespace {

host_kind chosen_host(const c_options& options)
{
    if (options.host != host_kind::automatic)
        return options.host;
    if (window_display_available())
        return host_kind::window;
    if (isatty(STDIN_FILENO) && isatty(STDOUT_FILENO))
        return host_kind::terminal;
    return host_kind::headless;
}

template <class host_class>
int run_host(const c_options& options)
{
    auto host = std::make_unique<host_class>(options);
    return host->run();
}

int run_chosen_host(const c_options& options)
{
    switch (chosen_host(options)) {
    case host_kind::window: return run_host<c_window_host>(options);
    case host_kind::terminal: return run_host<c_terminal_host>(options);
    default: return run_host<c_headless_host>(options);
    }
}

}  // namespace

int main(int argc, char** argv)
{
    c_options options;
    std::string error;
    if (!parse_command_line(argc, argv, options, error)) {
        std::fprintf(stderr, "vexil: %s\n%s", error.c_str(), usage_text());
        return 2;
    }
    if (options.show_help) {
        std::fputs(usage_text(), stdout);
        return 0;
    }
    if (options.show_version) {
        std::printf("%s\n", vexil_version);
        return 0;
    }
    return run_chosen_host(options);
}
