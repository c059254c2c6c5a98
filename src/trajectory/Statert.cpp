// Construction, elements, locks and probabilities of states.
#include "trajectory/Statert.h"

#include <algorithm>
#include <cassert>
#include <cstring>
#include <set>

#include "model/Comprt.h"
#include "model/StateFormula.h"
#include "model/StateVar.h"
#include "model/Transitionrt.h"
#include "model/labels.h"

State::State(TrajectoryBook& book) : book(book) {
    ++book.state_created;
}

// Both take over what State() has made: an object that exists is destroyed when what follows fails.
State::State(TrajectoryBook& book, string_map<Atom*> const* atoms) : State(book) {
    locked = true;
    for (auto const& entry : *atoms) {
        Atom* atom = entry.second;
        if (atom == nullptr)
            continue;
        auto element = std::make_unique<TrajEl>(book, atom, nullptr, nullptr, atom->getLabel());
        element->support = atom->support;
        enter(atom->getId(), std::move(element));
    }
    for (auto const& entry : elts) {
        Transition* idle = entry.second->atom->idleTrans;
        Comp* comp = entry.second->atom->getVarComp();
        if (idle == nullptr)
            continue;
        if (!idle->pre || comp == nullptr) {
            book.err << "the idle transition of " << entry.second->getId()
                     << " has no guard or no component\n";
            continue;
        }
        if (!evalStateFormula(idle->pre.get(), this))
            continue;
        entry.second->prevTrans = idle;
        ++prevTransCount;
        comps[comp->getName()] = comp;
    }
    computePrevTransProb();
    proba = prevTransProb;
    assert(brokenInvariant() == nullptr);
}

State::State(State const* source, bool full) : State(source->book) {
    if (full)
        copyHistory(*source);
    postProbs = source->postProbs;
    sortedPostProbs = source->sortedPostProbs;
    atomPostProbs = source->atomPostProbs;
    locked = full;
    unknown = source->unknown;
    observations = source->observations;
    copyElements(*source, full);
    assert(elts.size() <= source->elts.size() && brokenInvariant() == nullptr);
}

// What tells how the source came to be.
void State::copyHistory(State const& source) {
    failCount = source.failCount;
    cover = source.cover;
    proba = source.proba;
    prevTransProb = source.prevTransProb;
    obsProb = source.obsProb;
    prevTransCount = source.prevTransCount;
    observed = source.observed;
    comps = source.comps;
}

State::~State() {
    ++book.state_del;
    clear();
}

void State::copyElements(State const& source, bool full) {
    for (auto const& [id, element] : source.elts) {
        if (element == nullptr)
            continue;
        auto copy = std::make_unique<TrajEl>(element);
        if (!full) {
            copy->lock = LOCK_FREE;
            copy->prevTrans = nullptr;
        }
        enter(id, std::move(copy));
    }
    for (auto const& [id, element] : source.elts) {
        if (element == nullptr)
            continue;
        for (TrajEl const* consequence : element->consequences)
            if (TrajEl* copied = getElt(consequence->getId()))
                elts[id]->consequences.push_back(copied);
    }
}

void State::enter(char const* id, std::unique_ptr<TrajEl> element) {
    TrajEl*& place = elts[id];
    if (place != nullptr)
        replaced.emplace_back(place);
    place = element.release();
}

TrajEl* State::getElt(char const* id) const {
    auto const found = elts.find(id);
    return found == elts.end() ? nullptr : found->second;
}

TrajEl* State::addElt(TrajEl const* element, bool const& keep) {
    auto copy = std::make_unique<TrajEl>(element);
    if (!keep) {
        copy->lock = LOCK_FREE;
        copy->prevTrans = nullptr;
    }
    TrajEl* borrowed = copy.get();
    enter(borrowed->getId(), std::move(copy));
    assert(brokenElement(borrowed->getId(), borrowed) == nullptr);
    return borrowed;
}

