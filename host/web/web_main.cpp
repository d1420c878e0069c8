// What the page's script calls: one host, made by vexil_start, for the page's whole life. All of these
// run on the page's thread and return at once.
#include <emscripten/emscripten.h>

#include <new>
#include <string>

#include "host/web/web_host.h"

namespace {

c_options options;  // the default screen, 640 x 480: 80 columns, 30 rows
c_web_host* p_web_host = nullptr;
std::string reports;

}  // namespace

extern "C" {

// The program file to load and run at start, or an empty name for none; the file in which the session
// keeps the program while it is not saved, and from which it brings one back. False when the host
// cannot be made.
EMSCRIPTEN_KEEPALIVE int vexil_start(const char* program_file, const char* kept_program_file)
{
    if (p_web_host != nullptr)
        return 1;
    options.program_file = program_file;
    // Never deleted: the session's threads live as long as the page.
    p_web_host = new (std::nothrow) c_web_host(options);
    if (p_web_host == nullptr)
        return 0;
    return p_web_host->open(kept_program_file) ? 1 : 0;
}

EMSCRIPTEN_KEEPALIVE void vexil_keys(const int* codes, int count)
{
    p_web_host->type_keys(codes, count > 0 ? static_cast<std::size_t>(count) : 0);
}

EMSCRIPTEN_KEEPALIVE void vexil_break()
{
    p_web_host->break_program();
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

// The session's reports since the last call (a program file that cannot be loaded, an unsaved program
// brought back), one a line.
EMSCRIPTEN_KEEPALIVE const char* vexil_reports()
{
    reports = p_web_host->take_reports();
    return reports.c_str();
}

// Changes when the kept program file was rewritten or removed.
EMSCRIPTEN_KEEPALIVE unsigned vexil_kept_program_changes()
{
    return p_web_host->kept_program_changes();
}

EMSCRIPTEN_KEEPALIVE int vexil_ended()
{
    return p_web_host->ended() ? 1 : 0;
}

}  // extern "C"

// Nothing to do at load: the page calls vexil_start once the kept files are in place.
int main()
{
    return 0;
}
