// The longest delay from each variable to a measure downstream, loop by loop.
//
// The longest way that passes each variable once is hard to find in general, so the causal graph is
// cut into its strongly connected parts (Tarjan, "Depth-first search and linear graph algorithms",
// 1972). Between the parts there are no loops, and the longest delay is the largest sum. Within a
// part of n variables a walk takes n-1 influences at most: the longest of those is taken, which is
// the true one in a single loop and in a part of one variable.
#include "plant/condition_histories.h"

#include <algorithm>
#include <cassert>

#include "plant/numbering.h"

namespace {

constexpr int unreached = -1;  // no measure is downstream

// One step of the walk, from an effect up to its cause *to*, a slot of dico.
struct Step {
    std::size_t to;
    int delay;
};

// A range counts as 0 when both its bounds are.
bool isZero(s_Objet const& value) {
    return sn_infOf(value) == 0.0 && sn_supOf(value) == 0.0;
}

// What the walk adds for the influence: a response in time is a cycle more.
int delayThrough(s_Influence const& influence) {
    return std::max(influence.delayMax, 0) + (isZero(influence.respTime) ? 0 : 1);
}

bool isSource(s_runtime const& rt, s_Variable const* variable) {
    return positionIn(rt.measure, variable) >= 0 || positionIn(rt.input, variable) >= 0;
}

std::size_t slotOf(s_Variable const* variable) {
    assert(variable->slot >= 0);
    return static_cast<std::size_t>(variable->slot);
}

// The walk up the causes, and how far each variable is from a measure.
class Walk {
public:
    explicit Walk(s_runtime const& rt)
        : steps(rt.dico.size()),
          longest(rt.dico.size(), unreached),
          places(rt.dico.size()),
          part(rt.dico.size()) {
        for (auto const& influence : rt.influ)
            if (influence->cause != nullptr && influence->effect != nullptr &&
                !isSource(rt, influence->cause))
                steps[slotOf(influence->effect)].push_back(
                    {slotOf(influence->cause), delayThrough(*influence)});
        for (s_Variable const* measure : rt.measure)
            longest[slotOf(measure)] = 0;
        for (std::size_t variable = 0; variable < steps.size(); ++variable)
            if (places[variable].order == 0)
                findParts(variable);
        // The parts are found upstream first; delays add up from the measures on.
        for (auto found = parts.rbegin(); found != parts.rend(); ++found)
            measurePart(*found);
    }

    // In cycles, or `unreached`.
    int longestFrom(s_Variable const* variable) const { return longest[slotOf(variable)]; }

private:
    // Where the depth-first search met a variable: its order, from 1, and the lowest order that is
    // reached from it within its part.
    struct Place {
        int order = 0, low = 0;
        bool isOpen = false;
    };

    void findParts(std::size_t variable) {
        Place& place = places[variable];
        place.order = place.low = ++met;
        place.isOpen = true;
        open.push_back(variable);
        for (Step const& step : steps[variable]) {
            if (places[step.to].order == 0)
                findParts(step.to);
            if (places[step.to].isOpen)
                place.low = std::min(place.low, places[step.to].low);
        }
        if (place.low == place.order)
            closePart(variable);
    }

    void closePart(std::size_t first) {
        auto const begin = std::find(open.begin(), open.end(), first);
        for (auto variable = begin; variable != open.end(); ++variable) {
            places[*variable].isOpen = false;
            part[*variable] = parts.size();
        }
        parts.emplace_back(begin, open.end());
        open.erase(begin, open.end());
    }

    // All ways into the part are known. Each round adds one influence to the walks within it.
    void measurePart(std::vector<std::size_t> const& members) {
        for (std::size_t round = 1; round < members.size(); ++round) {
            std::vector<int> const before = longest;
            for (std::size_t const variable : members)
                extend(variable, before[variable], true);
        }
        for (std::size_t const variable : members)
            extend(variable, longest[variable], false);
    }

    // Carries the delay of *variable* one step up, within its part or out of it.
    void extend(std::size_t variable, int delay, bool within) {
        if (delay == unreached)
            return;
        for (Step const& step : steps[variable])
            if ((part[step.to] == part[variable]) == within)
                longest[step.to] = std::max(longest[step.to], delay + step.delay);
    }

    std::vector<std::vector<Step>> steps;  // by the variable that they start from
    std::vector<int> longest;
    std::vector<Place> places;
    std::vector<std::size_t> part;  // of each variable
    std::vector<std::vector<std::size_t>> parts;
    std::vector<std::size_t> open;  // met, and in no part yet
    int met = 0;
};

}  // namespace

std::vector<int> askedConditionHistories(s_runtime const& rt) {
    Walk const walk(rt);
    std::vector<int> asked;
    for (auto const& influence : rt.influ) {
        bool const known = influence->cause != nullptr && influence->effect != nullptr;
        int const delay = known ? walk.longestFrom(influence->effect) : unreached;
        asked.push_back(std::max(delay, 0) + 1);
    }
    return asked;
}

void setConditionHistory(s_Influence& influence, int length) {
    assert(length >= 1);
    influence.condHistoLn = length;
    influence.condHisto.assign(static_cast<std::size_t>(length), 1);
}
