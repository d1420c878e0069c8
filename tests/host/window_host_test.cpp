// The window host driven without a display: SDL's dummy video driver, real SDL key and text events, and
// the picture it presents compared with the image the engine composes for the same keys without it.
// Every wait is a bounded loop of the host's own steps, each at most one frame long.
#include <SDL2/SDL.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <functional>
#include <string>

#include <unistd.h>

#include "host/png_reader.h"
#include "host/screen_capture.h"
#include "host/window_host.h"

namespace {

constexpr int step_limit = 1000;  // about 16 s of frames: only a broken host waits this long

// The same engine with no window and no thread: keys go straight to the editor.
struct c_reference_host : c_vexil_callback {
    void sleep(unsigned int) override {}
    void lock() override {}
    void unlock() override {}
    void update_screen() override {}
    void update_text() override {}
};

struct c_reference {
    explicit c_reference(const std::vector<int>& keys)
    {
        engine.screen_width = 640;
        engine.screen_height = 480;
        engine.line_step = 480 * 2;
        engine.initialize(&host);
        for (int code : keys)
            engine.text_editor.key(code);
    }
    c_reference_host host;
    c_vexil engine;
};

std::vector<int> codes_of(const std::string& text)
{
    std::vector<int> codes;
    for (unsigned char c : text)
        codes.push_back(c == '\n' ? 13 : c);
    return codes;
}

void push_text(const std::string& text)
{
    SDL_Event event = {};
    event.type = SDL_TEXTINPUT;
    std::strncpy(event.text.text, text.c_str(), sizeof event.text.text - 1);
    ASSERT_EQ(SDL_PushEvent(&event), 1);
}

void push_key(SDL_Keycode key, unsigned modifiers = 0)
{
    SDL_Event event = {};
    event.type = SDL_KEYDOWN;
    event.key.state = SDL_PRESSED;
    event.key.keysym.sym = key;
    event.key.keysym.mod = static_cast<Uint16>(modifiers);
    ASSERT_EQ(SDL_PushEvent(&event), 1);
}

void push_close()
{
    SDL_Event event = {};
    event.type = SDL_WINDOWEVENT;
    event.window.event = SDL_WINDOWEVENT_CLOSE;
    ASSERT_EQ(SDL_PushEvent(&event), 1);
}

// Types a line the way the keyboard does: its characters as text, then Enter.
void type_line(const std::string& line)
{
    for (char c : line)
        push_text(std::string(1, c));
    push_key(SDLK_RETURN);
}

// Screenshots go to the current directory: a fresh one for the test, left and removed at the end.
struct c_scratch_directory {
    c_scratch_directory()
    {
        std::filesystem::create_directories(folder);
        std::filesystem::current_path(folder);
    }
    ~c_scratch_directory()
    {
        std::filesystem::current_path(previous);
        std::filesystem::remove_all(folder);
    }
    std::filesystem::path previous = std::filesystem::current_path();
    std::filesystem::path folder = std::filesystem::temp_directory_path() / ("vexil_window_" + std::to_string(getpid()));
};

class window_session : public ::testing::Test {
protected:
    void SetUp() override
    {
        setenv("SDL_VIDEODRIVER", "dummy", 1);
        options.window_scale = 1;
        std::string error;
        ASSERT_TRUE(host.open(error)) << error;
    }

    // Steps the host until `done` holds; false when the application ended first or never got there.
    bool step_until(const std::function<bool()>& done)
    {
        for (int step = 0; step < step_limit; ++step) {
            if (done())
                return true;
            if (!host.step())
                return done();
        }
        return false;
    }

    // Steps until the application ends; false when it does not.
    bool step_to_the_end()
    {
        for (int step = 0; step < step_limit; ++step)
            if (!host.step())
                return true;
        return false;
    }

    bool presents(const c_rgb_image& expected)
    {
        return host.presented_image().pixels == expected.pixels;
    }

    c_options options;
    c_window_host host{options};
};

}  // namespace

TEST_F(window_session, typed_keys_present_the_image_the_engine_composes_without_a_window)
{
    type_line("print 1+2");
    c_reference reference(codes_of("print 1+2\n"));
    const c_rgb_image expected = screen_image(reference.engine);
    EXPECT_TRUE(step_until([&] { return presents(expected); }));
    EXPECT_EQ(screen_text(host.engine_for_reading()), screen_text(reference.engine));
    EXPECT_EQ(host.finish(), 0);
}

TEST_F(window_session, a_program_printing_and_plotting_while_frames_are_drawn_ends_with_its_last_screen)
{
    const std::string program = "10 for i=1 to 3000\n20 print i\n30 set_pixel i mod 640, i mod 480, 2016\n40 next\nrun\n";
    for (std::size_t start = 0; start < program.size(); start = program.find('\n', start) + 1)
        type_line(program.substr(start, program.find('\n', start) - start));
    c_reference reference(codes_of(program));
    const c_rgb_image expected = screen_image(reference.engine);
    EXPECT_TRUE(step_until([&] { return presents(expected); }));
}

