// Bytes of standard input as engine key codes: every byte is one key, except that a line feed, a
// carriage return and the pair CR LF are each one Enter, and NUL bytes are no key at all.
#pragma once

class c_byte_keys {
public:
    // The key code of the next byte, or 0 when the byte gives no key.
    int take(unsigned char byte);

private:
    bool after_carriage_return = false;  // a line feed right after it belongs to the same Enter
};
