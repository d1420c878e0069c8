// Values written in test tables (none, an integer, a real or a string), loaded into a c_value and
// compared with one: type first, then the value (a NaN matches a NaN).
#pragma once

#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "runtime/value.h"

struct literal {
    literal() = default;
    literal(int v) : type(type_integer), integer(v) {}
    literal(double v) : type(type_real), real(v) {}
    literal(const char* v) : type(type_string), text(v) {}
    int type = type_none;
    int integer = 0;
    double real = 0.0;
    std::string text;
};

inline void load(c_value& value, const literal& l)
{
    if (l.type == type_integer)
        value.change_integer(l.integer);
    else if (l.type == type_real)
        value.change_real(l.real);
    else if (l.type == type_string)
        value.change_string(l.text.data(), static_cast<int>(l.text.size()));
}

// The text a string value holds; empty for the other types.
inline std::string text_of(const c_value& value)
{
    const char* text = nullptr;
    int length = -1;
    value.current->get_string(text, length);
    return std::string(text, static_cast<std::size_t>(length));
}

inline void expect_holds(const c_value& value, const literal& l, const std::string& context)
{
    ASSERT_EQ(value.get_type(), l.type) << context;
    if (l.type == type_integer) {
        EXPECT_EQ(value.current->get_integer(), l.integer) << context;
    } else if (l.type == type_real && std::isnan(l.real)) {
        EXPECT_TRUE(std::isnan(value.current->get_real())) << context;
    } else if (l.type == type_real) {
        EXPECT_EQ(value.current->get_real(), l.real) << context;
    } else if (l.type == type_string) {
        EXPECT_EQ(text_of(value), l.text) << context;
    }
}
