// The check as a whole: which part looks at what, and in which order.
#include "plant/check.h"

#include <algorithm>

#include "plant/findings.h"

namespace {

void checkContinuousSide(s_runtime const& rt, Holdings const& plant, Findings& findings) {
    if (!checkReferences(rt, plant, findings))
        return;
    ConditionNames const conditionNames(rt, plant);
    checkRecordNames(rt, findings);
    checkLists(rt, findings);
    checkVariables(rt, findings);
    checkInfluences(rt, plant, findings);
    checkGraph(rt, findings);
    checkUpdates(rt, findings);
    checkInitialValues(rt, findings);
    checkConstraints(rt, findings);
    checkConditions(rt, plant, conditionNames, findings);
    checkLinks(rt, plant, conditionNames, findings);
    checkThresholds(rt, plant, findings);
}

}  // namespace

std::vector<Finding> checkPlant(PlantParts const& parts) {
    Findings findings;
    Holdings const plant(parts);
    checkNames(plant, parts, findings);
    checkStateVariables(plant, findings);
    checkClauses(plant, parts, findings);
    checkTransitions(plant, parts, findings);
    if (parts.runtime != nullptr)
        checkContinuousSide(*parts.runtime, plant, findings);
    else
        checkNoLinks(plant, findings);
    return std::move(findings.list);
}

bool isRefused(std::vector<Finding> const& findings) {
    return std::any_of(findings.begin(), findings.end(),
                       [](Finding const& finding) { return finding.refuses; });
}
