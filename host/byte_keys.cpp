// One Enter for each line end, whichever of the three forms it takes.
#include "host/byte_keys.h"

#include "console/text_editor.h"

int c_byte_keys::take(unsigned char byte)
{
    bool pair_end = after_carriage_return && byte == '\n';
    after_carriage_return = byte == '\r';
    if (pair_end || byte == 0)
        return 0;
    if (byte == '\r' || byte == '\n')
        return key_enter;
    return byte;
}
