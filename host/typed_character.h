// A typed character (a Unicode code point, decoded from UTF-8 by the window or the terminal) as an
// engine key: the console shows only printable ASCII, so every other printable character is one "?"
// key, never stray bytes, and a control character is no key at all.
#pragma once

constexpr int unshown_character_key = '?';

// The key code of a typed character, or 0 for a control character (below 32, 127, 128 to 159).
int typed_character_key(unsigned code_point);
