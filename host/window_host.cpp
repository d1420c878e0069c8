// The window's event loop, its image and its keys; the feeder and the engine's waits; the end of the
// session, by `exit` or by the close button.
#include "host/window_host.h"

#include <SDL2/SDL.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>

#include "host/png_writer.h"
#include "host/window_keys.h"

namespace {

// Room for the window's frame and title bar, so that the opening scale really fits.
constexpr int window_frame_allowance = 48;

// The largest whole scale at which the screen fits the desktop, at least 1.
int fitting_scale(int width, int height)
{
    SDL_Rect desktop;
    if (SDL_GetDisplayUsableBounds(0, &desktop) != 0)
        return 1;
    const int scale = std::min(desktop.w / width, (desktop.h - window_frame_allowance) / height);
    return std::max(scale, 1);
}

// Without a display SDL falls back to drivers that show nothing; those only when asked for by name.
bool shows_a_display(const char* driver)
{
    return driver != nullptr && std::strcmp(driver, "offscreen") != 0 && std::strcmp(driver, "dummy") != 0;
}

std::string next_screenshot_name()
{
    for (int number = 1;; ++number) {
        std::string name = "vexil-" + std::to_string(number) + ".png";
        std::error_code error;
        if (!std::filesystem::exists(name, error) && !error)
            return name;
    }
}

}  // namespace

c_window_host::c_window_host(const c_options& options) : options(options)
{
    engine.screen_width = options.screen_width;
    engine.screen_height = options.screen_height;
    engine.line_step = options.screen_height * 2;
}

c_window_host::~c_window_host()
{
    if (video_started)
        (void)finish();
}

