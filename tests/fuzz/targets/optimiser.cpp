// The options of the optimiser.
#include "fuzz/targets/target.h"
#include "support/nelder.h"

int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    std::istringstream text(textOf(data, size));
    Nelder_options options;
    Nelder_read_options(text, options);
    return 0;
}
