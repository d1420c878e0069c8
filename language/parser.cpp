// The tokenizer: one source line into intermediate code. Names are registered with the variable
// manager as they are met, so every variable token written holds one reference; a failed line gives
// all of them back before it returns, leaving the end mark alone in `code`.
#include "language/parser.h"

#include <cstring>
#include <iterator>

#include "engine/debug_log.h"
#include "engine/error.h"
#include "engine/system_resource.h"
#include "runtime/command.h"
#include "runtime/function.h"
#include "runtime/variable.h"

namespace {

constexpr int max_line_digits = 5;
constexpr int max_string_length = 255;  // the length byte

// Table order gives the token kinds (13 + index): never reorder.
constexpr const char* keywords[] = {
    "for", "to", "step", "next", "if", "then", "else", "goto", "gosub", "return",
};
static_assert(std::size(keywords) == token_return - token_for + 1);

// Table order gives the token kinds (23 + index) and makes the two-character operators win over
// their first character: never reorder.
constexpr const char* operators[] = {
    "AND", "OR", "XOR", "NOT", "MOD", "+", "-", "*", "/", "(", ")", "=",
    "<=", ">=", "<>", "<<", ">>", "<", ">", ":", ";", ",", "^",
};
static_assert(std::size(operators) == token_power - token_and + 1);

// The character classes of the C library's default locale, whatever locale a host has set;
// characters above 127 belong to none.
bool is_blank(char c)
{
    return c == ' ' || (c >= '\t' && c <= '\r');
}

bool is_digit(char c)
{
    return c >= '0' && c <= '9';
}

bool is_letter(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

bool is_name_character(char c)
{
    return is_letter(c) || is_digit(c) || c == '_';
}

char to_upper(char c)
{
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

int hex_value(char c)
{
    if (is_digit(c))
        return c - '0';
    char upper = to_upper(c);
    return upper >= 'A' && upper <= 'F' ? upper - 'A' + 10 : -1;
}

// At most five digits; a sixth digit, or the value 0, makes the number invalid (0).
int analyze_line_no(const char*& text)
{
    int value = 0;
    for (int digits = 0; digits < max_line_digits && is_digit(*text); ++digits, ++text)
        value = value * 10 + (*text - '0');
    return is_digit(*text) ? 0 : value;
}

// Copies a name of at most 32 characters into `name` and leaves the cursor after it.
void read_name(const char*& text, char (&name)[name_capacity + 1])
{
    int length = 0;
    do
        name[length++] = *text++;
    while (length < name_capacity && is_name_character(*text));
    name[length] = '\0';
}

// The variable kind a name's first letter gives, or -1.
int variable_kind(char first, bool array)
{
    switch (to_upper(first)) {
    case 'I':
        return array ? token_integer_array : token_integer_variable;
    case 'R':
        return array ? token_real_array : token_real_variable;
    case 'S':
        return array ? token_string_array : token_string_variable;
    default:
        return -1;
    }
}

// Room for a token of `bytes` and the end mark after it. Only text longer than any line the editor
// or the loader hands over can run out of it.
bool has_room(int position, int bytes)
{
    return position + bytes < code_capacity;
}

void emit_byte(unsigned char* code, int& position, unsigned char kind)
{
    code[position++] = kind;
}

template <class T>
void emit_operand(unsigned char* code, int& position, unsigned char kind, T operand)
{
    code[position] = kind;
    write_operand<T>(code + position + 1, operand);
    position += 1 + static_cast<int>(sizeof operand);
}

}  // namespace

c_parser::c_parser(c_system_resource* resource) : p_system_resource(resource)
{
    std::memset(source, 0, sizeof source);
    std::memset(code, 0, sizeof code);
}

int c_parser::check_line_no(const char*& text)
{
    p_system_resource->error_code = error_none;
    while (is_blank(*text))
        ++text;
    if (*text == '\0')
        return -1;
    if (!is_digit(*text))
        return line_number;
    line_number = analyze_line_no(text);
    dlog.printf("  Line number: %d\n", line_number);
    if (line_number == 0)
        p_system_resource->error_code.raise(error_illegal_line_number);
    return line_number;
}

int c_parser::precompile(const char* text, c_program_line* line)
{
    int position = 0;
    bool statement_start = true;
    while (is_blank(*text))
        ++text;
    if (*text == '\0')
        return -1;
    c_error_code& error_code = p_system_resource->error_code;
    error_code = error_none;
    std::strncpy(source, text, source_capacity - 1);
    source[source_capacity - 1] = '\0';
    p_line = line;
    dlog.printf("Precompile [%s]\n", source);

    while (*text != '\0' && error_code == error_none) {
        char c = *text;
        if (is_digit(c)) {
            analyze_number(position, text);
            statement_start = false;
        } else if (is_letter(c)) {
            analyze_symbol(position, text);
            statement_start = false;
        } else if (c == '"') {
            analyze_string(position, text);
            statement_start = false;
        } else if (c == '$') {
            analyze_label(position, text, statement_start, line);
        } else if (c == '\'') {
            break;  // a comment: the rest stays only in the source
        } else if (is_blank(c)) {
            ++text;
        } else {
            statement_start = c == ':';
            analyze_operator(position, text);
        }
    }
    emit_byte(code, position, token_end);

    if (error_code == error_none) {
        code_length = position;
        return line_number;
    }
    dlog.printf("Precompile failed (%d)\n", static_cast<int>(error_code));
    p_system_resource->p_variable_manager->line_release(code, position, line);
    code[0] = token_end;
    code_length = 0;
    return 0;
}

void c_parser::variable_release()
{
    p_system_resource->p_variable_manager->line_release(code, code_length, p_line);
}

void c_parser::analyze_number(int& position, const char*& text)
{
    if (!has_room(position, operand_token_size + 4)) {
        p_system_resource->error_code.raise(error_too_long_line);
        return;
    }
    if (text[0] == '0' && (text[1] == 'x' || text[1] == 'b')) {
        bool hexadecimal = text[1] == 'x';
        text += 2;
        // Unsigned: bits shifted out are lost, as the language wants.
        unsigned value = 0;
        if (hexadecimal)
            for (; hex_value(*text) >= 0; ++text)
                value = (value << 4) | static_cast<unsigned>(hex_value(*text));
        else
            for (; *text == '0' || *text == '1'; ++text)
                value = (value << 1) | static_cast<unsigned>(*text - '0');
        dlog.printf("  Number: %u\n", value);
        emit_operand<int>(code, position, token_integer, static_cast<int>(value));
        return;
    }
    const char* after_digits = text;
    while (is_digit(*after_digits))
        ++after_digits;
    if (*after_digits == '.') {
        double value = 0.0;
        for (; is_digit(*text); ++text)
            value = value * 10 + (*text - '0');
        ++text;
        double scale = 0.1;
        for (; is_digit(*text); ++text) {
            value += (*text - '0') * scale;
            scale /= 10;
        }
        dlog.printf("  Number: %f\n", value);
        emit_operand<double>(code, position, token_real, value);
        return;
    }
    unsigned value = 0;  // wraps on overflow
    for (; is_digit(*text); ++text)
        value = value * 10 + static_cast<unsigned>(*text - '0');
    dlog.printf("  Number: %u\n", value);
    emit_operand<int>(code, position, token_integer, static_cast<int>(value));
}

void c_parser::analyze_symbol(int& position, const char*& text)
{
    if (!has_room(position, operand_token_size)) {
        p_system_resource->error_code.raise(error_too_long_line);
        return;
    }
    for (int index = 0; index < static_cast<int>(std::size(keywords)); ++index) {
        std::size_t length = std::strlen(keywords[index]);
        if (std::strncmp(text, keywords[index], length) == 0 && !is_letter(text[length])) {
            dlog.printf("  Keyword: %s\n", keywords[index]);
            emit_byte(code, position, static_cast<unsigned char>(token_for + index));
            text += length;
            return;
        }
    }
    int kind = get_operator_id(text);
    if (kind >= 0) {
        emit_byte(code, position, static_cast<unsigned char>(kind));
        return;
    }
    char name[name_capacity + 1];
    read_name(text, name);
    while (is_blank(*text))
        ++text;  // blanks after a name belong to it, so "rnd (1)" is a call
    if (int row = c_command::get_code(name); row >= 0) {
        dlog.printf("  Command: %s\n", name);
        emit_operand<int>(code, position, token_command, row);
        return;
    }
    if (int row = c_function::get_code(name); row >= 0) {
        dlog.printf("  Function: %s\n", name);
        emit_operand<int>(code, position, token_function, row);
        return;
    }
    kind = variable_kind(name[0], *text == '(');
    if (kind < 0) {
        p_system_resource->error_code.raise(error_syntax);
        return;
    }
    c_variable* variable = p_system_resource->p_variable_manager->acquire(static_cast<unsigned char>(kind), name);
    if (variable == nullptr) {
        p_system_resource->error_code.raise(error_out_of_memory);
        return;
    }
    emit_operand<variable_id>(code, position, static_cast<unsigned char>(kind), variable->id);
}

void c_parser::analyze_operator(int& position, const char*& text)
{
    if (!has_room(position, 1)) {
        p_system_resource->error_code.raise(error_too_long_line);
        return;
    }
    int kind = get_operator_id(text);
    if (kind < 0) {
        p_system_resource->error_code.raise(error_syntax);
        return;
    }
    emit_byte(code, position, static_cast<unsigned char>(kind));
}

void c_parser::analyze_string(int& position, const char*& text)
{
    char buffer[max_string_length];
    int length = 0;
    ++text;
    while (*text != '\0' && length < max_string_length) {
        if (*text == '"') {
            if (text[1] != '"')
                break;
            ++text;  // a doubled quote stands for one
        }
        buffer[length++] = *text++;
    }
    if (*text != '"') {
        p_system_resource->error_code.raise(error_syntax);
        return;
    }
    ++text;
    if (!has_room(position, 2 + length)) {
        p_system_resource->error_code.raise(error_too_long_line);
        return;
    }
    dlog.printf("  String: %d characters\n", length);
    emit_byte(code, position, token_string);
    emit_byte(code, position, static_cast<unsigned char>(length));
    std::memcpy(code + position, buffer, static_cast<std::size_t>(length));
    position += length;
}

// The first character after "$" may be any but a blank or the end; letters, digits and "_" follow.
void c_parser::analyze_label(int& position, const char*& text, bool statement_start, c_program_line* line)
{
    ++text;
    if (*text == '\0' || is_blank(*text)) {
        p_system_resource->error_code.raise(error_syntax);
        return;
    }
    if (!has_room(position, operand_token_size)) {
        p_system_resource->error_code.raise(error_too_long_line);
        return;
    }
    char name[name_capacity + 1];
    read_name(text, name);
    c_variable* variable = p_system_resource->p_variable_manager->acquire(token_label, name);
    if (variable == nullptr) {
        p_system_resource->error_code.raise(error_out_of_memory);
        return;
    }
    emit_operand<variable_id>(code, position, token_label, variable->id);
    if (!statement_start)
        return;
    // A definition; a later one of the same name replaces it.
    auto* label = static_cast<c_variable_label*>(variable);
    label->line = line;
    label->position = position;
    dlog.printf("  Label [%s] defined at %d\n", name, position);
}

int c_parser::get_operator_id(const char*& text)
{
    for (int index = 0; index < static_cast<int>(std::size(operators)); ++index) {
        const char* entry = operators[index];
        int length = 0;
        while (entry[length] != '\0' && to_upper(text[length]) == entry[length])
            ++length;
        if (entry[length] == '\0') {
            text += length;
            return token_and + index;
        }
    }
    return -1;
}
