// The entry point: reads the command line, answers --help and --version, and runs the chosen host.
#include <cstdio>
#include <memory>
#include <string>

#include "host/command_line.h"
#include "host/headless_host.h"

namespace {

// The window and the terminal hosts will be chosen here from options.host; until they exist every
// run, automatic or --headless, is headless.
int run_chosen_host(const c_options& options)
{
    auto host = std::make_unique<c_headless_host>(options);
    return host->run();
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
