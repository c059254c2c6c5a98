// The rules by which a run reasons, each a switch of its own.
//
// Without any, a run reasons in the classic way, to the byte. Each rule mends one thing that makes
// the classic answer blunt, late or wrong, and says at its place in the code what the classic way
// does, what goes wrong with it, what the rule does instead, and why that is sound. All of them
// together are called sharp. A run keeps its rules from its start to its end.
#pragma once

#include <string>
#include <string_view>

struct Rules {
    bool continuity = false;  // what is integrated does not jump when a mode changes
    bool regions = false;     // candidates of different validity spaces are not merged
    bool narrow = false;      // a measure narrows all that stands behind it
    bool histories = false;   // a failure may be tried again in another history, at another step
    bool likelihood = false;  // histories keep prior times likelihood, by their own steps
    bool unknown = false;     // an unknown mode says so, and anything may act in it
    bool again = false;       // every loss of all candidates is diagnosed
    bool dates = false;       // a failure is dated by a range of steps
    bool cover = false;       // a value that no condition covers ends its candidate, not the run
    bool limit = false;       // a bounded number of candidates is followed
    bool suspects = false;    // what does not act, or asks for several modes, is accused, too
    bool derived = false;     // what modes entail is derived from them, not repaired

    bool operator==(Rules const&) const = default;

    static Rules sharp();
    // The rules of a text: "classic", "sharp", or names with commas between. On a word that is
    // none of these answers false, tells the word, and leaves *rules* alone.
    static bool read(std::string_view text, Rules& rules, std::string& wrong);
    // In the form that read takes.
    std::string text() const;
    // The names of all rules, with ", " between, for messages.
    static std::string names();
};

// What a run reasons by when nothing is asked.
inline constexpr Rules classicRules{};
