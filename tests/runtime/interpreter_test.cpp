// The statement loop as a session sees it: numbered lines stored, a line entered, the rows below it read.
// Cases the language reference shows as examples (run by its own test) are not repeated here.
#include <gtest/gtest.h>

#include <string>

#include "support/value_check.h"

TEST(for_next, loops_run_their_body_by_step_and_limit_and_malformed_ones_report_their_codes)
{
    expect_outputs({
        {"for i=1 to 3 step 0: print i: next", "1\nOk\n"},  // the counter differs from the limit
        {"for i=1 to 2.9: print i: next", "1\n2\nOk\n"},
        {"10 for i=1 to 2\n20 print i\n30 next\n40 print \"done\" + i\nrun", "1\n2\ndone3\nOk\n"},
        // Malformed loops report their codes.
        {"for s=1 to 3", "Illegal loop counter.\nOk\n"},    {"for i=1, 3", "Illegal parameter.\nOk\n"},
        {"for i=1/0 to 3", "Division by zero.\nOk\n"},     {"for i=1 to 3 step 1/0", "Division by zero.\nOk\n"},
        // NEXT takes no operand: once the loop is done, the name is a statement of its own.
        {"for i=1 to 2: print i: next i", "1\n2\nSyntax error.\nOk\n"},
    });
}

TEST(for_next, a_step_of_zero_on_the_limit_loops_until_a_break_which_names_a_programs_line)
{
    test_console console, program;
    console.host.break_on_sleep = 5;
    EXPECT_EQ(console.output("for i=3 to 3 step 0: sleep 1: next"), "Break.\nOk\n");
    EXPECT_EQ(console.host.sleeps, 5);
    program.host.break_on_sleep = 3;
    EXPECT_EQ(program.output("10 $top sleep 1: goto $top\nrun"), "Break at 10.\nOk\n");
}

TEST(stacks, hold_32_loops_and_128_calls_and_overflow_on_the_next_then_empty_when_the_run_ends)
{
    const char* loops = "10 i=0\n20 $top i=i+1: for ia=1 to 2\n40 print i\n";
    const char* calls = "10 i=0\n30 print i: end\n40 $call gosub $down\n";
    test_console console;
    EXPECT_EQ(console.output(loops + std::string("30 if i<32 then $top\nrun")), "32\nOk\n");
    EXPECT_EQ(console.output("30 if i<33 then $top\nrun"), "FOR stack overflow at 20.\nOk\n");
    EXPECT_EQ(console.output("next"), "NEXT without FOR.\nOk\n");
    EXPECT_EQ(console.output("new\n" + std::string(calls) + "20 $down i=i+1: if i<=128 then $call\nrun"),
              "129\nOk\n");
    EXPECT_EQ(console.output("20 $down i=i+1: if i<=129 then $call\nrun"), "GOSUB stack overflow at 20.\nOk\n");
    EXPECT_EQ(console.output("return"), "RETURN without GOSUB.\nOk\n");
}

