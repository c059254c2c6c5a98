// Building and reading of the reference model.
#include "generated/therm_fixture.h"
#include "fixtures/the_run.h"

namespace therm_fixture {

namespace {

template <typename Component>
Component* find(char const* name) {
    auto const found = thePlant().active_comps.find(name);
    return found == thePlant().active_comps.end() ? nullptr
                                                  : static_cast<Component*>(found->second);
}

}  // namespace

room* findRoom() {
    return find<room>("room");
}

therm* findTherm() {
    return find<therm>("thermostat");
}

BuiltModel::BuiltModel() {
    newPlant(therm_model.model_name);
    therm_model.startinit(theRun().sMM);
    R1 = findRoom();
    T1 = findTherm();
    rt = thePlant().tavro_rt.get();
    rt->engine = &theRun().engine;
}

BuiltModel::~BuiltModel() {
    testing::internal::CaptureStdout();
    endPlant();
    testing::internal::GetCapturedStdout();
}

StartedModel::StartedModel() : R1(findRoom()), T1(findTherm()) {}

Texts literals(SignedAtoms const& bag, bool marked) {
    Texts texts;
    for (auto const& [sign, atom] : bag)
        texts.push_back((sign == marked ? "!" : "") + atom->id);
    return texts;
}

std::string name(s_Variable const* variable) {
    return variable != nullptr ? variable->nom : "null";
}

Texts names(std::vector<s_Variable*> const& variables) {
    Texts texts;
    for (s_Variable const* variable : variables)
        texts.push_back(name(variable));
    return texts;
}

Texts names(std::vector<s_Influence*> const& influences) {
    Texts texts;
    for (s_Influence const* influence : influences)
        texts.push_back(influence != nullptr ? influence->nom : "null");
    return texts;
}

Texts ids(std::vector<Atom*> const& atoms) {
    Texts texts;
    for (Atom const* atom : atoms)
        texts.push_back(atom->id);
    return texts;
}

}  // namespace therm_fixture
