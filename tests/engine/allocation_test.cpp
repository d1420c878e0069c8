// Failing allocation: a scripted session is run once cleanly, then once for every allocation it makes
// with that one failing, and once with every allocation from that one on failing. No run may crash, and
// a run whose output departs from the clean one departs at the step whose allocation failed, saying
// "Out of memory" there: a line, an array or a variable is never lost without a word.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <string>
#include <vector>

#include "engine/allocation.h"
#include "support/scratch_directory.h"
#include "support/test_console.h"

namespace {

struct c_recording_host : c_test_host {
    void text_written(int character) override { text += static_cast<char>(character); }
    std::string text;
};

constexpr const char* start_up_program = "sa(2)=\"up\": print sa(2)\r\nir=3\r\n";

// The start-up program loaded and run; then stored lines, list, run, renum, save, load, channels,
// arrays of the three kinds, strings, a label in an immediate line, and a last look at the variables
// and the program.
std::vector<std::string> session_steps(const std::string& directory)
{
    return {"(start-up program)",
        "10 s=\"ab\"", "20 for i=1 to 3", "30 ia(i)=i*i: sa(i)=s+i", "40 next", "50 gosub $show", "60 end",
        "70 $show print ia(2);: print sa(3): return", "list", "run", "print i", "renum 200,5",
        "save \"" + directory + "/p.bas\"", "new", "load \"" + directory + "/p.bas\"", "list 100,120", "run",
        "fwopen 1,\"" + directory + "/d.txt\": fprint 1,\"line\"+7: fclose 1",
        "fropen 2,\"" + directory + "/d.txt\": sl=finput(2): print sl;: fclose 2",
        "dim rm(4,4): rm(4,4)=2.5: print rm(4,4)+rm(1,1)", "ic=0: $again ic=ic+1: if ic<3 then $again: print ic",
        "print i+ia(3)", "130", "list",
    };
}

// Step 0 is the start (the planes and the banner), step 1 the start-up program, step k the line typed.
struct c_session_run {
    bool started = false;
    std::vector<std::string> outputs;
    std::vector<long long> calls;  // allocations counted when each step had ended
};

c_session_run run_session(
    const std::vector<std::string>& steps, const std::string& program, long long failing_call, bool and_every_later)
{
    c_session_run result;
    allocation_fail_at(failing_call, and_every_later);
    {
        c_recording_host host;
        c_vexil engine;
        result.started = start_engine(engine, host);
        result.outputs.push_back(host.text);
        result.calls.push_back(allocation_calls());
        for (std::size_t index = 0; result.started && index < steps.size(); ++index) {
            host.text.clear();
            if (index == 0)
                engine.run(program.c_str());  // returns once no key is waiting
            else
                for (unsigned char c : steps[index] + "\r")
                    engine.text_editor.key(c);
            result.outputs.push_back(host.text);
            result.calls.push_back(allocation_calls());
        }
    }
    allocation_fail_at(0);
    return result;
}

}  // namespace

TEST(allocation_plan, fails_the_named_call_alone_or_with_every_later_one)
{
    allocation_fail_at(2);
    EXPECT_EQ((std::vector<bool>{allocation_granted(), allocation_granted(), allocation_granted()}),
        (std::vector<bool>{true, false, true}));
    allocation_fail_at(2, true);
    EXPECT_EQ((std::vector<bool>{allocation_granted(), allocation_granted(), allocation_granted()}),
        (std::vector<bool>{true, false, false}));
    EXPECT_EQ(allocation_calls(), 3);
    allocation_fail_at(0);
    int* block = allocate_array<int>(4);
    ASSERT_NE(block, nullptr);
    EXPECT_EQ(block[3], 0);  // zeroed
    delete[] block;
    // Past what any machine has: refused with null, in the sanitizer build too, never an abort.
    EXPECT_EQ(allocate_array<unsigned char>(std::size_t{1} << 45), nullptr);
}

TEST(allocation_failure, every_failing_allocation_of_a_session_is_reported_at_its_step)
{
    c_scratch_directory scratch;
    const std::vector<std::string> steps = session_steps(scratch.folder.string());
    const std::string program = scratch.path("start.bas");
    std::ofstream(program, std::ios::binary) << start_up_program;
    const c_session_run clean = run_session(steps, program, 0, false);
    ASSERT_TRUE(clean.started);
    const long long total = clean.calls.back();
    ASSERT_GT(total, clean.calls.front());  // the session allocates beyond the planes
    int runs = 0, reported = 0, unseen = 0;
    for (long long call = 1; call <= total; ++call) {
        for (bool and_every_later : {false, true}) {
            const c_session_run failed = run_session(steps, program, call, and_every_later);
            // The step during which the call was made.
            const std::size_t step = std::lower_bound(clean.calls.begin(), clean.calls.end(), call) - clean.calls.begin();
            const std::string what = "call " + std::to_string(call) + (and_every_later ? " on" : " alone");
            ++runs;
            if (step == 0) {  // the start: the host reports it, the engine has no console
                EXPECT_FALSE(failed.started) << what;
                EXPECT_EQ(failed.outputs.front(), "") << what;
                ++reported;
                continue;
            }
            ASSERT_TRUE(failed.started) << what;
            std::size_t first_difference = 0;
            while (first_difference < failed.outputs.size()
                && failed.outputs[first_difference] == clean.outputs[first_difference])
                ++first_difference;
            if (first_difference == failed.outputs.size()) {
                ++unseen;
                continue;
            }
            EXPECT_EQ(first_difference, step) << what << ": first departs at \"" << steps[first_difference - 1] << "\"";
            EXPECT_NE(failed.outputs[step].find("Out of memory"), std::string::npos)
                << what << " in \"" << steps[step - 1] << "\" shows: " << failed.outputs[step];
            ++reported;
        }
    }
    std::printf("allocation sweep: %lld allocations, %d runs, %d reported \"Out of memory\", %d unobservable\n",
        total, runs, reported, unseen);
}
