// What the tests of the reference model share: the model as it was built and not yet started, its
// two components by their classes, and texts of literals.
#pragma once

#include <initializer_list>
#include <string>
#include <vector>

#include "fixtures/reference_model.h"
#include "generated/therm/room.h"
#include "generated/therm/therm.h"

namespace therm_fixture {

using Texts = std::vector<std::string>;

// The registry and the runtime right after the compiled model has built them.
class BuiltModel {
public:
    BuiltModel();
    ~BuiltModel();

    room* R1;
    therm* T1;
    s_runtime* rt;

private:
};

// The same after start-up.
class StartedModel : public ReferenceModel {
public:
    StartedModel();

    room* R1;
    therm* T1;
};

room* findRoom();
therm* findTherm();

// The literals of a bag in the order of a walk, as ids; those with the sign *marked* begin with
// "!".
Texts literals(SignedAtoms const& bag, bool marked);

// Names of records, in order; "null" for none.
Texts names(std::vector<s_Variable*> const& variables);
Texts names(std::vector<s_Influence*> const& influences);
std::string name(s_Variable const* variable);

// The ids of atoms, in order.
Texts ids(std::vector<Atom*> const& atoms);

}  // namespace therm_fixture
