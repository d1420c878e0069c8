// The key table of the window. Arrows work with Control held; every other Control combination but the
// few the window uses is ignored, and keys that move by pages or to line ends do nothing.
#include "host/window_keys.h"

#include "console/text_editor.h"
#include "host/typed_character.h"

namespace {

c_window_key engine_key(int code)
{
    return {window_action::key, code};
}

c_window_key action(window_action what)
{
    return {what, 0};
}

// Keys that act the same with or without modifiers.
bool map_plain_key(SDL_Keycode key, c_window_key& mapped)
{
    switch (key) {
    case SDLK_RIGHT: mapped = engine_key(key_right); return true;
    case SDLK_LEFT: mapped = engine_key(key_left); return true;
    case SDLK_UP: mapped = engine_key(key_up); return true;
    case SDLK_DOWN: mapped = engine_key(key_down); return true;
    case SDLK_F11: mapped = action(window_action::full_screen); return true;
    case SDLK_F12: mapped = action(window_action::screenshot); return true;
    default: return false;
    }
}

c_window_key map_control_key(SDL_Keycode key, bool shift)
{
    if (key == SDLK_c)
        return action(shift ? window_action::copy_text : window_action::force_break);
    if (key == SDLK_v && !shift)
        return action(window_action::paste);
    return {};
}

// One UTF-8 sequence from `text`, advanced past it; malformed bytes give 0xFFFD.
unsigned next_code_point(const unsigned char*& text)
{
    const unsigned lead = *text++;
    if (lead < 0x80)
        return lead;
    int length = lead >= 0xF0 ? 3 : lead >= 0xE0 ? 2 : lead >= 0xC0 ? 1 : -1;
    if (length < 0)
        return 0xFFFD;
    unsigned point = lead & (0x3F >> length);
    for (; length > 0; --length, ++text) {
        if ((*text & 0xC0) != 0x80)
            return 0xFFFD;
        point = point << 6 | (*text & 0x3F);
    }
    return point;
}

}  // namespace

c_window_key map_key_down(SDL_Keycode key, unsigned modifiers)
{
    const bool control = (modifiers & KMOD_CTRL) != 0;
    const bool shift = (modifiers & KMOD_SHIFT) != 0;
    const bool alt = (modifiers & KMOD_ALT) != 0;
    c_window_key mapped;
    if (map_plain_key(key, mapped))
        return mapped;
    if (control)
        return map_control_key(key, shift);
    switch (key) {
    case SDLK_RETURN:
    case SDLK_KP_ENTER: return alt ? action(window_action::full_screen) : engine_key(key_enter);
    case SDLK_BACKSPACE: return engine_key(key_back_space);
    case SDLK_TAB: return engine_key(key_tab);
    case SDLK_DELETE: return engine_key(key_delete);
    case SDLK_INSERT: return shift ? action(window_action::paste) : engine_key(key_insert);
    default: return {};
    }
}

void map_typed_text(const char* text, std::vector<int>& codes)
{
    const auto* bytes = reinterpret_cast<const unsigned char*>(text);
    while (*bytes != '\0') {
        if (int code = typed_character_key(next_code_point(bytes)); code != 0)
            codes.push_back(code);
    }
}

void map_pasted_text(const char* text, std::vector<int>& codes)
{
    const auto* bytes = reinterpret_cast<const unsigned char*>(text);
    bool after_carriage_return = false;
    while (*bytes != '\0') {
        const unsigned point = next_code_point(bytes);
        const bool joined_line_feed = point == '\n' && after_carriage_return;
        after_carriage_return = point == '\r';
        if (joined_line_feed)
            continue;
        if (point == '\r' || point == '\n')
            codes.push_back(key_enter);
        else if (point == '\t')
            codes.push_back(key_tab);
        else if (int code = typed_character_key(point); code != 0)
            codes.push_back(code);
    }
}