TEST(jumps, goto_gosub_and_if_take_only_defined_labels_and_false_falls_through)
{
    expect_outputs({
        {"100 $sub print \"in\": return\ngosub $sub: print \"out\"", "in\nout\nOk\n"},
        {"10 gosub $a: print \"back\"\n20 print \"next\": end\n30 $a print \"a\": gosub $b: return\n"
         "40 $b print \"b\": return\nrun", "a\nb\nback\nnext\nOk\n"},
        {"gosub 100", "Illegal parameter.\nOk\n"},  {"gosub $nowhere", "Invalid label.\nOk\n"},
        {"goto", "Illegal parameter.\nOk\n"},
        // From the immediate line into the program: later errors name their line.
        {"100 print \"a\"\n110 $start print \"b\"\n120 i=1/0\ngoto $start", "b\nDivision by zero at 120.\nOk\n"},
        {"i=0: $x i=i+1: if i<3 then $x: print i", "3\nOk\n"},  // an immediate line's own labels
        // IF: both branches are jumps, and false falls through.
        {"if 1 goto $y: print \"no\": $y print \"yes\"", "yes\nOk\n"},
        {"if 0 then $y else $n: end: $y print \"y\": end: $n print \"n\"", "n\nOk\n"},
        {"if 0.5 then $y: print \"fell\": end: $y print \"jumped\"", "fell\nOk\n"},  // truncated first
        {"if -1.5 then $y: print \"fell\": end: $y print \"jumped\"", "jumped\nOk\n"},
        {"if 1 print 1", "Syntax error.\nOk\n"},   {"if 1 then print 1", "Syntax error.\nOk\n"},
        {"if 0 then $y else print 1: $y", "Syntax error.\nOk\n"},  // a bare ELSE runs as a statement
        {"if 1/0 then $y: $y", "Division by zero.\nOk\n"},  {"if 1 then $nowhere", "Invalid label.\nOk\n"},
        // A label is refused once its definition is replaced, deleted, untranslated or finished.
        {"10 $a print 1\n20 goto $a\n10 print 2\nrun", "2\nInvalid label at 20.\nOk\n"},
        {"10 $a print 1\n20 goto $a\n10\nrun", "Invalid label at 20.\nOk\n"},
        {"10 $a print 1: end\n20 goto $a\n10 $a print 5: end\ngoto $a", "5\nOk\n"},
        {"10 $a print 1: end\n20 goto $a\n30 goto $a\n30\ngoto $a", "1\nOk\n"},  // a referring line goes
        {"20 goto $a\n10 $a x=1\ngoto $a", "Invalid label.\nOk\n"},
        {"20 goto $a\n10 $a x=1\n10\ngoto $a", "Invalid label.\nOk\n"},
        {"10 goto $x\n$x print \"here\"\nrun", "Invalid label at 10.\nOk\n"},
    });
}

TEST(statements, assignments_store_converted_values_and_malformed_statements_report_their_codes)
{
    expect_outputs({
        {"i=1 ij=2: print i+ij", "3\nOk\n"},  // no separator needed
        {"r=7/2.0: print r", "3.500000\nOk\n"},        {"s=\"ab\": print s", "ab\nOk\n"},
        {"ra(1,2)=1.5: print ra(1,2)", "1.500000\nOk\n"}, {"sa(3)=\"hi\": print sa(3)", "hi\nOk\n"},
        {"ia=1: iA=2: ia(1)=3: print ia*100+iA*10+ia(1)", "123\nOk\n"},
        {"ra(10,0,10)=2.5: print ra(10,0,10)+ra(0,0,0)", "2.500000\nOk\n"},  // 11 a dimension on first use
        // Dimensioned first: an automatic dimensioning would give 11 to the power 8 elements.
        {"dim ia(1,1,1,1,1,1,1,1): ia(1,1,1,1,1,1,1,1)=3: print ia(1,1,1,1,1,1,1,1)", "3\nOk\n"},
        {"$a print 1", "1\nOk\n"},
        // A jump back to a line end goes on at the next line.
        {"10 for i=1 to 2\n20 ' body\n30 print i\n40 next\nrun", "1\n2\nOk\n"},
        {"10 gosub $a\n20 print \"back\": end\n30 $a\n40 print \"a\": return\nrun", "a\nback\nOk\n"},
        {"10 print \"x\": gosub $a\n20 $a\nrun", "x\nOk\n"},  // a label on the last line
        {"10 i=0\n20 for i=1 to 3\nrun\nprint i", "1\nOk\n"},  // a FOR on the last line
        // Malformed statements report their codes.
        {"i 5", "Syntax error.\nOk\n"},           {"ia(1)", "Syntax error.\nOk\n"},
        {"ia 1", "Syntax error.\nOk\n"},          {"ia(1=2", "Syntax error.\nOk\n"},
        {"ia(1,1,1,1,1,1,1,1,1)=3", "Syntax error.\nOk\n"}, {"ia(11)=1", "Subscript out of range.\nOk\n"},
        {"ia(1)=1/0: print ia(1)", "Division by zero.\nOk\n"},
        {"print 1: 5", "1\nSyntax error.\nOk\n"}, {"print 1: to", "1\nSyntax error.\nOk\n"},
        {"10 i=5\n20 i=1/0\nrun\nprint i", "5\nOk\n"},  // a failed assignment leaves its target
        {"10 print 1\n20 x=1\n30 print 3\nrun", "1\nSyntax error at 20.\nOk\n"},  // an untranslated line
        {"run", "Ok\n"},
    });
}

