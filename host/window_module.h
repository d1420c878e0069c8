// The window host's entry points, built into a module of its own (libvexil_window.so) that the binary
// loads only when a window is wanted, so that headless and terminal runs never load SDL and the many
// libraries it pulls in. The module takes the engine and the rest of the host from the binary.
#pragma once

#include "host/command_line.h"

constexpr const char* window_module_file = "libvexil_window.so";

extern "C" {
// The window session (see c_window_host::run): its exit status.
int vexil_window_main(const c_options* options);
// 1 when SDL can open a real display, else 0: the automatic choice.
int vexil_window_display_available();
}

using window_main_function = int (*)(const c_options*);
using window_display_available_function = int (*)();
