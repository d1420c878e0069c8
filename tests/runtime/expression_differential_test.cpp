// The evaluator against a plain reference: random expressions (operands of every type, every operator,
// unary operators, nesting, unclosed parentheses and missing operands) are evaluated by both, which must
// agree on the code, on the cursor and on the value reached, its type and its bits.
#include "runtime/expression.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "engine/error.h"
#include "language/parser.h"
#include "support/test_console.h"

namespace {

struct ref_value {
    int type = type_none;
    int integer = 0;
    double real = 0.0;
    std::string text;
};

ref_value make_integer(int v) { return {type_integer, v, 0.0, ""}; }
ref_value make_real(double v) { return {type_real, 0, v, ""}; }
ref_value make_string(std::string t) { return {type_string, 0, 0.0, std::move(t)}; }

const int array_values[] = {5, -3, 0, 2147483647, -2147483647 - 1, 1, 31, 32, -1, 7, 100};
const std::string long_text(200, 'x');

// The operands the generator writes, and the values the reference gives them.
struct operand_case {
    const char* source;
    ref_value value;
};
const operand_case operands[] = {
    {"0", make_integer(0)},        {"1", make_integer(1)},         {"7", make_integer(7)},
    {"2", make_integer(2)},        {"31", make_integer(31)},       {"32", make_integer(32)},
    {"2147483647", make_integer(INT_MAX)}, {"65536", make_integer(65536)}, {"0.0", make_real(0.0)},
    {"2.5", make_real(2.5)},       {"0.125", make_real(0.125)},    {"1000000.0", make_real(1e6)},
    {"iv", make_integer(-9)},      {"rv", make_real(-1.75)},       {"ia(3)", make_integer(INT_MAX)},
    {"ia(4)", make_integer(INT_MIN)},
    // The rest are drawn a quarter as often: most of what they meet is a syntax error.
    {"\"ab\"", make_string("ab")}, {"\"\"", make_string("")},     {"sv", make_string("s")},
    {"sl", make_string(long_text)}, {"()", ref_value{}},
};
constexpr int number_count = 16;

// ---- the reference: the language's rules written out plainly, on 64-bit and std::string ----

int wrap(long long v) { return static_cast<int>(static_cast<unsigned>(static_cast<unsigned long long>(v))); }

int to_integer(const ref_value& v)
{
    if (v.type == type_integer)
        return v.integer;
    if (v.type != type_real || std::isnan(v.real))
        return 0;
    return v.real >= 2147483648.0 ? INT_MAX : v.real <= -2147483649.0 ? INT_MIN : static_cast<int>(v.real);
}

double to_real(const ref_value& v) { return v.type == type_integer ? v.integer : v.type == type_real ? v.real : 0.0; }

// a to the b modulo 2 to the 32, by squaring; a negative exponent gives 0.
long long power(long long a, long long b)
{
    unsigned result = 1;
    for (unsigned base = static_cast<unsigned>(a), e = static_cast<unsigned>(b); b >= 0 && e != 0; e >>= 1, base *= base)
        result *= (e & 1u) ? base : 1u;
    return b < 0 ? 0 : static_cast<int>(result);
}

bool shift_too_far(long long b) { return b > 31 || (b & 0xFF) > 31; }
double truth(bool b) { return b ? -1.0 : 0.0; }

// Binary operators by level, loosest first; power (level 7) groups to the right. A comparison (level 3)
// compares as reals and gives an integer; an operator without a real step fails on reals with real_error.
using integer_step = long long (*)(long long, long long);
using real_step = double (*)(double, double);
struct operator_case {
    const char* source;
    int level;
    integer_step on_integers;
    real_step on_reals;
    int real_error;
};
const operator_case binary_operators[] = {
    {"or", 1, [](long long a, long long b) { return a | b; }, nullptr, error_syntax},
    {"xor", 1, [](long long a, long long b) { return a ^ b; }, nullptr, error_syntax},
    {"and", 2, [](long long a, long long b) { return a & b; }, nullptr, error_syntax},
    {"=", 3, nullptr, [](double a, double b) { return truth(a == b); }, 0},
    {"<>", 3, nullptr, [](double a, double b) { return truth(!(a == b)); }, 0},
    {"<", 3, nullptr, [](double a, double b) { return truth(a < b); }, 0},
    {">", 3, nullptr, [](double a, double b) { return truth(a > b); }, 0},
    {"<=", 3, nullptr, [](double a, double b) { return truth(a <= b); }, 0},
    {">=", 3, nullptr, [](double a, double b) { return truth(a >= b); }, 0},
    {"+", 4, [](long long a, long long b) { return a + b; }, [](double a, double b) { return a + b; }, 0},
    {"-", 4, [](long long a, long long b) { return a - b; }, [](double a, double b) { return a - b; }, 0},
    {"<<", 5, [](long long a, long long b) { return shift_too_far(b) ? 0 : a << (b & 0xFF); }, nullptr, error_syntax},
    {">>", 5, [](long long a, long long b) { return shift_too_far(b) ? (a < 0 ? -1 : 0) : a >> (b & 0xFF); }, nullptr,
     error_syntax},
    {"*", 6, [](long long a, long long b) { return a * b; }, [](double a, double b) { return a * b; }, 0},
    {"/", 6, [](long long a, long long b) { return a / b; }, [](double a, double b) { return a / b; }, 0},
    {"mod", 6, [](long long a, long long b) { return a % b; }, nullptr, error_type_mismatch},
    {"^", 7, power, [](double a, double b) { return std::pow(a, b); }, 0},
};

const operator_case* find_operator(const std::string& token)
{
    for (const auto& op : binary_operators)
        if (token == op.source)
            return &op;
    return nullptr;
}

int text_of(const ref_value& v, std::string& out)
{
    char buffer[400];
    if (v.type == type_real && std::snprintf(buffer, sizeof buffer, "%f", v.real) > string_capacity)
        return error_string_space;
    out = v.type == type_real ? buffer : v.type == type_string ? v.text : std::to_string(to_integer(v));
    return 0;
}

// The left operand takes the wider type of the two; a real never becomes a string.
int promote(ref_value& left, int wanted)
{
    if (wanted <= left.type)
        return 0;
    if (wanted == type_string && left.type == type_real)
        return error_type_mismatch;
    left = wanted == type_integer ? make_integer(0) : wanted == type_real ? make_real(to_real(left))
         : make_string(left.type == type_none ? "" : std::to_string(left.integer));
    return 0;
}

// One operator on left; on an error left is only promoted.
int apply(ref_value& left, const operator_case& op, const ref_value& right)
{
    if (int code = promote(left, right.type); code != 0)
        return code;
    if (left.type == type_none || (left.type == type_string && op.source != std::string("+")))
        return error_syntax;
    if (left.type == type_string) {
        std::string tail;
        if (int code = text_of(right, tail); code != 0)
            return code;
        if (left.text.size() + tail.size() > string_capacity)
            return error_string_space;
        left.text += tail;
    } else if (op.level == 3) {
        left = make_integer(static_cast<int>(op.on_reals(to_real(left), to_real(right))));
    } else if (left.type == type_real && op.on_reals == nullptr) {
        return op.real_error;
    } else if ((op.source == std::string("/") || op.source == std::string("mod")) && to_real(right) == 0.0) {
        return error_division_by_zero;
    } else if (left.type == type_integer) {
        left.integer = wrap(op.on_integers(left.integer, to_integer(right)));
    } else {
        left.real = op.on_reals(left.real, to_real(right));
    }
    return 0;
}

// Tokens as the generator wrote them; the reference evaluates the same list by the levels.
class reference {
public:
    explicit reference(const std::vector<std::string>& list) : tokens(list) {}

