// The statement loop as a session sees it: programs stored, a line entered, the screen read back.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/test_console.h"

namespace {

using program = std::vector<const char*>;

struct session_case {
    program lines;      // numbered lines stored first
    const char* typed;  // then entered on a cleared screen
    const char* shown;  // the rows below the typed line
};

// Stores the lines, clears the screen, enters the typed line on row 0 and returns the rows below it.
std::string session(test_console& console, const program& lines, const char* typed)
{
    for (const char* line : lines)
        console.enter(line);
    console.engine.text_editor.clear_screen();
    console.enter(typed);
    EXPECT_EQ(console.row(0), typed);
    std::string screen = console.screen();
    return screen.substr(screen.find('\n') + 1);
}

void expect_sessions(const std::vector<session_case>& cases)
{
    for (const auto& c : cases) {
        test_console console;
        EXPECT_EQ(session(console, c.lines, c.typed), c.shown) << c.typed;
    }
}

// A host that asks for a break on its Nth sleep, as Control+C during a long loop would.
struct c_breaking_host : c_test_host {
    void sleep(unsigned int ms) override
    {
        c_test_host::sleep(ms);
        if (++sleeps == break_after)
            p_engine->force_break();
    }
    int sleeps = 0;
    int break_after = 0;
};

void break_on_sleep(test_console& console, c_breaking_host& host, int count)
{
    host.p_engine = &console.engine;
    host.break_after = count;
    console.engine.system_resource.p_callback = &host;
}

}  // namespace

TEST(for_next, loops_run_their_body_by_step_and_limit)
{
    expect_sessions({
        {{}, "for i=1 to 3: print i: next", "1\n2\n3\nOk\n"},
        {{}, "for i=1 to 6 step 2: print i: next", "1\n3\n5\nOk\n"},
        {{}, "for i=3 to 1 step -1: print i: next", "3\n2\n1\nOk\n"},
        {{}, "for i=10 to 1: print i: next", "10\nOk\n"},           // FOR never tests its condition
        {{}, "for i=1 to 3 step 0: print i: next", "1\nOk\n"},      // the counter differs from the limit
        {{}, "for i=1 to 3.9: print i: next", "1\n2\n3\nOk\n"},
        {{}, "for i=1 to 2: for ia=1 to 2: print i*10+ia: next: next", "11\n12\n21\n22\nOk\n"},
        {{"10 for i=1 to 2", "20 print i", "30 next", "40 print \"done\" + i"}, "run", "1\n2\ndone3\nOk\n"},
    });
}

TEST(for_next, malformed_loops_report_their_codes)
{
    expect_sessions({
        {{}, "for r=1 to 3", "Illegal loop counter.\nOk\n"},
        {{}, "for s=1 to 3", "Illegal loop counter.\nOk\n"},
        {{}, "for i=1, 3", "Illegal parameter.\nOk\n"},
        {{}, "for i=1/0 to 3", "Division by zero.\nOk\n"},
        {{}, "for i=1 to 3 step 1/0", "Division by zero.\nOk\n"},
        {{}, "next", "NEXT without FOR.\nOk\n"},
        // NEXT takes no operand: once the loop is done, the name is a statement of its own.
        {{}, "for i=1 to 2: print i: next i", "1\n2\nSyntax error.\nOk\n"},
    });
}

TEST(for_next, a_step_of_zero_on_the_limit_loops_until_a_break)
{
    test_console console;
    c_breaking_host host;
    break_on_sleep(console, host, 5);
    EXPECT_EQ(session(console, {}, "for i=3 to 3 step 0: sleep 1: next"), "Break.\nOk\n");
    EXPECT_EQ(host.sleeps, 5);
}

TEST(for_next, a_break_inside_a_program_names_its_line)
{
    test_console console;
    c_breaking_host host;
    break_on_sleep(console, host, 3);
    EXPECT_EQ(session(console, {"10 $top sleep 1: goto $top"}, "run"), "Break at 10.\nOk\n");
}

TEST(for_next, thirty_two_open_loops_fit_and_the_thirty_third_overflows)
{
    auto lines = [](const char* limit) {
        return program{"10 i=0", "20 $top i=i+1: for ia=1 to 2", limit, "40 print i"};
    };
    test_console fits;
    EXPECT_EQ(session(fits, lines("30 if i<32 then $top"), "run"), "32\nOk\n");
    test_console overflows;
    EXPECT_EQ(session(overflows, lines("30 if i<33 then $top"), "run"), "FOR stack overflow at 20.\nOk\n");
    EXPECT_EQ(session(overflows, {}, "next"), "NEXT without FOR.\nOk\n");  // emptied when the run ended
}

