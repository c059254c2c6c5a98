// The shared pieces of the tests of the discrete model.
#include "model/model_fixture.h"
#include "fixtures/the_run.h"

namespace model_fixture {

std::string walk(SignedAtoms const& bag) {
    std::string text;
    for (auto const& [sign, atom] : bag)
        text += (sign ? "+" : "-") + atom->value;
    return text;
}

std::string valuesOf(std::vector<Atom*> const& atoms) {
    std::string text;
    for (Atom const* atom : atoms)
        text += atom->value;
    return text;
}

std::unique_ptr<StateFormula> formulaOf(std::vector<Literal> const& literals) {
    auto formula = std::make_unique<StateFormula>();
    for (auto const& [sign, atom] : literals)
        formula->addAtom(atom, sign);
    return formula;
}

std::unique_ptr<Transition> move(Atom* from, Atom* to, std::string const& type, double proba,
                                 bool idle) {
    return std::make_unique<Transition>(formulaOf({{true, from}}), formulaOf({{true, to}}), type,
                                        proba, 0.0, idle);
}

namespace {

DataManager& emptyRegistry() {
    printed([] { newPlant(""); });
    return theRun().scheduler;
}

}  // namespace

RegistryTest::RegistryTest() : registry(emptyRegistry()) {}

RegistryTest::~RegistryTest() {
    printed([] { endPlant(); });
}

Comp* RegistryTest::component(std::string const& name, std::vector<double> const& guardProbas) {
    Comp* comp = registry.addComp(std::make_unique<Comp>(name));
    std::set<std::string> const values = {"only"};
    ModeVar* mode =
        comp->addStateVar(std::make_unique<ModeVar>(name + ".mode", values, "only", comp));
    Atom* only = comp->newAtom("only", mode, "only");
    for (double const proba : guardProbas)
        comp->addTransitionToC(move(only, only, transNominal, 0.5))->guardProba = proba;
    return comp;
}

}  // namespace model_fixture
