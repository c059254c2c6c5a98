// Construction of transitions and their links into the atoms.
#include "model/Transitionrt.h"

#include <cassert>

#include "model/Atom.h"
#include "model/StateVar.h"
#include "model/labels.h"

Transition::Transition(std::unique_ptr<StateFormula> pre, std::unique_ptr<StateFormula> post,
                       std::string const& type)
    : Transition(std::move(pre), std::move(post), type, 0.0) {}

Transition::Transition(std::unique_ptr<StateFormula> pre, std::unique_ptr<StateFormula> post,
                       std::string const& type, double proba)
    : Transition(std::move(pre), std::move(post), type, proba, false) {}

Transition::Transition(std::unique_ptr<StateFormula> pre, std::unique_ptr<StateFormula> post,
                       std::string const& type, double proba, bool idle)
    : Transition(std::move(pre), std::move(post), type, proba, 0.0, idle) {}

Transition::Transition(std::unique_ptr<StateFormula> pre, std::unique_ptr<StateFormula> post,
                       std::string const& type, double proba, double proba2, bool idle)
    : type(type),
      proba(proba),
      proba2(proba2),
      pre(std::move(pre)),
      post(std::move(post)),
      idle(idle) {
    addRefToAtoms();
}

Transition::Transition(std::unique_ptr<StateFormula> pre, std::unique_ptr<Posts> posts,
                       std::string const& type, double proba)
    : type(type),
      proba(proba),
      pre(std::move(pre)),
      nbPosts(static_cast<int>(posts->size())),
      posts(std::move(posts)) {
    addRefToAtoms();
}

Transition::~Transition() {
    if (posts)
        for (auto const& entry : *posts)
            delete entry.second;
}

void Transition::addRefToAtoms() {
    if (pre)
        for (auto const& [sign, atom] : pre->getAllSignedAtoms())
            refAtomPre(sign, atom);
    if (post)
        for (Atom* atom : post->getAllAtoms())
            refAtomPost(atom);
    if (posts)
        for (auto const& entry : *posts)
            for (Atom* atom : entry.second->getAllAtoms())
                refAtomPosts(atom);
}

void Transition::refAtomPre(bool sign, Atom* atom) {
    assert(atom != nullptr);
    if (!sign) {
        for (Atom* sibling : atom->getSiblings())
            if (sibling != atom)
                sibling->addRefTransPre(this);
        return;
    }
    atom->addRefTransPre(this);
    if (modeVar == nullptr && atom->getVarType() == typeMode) {
        modeVar = atom->getStateVar();
        preMode = atom;
        assert(modeVar != nullptr);  // a refused atom is of no kind
    }
}

void Transition::refAtomPost(Atom* atom) {
    if (type == transFail)
        atom->failure = true;
    atom->addRefTransPost(this);
    if (idle)
        atom->idleTrans = this;
    unknownPost = atom->value == valueUnknown;
    if (modeVar != nullptr && atom->getStateVar() == modeVar)
        postMode = atom;
}

void Transition::refAtomPosts(Atom* atom) {
    atom->addRefTransPost(this);
    // Required: an assignment, so that a nominal multi-valued transition clears the flag.
    atom->failure = type == transFail;
    if (idle)
        atom->idleTrans = this;
}

void Transition::showMove(std::ostream& out, std::ostream& err) const {
    if (idle)
        return;
    if (preMode == nullptr || postMode == nullptr) {
        err << "Transition " << id << " names no mode to leave or none to reach.\n";
        return;
    }
    out << preMode->getId() << " --------> " << postMode->getId() << "\n";
}

void Transition::showTransition(std::ostream& out) const {
    out << type << " (" << proba << ")" << (idle ? " (idle)" : "") << " : ";
    if (pre)
        pre->showStateFormula(out);
    out << " =>O ";
    for (auto const& formula : formulas) {
        out << " and (";
        formula->showFormula(out);
        out << ")";
    }
    if (post) {
        out << " and ";
        post->showStateFormula(out);
    } else if (posts) {
        for (auto const& [offset, formula] : *posts) {
            out << "\n\t\t\t\t\t" << offset << " : ";
            formula->showStateFormula(out);
        }
    }
    out << " -- " << id << "\n";
}
