// The influences: both ends are set, what they are worked out from is there, no delay reaches
// behind a history, and each remembers its condition for as long as the isolation asks.
#include <algorithm>

#include "plant/condition_histories.h"
#include "plant/findings.h"
#include "plant/numbering.h"

namespace {

bool isNumber(std::optional<s_Objet> const& value) {
    return value && isSound(*value);
}

bool checkEnds(s_Influence const& influence, Findings& findings) {
    if (influence.cause == nullptr)
        findings.refuse(nameOf(influence) + " has no cause: name the variable that it starts in.");
    if (influence.effect == nullptr)
        findings.refuse(nameOf(influence) + " has no effect: name the variable that it ends in.");
    else if (influence.effect->isParam)
        findings.refuse(nameOf(influence) + " ends in the parameter " + influence.effect->nom +
                        ": let it end in a variable.");
    return influence.cause != nullptr && influence.effect != nullptr;
}

// ---- Delays ----

// How many past values of its cause the influence reads.
int reach(s_Influence const& influence) {
    int const early = influence.type == INF_STATIC ? 1 : 0;
    int const older = influence.type == INF_DYNAMIC2 ? 1 : 0;
    return std::max(influence.delayMax - early, 0) + older;
}

void checkDelays(s_Influence const& influence, Findings& findings) {
    std::string const delays =
        std::to_string(influence.delayMin) + " to " + std::to_string(influence.delayMax);
    int const atLeast = influence.type == INF_STATIC ? 2 : 1;
    if (influence.delayMin < 0 || influence.delayMin > influence.delayMax)
        findings.refuse(nameOf(influence) + " has a delay of " + delays +
                        " cycles: begin at 0 or later, and end no earlier.");
    else if (influence.delayMin < influence.delayMax && influence.delayMin < atLeast)
        findings.refuse(nameOf(influence) + " has a delay of " + delays +
                        " cycles, and only past values have a range: begin at " +
                        std::to_string(atLeast) + " or later.");
    else if (influence.delayMax > influence.cause->histLen() ||
             reach(influence) > influence.cause->histLen())
        findings.refuse(nameOf(influence) + " has a delay of " + delays +
                        " cycles, and the history of " + influence.cause->nom + " holds " +
                        std::to_string(influence.cause->histLen()) +
                        ": lengthen the history or shorten the delay.");
    else if (influence.cause->isParam && reach(influence) > 0)
        findings.refuse(nameOf(influence) + " has a delay of " + delays +
                        " cycles, and the parameter " + influence.cause->nom +
                        " has no past: take the delay out.");
}

// ---- Coefficients ----

void checkResponse(s_Influence const& influence, Findings& findings) {
    if (!isNumber(influence.respTime) || !(sn_infOf(influence.respTime) > 0.0))
        findings.refuse(nameOf(influence) +
                        " is dynamic and has no response time above 0: give it one, in seconds.");
}

void checkSecondOrder(s_Influence const& influence, Findings& findings) {
    bool const rational = influence.n1.has_value();
    bool const complete = rational ? isNumber(influence.n1) && isNumber(influence.n2) &&
                                         isNumber(influence.d0) && isNumber(influence.d1) &&
                                         isNumber(influence.d2)
                                   : isNumber(influence.xi) && isNumber(influence.w);
    if (!complete)
        findings.refuse(nameOf(influence) +
                        " is of second order and lacks coefficients: give it xi and w, or n1, n2, "
                        "d0, d1 and d2.");
}

void checkCoefficients(s_Influence const& influence, Findings& findings) {
    if (influence.type < INF_DYNAMIC || influence.type > INF_DYNAMIC2)
        findings.refuse(nameOf(influence) + " is of no kind: choose one.");
    if (!isNumber(influence.gain))
        findings.refuse(nameOf(influence) + " has no gain: give it a number or an interval.");
    if (influence.type == INF_DYNAMIC)
        checkResponse(influence, findings);
    if (influence.type == INF_DYNAMIC2)
        checkSecondOrder(influence, findings);
}

// ---- Memory ----

// A memory of length 0 holds one value all the same.
void checkMemory(s_Influence const& influence, int asked, Findings& findings) {
    std::size_t const kept = static_cast<std::size_t>(std::max(influence.condHistoLn, 1));
    if (influence.condHistoLn < 0 || influence.condHisto.size() != kept)
        findings.refuse(nameOf(influence) + " keeps " + std::to_string(influence.condHisto.size()) +
                        " past values of its condition and says " +
                        std::to_string(influence.condHistoLn) + ": make both the same.");
    else if (std::max(influence.condHistoLn, 1) < asked)
        findings.refuse(nameOf(influence) + " keeps " + std::to_string(kept) +
                        " past values of its condition, where the isolation of faults asks for " +
                        std::to_string(asked) + ": keep as many.");
}

// ---- Components ----

// Only where components list influences at all: printing reads these lists, and nothing else.
void checkOwners(s_runtime const& rt, Holdings const& plant, Findings& findings) {
    std::unordered_set<s_Influence const*> listed, existing;
    for (Comp const* comp : plant.comps)
        listed.insert(comp->influences.begin(), comp->influences.end());
    for (auto const& influence : rt.influ) {
        existing.insert(influence.get());
        if (!listed.empty() && listed.count(influence.get()) == 0)
            findings.warn(nameOf(*influence) +
                          " is listed by no component: add it to the one that it belongs to.");
    }
    for (Comp const* comp : plant.comps)
        for (s_Influence const* influence : comp->influences)
            if (existing.count(influence) == 0)
                findings.refuse("Component " + comp->name +
                                " lists an influence that is not in the runtime: take it out.");
}

}  // namespace

void checkInfluences(s_runtime const& rt, Holdings const& plant, Findings& findings) {
    std::vector<int> const asked = askedConditionHistories(rt);
    for (auto const& influence : rt.influ) {
        checkCoefficients(*influence, findings);
        checkMemory(*influence, asked[static_cast<std::size_t>(influence->slot)], findings);
        if (checkEnds(*influence, findings))
            checkDelays(*influence, findings);
    }
    checkOwners(rt, plant, findings);
}
