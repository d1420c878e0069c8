// One rule for the window and the terminal, so a character types the same key in both.
#include "host/typed_character.h"

int typed_character_key(unsigned code_point)
{
    if (code_point >= 0x20 && code_point < 0x7F)
        return static_cast<int>(code_point);
    if (code_point < 0x20 || code_point == 0x7F || (code_point >= 0x80 && code_point < 0xA0))
        return 0;
    return unshown_character_key;
}
