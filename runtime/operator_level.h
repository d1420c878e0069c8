// The precedence levels of the binary operators, loosest first, as the evaluator and the translation
// of numeric expressions both group them. An operator of a left-to-right level takes as its right
// operand the levels above it; ^ takes ^ again, so it groups from the right.
#pragma once

#include <iterator>

#include "language/code.h"

constexpr int level_none = 0, level_or = 1, level_and = 2, level_comparator = 3, level_addition = 4,
              level_shift = 5, level_multiplication = 6, level_power = 7;

// Indexed by token kind - token_and: the code format fixes the kinds' order, so this table's too.
constexpr int operator_levels[] = {
    level_and,             // 23 AND
    level_or,              // 24 OR
    level_or,              // 25 XOR
    level_none,            // 26 NOT, prefix only
    level_multiplication,  // 27 MOD
    level_addition,        // 28 +
    level_addition,        // 29 -
    level_multiplication,  // 30 *
    level_multiplication,  // 31 /
    level_none,            // 32 (
    level_none,            // 33 )
    level_comparator,      // 34 =
    level_comparator,      // 35 <=
    level_comparator,      // 36 >=
    level_comparator,      // 37 <>
    level_shift,           // 38 <<
    level_shift,           // 39 >>
    level_comparator,      // 40 <
    level_comparator,      // 41 >
    level_none,            // 42 :
    level_none,            // 43 ;
    level_none,            // 44 ,
    level_power,           // 45 ^
};
static_assert(std::size(operator_levels) == token_power - token_and + 1);

// The level of the operator a kind byte stands for, level_none for any other kind.
inline int level_of(unsigned char kind)
{
    unsigned index = kind - token_and;
    return index < std::size(operator_levels) ? operator_levels[index] : level_none;
}

// The level an operator's right operand is read at.
inline int right_level(int level) { return level == level_power ? level_power : level + 1; }
