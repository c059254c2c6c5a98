// Cases in words.
#include "fuzz/session_case.h"

#include <cstring>

namespace fuzz {

std::string describe(Fault const& fault) {
    char const* const kinds[] = {"none",           "allocation",          "write", "open", "close",
                                 "signal at step", "signal at allocation"};
    std::string text = std::string(kinds[fault.kind]) + " " + std::to_string(fault.nth);
    if (fault.forGood)
        text += " and all later";
    if (fault.kind >= Fault::SIGNAL_AT_STEP)
        return text + ": " + sigdescr_np(fault.value);
    if (fault.kind == Fault::WRITE && fault.value == 0)
        return text + ": cut short";
    return fault.value == 0 ? text : text + ": " + std::strerror(fault.value);
}

}  // namespace fuzz
