// Lines of numbers. What is told of them goes to the error stream: run it with -close_fd_mask=2.
#include "console/data_lines.h"
#include "fuzz/targets/target.h"

int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    if (size == 0)
        return 0;
    std::string text = textOf(data, size);
    // The first byte tells how many numbers a line has.
    int const count = 1 + text[0] % 5 * (text[0] > 0);
    auto const stream = streamOver(text);
    DataLines lines("data");
    double values[5] = {};
    for (int step = 0; step < 20; ++step)
        lines.read(stream.get(), count, values);
    return 0;
}
