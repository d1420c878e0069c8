// The intermediate code: every line is translated once into these tokens and only they are executed.
// A token is a kind byte and, for some kinds, an operand right after it with no alignment, so operands
// are copied byte-wise (read_operand), never read through a cast pointer.
// Variable operands are 32-bit ids in the variable manager's table rather than pointers, so that every
// operand token is 5 bytes on 64-bit hosts too; each id in code holds one reference on its variable.
#pragma once

#include <cstdint>
#include <cstring>
#include <memory>

// Token kinds. Kinds 13 to 22 are the keyword table's index + 13, kinds 23 to 45 the operator table's
// index + 23: the tokenizer relies on this order, never reorder.
constexpr unsigned char token_integer = 0;           // 4-byte int
constexpr unsigned char token_real = 1;              // 8-byte double
constexpr unsigned char token_string = 2;            // length byte n, then n bytes
constexpr unsigned char token_integer_variable = 3;  // 4-byte variable id
constexpr unsigned char token_real_variable = 4;
constexpr unsigned char token_string_variable = 5;
constexpr unsigned char token_integer_array = 6;
constexpr unsigned char token_real_array = 7;
constexpr unsigned char token_string_array = 8;
constexpr unsigned char token_label = 9;
constexpr unsigned char token_command = 10;          // 4-byte row of command_list
constexpr unsigned char token_function = 11;         // 4-byte row of function_list
constexpr unsigned char token_end = 12;
constexpr unsigned char token_for = 13;
constexpr unsigned char token_to = 14;
constexpr unsigned char token_step = 15;
constexpr unsigned char token_next = 16;
constexpr unsigned char token_if = 17;
constexpr unsigned char token_then = 18;
constexpr unsigned char token_else = 19;
constexpr unsigned char token_goto = 20;
constexpr unsigned char token_gosub = 21;
constexpr unsigned char token_return = 22;
constexpr unsigned char token_and = 23;
constexpr unsigned char token_or = 24;
constexpr unsigned char token_xor = 25;
constexpr unsigned char token_not = 26;
constexpr unsigned char token_mod = 27;
constexpr unsigned char token_plus = 28;
constexpr unsigned char token_minus = 29;
constexpr unsigned char token_multiply = 30;
constexpr unsigned char token_divide = 31;
constexpr unsigned char token_open = 32;        // (
constexpr unsigned char token_close = 33;       // )
constexpr unsigned char token_equal = 34;       // =
constexpr unsigned char token_less_equal = 35;  // <=
constexpr unsigned char token_greater_equal = 36;  // >=
constexpr unsigned char token_not_equal = 37;   // <>
constexpr unsigned char token_shift_left = 38;  // <<
constexpr unsigned char token_shift_right = 39; // >>
constexpr unsigned char token_less = 40;        // <
constexpr unsigned char token_greater = 41;     // >
constexpr unsigned char token_colon = 42;       // :
constexpr unsigned char token_semicolon = 43;   // ;
constexpr unsigned char token_comma = 44;       // ,
constexpr unsigned char token_power = 45;       // ^

constexpr int operand_token_size = 5;  // kind byte and a 32-bit operand

using variable_id = std::uint32_t;

template <class T>
T read_operand(const unsigned char*& p)
{
    T value;
    std::memcpy(&value, p, sizeof value);
    p += sizeof value;
    return value;
}

template <class T>
T peek_operand(const unsigned char* p)
{
    T value;
    std::memcpy(&value, p, sizeof value);
    return value;
}

template <class T>
void write_operand(unsigned char* p, T value)
{
    std::memcpy(p, &value, sizeof value);
}

// Steps over the token when it is of the given kind.
inline bool take_token(const unsigned char*& p, unsigned char kind)
{
    if (*p != kind)
        return false;
    ++p;
    return true;
}

// Bytes taken by the token at p, operand included.
inline int token_size(const unsigned char* p)
{
    switch (*p) {
    case token_real:
        return 9;
    case token_string:
        return 2 + p[1];
    default:
        return *p <= token_function ? operand_token_size : 1;
    }
}

inline bool is_variable_token(unsigned char kind)
{
    return kind >= token_integer_variable && kind <= token_label;
}

// One stored line. `block` holds the code followed by the source text; a line whose translation
// failed keeps its source with code_length 0.
struct c_program_line {
    c_program_line* prev = nullptr;
    c_program_line* next = nullptr;
    int number = 0;
    std::unique_ptr<unsigned char[]> block;
    char* source = nullptr;
    unsigned char* code = nullptr;
    int code_length = 0;

    // Unlinks the record from its neighbours; its own links are left as they were.
    void reject()
    {
        if (prev != nullptr)
            prev->next = next;
        if (next != nullptr)
            next->prev = prev;
    }
};
