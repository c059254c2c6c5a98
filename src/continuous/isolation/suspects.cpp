// The suspects upstream of a misbehaving measure.
#include <algorithm>

#include "continuous/isolation.h"
#include "continuous/sorn-runt.h"

namespace {

bool sameRelation(s_Condition const* a, s_Condition const* b) {
    if (a->op != b->op || a->var != b->var || a->var2 != b->var2)
        return false;
    return a->var2 != nullptr || sn_eqObjet(&*a->value, &*b->value) == 1;
}

}  // namespace

bool compareConditions(s_Condition const* a, s_Condition const* b) {
    if (a == b)
        return true;
    if (a == nullptr || b == nullptr || a->kind != b->kind)
        return false;
    switch (a->kind) {
        case COND_CONST:
            return a->val == b->val;
        case COND_REL:
            return sameRelation(a, b);
        case COND_OR:
        case COND_AND:
            return compareConditions(a->left, b->left) && compareConditions(a->right, b->right);
        case COND_NOT:
            return compareConditions(a->left, b->left);
        default:
            return true;  // Required: atoms and expressions are not compared
    }
}

bool compareConflicts(Conflict const& a, Conflict const& b) {
    return a.name == b.name && a.absent == b.absent &&
           compareConditions(a.influence->cond, b.influence->cond);
}

bool compareAndUpdateConflicts(Conflict& a, Conflict& b) {
    if (!compareConflicts(a, b))
        return false;
    a.delay = b.delay = std::max(a.delay, b.delay);
    return true;
}

Suspects copySuspects(Suspects const& suspects) {
    Suspects copies;
    for (auto const& suspect : suspects)
        copies.push_back(std::make_shared<Conflict>(*suspect));
    return copies;
}

Conflict* findConflict(Suspects const& suspects, Conflict const& conflict) {
    for (auto const& suspect : suspects)
        if (compareConflicts(*suspect, conflict))
            return suspect.get();
    return nullptr;
}

std::string createConflictName(s_Influence const* influence, char const* name) {
    return name != nullptr ? name : influence->cause->nom + "->" + influence->effect->nom;
}

// Required: an influence without a name keeps none, and stands as an empty one in the text.
void makeUpConflict(s_Influence* influence, int delay, Suspects& conflicts) {
    auto made = std::make_shared<Conflict>(
        Conflict{createConflictName(influence, influence->nom.c_str()), influence, delay});
    for (auto const& present : conflicts)
        if (compareAndUpdateConflicts(*present, *made))
            return;
    conflicts.push_back(std::move(made));
}

namespace {

// What lies behind the history counts as inactive.
bool wasActive(s_Influence const* influence, int delay) {
    auto const entry = static_cast<std::size_t>(delay);
    return delay >= 0 && delay < std::max(influence->condHistoLn, 1) &&
           entry < influence->condHisto.size() && influence->condHisto[entry] != 0;
}

// A range counts as zero only if both its bounds are.
bool isZero(s_Objet const& value) {
    return sn_infOf(value) == 0.0 && sn_supOf(value) == 0.0;
}

int delayThrough(s_Influence const* influence, int delay) {
    return delay + influence->delayMax + (isZero(influence->respTime) ? 0 : 1);
}

}  // namespace

void findConflictsAux(s_runtime const* rt, s_Variable* variable, Suspects& conflicts,
                      std::vector<s_Variable const*>& visited, int delay, Suspects* resting) {
    if (variable->graph == nullptr)
        return;
    visited.push_back(variable);
    for (s_Influence* influence : variable->graph->causes) {
        if (!wasActive(influence, delay)) {
            if (resting != nullptr)
                makeUpConflict(influence, delay, *resting);
            continue;
        }
        makeUpConflict(influence, delay, conflicts);
        s_Variable* cause = influence->cause;
        bool const seen = std::find(visited.begin(), visited.end(), cause) != visited.end();
        if (!sn_isMeasure(rt, cause) && !sn_isInput(rt, cause) && !seen)
            findConflictsAux(rt, cause, conflicts, visited, delayThrough(influence, delay),
                             resting);
    }
}
