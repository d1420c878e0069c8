// The window host driven without a display: SDL's dummy video driver, real SDL key and text events, and
// the picture it presents compared with the image the engine composes for the same keys without it.
// Every wait is a bounded loop of the host's own steps, each at most one frame long.
#include <SDL2/SDL.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>

#include "host/interrupt_handler.h"
#include "host/png_reader.h"
#include "host/screen_capture.h"
#include "host/window_host.h"
#include "support/scratch_directory.h"
#include "support/test_console.h"

namespace {

namespace fs = std::filesystem;
constexpr int step_limit = 1000;  // about 16 s of frames: only a broken host waits this long

// The same keys into the same engine with no window and no thread: straight to the editor.
struct c_reference {
    explicit c_reference(const std::string& typed)
    {
        start_engine(engine, host);
        for (unsigned char c : typed)
            engine.text_editor.key(c == '\n' ? 13 : c);
    }
    c_test_host host;
    c_vexil engine;
};

// A key pressed, or the close button clicked; or text as an input method hands it over, several
// characters (in UTF-8) in one event.
void push(SDL_EventType type, SDL_Keycode key = 0, unsigned modifiers = 0, const std::string& text = "")
{
    SDL_Event event = {};
    event.type = type;
    event.key.keysym.sym = key;
    event.key.keysym.mod = static_cast<Uint16>(modifiers);
    if (type == SDL_TEXTINPUT)
        SDL_strlcpy(event.text.text, text.c_str(), sizeof event.text.text);
    if (type == SDL_WINDOWEVENT)
        event.window.event = SDL_WINDOWEVENT_CLOSE;
    ASSERT_EQ(SDL_PushEvent(&event), 1);
}
void push_text(const std::string& text) { push(SDL_TEXTINPUT, 0, 0, text); }

// Types lines the way the keyboard does: each character as text, each line end as Enter.
void type_lines(const std::string& lines)
{
    for (char c : lines)
        c == '\n' ? push(SDL_KEYDOWN, SDLK_RETURN) : push_text(std::string(1, c));
}

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
        for (int step = 0; step < step_limit; ++step)
            if (done() || !host.step())
                return done();
        return false;
    }
    bool step_to_the_end()
    {
        for (int step = 0; step < step_limit; ++step)
            if (!host.step())
                return true;
        return false;
    }
    bool shows(const std::string& text) { return screen_text(host.engine_for_reading()).find(text) != text.npos; }
    bool presents(c_vexil& reference) { return host.presented_image().pixels == screen_image(reference).pixels; }

    c_scratch_directory scratch{true};  // screenshots and recovered programs: made before the host, removed after it
    c_options options;
    c_window_host host{options};
};

}  // namespace

// Frames are drawn while the engine prints and plots: the last one must still be exactly its screen.
TEST_F(window_session, typed_keys_present_the_image_the_engine_composes_without_a_window)
{
    const std::string typed =
        "print 1+2\n10 for i=1 to 3000\n20 print i\n30 set_pixel i mod 640, i mod 480, 2016\n40 next\nrun\n";
    type_lines(typed);
    c_reference reference(typed);
    EXPECT_TRUE(step_until([&] { return presents(reference.engine); }));
    EXPECT_EQ(screen_text(host.engine_for_reading()), screen_text(reference.engine));
    EXPECT_EQ(host.finish(), 0);
}

TEST_F(window_session, text_input_types_each_character_it_cannot_show_as_one_question_mark)
{
    push_text("print \"\xC3\xA9\xE2\x82\xAC");  // e acute (AltGr or a dead key), the euro sign
    push_text("x\"");
    push(SDL_KEYDOWN, SDLK_RETURN);
    EXPECT_TRUE(step_until([&] { return shows("print \"??x\"\n??x\nOk\n"); })) << screen_text(host.engine_for_reading());
}

TEST_F(window_session, paste_types_the_clipboard_as_keys_even_past_a_full_ring)
{
    // 160 keys before the first Enter: more than the ring's 127, so the feeder has to wait for room.
    const std::string line = "print \"" + std::string(152, 'x') + "\"";
    ASSERT_EQ(SDL_SetClipboardText((line + "\r\nprint 6*7\n").c_str()), 0);
    push(SDL_KEYDOWN, SDLK_v, KMOD_LCTRL);
    c_reference reference(line + "\nprint 6*7\n");
    EXPECT_TRUE(step_until([&] { return shows(screen_text(reference.engine)) && presents(reference.engine); }))
        << screen_text(host.engine_for_reading());
}

TEST_F(window_session, control_shift_c_copies_the_grid_as_text)
{
    type_lines("print 40+2\n");
    ASSERT_TRUE(step_until([&] { return shows("\n42\nOk\n"); }));
    ASSERT_EQ(SDL_SetClipboardText(""), 0);
    push(SDL_KEYDOWN, SDLK_c, KMOD_LCTRL | KMOD_LSHIFT);
    ASSERT_TRUE(step_until([] { return SDL_HasClipboardText(); }));
    char* copied = SDL_GetClipboardText();
    EXPECT_EQ(std::string(copied), screen_text(host.engine_for_reading()));
    SDL_free(copied);
}

