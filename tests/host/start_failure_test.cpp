// A host whose engine cannot have its planes ends at once: one line on standard error, status 1, and
// no thread left behind.
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "engine/allocation.h"
#include "host/headless_host.h"
#include "host/window_host.h"

TEST(host_start, headless_reports_planes_it_cannot_have_in_one_line_and_fails)
{
    for (long long call : {1, 2}) {  // the pixels, then the character grid
        c_options options;
        c_headless_host host(options);
        ::testing::internal::CaptureStderr();
        allocation_fail_at(call);
        const int status = host.run();
        allocation_fail_at(0);
        EXPECT_EQ(::testing::internal::GetCapturedStderr(), "vexil: out of memory\n") << call;
        EXPECT_EQ(status, 1) << call;
    }
}

TEST(host_start, window_does_not_open_without_the_planes)
{
    setenv("SDL_VIDEODRIVER", "dummy", 1);
    c_options options;
    options.window_scale = 1;
    c_window_host host(options);
    ::testing::internal::CaptureStderr();
    allocation_fail_at(2);
    const int status = host.run();
    allocation_fail_at(0);
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "vexil: out of memory\n");
    EXPECT_EQ(status, 1);
}
