// Arbitrary bytes as a program file, named at start-up: loaded, run, and the session ended.
#include <cstddef>
#include <cstdint>
#include <cstdio>

#include "fuzz/fuzz_session.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    c_fuzz_session session;
    // A plain name: the file goes to the scratch folder, as every file the engine opens does.
    if (std::FILE* file = std::fopen("fuzz.bas", "wb")) {
        std::fwrite(data, 1, size, file);
        std::fclose(file);
    }
    session.run("fuzz.bas", nullptr, 0);
    return 0;
}
