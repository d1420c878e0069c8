// The window's event loop, its image and its keys; the end of the session, by `exit` or by the
// close button.
#include "host/window_host.h"

#include <SDL2/SDL.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>

#include "host/interrupt_handler.h"
#include "host/png_writer.h"
#include "host/window_keys.h"

namespace {

// The window's frame and title bar as most desktops draw them, until the window manager says.
constexpr c_window_frame frame_allowance = {16, 48};
constexpr const char* window_title = "VEXIL";
constexpr std::uint32_t title_shown_ms = 2000;  // a screenshot's name stays in the title this long

// The frame the window manager put around the window; the allowance until it has said.
c_window_frame frame_of(SDL_Window* window)
{
    int top = 0, left = 0, bottom = 0, right = 0;
    if (SDL_GetWindowBordersSize(window, &top, &left, &bottom, &right) != 0 || top + bottom == 0)
        return frame_allowance;
    return {left + right, top + bottom};
}

// Without a display SDL falls back to drivers that show nothing; those only when asked for by name.
bool shows_a_display(const char* driver)
{
    return driver != nullptr && std::strcmp(driver, "offscreen") != 0 && std::strcmp(driver, "dummy") != 0;
}

}  // namespace

c_window_host::c_window_host(const c_options& options) : c_session(options)
{
}

c_window_host::~c_window_host()
{
    if (video_started)
        (void)finish();
}

int c_window_host::run()
{
    c_interrupt_handler interrupt_handler(&engine, true);
    std::string error;
    if (!open(error)) {
        if (!error.empty())
            report(error);
        (void)finish();
        return 1;
    }
    while (step()) {
    }
    return finish();
}

bool c_window_host::open(std::string& error)
{
    // Nearest neighbour, so that text stays crisp at every scale.
    SDL_SetHint(SDL_HINT_RENDER_SCALE_QUALITY, "0");
    // Signals are the session's: SIGINT breaks, SIGHUP and SIGTERM end it and keep the program.
    SDL_SetHint(SDL_HINT_NO_SIGNAL_HANDLERS, "1");
    // Without these SDL's probing finds nothing and only prints complaints of the libraries it tries.
    if (std::getenv("DISPLAY") == nullptr && std::getenv("WAYLAND_DISPLAY") == nullptr && std::getenv("SDL_VIDEODRIVER") == nullptr) {
        error = "cannot open a window: no display (neither DISPLAY nor WAYLAND_DISPLAY is set)";
        return false;
    }
    if (SDL_InitSubSystem(SDL_INIT_VIDEO) != 0) {
        error = std::string("cannot open a window: ") + SDL_GetError();
        return false;
    }
    video_started = true;
    if (!shows_a_display(SDL_GetCurrentVideoDriver()) && std::getenv("SDL_VIDEODRIVER") == nullptr) {
        error = "cannot open a window: no display";
        return false;
    }
    wake_event = SDL_RegisterEvents(1);
    const int width = options.screen_width;
    const int height = options.screen_height;
    SDL_Rect usable = {0, 0, width, height};
    const bool fits_desktop = options.window_scale == 0 && SDL_GetDisplayUsableBounds(0, &usable) == 0;
    const int scale = fits_desktop ? fitting_scale(usable.w, usable.h, frame_allowance, width, height) : std::max(options.window_scale, 1);
    p_window = SDL_CreateWindow(window_title, SDL_WINDOWPOS_CENTERED, SDL_WINDOWPOS_CENTERED, width * scale,
        height * scale, SDL_WINDOW_RESIZABLE | SDL_WINDOW_ALLOW_HIGHDPI);
    if (p_window == nullptr) {
        error = std::string("cannot open a window: ") + SDL_GetError();
        return false;
    }
    // Panels and decorations: once the real frame is known, a scale that no longer fits is lowered.
    if (fits_desktop) {
        const int fitting = fitting_scale(usable.w, usable.h, frame_of(p_window), width, height);
        if (fitting < scale) {
            SDL_SetWindowSize(p_window, width * fitting, height * fitting);
            SDL_SetWindowPosition(p_window, SDL_WINDOWPOS_CENTERED, SDL_WINDOWPOS_CENTERED);
        }
    }
    // The engine starts as soon as the window exists: making a renderer can take a good part of a
    // second on a software GL, and the engine only marks the image dirty until a frame is drawn.
    if (!initialize())
        return false;  // already reported
    frame_buffer.assign(static_cast<std::size_t>(width) * height, 0);
    upright.assign(frame_buffer.size(), 0);
    SDL_StartTextInput();
    start();
    started = true;
    p_renderer = SDL_CreateRenderer(p_window, -1, 0);
    if (p_renderer != nullptr)
        p_texture = SDL_CreateTexture(p_renderer, SDL_PIXELFORMAT_RGB565, SDL_TEXTUREACCESS_STREAMING, width, height);
    if (p_texture == nullptr) {
        error = std::string("cannot open a window: ") + SDL_GetError();
        return false;
    }
    SDL_DisplayMode mode;
    if (SDL_GetWindowDisplayMode(p_window, &mode) == 0 && mode.refresh_rate >= 30)
        frame_interval_ms = static_cast<std::uint32_t>(1000 / mode.refresh_rate);
    return true;
}