TEST(gosub_return, a_hundred_and_twenty_eight_calls_fit_and_the_next_overflows_at_its_target)
{
    auto lines = [](const char* limit) {
        return program{"10 i=0", limit, "30 print i: end", "40 $call gosub $down"};
    };
    test_console fits;
    EXPECT_EQ(session(fits, lines("20 $down i=i+1: if i<=128 then $call"), "run"), "129\nOk\n");
    test_console overflows;
    EXPECT_EQ(session(overflows, lines("20 $down i=i+1: if i<=129 then $call"), "run"),
              "GOSUB stack overflow at 20.\nOk\n");
    EXPECT_EQ(session(overflows, {}, "return"), "RETURN without GOSUB.\nOk\n");
}

TEST(gosub_return, calls_return_after_the_gosub_in_its_own_line)
{
    expect_sessions({
        {{"100 $sub print \"in\": return"}, "gosub $sub: print \"out\"", "in\nout\nOk\n"},
        {{"10 gosub $a: print \"back\"", "20 print \"next\": end", "30 $a print \"a\": gosub $b: return",
          "40 $b print \"b\": return"}, "run", "a\nb\nback\nnext\nOk\n"},
        {{}, "return", "RETURN without GOSUB.\nOk\n"},
        {{}, "gosub 100", "Illegal parameter.\nOk\n"},
        {{}, "gosub $nowhere", "Invalid label.\nOk\n"},
    });
}

TEST(jumps, goto_takes_only_labels)
{
    expect_sessions({
        {{}, "goto 100", "Illegal parameter.\nOk\n"},
        {{}, "goto", "Illegal parameter.\nOk\n"},
        {{}, "goto $nowhere", "Invalid label.\nOk\n"},
        // From the immediate line into the program: later errors name their line.
        {{"100 print \"a\"", "110 $start print \"b\"", "120 i=1/0"}, "goto $start",
         "b\nDivision by zero at 120.\nOk\n"},
        // An immediate line's own labels work while it runs.
        {{}, "i=0: $x i=i+1: if i<3 then $x: print i", "3\nOk\n"},
    });
}

TEST(if_then_else, both_branches_are_jumps_and_false_falls_through)
{
    expect_sessions({
        {{}, "if 1 then $y: print \"no\": $y print \"yes\"", "yes\nOk\n"},
        {{}, "if 1 goto $y: print \"no\": $y print \"yes\"", "yes\nOk\n"},
        {{}, "if 0 then $y: print \"no\": $y print \"yes\"", "no\nyes\nOk\n"},
        {{}, "if 0 then $y else $n: end: $y print \"y\": end: $n print \"n\"", "n\nOk\n"},
        {{}, "if 1 then $y else $n: end: $y print \"y\": end: $n print \"n\"", "y\nOk\n"},
        {{}, "if 1=1 then $y: end: $y print \"eq\"", "eq\nOk\n"},
        {{}, "if 0.5 then $y: print \"fell\": end: $y print \"jumped\"", "fell\nOk\n"},  // truncated first
        {{}, "if -1.5 then $y: print \"fell\": end: $y print \"jumped\"", "jumped\nOk\n"},
    });
}

TEST(if_then_else, malformed_conditions_report_their_codes)
{
    expect_sessions({
        {{}, "if 1 print 1", "Syntax error.\nOk\n"},
        {{}, "if 1 then print 1", "Syntax error.\nOk\n"},
        {{}, "if 0 then $y else print 1: $y", "Syntax error.\nOk\n"},  // a bare ELSE runs as a statement
        {{}, "if 1/0 then $y: $y", "Division by zero.\nOk\n"},
        {{}, "if 1 then $nowhere", "Invalid label.\nOk\n"},
    });
}

TEST(labels, a_replaced_or_deleted_definition_is_refused_until_defined_again)
{
    expect_sessions({
        {{"10 $a print 1", "20 goto $a", "10 print 2"}, "run", "2\nInvalid label at 20.\nOk\n"},
        {{"10 $a print 1", "20 goto $a", "10"}, "run", "Invalid label at 20.\nOk\n"},
        {{"10 $a print 1: end", "20 goto $a", "10 $a print 5: end"}, "goto $a", "5\nOk\n"},
    });
}

TEST(labels, a_label_in_a_line_that_failed_to_translate_is_refused_before_and_after_deletion)
{
    test_console console;
    EXPECT_EQ(session(console, {"20 goto $a", "10 $a x=1"}, "goto $a"), "Invalid label.\nOk\n");
    EXPECT_EQ(session(console, {"10"}, "goto $a"), "Invalid label.\nOk\n");
}

TEST(labels, a_label_defined_in_an_immediate_line_is_refused_once_the_line_has_finished)
{
    test_console console;
    EXPECT_EQ(session(console, {"10 goto $x"}, "$x print \"here\""), "here\nOk\n");
    EXPECT_EQ(session(console, {}, "run"), "Invalid label at 10.\nOk\n");
}