TEST_F(window_session, f12_saves_the_presented_screen_without_overwriting)
{
    std::ofstream("vexil-1.png");  // taken
    type_lines("print 5\n");
    ASSERT_TRUE(step_until([&] { return shows("\n5\nOk\n"); }));
    push(SDL_KEYDOWN, SDLK_F12);
    push(SDL_KEYDOWN, SDLK_F12);
    EXPECT_TRUE(step_until([] { return fs::exists("vexil-3.png"); }));
    EXPECT_EQ(host.title(), "VEXIL: saved vexil-3.png");  // for two seconds
    EXPECT_EQ(fs::file_size("vexil-1.png"), 0u);  // the file that was there is left alone
    c_png_picture picture;
    ASSERT_TRUE(read_png("vexil-2.png", picture));
    EXPECT_EQ(picture.pixels, host.presented_image().pixels);
}

// A changed program is kept in a new recovery file beside the older one; a saved one in none (below).
TEST_F(window_session, the_close_button_breaks_an_endless_program_and_ends_keeping_the_program)
{
    std::ofstream("vexil-recovered.bas") << "older";
    type_lines("10 $top goto $top\nrun\n");
    // Once the ring is empty the engine is inside the loop: no Ok comes.
    ASSERT_TRUE(step_until([&] { return !host.engine_for_reading().keyboard.kbhit(); }));
    for (int frame = 0; frame < 5; ++frame)
        ASSERT_TRUE(host.step());
    push(SDL_WINDOWEVENT);  // the close button
    EXPECT_TRUE(step_to_the_end());
    EXPECT_EQ(host.finish(), 0);
    EXPECT_TRUE(shows("run\nBreak at 10.\nOk")) << screen_text(host.engine_for_reading());
    EXPECT_EQ(file_text("vexil-recovered.bas"), "older");
    EXPECT_EQ(file_text("vexil-recovered-2.bas"), "$top goto $top\r\n");
}

TEST_F(window_session, sigterm_ends_the_session_as_the_signal_would_and_keeps_the_program)
{
    c_interrupt_handler signals(&host.engine_for_reading(), true);
    type_lines("10 print 1\nlist\n");
    ASSERT_TRUE(step_until([&] { return shows("list\n10 print 1\nOk"); }));
    ASSERT_EQ(raise(SIGTERM), 0);
    EXPECT_TRUE(step_to_the_end());
    EXPECT_EQ(host.finish(), 128 + SIGTERM);
    EXPECT_EQ(file_text("vexil-recovered.bas"), "print 1\r\n");
}

TEST_F(window_session, a_program_saved_before_the_end_is_not_recovered)
{
    type_lines("10 print 1\nsave \"kept.bas\"\nexit\n");
    EXPECT_TRUE(step_to_the_end());
    EXPECT_EQ(host.finish(), 0);
    EXPECT_EQ(file_text("kept.bas"), "print 1\r\n");
    EXPECT_FALSE(fs::exists("vexil-recovered.bas"));
}

TEST(window_picture, keeps_its_aspect_at_the_largest_whole_scale_that_fits_centred)
{
    struct place_case { int drawable_width, drawable_height, x, y, width, height; };
    const place_case cases[] = {
        {1280, 960, 0, 0, 1280, 960},     {1279, 960, 319, 240, 640, 480},  // one pixel short of scale 2
        {1920, 1080, 320, 60, 1280, 960}, {1300, 2000, 10, 520, 1280, 960},  // letterboxed, both ways
        {320, 480, 0, 120, 320, 240},     // smaller than the screen: shrunk, aspect kept
    };
    for (const auto& c : cases) {
        const c_picture_place placed = picture_place(c.drawable_width, c.drawable_height, 640, 480);
        EXPECT_EQ(std::vector({placed.x, placed.y, placed.width, placed.height}),
            std::vector({c.x, c.y, c.width, c.height})) << c.drawable_width << "x" << c.drawable_height;
    }
}

TEST(window_scale, is_the_largest_whole_one_at_which_screen_and_frame_fit_the_usable_area)
{
    struct scale_case { int usable_width, usable_height, frame_width, frame_height, scale; };
    const scale_case cases[] = {
        {1920, 1050, 16, 48, 2},  // a 1080 desktop less its panel: 1440 high would not fit
        {1936, 1488, 16, 48, 3},  {1935, 1488, 16, 48, 2}, {1936, 1487, 16, 48, 2},  // exactly 3, one short
        {1366, 738, 2, 30, 1},    {600, 400, 16, 48, 1},  // smaller than the screen: still 1
    };
    for (const auto& c : cases)
        EXPECT_EQ(fitting_scale(c.usable_width, c.usable_height, {c.frame_width, c.frame_height}, 640, 480), c.scale)
            << c.usable_width << "x" << c.usable_height;
}
