// Arbitrary bytes as keys typed into a whole engine: every editing key, lines entered, stored, run.
#include <cstddef>
#include <cstdint>

#include "fuzz/fuzz_session.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    c_fuzz_session session;
    session.run(nullptr, data, size);
    return 0;
}