    int expression(ref_value& v) { return level(v, 1); }
    std::size_t position = 0;

private:
    std::string peek() const { return position < tokens.size() ? tokens[position] : ""; }

    int level(ref_value& v, int n)
    {
        if (n == 8)
            return term(v);
        int code = level(v, n == 7 ? 8 : n + 1);
        for (const operator_case* op; code == 0 && (op = find_operator(peek())) != nullptr && op->level == n;) {
            ++position;
            ref_value right;
            code = level(right, n == 7 ? 7 : n + 1);
            code = code != 0 ? code : apply(v, *op, right);
            if (n == 7)
                break;
        }
        return code;
    }

    int term(ref_value& v)
    {
        std::string token = peek();
        if (token == "-" || token == "+" || token == "not") {
            ++position;
            if (int code = term(v); code != 0)
                return code;
            if (v.type == type_none || v.type == type_string || (token == "not" && v.type == type_real))
                return error_syntax;
            if (token == "not")
                v.integer = ~v.integer;
            else if (token == "-" && v.type == type_integer)
                v.integer = wrap(-static_cast<long long>(v.integer));
            else if (token == "-")
                v.real = -v.real;
            return 0;
        }
        if (token == "(") {
            ++position;
            int code = level(v, 1);
            if (code == 0 && peek() != ")")
                return error_right_bracket;
            position += code == 0 ? 1 : 0;
            return code;
        }
        for (const auto& operand : operands)
            if (token == operand.source) {
                ++position;
                v = token == "()" ? v : operand.value;
                return 0;
            }
        return 0;  // no operand: nothing taken, v unchanged
    }

