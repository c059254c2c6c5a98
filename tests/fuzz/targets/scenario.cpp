// A scenario, read as that of a hybrid run and step by step as that of a discrete one.
#include "fuzz/targets/target.h"

int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    TextHost host(textOf(data, size));
    RunState hybrid(room(), host);
    hybrid.sMM->loadScenario("scenario");
    RunState discrete(room(), host);
    if (discrete.sMM->openScenario("scenario"))
        while (discrete.sMM->readFromScenario() != nullptr) {
        }
    return 0;
}
