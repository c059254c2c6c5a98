// A runtime whose variables are divided into regions by thresholds, as a compiled model does it.
#pragma once

#include "engine_fixture.h"

namespace engine_test {

// The regions of one variable: below t0, from t0 to t1, ..., from the last one on. Constraints 2i
// and 2i + 1 (counted from `first`) say below and from threshold i; a region between two thresholds
// is a condition on both. Covers are looked for from the highest region down.
struct Regions {
    s_Variable* x = nullptr;
    s_GVar* g = nullptr;
    std::unique_ptr<Choice> choice;
    std::vector<double> thresholds;
    std::vector<s_Condition*> conditions;  // by region
    int first = 0;
};

class RegionsTest : public EngineTest {
protected:
    RegionsTest() {
        rt.engine = &theEngine;
        rt.num = rt_num++;
        keep = &rt;
    }

    // A variable with regions whose atoms are "<nom>=0" and so on, or null.
    Regions& add(char const* nom, std::vector<double> const& thresholds, bool withAtoms = true) {
        auto regions = std::make_unique<Regions>();
        regions->x = mkVariable(rt, nom, 2);
        regions->g = mkConstraintVar(rt, regions->x, obj("0"));
        regions->thresholds = thresholds;
        regions->first = static_cast<int>(rt.aC.size());
        rt.gV.push_back(regions->g);
        makeAtoms(nom, *regions, withAtoms);
        makeConstraints(*regions);
        makeConditions(*regions, withAtoms);
        sizeArrays(rt);
        all.push_back(std::move(regions));
        return *all.back();
    }

    // Starts in a region: its constraints are the space and its atom is an event.
    void enter(Regions const& regions, std::size_t region) {
        s_Condition* condition = regions.conditions[region];
        sn_setInValSpc(&rt, condition);
        condition->val = 1;
        if (condition->atom != nullptr)
            rt.bridgeEvents.insert({true, condition->atom});
    }

    void split() { sn_splitValiditySpc(&rt); }

    // The runtimes of the split as "#0 [5, 10] {0} +x=0", one line each.
    static std::string result() {
        std::string lines;
        for (auto const& [num, runtime] : nrt) {
            EXPECT_EQ(num, runtime->num);
            lines += describe(*runtime) + "\n";
        }
        return lines;
    }
    static std::string describe(s_runtime const& runtime) {
        std::string line = "#" + std::to_string(runtime.num);
        for (s_GVar const* g : runtime.gV)
            line += " " + text(g->var->old);
        line += " {";
        for (std::size_t i = 0; i < runtime.valSpc.size(); ++i)
            line += runtime.valSpc[i] ? " " + std::to_string(i) : "";
        return line + " } " + events(runtime);
    }

    s_runtime rt;
    std::vector<std::unique_ptr<Regions>> all;

private:
    static void makeAtoms(char const* nom, Regions& regions, bool withAtoms) {
        std::vector<std::string> values;
        for (std::size_t i = 0; i <= regions.thresholds.size(); ++i)
            values.push_back(std::to_string(i));
        if (withAtoms)
            regions.choice = std::make_unique<Choice>(nom, values);
    }
    void makeConstraints(Regions& regions) {
        regions.g->acIdx = {2 * static_cast<int>(regions.thresholds.size())};
        for (double const threshold : regions.thresholds)
            for (char const* side : {"[-MAX, 0[", "[0, MAX]"}) {
                regions.g->acIdx.push_back(static_cast<int>(rt.aC.size()));
                rt.aC.push_back(mkSpace(rt, regions.g, threshold, obj(side)));
            }
    }
    s_Condition* onConstraint(Regions const& regions, int index, relation op) {
        return mkExprCond(rt, regions.x, op, rt.aC[static_cast<std::size_t>(index)], index, nullptr,
                          0);
    }
    void makeConditions(Regions& regions, bool withAtoms) {
        int const last = static_cast<int>(regions.thresholds.size());
        for (int region = 0; region <= last; ++region) {
            int const from = regions.first + 2 * region - 1, below = regions.first + 2 * region;
            s_Condition* condition;
            if (region == 0)
                condition = onConstraint(regions, below, REL_LT);
            else if (region == last)
                condition = onConstraint(regions, from, REL_GE);
            else
                condition = mkBinaryCond(rt, COND_AND, onConstraint(regions, from, REL_GE),
                                         onConstraint(regions, below, REL_LT), 0);
            condition->atom = withAtoms ? (*regions.choice)[region] : nullptr;
            regions.conditions.push_back(condition);
            regions.x->varConds.insert(regions.x->varConds.begin(),
                                       static_cast<int>(rt.condi.size()));
            rt.condi.push_back(condition);
        }
    }
};

}  // namespace engine_test
