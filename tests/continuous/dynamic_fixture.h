// Small runtimes for the tests of dynamic influences, bound search and alarms: one effect and some
// causes, built by hand, and an independent way to the coefficients of a second-order recursion.
#pragma once

#include <array>
#include <initializer_list>
#include <memory>
#include <string>
#include <vector>

#include "continuous/sorn-runt.h"
#include "fixtures/one_engine.h"

namespace objets_test {

// The notation of values and their exact text: see objets_notation_test.cpp.
s_Objet obj(char const* notation);
std::string text(s_Objet const& o);

}  // namespace objets_test

namespace dynamic_test {

using objets_test::obj;
using objets_test::text;

inline s_Objet closed(double inf, double sup) {
    return makeRange(inf, sup, 1, 1);
}

// A runtime that is filled piece by piece. Every variable starts with its histories filled with its
// first value.
class Plant {
public:
    explicit Plant(double Ts = 1.0) {
        rt.engine = &theEngine;
        rt.Ts = Ts;
    }

    s_Variable* add(char const* nom, s_Objet const& value, int histLen = 4) {
        auto variable = std::make_unique<s_Variable>();
        variable->nom = nom;
        variable->old = variable->new_ = value;
        variable->mes = makeReal(0.0);
        variable->histo = History<s_Objet>(histLen);
        variable->histo.fill(value);
        variable->mesHisto = History<s_Objet>(histLen);
        variable->lowHisto = History<int>(histLen);
        variable->highHisto = History<int>(histLen);
        return adoptVariable(rt, std::move(variable));
    }

    // An influence of gain 1 that is always active, with b1 equal to its gain.
    s_Influence* link(s_Variable* cause, s_Variable* effect, influType type,
                      char const* gain = "1") {
        auto influence = std::make_unique<s_Influence>();
        influence->nom = cause->nom + ">" + effect->nom;
        influence->type = type;
        influence->cause = cause;
        influence->effect = effect;
        influence->gain = influence->b1 = obj(gain);
        nodeOf(effect)->kind = type;
        nodeOf(effect)->causes.push_back(influence.get());
        rt.condin.push_back(0);
        rt.condout.push_back(0);
        return adoptInfluence(rt, std::move(influence));
    }

    // Makes a variable a measured one, with that measure now and in its whole history.
    void measure(s_Variable* variable, double value) {
        rt.measure.push_back(variable);
        values.push_back(value);
        rt.mesval = values.data();
        variable->mes = makeReal(value);
        variable->mesHisto.fill(variable->mes);
        for (auto* mirror :
             {&rt.lowalarm, &rt.highalarm, &rt.meslowmisb, &rt.meshighmisb, &rt.mesmisb})
            mirror->push_back(0);
    }

    // A constant condition for an influence, which remembers its last eight evaluations.
    s_Condition* condition(s_Influence* influence, boolVal value) {
        auto condition = mkCond();
        condition->kind = COND_CONST;
        condition->val = value;
        influence->cond = adoptCondition(rt, std::move(condition));
        influence->condHistoLn = 8;
        influence->condHisto.assign(8, -1);
        return influence->cond;
    }

    s_runtime rt;

private:
    s_CGraph* nodeOf(s_Variable* variable) {
        if (variable->graph == nullptr)
            variable->graph = adoptGraph(rt, std::make_unique<s_CGraph>());
        return variable->graph;
    }

    std::vector<double> values;
};

// How often the condition of Plant::condition was evaluated, up to eight.
inline int evaluations(s_Influence const& influence) {
    int count = 0;
    for (boolVal value : influence.condHisto)
        count += value != -1 ? 1 : 0;
    return count;
}

// Makes the scratch objects fresh ones, as they stand at the start of the program. An assignment
// would leave the flags that they remember.
inline void renewScratch() {
    for (s_Objet* scratch : {TMP1, TMP2, TMP3, TMP4, TMP5, TMPII, TMPIS, TMPSI, TMPSS})
        std::construct_at(scratch);
}

// Sets env_opti for the length of a test.
class WithOpti {
public:
    explicit WithOpti(int on) : before(env_opti) { env_opti = on; }
    ~WithOpti() { env_opti = before; }

private:
    int before;
};

// y(k) = a1 y(k-1) + a2 y(k-2) + b1 u(k-1) + b2 u(k-2).
struct Recursion {
    double a1, a2, b1, b2;
};

// The step-invariant recursion of (n1 + n2 s) / (d0 + d1 s + d2 s^2), without any of the closed
// forms: the exponential of the state matrix, with the input held over the sample as a third state,
// from its power series in long double. With F the state part and G the input column of it, and
// y = C x, the recursion is a1 = tr F, a2 = -det F, b1 = C G, b2 = C F G - a1 C G.
Recursion stepInvariant(double n1, double n2, double d0, double d1, double d2, double Ts);

// The rational parameters of gain w^2 / (s^2 + 2 xi w s + w^2).
inline Recursion stepInvariantOfDamping(double xi, double w, double gain, double Ts) {
    return stepInvariant(gain * w * w, 0.0, w * w, 2 * xi * w, 1.0, Ts);
}

}  // namespace dynamic_test
