// Arbitrary bytes as a program file, named at start-up: loaded, run, and the session ended.
#include <cstddef>
#include <cstdint>
#include <cstdio>

#include "fuzz/fuzz_session.h"
#include "fuzz/scratch_files.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    c_fuzz_session session;
    if (std::FILE* file = scratch_fopen("fuzz.bas", "wb")) {
        std::fwrite(data, 1, size, file);
        std::fclose(file);
    }
    session.run("fuzz.bas", nullptr, 0);
    return 0;
}
