// Intermediate code written by hand, token by token, so that evaluator tests need no tokenizer.
// Operands are appended byte-wise, unaligned, as the tokenizer stores them; end() closes the line.
// words("1 + 2.5 * \"ab\"") appends one token per blank-separated word: a number (decimal or 0x),
// a real (with a point: 1.0e300), a string in quotes (without blanks), or an operator as written.
#pragma once

#include <cstdlib>
#include <iterator>
#include <cstring>
#include <sstream>
#include <string>
#include <vector>

#include "language/code.h"

class c_code_builder {
public:
    c_code_builder& integer(int v) { return operand(token_integer, v); }
    c_code_builder& real(double v) { return operand(token_real, v); }
    c_code_builder& string(const std::string& text)
    {
        bytes.push_back(token_string);
        bytes.push_back(static_cast<unsigned char>(text.size()));
        bytes.insert(bytes.end(), text.begin(), text.end());
        return *this;
    }
    c_code_builder& variable(unsigned char kind, variable_id id) { return operand(kind, id); }
    c_code_builder& function(int row) { return operand(token_function, row); }
    c_code_builder& token(unsigned char kind)  // an operator, a keyword or the end mark
    {
        bytes.push_back(kind);
        return *this;
    }
    c_code_builder& end() { return token(token_end); }
    c_code_builder& words(const std::string& text)
    {
        std::istringstream stream(text);
        for (std::string word; stream >> word;)
            add_word(word);
        return *this;
    }

    const unsigned char* code() const { return bytes.data(); }
    // Where a cursor stands, counted from the start.
    long offset(const unsigned char* p) const { return p - bytes.data(); }

    std::vector<unsigned char> bytes;

private:
    void add_word(const std::string& word)
    {
        static const char* const operators[] = {"AND", "OR", "XOR", "NOT", "MOD", "+",  "-", "*",
                                                "/",   "(",  ")",   "=",   "<=",  ">=", "<>", "<<",
                                                ">>",  "<",  ">",   ":",   ";",   ",",  "^"};
        for (unsigned char index = 0; index < std::size(operators); ++index)
            if (word == operators[index]) {
                token(static_cast<unsigned char>(token_and + index));
                return;
            }
        if (word.front() == '"')
            string(word.substr(1, word.size() - 2));
        else if (word.find('.') != std::string::npos)
            real(std::strtod(word.c_str(), nullptr));
        else
            integer(static_cast<int>(std::strtoul(word.c_str(), nullptr, 0)));
    }

    template <class T>
    c_code_builder& operand(unsigned char kind, T v)
    {
        bytes.push_back(kind);
        unsigned char raw[sizeof v];
        std::memcpy(raw, &v, sizeof v);
        bytes.insert(bytes.end(), raw, raw + sizeof v);
        return *this;
    }
};
