// The window's keys: which presses reach the engine as which codes, which are the window's own
// actions, and how typed and pasted text become character codes.
#include <SDL2/SDL_keyboard.h>
#include <gtest/gtest.h>

#include <utility>
#include <vector>

#include "host/window_keys.h"

TEST(window_keys, map_presses_to_engine_codes_or_window_actions)
{
    using enum window_action;
    struct key_case { SDL_Keycode key; unsigned modifiers; window_action action; int code; };
    const key_case keys[] = {
        {SDLK_RETURN, 0, key, 13},
        {SDLK_BACKSPACE, 0, key, 8},
        {SDLK_TAB, 0, key, 9},
        {SDLK_RIGHT, 0, key, 28},
        {SDLK_LEFT, 0, key, 29},
        {SDLK_UP, 0, key, 30},
        {SDLK_DOWN, KMOD_LCTRL, key, 31},          // arrows work with Control held
        {SDLK_DELETE, 0, key, 19},
        {SDLK_INSERT, 0, key, 18},
        {SDLK_HOME, 0, none, 0},                   // like End, the pages, Escape and the characters
        {SDLK_c, KMOD_RCTRL, force_break, 0},
        {SDLK_c, KMOD_LCTRL | KMOD_LSHIFT, copy_text, 0},
        {SDLK_a, KMOD_LCTRL, none, 0},             // any other Control combination is ignored
        {SDLK_v, KMOD_LCTRL, paste, 0},
        {SDLK_v, KMOD_LCTRL | KMOD_LSHIFT, none, 0},
        {SDLK_INSERT, KMOD_RSHIFT, paste, 0},
        {SDLK_F11, 0, full_screen, 0},
        {SDLK_RETURN, KMOD_LALT, full_screen, 0},
        {SDLK_F12, 0, screenshot, 0},
    };
    for (const auto& c : keys) {
        const c_window_key mapped = map_key_down(c.key, c.modifiers);
        EXPECT_EQ(std::pair(mapped.action, mapped.code), std::pair(c.action, c.code))
            << SDL_GetKeyName(c.key) << " with modifiers " << c.modifiers;
    }
}

TEST(window_keys, typed_text_types_a_question_mark_for_what_cannot_be_shown_and_a_paste_one_enter_per_line_end)
{
    struct text_case { void (*map)(const char*, std::vector<int>&); const char* text; std::vector<int> codes; };
    const text_case cases[] = {
        {map_typed_text, "a Z~", {'a', ' ', 'Z', '~'}},
        {map_typed_text, "\xC3\xA9\xC2\xA0", {'?', '?'}},     // e acute (AltGr, a dead key), no-break space
        {map_typed_text, "\xE2\x82\xAC" "x", {'?', 'x'}},     // the euro sign: three bytes, one key
        {map_typed_text, "\xF0\x9F\x98\x80", {'?'}},          // four bytes
        {map_typed_text, "\x7F\xC2\x9F\t", {}},               // control characters
        {map_typed_text, "\xC3" "a", {'?', 'a'}},             // a cut sequence
        {map_pasted_text, "\xC3\xA9t\xC3\xA9", {'?', 't', '?'}},
        {map_pasted_text, "a\r\nb\nc\rd", {'a', 13, 'b', 13, 'c', 13, 'd'}},
        {map_pasted_text, "\r\r\n\n", {13, 13, 13}},
        {map_pasted_text, "x\ty\x0C\x1Bz", {'x', 9, 'y', 'z'}},  // form feed, escape dropped
    };
    for (const auto& c : cases) {
        std::vector<int> codes;
        c.map(c.text, codes);
        EXPECT_EQ(codes, c.codes) << testing::PrintToString(c.text);
    }
}