TEST_F(window_session, paste_types_the_clipboard_as_keys_even_past_a_full_ring)
{
    // 160 keys before the first Enter: more than the ring's 127, so the feeder has to wait for room.
    const std::string text = "print \"" + std::string(152, 'x') + "\"\r\nprint 6*7\n";
    ASSERT_EQ(SDL_SetClipboardText(text.c_str()), 0);
    push_key(SDLK_v, KMOD_LCTRL);
    c_reference reference(codes_of("print \"" + std::string(152, 'x') + "\"\nprint 6*7\n"));
    const std::string expected = screen_text(reference.engine);
    EXPECT_TRUE(step_until([&] { return screen_text(host.engine_for_reading()) == expected; }))
        << screen_text(host.engine_for_reading());
    EXPECT_TRUE(step_until([&] { return presents(screen_image(reference.engine)); }));
}

TEST_F(window_session, control_shift_c_copies_the_grid_as_text)
{
    type_line("print 40+2");
    ASSERT_TRUE(step_until([&] { return screen_text(host.engine_for_reading()).find("\n42\nOk\n") != std::string::npos; }));
    ASSERT_EQ(SDL_SetClipboardText(""), 0);
    push_key(SDLK_c, KMOD_LCTRL | KMOD_LSHIFT);
    ASSERT_TRUE(step_until([] { return SDL_HasClipboardText(); }));
    char* copied = SDL_GetClipboardText();
    EXPECT_EQ(std::string(copied), screen_text(host.engine_for_reading()));
    SDL_free(copied);
}

TEST_F(window_session, f12_saves_the_presented_screen_without_overwriting)
{
    c_scratch_directory scratch;
    std::FILE* taken = std::fopen("vexil-1.png", "w");
    ASSERT_NE(taken, nullptr);
    std::fclose(taken);
    type_line("print 5");
    ASSERT_TRUE(step_until([&] { return screen_text(host.engine_for_reading()).find("\n5\nOk\n") != std::string::npos; }));
    push_key(SDLK_F12);
    push_key(SDLK_F12);
    EXPECT_TRUE(step_until([] { return std::filesystem::exists("vexil-3.png"); }));
    EXPECT_EQ(std::filesystem::file_size("vexil-1.png"), 0u);  // the file that was there is left alone
    c_png_picture picture;
    ASSERT_TRUE(read_png("vexil-2.png", picture));
    EXPECT_EQ(picture.pixels, host.presented_image().pixels);
}

TEST_F(window_session, exit_ends_the_application)
{
    type_line("exit");
    EXPECT_TRUE(step_to_the_end());
    EXPECT_EQ(host.finish(), 0);
}

TEST_F(window_session, the_close_button_ends_an_idle_application)
{
    push_close();
    EXPECT_TRUE(step_to_the_end());
    EXPECT_EQ(host.finish(), 0);
}

TEST_F(window_session, the_close_button_breaks_a_program_that_loops_forever_and_ends)
{
    type_line("10 $top goto $top");
    type_line("run");
    // Once the ring is empty the engine is inside the loop: no Ok comes.
    ASSERT_TRUE(step_until([&] { return !host.engine_for_reading().keyboard.kbhit(); }));
    for (int frame = 0; frame < 5; ++frame)
        ASSERT_TRUE(host.step());
    push_close();
    EXPECT_TRUE(step_to_the_end());
    EXPECT_EQ(host.finish(), 0);
    EXPECT_NE(screen_text(host.engine_for_reading()).find("run\nBreak at 10.\nOk"), std::string::npos)
        << screen_text(host.engine_for_reading());
}

TEST(window_picture, keeps_its_aspect_at_the_largest_whole_scale_that_fits_centred)
{
    struct place_case {
        int drawable_width, drawable_height;
        c_picture_place place;
    };
    const place_case cases[] = {
        {640, 480, {0, 0, 640, 480}},
        {1280, 960, {0, 0, 1280, 960}},
        {1279, 960, {319, 240, 640, 480}},    // one pixel short of scale 2: scale 1, centred
        {1920, 1080, {320, 60, 1280, 960}},   // letterboxed left and right
        {1300, 2000, {10, 520, 1280, 960}},   // and above and below
        {320, 480, {0, 120, 320, 240}},       // smaller than the screen: shrunk, aspect kept
    };
    for (const auto& c : cases) {
        const c_picture_place place = picture_place(c.drawable_width, c.drawable_height, 640, 480);
        EXPECT_EQ(place.x, c.place.x) << c.drawable_width << "x" << c.drawable_height;
        EXPECT_EQ(place.y, c.place.y) << c.drawable_width << "x" << c.drawable_height;
        EXPECT_EQ(place.width, c.place.width) << c.drawable_width << "x" << c.drawable_height;
        EXPECT_EQ(place.height, c.place.height) << c.drawable_width << "x" << c.drawable_height;
    }
}