int c_window_host::run()
{
    std::string error;
    if (!open(error)) {
        std::fprintf(stderr, "vexil: %s\n", error.c_str());
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
    const int scale = options.window_scale > 0 ? options.window_scale : fitting_scale(width, height);
    p_window = SDL_CreateWindow("VEXIL", SDL_WINDOWPOS_CENTERED, SDL_WINDOWPOS_CENTERED, width * scale,
        height * scale, SDL_WINDOW_RESIZABLE | SDL_WINDOW_ALLOW_HIGHDPI);
    if (p_window == nullptr) {
        error = std::string("cannot open a window: ") + SDL_GetError();
        return false;
    }
    // The engine starts as soon as the window exists: making a renderer can take a good part of a
    // second on a software GL, and the engine only marks the image dirty until a frame is drawn.
    if (!start_engine(width, height)) {
        error = "out of memory";
        return false;
    }
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

bool c_window_host::start_engine(int width, int height)
{
    if (!engine.initialize(this))
        return false;
    frame_buffer.assign(static_cast<std::size_t>(width) * height, 0);
    upright.assign(frame_buffer.size(), 0);
    SDL_StartTextInput();
    feeder = std::thread([this] { feed_keys(); });
    const char* program = options.program_file.empty() ? nullptr : options.program_file.c_str();
    engine_thread = std::thread([this, program] {
        engine.run(program);
        engine_ended = true;
        SDL_Event wake = {};
        wake.type = wake_event;
        SDL_PushEvent(&wake);
    });
    return true;
}

bool c_window_host::step()
{
    if (engine_ended)
        return false;
    SDL_Event event;
    const std::uint32_t now = SDL_GetTicks();
    const int timeout = next_frame_ms > now ? static_cast<int>(next_frame_ms - now) : 0;
    bool have_event = timeout > 0 ? SDL_WaitEventTimeout(&event, timeout) != 0 : SDL_PollEvent(&event) != 0;
    while (have_event) {
        handle_event(event);
        have_event = SDL_PollEvent(&event) != 0;
    }
    // Until run returns, break and quit again: a line entered just before the close resets the break
    // when it starts, and run sets `running` when it starts.
    if (closing) {
        engine.force_break();
        engine.quit();
    }
    if (SDL_GetTicks() >= next_frame_ms) {
        draw_frame();
        next_frame_ms = SDL_GetTicks() + frame_interval_ms;
    }
    return !engine_ended;
}

int c_window_host::finish()
{
    if (engine_thread.joinable()) {
        if (!engine_ended)
            close_window();
        while (!engine_ended)
            step();
        engine_thread.join();
        if (error_seen)
            exit_status = 1;
    }
    {
        std::lock_guard<std::mutex> guard(mutex);
        stopping = true;
    }
    ring_changed.notify_all();
    if (feeder.joinable())
        feeder.join();
    if (!options.png_file.empty() && p_texture != nullptr) {
        std::string error;
        if (!write_png(options.png_file.c_str(), screen_image(engine), error)) {
            std::fprintf(stderr, "vexil: %s\n", error.c_str());
            exit_status = 1;
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

void c_window_host::sleep(unsigned int ms)
{
    std::unique_lock<std::mutex> guard(mutex);
    const auto duration = std::chrono::milliseconds(ms);
    if (!idle) {
        // A program's sleep: only the end of the session cuts it short.
        ring_changed.wait_for(guard, duration, [this] { return stopping; });
        return;
    }
    // The key loop's pause ends as soon as a key arrives.
    idle = false;
    engine_waiting = true;
    ring_changed.wait_for(guard, duration, [this] { return ring_room() < ring_capacity || stopping; });
    engine_waiting = false;
}

// A waiter is woken only when its wait is over: a feeder held up by a full ring costs one thread switch
// per half ring, not one per key.
void c_window_host::unlock()
{
    const bool wake = (feeder_waiting && !pending_keys.empty() && ring_room() >= refill_room)
        || (engine_waiting && ring_room() < ring_capacity);
    mutex.unlock();
    if (wake)
        ring_changed.notify_all();
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

void c_window_host::waiting_for_key()
{
    idle = true;
}

void c_window_host::error_reported(int, int)
{
    if (!closing)
        error_seen = true;
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
    case window_action::force_break: engine.force_break(); break;
    case window_action::paste: if (!repeated) paste(); break;
    case window_action::copy_text: if (!repeated) copy_text(); break;
    case window_action::screenshot: if (!repeated) save_screenshot(); break;
    case window_action::full_screen: if (!repeated) toggle_full_screen(); break;
    case window_action::none: break;
    }
}

// Every key goes through the feeder, typed ones too, so that they keep their order behind a paste.
void c_window_host::queue_keys(const std::vector<int>& codes)
{
    if (codes.empty())
        return;
    bool wake = false;
    {
        std::lock_guard<std::mutex> guard(mutex);
        pending_keys.insert(pending_keys.end(), codes.begin(), codes.end());
        wake = feeder_waiting;
    }
    if (wake)
        ring_changed.notify_all();
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
    const std::string name = next_screenshot_name();
    std::string error;
    if (!write_png(name.c_str(), presented_image(), error))
        std::fprintf(stderr, "vexil: %s\n", error.c_str());
}

// Breaks a running program and ends the key loop; the loop goes on until run has returned.
void c_window_host::close_window()
{
    if (closing)
        return;
    closing = true;
    engine.force_break();
    engine.quit();
    {
        std::lock_guard<std::mutex> guard(mutex);
        stopping = true;
        pending_keys.clear();
    }
    ring_changed.notify_all();
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

void c_window_host::feed_keys()
{
    std::unique_lock<std::mutex> guard(mutex);
    int batch[ring_capacity];
    for (;;) {
        feeder_waiting = true;
        ring_changed.wait(guard, [this] { return stopping || (!pending_keys.empty() && ring_room() > 0); });
        feeder_waiting = false;
        if (stopping)
            return;
        // Only this thread pushes, so the room counted under the lock is still there.
        const int count = std::min(ring_room(), static_cast<int>(pending_keys.size()));
        std::copy_n(pending_keys.begin(), count, batch);
        pending_keys.erase(pending_keys.begin(), pending_keys.begin() + count);
        guard.unlock();
        for (int index = 0; index < count; ++index)
            engine.key(batch[index]);
        guard.lock();
    }
}

int c_window_host::ring_room() const
{
    const c_keyboard& ring = engine.keyboard;
    int used = (ring.write_index - ring.read_index + c_keyboard::slot_count) % c_keyboard::slot_count;
    return ring_capacity - used;
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
