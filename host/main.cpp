// The entry point: reads the command line, answers --help and --version, and runs the chosen host.
// The window host lives in a module loaded only when a window is wanted (see host/window_module.h).
#include <dlfcn.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <memory>
#include <new>
#include <string>
#include <system_error>

#include "host/command_line.h"
#include "host/headless_host.h"
#include "host/terminal_host.h"
#include "host/terminal_type.h"
#include "host/window_module.h"

namespace {

// The module next to the binary, whatever the current directory. Never closed: SDL's threads and exit
// handlers may outlive the call into it.
void* load_window_module(std::string& error)
{
    std::error_code failure;
    const std::filesystem::path binary = std::filesystem::read_symlink("/proc/self/exe", failure);
    if (failure) {
        error = "cannot find the window module: " + failure.message();
        return nullptr;
    }
    const std::string file = (binary.parent_path() / window_module_file).string();
    void* module = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (module == nullptr)
        error = std::string("cannot load the window module: ") + dlerror();
    return module;
}

template <class function_type>
function_type find_entry(void* module, const char* name, std::string& error)
{
    auto entry = reinterpret_cast<function_type>(dlsym(module, name));
    if (entry == nullptr)
        error = std::string("cannot load the window module: no ") + name;
    return entry;
}

// Only with a display variable set: without one no display can be found, and loading SDL to learn that
// would cost every headless and terminal run its start-up time. A module that does not load means no
// window, as a display that does not open does.
bool display_available()
{
    if (std::getenv("DISPLAY") == nullptr && std::getenv("WAYLAND_DISPLAY") == nullptr)
        return false;
    std::string error;
    void* module = load_window_module(error);
    if (module == nullptr)
        return false;
    auto available = find_entry<window_display_available_function>(module, "vexil_window_display_available", error);
    return available != nullptr && available() != 0;
}

int run_window_host(const c_options& options)
{
    std::string error;
    void* module = load_window_module(error);
    auto window_main = module == nullptr ? nullptr : find_entry<window_main_function>(module, "vexil_window_main", error);
    if (window_main == nullptr) {
        std::fprintf(stderr, "vexil: %s\n", error.c_str());
        return 1;
    }
    return window_main(&options);
}

// Keys that come from a pipe or a file are meant for the console, display or not.
bool input_is_data()
{
    struct stat status = {};
    return fstat(STDIN_FILENO, &status) == 0 && (S_ISFIFO(status.st_mode) || S_ISREG(status.st_mode));
}

host_kind chosen_host(const c_options& options)
{
    if (options.host != host_kind::automatic)
        return options.host;
    if (input_is_data())
        return host_kind::headless;
    if (display_available())
        return host_kind::window;
    std::string error;
    if (isatty(STDIN_FILENO) && isatty(STDOUT_FILENO) && terminal_usable(error))
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
    case host_kind::window: return run_window_host(options);
    case host_kind::terminal: return run_host<c_terminal_host>(options);
    default: return run_host<c_headless_host>(options);
    }
}

}  // namespace

int main(int argc, char** argv)
{
    // Past a file-size limit a write fails, and `save` and `fprint` report it, instead of the process
    // being killed half-way through a file.
    std::signal(SIGXFSZ, SIG_IGN);
    c_options options;
    std::string error;
    if (!parse_command_line(argc, argv, options, error)) {
        std::fprintf(stderr, "vexil: %s\nTry 'vexil --help'.\n", error.c_str());
        return exit_usage;
    }
    if (options.show_help) {
        std::fputs(usage_text(), stdout);
        return 0;
    }
    if (options.show_version) {
        std::printf("%s\n", vexil_version);
        return 0;
    }
    // The hosts' threads and buffers come from the C++ library, which throws when the system refuses
    // them: one line, as for every other failure to start.
    try {
        return run_chosen_host(options);
    } catch (const std::bad_alloc&) {
        std::fputs("vexil: out of memory\n", stderr);
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "vexil: cannot start: %s\n", failure.what());
    }
    return 1;
}
