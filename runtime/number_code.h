// An expression of numbers alone, translated once into steps of a small stack machine. The tokens fix
// every operand's type (an integer variable never holds a real), so each step knows the types it works
// on and nothing is tested for a type while the steps run. Steps point at variables' values, which
// live as long as the code that names them: the kept translations are forgotten whenever code goes
// (the variable manager's generation), so none outlives the variables it points at.
#pragma once

#include <cstdint>

#include "runtime/expression.h"
#include "runtime/variable.h"


struct c_step {
    unsigned char op;
    unsigned char kind;   // an operation's operator token
    unsigned char count;  // an element's subscripts
    union {
        const int* integer_at;
        const double* real_at;
        int integer;
        double real;
        c_variable_array* array;
    };
};

constexpr int step_limit = 32;  // a longer expression is left to the full evaluation

struct c_number_code {
    // Translates the expression at p; false when it is not one of numbers alone that the steps can
    // take (a string, a function, a missing operand, an operator that always fails on its types).
    bool translate(const unsigned char* p, c_variable_manager* variables);
    // False on any failure, which the full evaluation then meets again and reports.
    bool run(c_number& result) const;

    const unsigned char* start = nullptr;  // the code translated
    unsigned generation = 0;               // the variable manager's, when translated
    int length = 0;                        // code bytes the expression takes
    int step_count = 0;                    // 0: not an expression the steps take
    bool is_real = false;                  // the result's type
    c_step steps[step_limit];
};

// Translations kept by code address, one per slot of a fixed table: a clash translates again.
class c_number_codes {
public:
    c_number_codes() = default;
    c_number_codes(const c_number_codes&) = delete;
    c_number_codes& operator=(const c_number_codes&) = delete;
    ~c_number_codes();

    // The translation of the expression at p, kept or made now; null only when no room can be had.
    const c_number_code* at(const unsigned char* p, c_variable_manager* variables)
    {
        if (slots != nullptr) {
            c_number_code& code = slots[slot_of(p)];
            if (code.start == p && code.generation == variables->code_generation)
                return &code;
        }
        return translate(p, variables);
    }

private:
    static std::size_t slot_of(const unsigned char* p)
    {
        auto address = reinterpret_cast<std::uintptr_t>(p);
        return (address ^ (address >> 8)) % slot_count;
    }
    const c_number_code* translate(const unsigned char* p, c_variable_manager* variables);

    static constexpr unsigned slot_count = 256;
    c_number_code* slots = nullptr;
};
