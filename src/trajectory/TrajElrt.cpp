// Construction, transitions and printing of elements.
#include "trajectory/TrajElrt.h"

#include <iostream>

#include "model/Clause.h"
#include "model/Transitionrt.h"
#include "model/labels.h"

unsigned TrajEl::trajel_created = 0;
unsigned TrajEl::trajel_del = 0;

namespace {

TrajEl::Transitions withoutNulls(TrajEl::Transitions const& transitions) {
    TrajEl::Transitions kept;
    for (auto const& entry : transitions)
        if (entry.second != nullptr)
            kept.insert(entry);
    return kept;
}

}  // namespace

TrajEl::TrajEl() {
    ++trajel_created;
}

TrajEl::TrajEl(TrajEl const* source)
    : atom(source->atom),
      prevTime(source->prevTime),
      prevTrans(source->prevTrans),
      index(source->index),
      nextTrans(withoutNulls(source->nextTrans)),
      nextTransNeg(withoutNulls(source->nextTransNeg)),
      label(source->label),
      support(source->support),
      propagationNumber(source->propagationNumber),
      lock(source->lock),
      proba(source->proba) {
    ++trajel_created;
}

TrajEl::TrajEl(Atom* atom, Transition* prev, Transitions const* next, std::string const& label)
    : atom(atom), prevTrans(prev), label(label) {
    if (next != nullptr)
        nextTrans = withoutNulls(*next);
    ++trajel_created;
}

TrajEl::~TrajEl() {
    ++trajel_del;
}

bool TrajEl::evalTrajEl() const {
    return label == labelTrue;
}

void TrajEl::addToNextTrans(Transition* transition) {
    std::erase_if(nextTrans, [transition](auto const& entry) {
        return entry.second != nullptr && entry.second->modeVar == transition->modeVar;
    });
    nextTrans[transition->id] = transition;
}

void TrajEl::addToNextTransNeg(Transition* transition) {
    // Required: what has the same mode variable on the false side is dropped from the true side.
    for (auto const& entry : nextTransNeg)
        if (entry.second->modeVar == transition->modeVar)
            nextTrans.erase(entry.first);
    nextTransNeg[transition->id] = transition;
}

void TrajEl::showAtom(bool const& full) const {
    if (!full) {
        std::cout << getId();
        return;
    }
    // The degree sign is one Latin-1 byte. The label and the number are those of this step.
    std::cout << "--- Atom n\xb0# ---\n"
              << getId() << " --> [" << atom->evalAtom() << "]\n"
              << "label : " << label << "\n"
              << "propagation number : " << propagationNumber << "\n"
              << "lock : " << lock << "\n";
}

void TrajEl::showTrajEl(bool const& full) const {
    showAtom(full);
    std::cout << "prevTrans(" << prevTime << ") :\n";
    if (prevTrans != nullptr)
        prevTrans->showTransition();
    for (auto const& entry : nextTrans)
        if (entry.second != nullptr)
            entry.second->showTransition();
    std::cout << "support: " << support << "\n";
    if (support != nullptr)
        support->showClause(true);
}
