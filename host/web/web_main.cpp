// What the page's script calls: one host, made by vexil_start, for the page's whole life. All of these
// run on the page's thread and return at once.
#include <emscripten/emscripten.h>

#include <new>

#include "host/web/web_host.h"

namespace {

constexpr int screen_width = 640;   // 80 columns
constexpr int screen_height = 480;  // 30 rows

c_web_host* p_web_host = nullptr;

}  // namespace

extern "C" {

// The program file to load and run at start, or an empty name for none. False when the host cannot be
// made.
EMSCRIPTEN_KEEPALIVE int vexil_start(const char* program_file)
{
    if (p_web_host != nullptr)
        return 1;
    p_web_host = new (std::nothrow) c_web_host(screen_width, screen_height);
    if (p_web_host == nullptr)
        return 0;
    p_web_host->start(program_file);
    return 1;
}

EMSCRIPTEN_KEEPALIVE void vexil_keys(const int* codes, int count)
{
    p_web_host->queue_keys(codes, count);
}

EMSCRIPTEN_KEEPALIVE void vexil_break()
{
    p_web_host->force_break();
}

// 1 when the image at vexil_image and the text at vexil_text changed since the last call.
EMSCRIPTEN_KEEPALIVE int vexil_frame()
{
    return p_web_host->frame() ? 1 : 0;
}

EMSCRIPTEN_KEEPALIVE const std::uint8_t* vexil_image()
{
    return p_web_host->image();
}

EMSCRIPTEN_KEEPALIVE const char* vexil_text()
{
    return p_web_host->text().c_str();
}

EMSCRIPTEN_KEEPALIVE int vexil_width()
{
    return screen_width;
}

EMSCRIPTEN_KEEPALIVE int vexil_height()
{
    return screen_height;
}

EMSCRIPTEN_KEEPALIVE int vexil_ended()
{
    return p_web_host->ended() ? 1 : 0;
}

}  // extern "C"

// The page starts the engine once its files are in place; main only keeps the runtime alive.
int main()
{
    return 0;
}
