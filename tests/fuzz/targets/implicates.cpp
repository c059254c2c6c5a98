// A file of prime implicates.
#include "fuzz/targets/target.h"

int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    TextHost host(textOf(data, size));
    RunState run(room(), host);
    run.sMM->readPI();
    return 0;
}