bool c_window_host::step()
{
    if (engine_ended())
        return false;
    SDL_Event event;
    const std::uint32_t now = SDL_GetTicks();
    const int timeout = next_frame_ms > now ? static_cast<int>(next_frame_ms - now) : 0;
    bool have_event = timeout > 0 ? SDL_WaitEventTimeout(&event, timeout) != 0 : SDL_PollEvent(&event) != 0;
    while (have_event) {
        handle_event(event);
        have_event = SDL_PollEvent(&event) != 0;
    }
    if (int signal = c_interrupt_handler::end_requested(); signal != 0 && !closing) {
        closing = true;
        end(signal);
    }
    if (title_reset_ms != 0 && SDL_GetTicks() >= title_reset_ms) {
        SDL_SetWindowTitle(p_window, window_title);
        title_reset_ms = 0;
    }
    if (SDL_GetTicks() >= next_frame_ms) {
        draw_frame();
        next_frame_ms = SDL_GetTicks() + frame_interval_ms;
    }
    return !engine_ended();
}

int c_window_host::finish()
{
    if (started) {
        if (!engine_ended())
            close_window();
        while (step()) {
        }
        exit_status = c_session::finish();
        started = false;
        recover_program();
    }
    if (!options.png_file.empty() && p_texture != nullptr) {
        std::string error;
        if (!write_png(options.png_file.c_str(), screen_image(engine), error)) {
            report(error);
            if (exit_status == 0)
                exit_status = exit_error;
        }
    }
    if (p_texture != nullptr)
        SDL_DestroyTexture(p_texture);
    if (p_renderer != nullptr)
        SDL_DestroyRenderer(p_renderer);
    if (p_window != nullptr)
        SDL_DestroyWindow(p_window);
    p_texture = nullptr;
    p_renderer = nullptr;
    p_window = nullptr;
    if (video_started)
        SDL_QuitSubSystem(SDL_INIT_VIDEO);
    video_started = false;
    return exit_status;
}

c_rgb_image c_window_host::presented_image() const
{
    c_rgb_image image;
    image.width = options.screen_width;
    image.height = options.screen_height;
    image.pixels.resize(upright.size() * 3);
    for (std::size_t index = 0; index < upright.size(); ++index)
        rgb565_to_rgb888(upright[index], &image.pixels[index * 3]);
    return image;
}

std::string c_window_host::title() const
{
    return SDL_GetWindowTitle(p_window);
}

// Both only mark the image: the window draws at its own pace, and changed cells stay marked until then.
void c_window_host::update_screen()
{
    full_draw_asked = true;
    image_dirty = true;
}

void c_window_host::update_text()
{
    image_dirty = true;
}

void c_window_host::on_engine_ended()
{
    SDL_Event wake = {};
    wake.type = wake_event;
    SDL_PushEvent(&wake);
}

void c_window_host::handle_event(const SDL_Event& event)
{
    switch (event.type) {
    case SDL_QUIT:
        close_window();
        break;
    case SDL_WINDOWEVENT:
        if (event.window.event == SDL_WINDOWEVENT_CLOSE)
            close_window();
        else if (event.window.event == SDL_WINDOWEVENT_EXPOSED || event.window.event == SDL_WINDOWEVENT_SIZE_CHANGED)
            full_draw_asked = needs_present = true;
        break;
    case SDL_KEYDOWN:
        handle_key_down(event);
        break;
    case SDL_TEXTINPUT:
        if (!closing) {
            std::vector<int> codes;
            map_typed_text(event.text.text, codes);
            queue_keys(codes);
        }
        break;
    default:
        break;  // the wake event and everything else only end the wait
    }
}

void c_window_host::handle_key_down(const SDL_Event& event)
{
    if (closing)
        return;
    const c_window_key mapped = map_key_down(event.key.keysym.sym, event.key.keysym.mod);
    const bool repeated = event.key.repeat != 0;
    switch (mapped.action) {
    case window_action::key: queue_keys({mapped.code}); break;
    case window_action::force_break: break_program(); break;
    case window_action::paste: if (!repeated) paste(); break;
    case window_action::copy_text: if (!repeated) copy_text(); break;
    case window_action::screenshot: if (!repeated) save_screenshot(); break;
    case window_action::full_screen: if (!repeated) toggle_full_screen(); break;
    case window_action::none: break;
    }
}

// Every key goes through the session's queue, typed ones too, so that they keep their order behind a paste.
void c_window_host::queue_keys(const std::vector<int>& codes)
{
    if (!codes.empty())
        type_keys(codes.data(), codes.size());
}

