// The line of a request for isolation: misbehaving measures by name, then condition values.
#pragma once

#include <string>

#include "console/parameters.h"

// The tokens of the request that are still to be read; the engine walks them through its hooks
// sorn_getMisbs and sorn_getConds.
class IsolationRequest {
public:
    explicit IsolationRequest(char const* text) : parameters(text) { advance(); }

    std::optional<std::string> const& token() const { return current; }
    void advance() { current = parameters.next(); }
    void abandon() { current.reset(); }

private:
    Parameters parameters;
    std::optional<std::string> current;
};

// The request being read.
extern IsolationRequest tDiag;