TEST(statements, a_string_assigned_to_itself_plus_more_appends_or_fails_leaving_it_unchanged)
{
    // Line 10 holds s, so that it outlives the immediate line that fails.
    const std::string fill = "10 print len(s)\ns=\"\": for i=1 to 200: s=s+\"x\": next: s=s+\"";
    const std::string fits = fill + std::string(56, 'y') + "\"\nrun";
    const std::string overflows = fill + std::string(57, 'y') + "\"\nrun";
    expect_outputs({
        {"s=\"ab\": s=s+\"c\"+1: s=s+2.5: s=s+: print s", "abc12.5000000\nOk\n"},  // none appends 0
        {"s=\"a\": s=s+s+s: s=s+(s+\"b\"): print s", "aaaaaab\nOk\n"},
        {"10 print s\ns=\"a\": s=s+\"b\"=\"c\"\nrun", "a\nOk\n"},  // strings have no comparisons
        {"10 print s\ns=\"a\": s=s+1/0\nrun", "a\nOk\n"},
        {fits.c_str(), "256\nOk\n"}, {overflows.c_str(), "200\nOk\n"},
        {"s=\"a\": sb=\"b\": s=sb+s: print s", "ba\nOk\n"},
    });
}

TEST(dim, dimensions_every_array_listed_up_to_its_limits)
{
    expect_outputs({
        {"dim", "Ok\n"},  {"dim ia(5),", "Ok\n"},
        {"dim ia(5), ra(3,3): ra(3,3)=2: print ra(3,3)", "2.000000\nOk\n"},
        {"dim ia(65535): ia(65535)=4: print ia(65535)", "4\nOk\n"},
        {"ia(3)=1: dim ia(5)", "Redimensioned array.\nOk\n"},
        {"dim ia(5): ia(6)=1", "Subscript out of range.\nOk\n"}, {"dim ia(-1)", "Subscript out of range.\nOk\n"},
        {"dim ia(65536)", "Subscript out of range.\nOk\n"},      {"dim ia(1,1,1,1,1,1,1,1,1)", "Syntax error.\nOk\n"},
        {"dim i", "Syntax error.\nOk\n"},  {"dim ia 5", "Syntax error.\nOk\n"},
        {"dim ia(65535,65535,65535,65535)", "Out of memory.\nOk\n"},  // 2 to the 64 elements
        {"dim ia(16383,16384)", "Out of memory.\nOk\n"},  // past all arrays' 1 GiB, never touched
        {"dim ia(65535,65535,65535,65535,65536)", "Subscript out of range.\nOk\n"},  // bounds come first
        // A stored line keeps the arrays alive between the immediate lines.
        {"10 print ia(1)\ndim ia(65535,65535,65535,65535)\ndim ia(3)", "Ok\n"},
        {"10 print ia(5) + ra(3)\ndim ia(5) ra(3)\ndim ra(3)", "Ok\n"},
        {"10 print ia(5) + ra(3)\ndim ia(5) ra(3)\ndim ia(5)", "Redimensioned array.\nOk\n"},
    });
}

TEST(run, keeps_scalar_values_and_frees_arrays)
{
    test_console console;
    EXPECT_EQ(console.output("10 print i + \" \" + ia(1)\n20 i=i+1: ia(1)=ia(1)+1\nrun"), "0 0\nOk\n");
    EXPECT_EQ(console.output("run"), "1 0\nOk\n");
    EXPECT_EQ(console.output("5 dim ia(3)\nrun"), "2 0\nOk\n");  // dimensioned again: no error 13
}
