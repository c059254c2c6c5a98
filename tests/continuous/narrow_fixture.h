// A small runtime under a rule of choice, in the middle of its cycle: every variable has `new_`,
// and the measures have entered.
#pragma once

#include "engine_fixture.h"

namespace narrow_test {

using namespace engine_test;
using dynamic_test::closed;

class NarrowTest : public EngineTest {
protected:
    explicit NarrowTest(Rules const& given = {.narrow = true}) : rules(given) {
        plant.rt.engine = &engine;
        one = parameter(plant, "one", 1.0);
    }

    // A variable of this cycle that nothing but *value* is known of: the parameter 1 times it.
    s_Variable* free(char const* nom, s_Objet const& value, int histLen = 4) {
        s_Variable* variable = plant.add(nom, value, histLen);
        plant.link(one, variable, INF_STATIC)->b1 = value;
        plant.rt.untemporal.push_back(variable);
        return variable;
    }
    // A static effect of the causes that are linked to it later.
    s_Variable* effect(char const* nom, s_Objet const& value) {
        s_Variable* variable = plant.add(nom, value);
        plant.rt.untemporal.push_back(variable);
        return variable;
    }
    s_Variable* temporal(char const* nom, s_Objet const& before, s_Objet const& now) {
        s_Variable* variable = plant.add(nom, before);
        variable->new_ = now;
        plant.rt.temporal.push_back(variable);
        return variable;
    }
    // An influence of an age that the delay of its kind says.
    s_Influence* link(s_Variable* cause, s_Variable* to, influType type, char const* gain = "1",
                      int delay = 0) {
        s_Influence* influence = plant.link(cause, to, type, gain);
        influence->delayMin = influence->delayMax = delay;
        return influence;
    }

    void expectNow(s_Variable const* variable, double inf, double sup) const {
        expectAbout(variable->new_, inf, sup, variable->nom);
    }
    // Bounds that are exact but for the roundings outwards, and never inside.
    static void expectAbout(s_Objet const& value, double inf, double sup, std::string const& what) {
        double const slack = 1e-13 * (std::abs(inf) + std::abs(sup));
        EXPECT_LE(sn_infOf(value), inf) << what << text(value);
        EXPECT_GE(sn_infOf(value), inf - slack) << what << text(value);
        EXPECT_GE(sn_supOf(value), sup) << what << text(value);
        EXPECT_LE(sn_supOf(value), sup + slack) << what << text(value);
    }

    Rules rules;
    s_engine engine{testHost(), rules};
    Plant plant;
    s_Variable* one;
};

}  // namespace narrow_test
