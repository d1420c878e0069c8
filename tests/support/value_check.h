// Screen tables: each line typed on a fresh console and the rows below it compared; print cases check a
// value as print shows it.
#pragma once

#include <gtest/gtest.h>

#include <initializer_list>
#include <string>

#include "support/test_console.h"

struct line_case {
    const char* typed;  // lines separated by '\n'; the rows below the last are compared
    const char* shown;
};

inline void expect_outputs(std::initializer_list<line_case> cases)
{
    for (const auto& c : cases)
        EXPECT_EQ(test_console().output(c.typed), c.shown) << c.typed;
}

struct print_case {
    std::string expression;
    std::string shown;  // the value printed; after a failure, what the evaluation had reached and the message
};

inline void expect_printed(std::initializer_list<print_case> cases)
{
    for (const auto& c : cases)
        EXPECT_EQ(test_console().output("print " + c.expression), c.shown + "\nOk\n") << c.expression;
}