TEST(statements, assignments_store_converted_values)
{
    expect_sessions({
        {{}, "i=1 ij=2: print i+ij", "3\nOk\n"},  // no separator needed
        {{}, "i=7.9: print i", "7\nOk\n"},
        {{}, "r=7/2.0: print r", "3.500000\nOk\n"},
        {{}, "s=\"ab\": print s", "ab\nOk\n"},
        {{}, "ia(1)=5: print ia(1)", "5\nOk\n"},
        {{}, "ra(1,2)=1.5: print ra(1,2)", "1.500000\nOk\n"},
        {{}, "sa(3)=\"hi\": print sa(3)", "hi\nOk\n"},
        // Dimensioned first: an automatic dimensioning would give 11 to the power 8 elements.
        {{}, "dim ia(1,1,1,1,1,1,1,1): ia(1,1,1,1,1,1,1,1)=3: print ia(1,1,1,1,1,1,1,1)", "3\nOk\n"},
        {{}, "$a print 1", "1\nOk\n"},
    });
}

TEST(statements, malformed_statements_are_syntax_errors)
{
    expect_sessions({
        {{}, "i 5", "Syntax error.\nOk\n"},
        {{}, "ia(1)", "Syntax error.\nOk\n"},
        {{}, "ia 1", "Syntax error.\nOk\n"},
        {{}, "ia(1=2", "Syntax error.\nOk\n"},
        {{}, "ia(1,1,1,1,1,1,1,1,1)=3", "Syntax error.\nOk\n"},
        {{}, "ia(11)=1", "Subscript out of range.\nOk\n"},
        {{}, "print 1: 5", "1\nSyntax error.\nOk\n"},
        {{}, "print 1: to", "1\nSyntax error.\nOk\n"},
    });
}

TEST(statements, a_failed_assignment_leaves_its_target_unchanged)
{
    test_console console;
    EXPECT_EQ(session(console, {"10 i=5", "20 i=1/0"}, "run"), "Division by zero at 20.\nOk\n");
    EXPECT_EQ(session(console, {}, "print i"), "5\nOk\n");
}

TEST(stored_lines, a_run_stops_at_a_line_that_failed_to_translate)
{
    expect_sessions({
        {{"10 print 1", "20 x=1", "30 print 3"}, "run", "1\nSyntax error at 20.\nOk\n"},
        {{"10 x=1", "20 print 2"}, "run", "Syntax error at 10.\nOk\n"},
        {{}, "run", "Ok\n"},
    });
}

TEST(dim, accepted_forms_dimension_every_array_listed)
{
    expect_sessions({
        {{}, "dim", "Ok\n"},
        {{}, "dim ia(5),", "Ok\n"},
        {{}, "dim ia(5), ra(3,3): ra(3,3)=2: print ra(3,3)", "2.000000\nOk\n"},
        {{}, "dim ia(1,1,1,1,1,1,1,1)", "Ok\n"},
        {{}, "dim ia(20): ia(20)=4: print ia(20)", "4\nOk\n"},
    });
}

TEST(dim, refused_forms_report_their_codes)
{
    expect_sessions({
        {{}, "dim ia(5): dim ia(5)", "Redimensioned array.\nOk\n"},
        {{}, "ia(3)=1: dim ia(5)", "Redimensioned array.\nOk\n"},
        {{}, "dim ia(5): ia(6)=1", "Subscript out of range.\nOk\n"},
        {{}, "dim ia(1,1,1,1,1,1,1,1,1)", "Syntax error.\nOk\n"},
        {{}, "dim i", "Syntax error.\nOk\n"},
        {{}, "dim ia(-1)", "Subscript out of range.\nOk\n"},
        {{}, "dim ia(65536)", "Subscript out of range.\nOk\n"},
        {{}, "dim ia 5", "Syntax error.\nOk\n"},
    });
}

TEST(dim, a_missing_comma_dimensions_the_first_array_then_fails)
{
    test_console console;
    // The stored line keeps both arrays alive between the immediate lines.
    EXPECT_EQ(session(console, {"10 print ia(5) + ra(3)"}, "dim ia(5) ra(3)"), "Syntax error.\nOk\n");
    EXPECT_EQ(session(console, {}, "dim ia(5)"), "Redimensioned array.\nOk\n");
    EXPECT_EQ(session(console, {}, "dim ra(3)"), "Ok\n");
}

TEST(run, keeps_scalar_values_and_frees_arrays)
{
    test_console console;
    EXPECT_EQ(session(console, {"10 print i + \" \" + ia(1)", "20 i=i+1: ia(1)=ia(1)+1"}, "run"), "0 0\nOk\n");
    EXPECT_EQ(session(console, {}, "run"), "1 0\nOk\n");
    EXPECT_EQ(session(console, {"5 dim ia(3)"}, "run"), "2 0\nOk\n");  // dimensioned again: no error 13
    EXPECT_EQ(session(console, {}, "run"), "3 0\nOk\n");
}
