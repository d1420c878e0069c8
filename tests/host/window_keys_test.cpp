// The window's keys: which presses reach the engine as which codes, which are the window's own
// actions, and how typed and pasted text become character codes.
#include <SDL2/SDL_keyboard.h>
#include <gtest/gtest.h>

#include <vector>

#include "host/window_keys.h"

namespace {

struct key_case {
    SDL_Keycode key;
    unsigned modifiers;
    window_action action;
    int code;
};

const key_case keys[] = {
    {SDLK_RETURN, 0, window_action::key, 13},
    {SDLK_KP_ENTER, 0, window_action::key, 13},
    {SDLK_BACKSPACE, 0, window_action::key, 8},
    {SDLK_TAB, 0, window_action::key, 9},
    {SDLK_RIGHT, 0, window_action::key, 28},
    {SDLK_LEFT, 0, window_action::key, 29},
    {SDLK_UP, 0, window_action::key, 30},
    {SDLK_DOWN, 0, window_action::key, 31},
    {SDLK_UP, KMOD_LCTRL, window_action::key, 30},    // arrows work with Control held
    {SDLK_DELETE, 0, window_action::key, 19},
    {SDLK_INSERT, 0, window_action::key, 18},
    {SDLK_HOME, 0, window_action::none, 0},
    {SDLK_END, 0, window_action::none, 0},
    {SDLK_PAGEUP, 0, window_action::none, 0},
    {SDLK_PAGEDOWN, 0, window_action::none, 0},
    {SDLK_ESCAPE, 0, window_action::none, 0},
    {SDLK_a, 0, window_action::none, 0},              // characters come as typed text
    {SDLK_c, KMOD_LCTRL, window_action::force_break, 0},
    {SDLK_c, KMOD_RCTRL, window_action::force_break, 0},
    {SDLK_c, KMOD_LCTRL | KMOD_LSHIFT, window_action::copy_text, 0},
    {SDLK_c, KMOD_LSHIFT, window_action::none, 0},
    {SDLK_a, KMOD_LCTRL, window_action::none, 0},     // any other Control combination is ignored
    {SDLK_RETURN, KMOD_LCTRL, window_action::none, 0},
    {SDLK_v, KMOD_LCTRL, window_action::paste, 0},
    {SDLK_v, KMOD_LCTRL | KMOD_LSHIFT, window_action::none, 0},
    {SDLK_INSERT, KMOD_RSHIFT, window_action::paste, 0},
    {SDLK_F11, 0, window_action::full_screen, 0},
    {SDLK_RETURN, KMOD_LALT, window_action::full_screen, 0},
    {SDLK_F12, 0, window_action::screenshot, 0},
};

std::vector<int> typed(const char* text)
{
    std::vector<int> codes;
    map_typed_text(text, codes);
    return codes;
}

std::vector<int> pasted(const char* text)
{
    std::vector<int> codes;
    map_pasted_text(text, codes);
    return codes;
}

}  // namespace

TEST(window_keys, map_presses_to_engine_codes_or_window_actions)
{
    for (const auto& c : keys) {
        const c_window_key mapped = map_key_down(c.key, c.modifiers);
        EXPECT_EQ(mapped.action, c.action) << SDL_GetKeyName(c.key) << " with modifiers " << c.modifiers;
        EXPECT_EQ(mapped.code, c.code) << SDL_GetKeyName(c.key) << " with modifiers " << c.modifiers;
    }
}

TEST(window_keys, typed_text_keeps_printable_ascii_and_latin_1)
{
    EXPECT_EQ(typed("a Z~"), (std::vector<int>{'a', ' ', 'Z', '~'}));
    EXPECT_EQ(typed("\xC3\xA9\xC2\xA0"), (std::vector<int>{0xE9, 0xA0}));   // e acute, no-break space
    EXPECT_EQ(typed("\xE2\x82\xAC" "x"), (std::vector<int>{'x'}));           // the euro sign has no code
    EXPECT_EQ(typed("\x7F\xC2\x9F\t"), (std::vector<int>{}));                // control characters
    EXPECT_EQ(typed("\xC3" "a"), (std::vector<int>{'a'}));                   // a cut sequence
}

TEST(window_keys, pasted_text_turns_each_line_end_into_one_enter)
{
    EXPECT_EQ(pasted("a\r\nb\nc\rd"), (std::vector<int>{'a', 13, 'b', 13, 'c', 13, 'd'}));
    EXPECT_EQ(pasted("\r\r\n\n"), (std::vector<int>{13, 13, 13}));
    EXPECT_EQ(pasted("x\ty\x0C\x1Bz"), (std::vector<int>{'x', 9, 'y', 'z'}));  // form feed, escape dropped
}
