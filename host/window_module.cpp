// The module's two entry points, in C linkage so that the binary finds them by name.
#include "host/window_module.h"

#include <memory>

#include "host/window_host.h"

int vexil_window_main(const c_options* options)
{
    // On the heap: the host holds the whole engine.
    auto host = std::make_unique<c_window_host>(*options);
    return host->run();
}

int vexil_window_display_available()
{
    return window_display_available() ? 1 : 0;
}