    const std::vector<std::string>& tokens;
};

// ---- the generator ----

void generate(std::mt19937& random, int depth, std::vector<std::string>& out)
{
    auto pick = [&](int n) { return static_cast<int>(random() % static_cast<unsigned>(n)); };
    auto operand = [&] {
        int unary = pick(8);
        if (unary < 3)
            out.push_back(unary == 0 ? "-" : unary == 1 ? "+" : "not");
        if (depth > 0 && pick(4) == 0) {
            out.push_back("(");
            generate(random, depth - 1, out);
            out.push_back(")");
        } else {
            out.push_back(operands[pick(pick(4) == 0 ? std::size(operands) : number_count)].source);
        }
    };
    operand();
    for (int count = pick(4); count > 0; --count) {
        out.push_back(binary_operators[pick(std::size(binary_operators))].source);
        operand();
    }
}

bool same(const c_value& value, const ref_value& expected)
{
    if (value.get_type() != expected.type)
        return false;
    const c_base_type* current = value.current;
    if (expected.type == type_integer)
        return current->get_integer() == expected.integer;
    if (expected.type == type_real) {
        double got = current->get_real();
        return (std::isnan(got) && std::isnan(expected.real)) || std::memcmp(&got, &expected.real, sizeof got) == 0;
    }
    const char* text = nullptr;
    int length = 0;
    current->get_string(text, length);
    return std::string(text, static_cast<std::size_t>(length)) == expected.text;
}

}  // namespace

TEST(evaluator_differential, agrees_with_the_reference_on_random_expressions)
{
    // The stored lines keep the variables alive with their values; -7/4.0 is exactly the reference's -1.75.
    test_console console;
    std::string program = "10 iv=-9: rv=-7/4.0: sv=\"s\": sl=\"\": for i=1 to 200: sl=sl+\"x\": next\n20 dim ia(10)";
    for (int index = 0; index <= 10; ++index)
        program += ": ia(" + std::to_string(index) + ")=" + std::to_string(array_values[index]);
    ASSERT_EQ(console.output(program + "\nrun"), "Ok\n");
    c_system_resource& resource = *console.resource();

    std::mt19937 random(13);
    int failures = 0;
    for (int trial = 0; trial < 20000 && failures < 10; ++trial) {
        std::vector<std::string> tokens;
        generate(random, 3, tokens);
        if (random() % 16 == 0 && tokens.back() == ")")
            tokens.pop_back();  // an unclosed parenthesis
        if (random() % 16 == 0)
            tokens.push_back(binary_operators[random() % std::size(binary_operators)].source);
        std::string source;
        for (const auto& token : tokens)
            source += token + " ";

        ref_value expected;
        reference evaluator(tokens);
        int expected_code = evaluator.expression(expected);

        c_parser parser(&resource);
        ASSERT_EQ(parser.precompile(source.c_str(), nullptr), 0) << source;
        const unsigned char* p = parser.code;
        c_value value;
        resource.error_code = 0;
        int code = c_expression(&resource).expression(value, p);
        // Where the cursor stopped, counted in tokens of the source.
        std::size_t taken = 0;
        for (const unsigned char* q = parser.code; q < p; q += token_size(q))
            ++taken;
        std::size_t expected_taken = evaluator.position;
        for (std::size_t index = 0; index < evaluator.position; ++index)  // ia(3) is 4 code tokens, () 2
            expected_taken += tokens[index] == "()" ? 1 : tokens[index].rfind("ia(", 0) == 0 ? 3 : 0;
        bool agree = code == expected_code && same(value, expected) && (code != 0 || taken == expected_taken);
        EXPECT_TRUE(agree) << source << "\n  code " << code << " expected " << expected_code << ", type "
                           << value.get_type() << " expected " << expected.type << ", tokens " << taken
                           << " expected " << expected_taken;
        failures += agree ? 0 : 1;
        parser.variable_release();
    }
}
