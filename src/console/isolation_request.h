// A request for isolation without a run: a level, misbehaving measures by name, then condition
// values.
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

// What a request says, for the engine: misbehaviours, one entry per measure, and conditions, one
// entry per influence. 0, and a message, when a name or a value is wrong or missing.
int sorn_getMisbs(char const* name, int count, int* values);
int sorn_getConds(char const* name, int count, int* values);

// The request being read.
extern IsolationRequest tDiag;

// The level, 1 to 3, whose word (fault1 and so on) stands in *word*, which may be longer; 0 for
// none.
int isolationLevelOf(std::string const& word);
// What the levels of isolation mean, a line each; the last one is not ended.
constexpr char const* isolationLevels =
    "\t fault1 ---> NO One-Fault-Exoneration AND    Multiple-Fault-Compensation\n"
    "\t fault2 --->    One-fault-Exoneration AND    Multiple-Fault-Compensation\n"
    "\t fault3 --->    One-fault-Exoneration AND NO Multiple-Fault-Compensation";

// Diagnoses `fault[1 2 3] misb-var1 misb-var2 ... condition-values` on the model's own runtime, of
// which a later `init` makes its copy; a candidate of a run is not touched. Required: no command
// leads here.
int snDiagnosis(char const* arg);
