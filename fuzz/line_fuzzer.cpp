// Arbitrary bytes as one line: entered and run at once, then stored as line 10 and run as a program.
// The line is what a grid row can hold: it ends at the first 0 (an empty cell) and at 252 characters,
// so that "10 " and the line still fit the 255 an entered line may have.
#include <cstddef>
#include <cstdint>
#include <string>

#include "fuzz/fuzz_session.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    std::string line;
    for (std::size_t i = 0; i < size && i < 252 && data[i] != 0; ++i)
        line += static_cast<char>(data[i]);
    c_fuzz_session session;
    session.enter_line(line);
    session.enter_line("10 " + line);
    session.enter_line("run");
    return 0;
}