void c_window_host::paste()
{
    char* text = SDL_GetClipboardText();
    if (text == nullptr)
        return;
    std::vector<int> codes;
    map_pasted_text(text, codes);
    SDL_free(text);
    queue_keys(codes);
}

void c_window_host::copy_text()
{
    const std::string text = screen_text(engine);
    SDL_SetClipboardText(text.c_str());
}

void c_window_host::save_screenshot()
{
    draw_frame();
    const std::string name = unused_file_name("vexil", ".png", 1);
    std::string error;
    if (!write_png(name.c_str(), presented_image(), error)) {
        report(error);
        return;
    }
    report("saved the screen as " + name);
    SDL_SetWindowTitle(p_window, (std::string(window_title) + ": saved " + name).c_str());
    title_reset_ms = std::max<std::uint32_t>(SDL_GetTicks() + title_shown_ms, 1);
}

// Breaks a running program and ends the key loop; the loop goes on until run has returned.
void c_window_host::close_window()
{
    if (closing)
        return;
    closing = true;
    end();
}

void c_window_host::toggle_full_screen()
{
    const bool full = (SDL_GetWindowFlags(p_window) & SDL_WINDOW_FULLSCREEN_DESKTOP) != 0;
    SDL_SetWindowFullscreen(p_window, full ? 0 : SDL_WINDOW_FULLSCREEN_DESKTOP);
    full_draw_asked = needs_present = true;
}

// The flags are taken before drawing, so that what the engine changes meanwhile is drawn next frame.
void c_window_host::draw_frame()
{
    if (p_texture == nullptr)
        return;  // the renderer could not be made: the engine is only being wound down
    const bool full = full_draw_asked.exchange(false);
    const bool dirty = image_dirty.exchange(false);
    const c_graphic_layer& graphic = engine.graphic_layer;
    if (full) {
        // Cells cover whole multiples of 8 x 16 pixels; the rest of the screen shows the pixel plane.
        if (graphic.width % glyph_width != 0 || graphic.height % glyph_height != 0)
            for (std::size_t index = 0; index < frame_buffer.size(); ++index)
                frame_buffer[index] = graphic.load(static_cast<int>(index));
        engine.draw(frame_buffer.data());
    } else if (dirty) {
        engine.update_draw(frame_buffer.data());
    }
    if (full || dirty) {
        // A frame-buffer line is a screen column, and its pixel 0 is at the bottom.
        const int width = graphic.width;
        const int height = graphic.height;
        for (int x = 0; x < width; ++x) {
            const std::uint16_t* line = frame_buffer.data() + static_cast<std::size_t>(x) * height;
            for (int y = 0; y < height; ++y)
                upright[static_cast<std::size_t>(height - 1 - y) * width + x] = line[y];
        }
        SDL_UpdateTexture(p_texture, nullptr, upright.data(), width * 2);
        needs_present = true;
    }
    if (needs_present)
        present();
}

void c_window_host::present()
{
    int drawable_width = 0;
    int drawable_height = 0;
    SDL_GetRendererOutputSize(p_renderer, &drawable_width, &drawable_height);
    const c_picture_place place = picture_place(drawable_width, drawable_height, options.screen_width, options.screen_height);
    const SDL_Rect target = {place.x, place.y, place.width, place.height};
    SDL_SetRenderDrawColor(p_renderer, 0, 0, 0, 255);
    SDL_RenderClear(p_renderer);
    SDL_RenderCopy(p_renderer, p_texture, nullptr, &target);
    SDL_RenderPresent(p_renderer);
    needs_present = false;
}

int fitting_scale(int usable_width, int usable_height, c_window_frame frame, int width, int height)
{
    const int scale = std::min((usable_width - frame.width) / width, (usable_height - frame.height) / height);
    return std::max(scale, 1);
}

c_picture_place picture_place(int drawable_width, int drawable_height, int width, int height)
{
    double scale = std::min(static_cast<double>(drawable_width) / width, static_cast<double>(drawable_height) / height);
    if (scale >= 1)
        scale = static_cast<int>(scale);
    const int shown_width = std::max(1, static_cast<int>(width * scale));
    const int shown_height = std::max(1, static_cast<int>(height * scale));
    return {(drawable_width - shown_width) / 2, (drawable_height - shown_height) / 2, shown_width, shown_height};
}

bool window_display_available()
{
    // Without either variable no display can be found, and probing would only print complaints.
    if (std::getenv("DISPLAY") == nullptr && std::getenv("WAYLAND_DISPLAY") == nullptr)
        return false;
    if (SDL_InitSubSystem(SDL_INIT_VIDEO) != 0)
        return false;
    // Only a desktop's display: in a text console the terminal host serves better than a frame buffer.
    const char* driver = SDL_GetCurrentVideoDriver();
    const bool real = driver != nullptr && (std::strcmp(driver, "x11") == 0 || std::strcmp(driver, "wayland") == 0);
    SDL_QuitSubSystem(SDL_INIT_VIDEO);
    return real;
}
