// Construction, labels and printing of atoms.
#include "model/Atom.h"

#include "model/StateVar.h"
#include "model/labels.h"

Atom::Atom(StateVar* variable, std::string const& domainValue, std::string const& id)
    : id(id), label(labelUnknown) {
    if (!variable->inValues(domainValue)) {
        variable->complaints +=
            "Atom --> Cannot create the atom : value not in the variable domain\n";
        return;
    }
    var = variable;
    value = domainValue;
    linkIndex = var->addAtomToLinks(this);
    assert(brokenInvariant() == nullptr);
}

bool Atom::evalAtom() const {
    return var != nullptr && var->currentState == value;
}

std::vector<Atom*> const& Atom::getSiblings() const {
    return var != nullptr ? var->getAtomLinks() : none;
}

void Atom::labelSiblingsFalse() {
    for (Atom* sibling : getSiblings())
        if (sibling != this)
            sibling->setLabel(labelFalse);
}

void Atom::set() {
    if (var == nullptr)
        return;
    var->setCurrentState(value);
    label = labelTrue;
    labelSiblingsFalse();
    assert(evalAtom() && brokenInvariant() == nullptr);
}

void Atom::setLabel(std::string const& newLabel, bool const& exclusive) {
    setLabel(newLabel);
    if (exclusive && label == labelTrue)
        labelSiblingsFalse();
}

Comp* Atom::getVarComp() const {
    return var != nullptr ? var->getComp() : nullptr;
}

std::string Atom::getVarType() const {
    return var != nullptr ? var->getType() : "";
}

Atom* Atom::getAtomLink(std::string const& otherId) const {
    for (Atom* sibling : getSiblings())
        if (sibling->id == otherId)
            return sibling;
    return nullptr;
}

char const* Atom::brokenInvariant() const {
    if (!isLabel(label))
        return "the label is none of the three";
    if (var == nullptr)
        return linkIndex == -1 && value.empty() ? nullptr : "a refused value has a place";
    std::vector<Atom*> const& links = var->getAtomLinks();
    std::size_t const place = static_cast<std::size_t>(linkIndex);
    if (linkIndex < 0 || place >= links.size() || links[place] != this)
        return "the variable does not hold the atom at its place";
    return var->inValues(value) ? nullptr : "the value is outside the domain";
}

void Atom::showAtom(std::ostream& out, bool full) const {
    if (!full) {
        out << id;
        return;
    }
    // The degree sign is one Latin-1 byte.
    out << "--- Atom n\xb0# ---\n"
        << id << " --> [" << evalAtom() << "]\n"
        << "label : " << label << "\n"
        << "propagation number : " << propagationNumber << "\n";
}