void State::removeElt(char const* id) {
    auto const found = elts.find(id);
    if (found == elts.end())
        return;
    TrajEl* element = found->second;
    elts.erase(found);
    for (auto const& entry : elts)
        if (entry.second != nullptr)
            std::erase(entry.second->consequences, element);
    for (auto const& kept : replaced)
        std::erase(kept->consequences, element);
    delete element;
    assert(getElt(id) == nullptr && brokenInvariant() == nullptr);
}

void State::setPrevTrans(char const* id, Transition* transition) {
    if (TrajEl* element = getElt(id))
        element->prevTrans = transition;
}

void State::lockStatePerm() {
    for (auto const& entry : elts) {
        TrajEl* element = entry.second;
        if (element == nullptr || !element->evalTrajEl() || element->lock != LOCK_FREE)
            continue;
        for (Atom const* sibling : element->getStateVar()->getAtomLinks())
            if (TrajEl* other = getElt(sibling->getId()); other != nullptr && other != element)
                other->lock = LOCK_FALSE_PERM;
        element->lock = LOCK_TRUE_PERM;
    }
    locked = true;
    assert(brokenInvariant() == nullptr);
}

double State::getTransitionPostProb(Transition const* transition) const {
    auto const found = postProbs.find(transition->id);
    return found == postProbs.end() ? 0.0 : found->second;
}

bool State::evalStateFormula(StateFormula const* formula, State const* state) const {
    bool const conjunction = formula->operat == "and" || formula->operat.empty();
    if (!conjunction && formula->operat != "or")
        return false;
    bool result = conjunction;
    for (auto const& [sign, atom] : formula->getAtoms()) {
        TrajEl const* element = state->getElt(atom->getId());
        bool const holds = (element != nullptr && element->evalTrajEl()) == sign;
        result = conjunction ? result && holds : result || holds;
    }
    return result;
}

void State::computePrevTransProb() {
    prevTransProb = 1.0;
    for (auto const& entry : elts)
        if (entry.second != nullptr && entry.second->prevTrans != nullptr)
            prevTransProb *= entry.second->prevTrans->proba;
}

double State::computePrevTransGuard() const {
    double product = 1.0;
    for (auto const& entry : elts)
        if (entry.second != nullptr && entry.second->prevTrans != nullptr)
            product *= getTransitionPostProb(entry.second->prevTrans);
    return product;
}

double State::computeNextTransGuard() const {
    double product = 1.0;
    std::set<int> counted;
    for (auto const& entry : elts) {
        if (entry.second == nullptr)
            continue;
        for (auto const& [id, transition] : entry.second->nextTrans)
            if (transition != nullptr && counted.insert(id).second)
                product *= transition->guardProba;
    }
    return product;
}

void State::clear() {
    for (auto const& entry : elts)
        delete entry.second;
    elts.clear();
    replaced.clear();
}

bool State::owns(TrajEl const* element) const {
    return getElt(element->getId()) == element ||
           std::any_of(replaced.begin(), replaced.end(),
                       [element](auto const& kept) { return kept.get() == element; });
}

char const* State::brokenElement(char const* id, TrajEl const* element) const {
    if (element->atom == nullptr || std::strcmp(id, element->getId()) != 0)
        return "an element stands under the id of another atom";
    for (TrajEl const* consequence : element->consequences)
        if (consequence == nullptr || consequence->atom == nullptr || !owns(consequence))
            return "a consequence is no element of the state";
    return element->brokenInvariant();
}

char const* State::brokenInvariant() const {
    for (auto const& [id, element] : elts)
        if (char const* broken = element != nullptr ? brokenElement(id, element) : nullptr)
            return broken;
    for (auto const& [name, comp] : comps)
        if (comp == nullptr || std::strcmp(name, comp->getName()) != 0)
            return "a component stands under another name";
    return nullptr;
}

void State::showState(std::ostream& out) const {
    out << "proba : " << proba << "\ncover : " << cover << "\n";
    for (auto const& [id, element] : elts)
        if (element != nullptr)
            out << id << " --" << element->getLabel() << " (" << element->propagationNumber
                << ")  -- " << element->lock << "\n";
}

void State::showFullState(std::ostream& out) const {
    for (auto const& entry : elts)
        if (entry.second != nullptr)
            entry.second->showTrajEl(out, true);
}
