// Construction, transitions and printing of elements.
#include "trajectory/TrajElrt.h"

#include <algorithm>

#include "model/Clause.h"
#include "model/Transitionrt.h"
#include "model/labels.h"

namespace {

TrajEl::Transitions withoutNulls(TrajEl::Transitions const& transitions) {
    TrajEl::Transitions kept;
    for (auto const& entry : transitions)
        if (entry.second != nullptr)
            kept.insert(entry);
    return kept;
}

}  // namespace

TrajEl::TrajEl(TrajectoryBook& book) : book(book) {
    ++book.trajel_created;
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
      proba(source->proba),
      book(source->book) {
    ++book.trajel_created;
}

TrajEl::TrajEl(TrajectoryBook& book, Atom* atom, Transition* prev, Transitions const* next,
               std::string const& label)
    : atom(atom), prevTrans(prev), label(label), book(book) {
    if (next != nullptr)
        nextTrans = withoutNulls(*next);
    ++book.trajel_created;
}

TrajEl::~TrajEl() {
    ++book.trajel_del;
}

bool TrajEl::evalTrajEl() const {
    return label == labelTrue;
}

void TrajEl::addToNextTrans(Transition* transition) {
    assert(transition != nullptr);
    std::erase_if(nextTrans, [transition](auto const& entry) {
        return entry.second != nullptr && entry.second->modeVar == transition->modeVar;
    });
    nextTrans[transition->id] = transition;
    assert(brokenInvariant() == nullptr);
}

void TrajEl::addToNextTransNeg(Transition* transition) {
    // Required: what has the same mode variable on the false side is dropped from the true side.
    for (auto const& entry : nextTransNeg)
        if (entry.second->modeVar == transition->modeVar)
            nextTrans.erase(entry.first);
    nextTransNeg[transition->id] = transition;
    assert(brokenInvariant() == nullptr);
}

namespace {

bool standUnderTheirIds(TrajEl::Transitions const& transitions) {
    return std::all_of(transitions.begin(), transitions.end(), [](auto const& entry) {
        return entry.second == nullptr || entry.second->id == entry.first;
    });
}

}  // namespace

char const* TrajEl::brokenInvariant() const {
    if (!label.empty() && !isLabel(label))
        return "the label is none of the three";
    if (lock < LOCK_TRUE || lock > LOCK_FALSE_PERM)
        return "the lock is none of the five";
    return standUnderTheirIds(nextTrans) && standUnderTheirIds(nextTransNeg)
               ? nullptr
               : "a transition stands under the id of another";
}

void TrajEl::showAtom(std::ostream& out, bool const& full) const {
    if (!full) {
        out << getId();
        return;
    }
    // The degree sign is one Latin-1 byte. The label and the number are those of this step.
    out << "--- Atom n\xb0# ---\n"
        << getId() << " --> [" << atom->evalAtom() << "]\n"
        << "label : " << label << "\n"
        << "propagation number : " << propagationNumber << "\n"
        << "lock : " << lock << "\n";
}

void TrajEl::showTrajEl(std::ostream& out, bool const& full) const {
    showAtom(out, full);
    out << "prevTrans(" << prevTime << ") :\n";
    if (prevTrans != nullptr)
        prevTrans->showTransition(out);
    for (auto const& entry : nextTrans)
        if (entry.second != nullptr)
            entry.second->showTransition(out);
    out << "support: " << support << "\n";
    if (support != nullptr)
        support->showClause(out, true);
}
