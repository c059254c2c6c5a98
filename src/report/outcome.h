// The verdict on a run, and the answer in words.
//
// The verdict is about the end of the run: whether any step was noticed at which no candidate
// agreed with the measures, and whether what is followed at the end explains it, agrees, and ends
// in modes that the plant knows.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "report/run_record.h"

// How a run ended. The numbers are the statuses of `tavro run`.
enum class Verdict {
    healthy = 0,
    explained = 10,
    unexplained = 11,
    plantIsSilent = 3,  // a value came up for which the plant tells nothing
    limited = 6,        // a limit was met before an answer was found
    interrupted = 130
};

// "healthy", "explained" and so on, as documents have it.
char const* wordOf(Verdict verdict);

struct Outcome {
    Verdict verdict;
    std::optional<std::size_t> noticed;  // the first step at which no candidate agreed
    std::vector<std::size_t> stories;    // alive, the best first
    std::string stopped;                 // why the run ended before its data did; "" if it did not
    std::vector<std::string> answer;     // sentences, the verdict first
};

// Why a run ended early.
struct EarlyEnd {
    enum Kind { none, interrupted, memory, noDiagnosis, plant } kind = none;
    std::string reason;
};

// *discrete*: the plant has modes alone, and is noticed to be faulty by what explains it.
Outcome outcomeOf(RunRecord const& record, tavro::Plant const& plant, EarlyEnd const& end);
