// Building of the components and histories of the tests.
#include "trajectory/trajectory_fixture.h"
#include "fixtures/the_run.h"

namespace trajectory_fixture {

std::unique_ptr<StateFormula> formulaOf(Literals const& literals, char const* operat) {
    auto formula = std::make_unique<StateFormula>();
    for (auto const& [atom, sign] : literals)
        formula->addAtom(atom, sign);
    formula->setOperat(operat);
    return formula;
}

void Unit::enter(Atom* atom) {
    comp.atoms.erase("");
    comp.atoms[atom->getId()] = atom;
}

Atom* Unit::operator[](std::string const& atom) const {
    auto const found = comp.atoms.find((comp.name + "." + atom).c_str());
    if (found != comp.atoms.end())
        return found->second;
    ADD_FAILURE() << "no atom " << atom;
    return nullptr;
}

Transition* Unit::move(int id, char const* from, char const* to, double proba, char const* type,
                       bool idle, Literals const& also) {
    Literals guard{{(*this)[from], true}};
    guard.insert(guard.end(), also.begin(), also.end());
    Transition* made = comp.addTransitionToC(
        std::make_unique<Transition>(formulaOf(guard, guard.size() > 1 ? "and" : ""),
                                     formulaOf({{(*this)[to], true}}, ""), type, proba, 0.0, idle));
    made->setID(id);
    return made;
}

string_map<Atom*> atomsOf(std::initializer_list<Unit const*> units) {
    string_map<Atom*> atoms;
    for (Unit const* unit : units)
        for (auto const& entry : unit->comp.atoms)
            atoms[entry.first] = entry.second;
    return atoms;
}

std::vector<std::string> walk(State const& state) {
    std::vector<std::string> ids;
    for (auto const& entry : state.elts)
        ids.emplace_back(entry.first);
    return ids;
}

std::unique_ptr<State> emptyState() {
    return std::make_unique<State>(theRun().scheduler.book);
}

std::unique_ptr<State> stateOf(std::initializer_list<Unit const*> units) {
    string_map<Atom*> const atoms = atomsOf(units);
    State const initial(theRun().scheduler.book, &atoms);
    return std::make_unique<State>(&initial, false);
}

PumpAndTank::PumpAndTank() {
    pump.variable("mode", {"off", "on", "dead"});
    tank.variable("mode", {"low", "high"});
    stayOff = pump.stay(0, "mode=off", 0.5);
    stayOn = pump.stay(1, "mode=on", 0.25);
    start = pump.move(2, "mode=off", "mode=on", 0.5);
    die = pump.move(3, "mode=on", "mode=dead", 0.125, transFail);
    stayLow = tank.stay(4, "mode=low", 0.75);
    stayHigh = tank.stay(5, "mode=high", 0.5);
    fill = tank.move(6, "mode=low", "mode=high", 0.25);
    atoms = atomsOf({&pump, &tank});
}

State* PumpHistory::addEmpty() {
    auto state = emptyState();
    State* added = state.get();
    testing::internal::CaptureStdout();
    path.addState(path.currentTime + 1, std::move(state));
    testing::internal::GetCapturedStdout();
    path.setTimeCorr(10.0 * path.currentTime);
    return added;
}

void PumpHistory::addEmpty(int count) {
    for (int i = 0; i < count; ++i)
        addEmpty();
}

}  // namespace trajectory_fixture
