// The effects that the tests of the bound search work on, and the same searches spelled out.
#pragma once

#include "continuous/search.h"
#include "dynamic_fixture.h"

namespace dynamic_test {

// u -> y by a rational form with intervals among its parameters and in every value.
class SecondOrderPlant {
public:
    SecondOrderPlant() : plant(0.5) {
        y = plant.add("y", closed(1, 2));
        y->histo.set(0, closed(0.5, 1));
        u = plant.add("u", closed(0, 1));
        u->histo.set(0, closed(0, 0.5));
        influence = plant.link(u, y, INF_DYNAMIC2, "[1, 1.5]");
        influence->n1 = obj("1");
        influence->n2 = obj("0.5");
        influence->d0 = obj("[2, 3]");
        influence->d1 = obj("1");
        influence->d2 = obj("1");
        influence->useOpti = 1;
        influence->a1 = influence->a2 = *objZero;
        influence->b1 = closed(0, 1);
        influence->b2 = *objUn;
        init_nelder();
    }

    Plant plant;
    s_Variable *y, *u;
    s_Influence* influence;
};

// A search spelled out: start, box and parameters as they stand in the members.
struct PlainSearch {
    std::vector<double> start, lower, upper;
    double p[3];

    void entry(s_Objet const& o) {
        start.push_back((sn_infOf(o) + sn_supOf(o)) / 2);
        lower.push_back(sn_infOf(o));
        upper.push_back(sn_supOf(o));
    }

    std::vector<double> operator()(Nelder_cost cost, double side) {
        int n = static_cast<int>(start.size()), status = 0;
        std::vector<double> x = start;
        p[1] = side;
        opt_nelder(cost, &n, x.data(), lower.data(), upper.data(), p, nullptr, &status);
        return x;
    }

    double costAt(Nelder_cost cost, double side, std::vector<double> x) {
        int n = static_cast<int>(x.size()), constraint = 0, status = 0;
        p[1] = side;
        return cost(&n, x.data(), lower.data(), upper.data(), p, nullptr, &constraint, &status);
    }
};

// The search over a second-order influence with the given previous and cause values.
inline PlainSearch plainSearch(s_Influence const& influence, s_Objet const& prev1,
                               s_Objet const& prev2, s_Objet const& u1, s_Objet const& u2,
                               double Ts) {
    PlainSearch search{{}, {}, {}, {Ts, 0, 0}};
    for (auto const* parameter :
         {&influence.n1, &influence.n2, &influence.d0, &influence.d1, &influence.d2})
        search.entry(**parameter);
    for (s_Objet const* value : {&prev1, &prev2, &u1, &u2, &influence.gain})
        search.entry(*value);
    return search;
}

}  // namespace dynamic_test
