// The rule `narrow` beside truth: random plants with every kind of relation, delays, ranges of
// delays and conditions that switch. A true run of each is drawn on plain numbers, every
// coefficient and every disturbance anew at each step. Whatever is measured, all true values stay
// inside their bounds and no measure is outside; and with a measure the bounds are never wider than
// without.
#include <cmath>

#include "narrow_fixture.h"

using namespace narrow_test;

namespace {

constexpr int steps = 100;
constexpr int histLen = 8;

// The courses of all variables; before time 0 all have long been what they are at 0.
class Course {
public:
    double at(int variable, int time) const {
        auto const& values = courses[static_cast<std::size_t>(variable)];
        return values[static_cast<std::size_t>(std::max(time, 0))];
    }
    void add(double first) { courses.push_back({first}); }
    void push(int variable, double value) {
        courses[static_cast<std::size_t>(variable)].push_back(value);
    }

private:
    std::vector<std::vector<double>> courses;
};

class RandomPlant {
public:
    RandomPlant(unsigned seed, double noise) : random(seed), noise(noise) {
        rules.narrow = true;
        plant.rt.engine = &engine;
        addGiven();
        int const count = pick(3, 7);
        for (int i = 0; i < count; ++i)
            addVariable(i);
        chooseMeasures();
        sizeArrays(plant.rt);
        plant.rt.precision = 0.01;
    }

    void step() {
        ++time;
        for (s_Condition* condition : switches)
            condition->val = pick(0, 3) != 0;
        engine.inps = {course.at(0, time - 1) + between(-0.3, 0.3)};
        course.push(0, engine.inps[0]);
        course.push(1, 1.0);
        for (auto const& list : {plant.rt.temporal, plant.rt.untemporal})
            for (s_Variable const* variable : list)
                course.push(variable->slot, truthOf(*variable));
        for (std::size_t i = 0; i < measured.size(); ++i)
            engine.meas[i] = course.at(measured[i], time) + between(-noise, noise);
        sorn_doCycle2(&plant.rt, CYCLE_DETECT);
        sn_checkMs(&plant.rt, 1);
    }

    void expectTruthInside() const {
        for (auto const& variable : plant.rt.dico) {
            double const truth = course.at(variable->slot, time);
            // The sums of the engine are not rounded outwards.
            double const slack = 1e-9 * (1.0 + std::fabs(truth));
            ASSERT_LE(sn_infOf(variable->old) - slack, truth) << variable->nom << " at " << time;
            ASSERT_GE(sn_supOf(variable->old) + slack, truth) << variable->nom << " at " << time;
            ASSERT_EQ(variable->mesmisb, 0) << variable->nom << " at " << time;
        }
    }

    void forgetMeasures() {
        plant.rt.measure.clear();
        sizeArrays(plant.rt);
    }
    s_runtime const& runtime() const { return plant.rt; }

private:
    int pick(int least, int most) {
        return std::uniform_int_distribution<int>(least, most)(random);
    }
    double between(double lo, double hi) {
        return std::uniform_real_distribution<double>(lo, hi)(random);
    }
    double within(s_Objet const& value) { return between(sn_infOf(value), sn_supOf(value)); }

    s_Variable* add(std::string const& nom, double first) {
        course.add(first);
        return plant.add(nom.c_str(), makeReal(first), histLen);
    }
    void addGiven() {
        plant.rt.input = {add("input", 2.0)};
        add("one", 1.0)->isParam = 1;
    }
    s_Objet coefficient(double scale) {
        double const middle = between(-scale, scale);
        return pick(0, 2) == 0 ? makeReal(middle) : closed(middle - 0.1 * scale, middle + 0.1);
    }
    void addVariable(int i) {
        static constexpr influType kinds[] = {INF_STATIC,  INF_STATIC,   INF_STATIC,
                                              INF_DYNAMIC, INF_INTEGRAL, INF_DYNAMIC2};
        influType const kind = kinds[pick(0, 5)];
        s_Variable* variable = add("v" + std::to_string(i), between(-3, 3));
        int const causes = kind == INF_DYNAMIC2 ? 1 : pick(1, 3);
        s_Objet const a1 = pick(0, 1) == 0 ? makeReal(0.6) : closed(0.5, 0.8);
        for (int c = 0; c < causes; ++c)
            setInfluence(plant.link(causeOf(variable, kind), variable, kind), kind, a1);
        (kind == INF_STATIC ? plant.rt.untemporal : plant.rt.temporal).push_back(variable);
    }
    // A static effect at delay 0 reads what is there already; all other delays may make loops.
    s_Variable* causeOf(s_Variable const* effect, influType) {
        return plant.rt.dico[static_cast<std::size_t>(pick(0, effect->slot - 1))].get();
    }
    void setInfluence(s_Influence* influence, influType kind, s_Objet const& a1) {
        double const scale = kind == INF_INTEGRAL ? 0.1 : 1.0;
        influence->gain = influence->b1 = coefficient(scale);
        influence->a1 = a1;
        influence->delayMin = influence->delayMax = pick(0, 3);
        if (kind == INF_DYNAMIC2)
            setSecondOrder(influence);
        else if (pick(0, 3) == 0)
            ++influence->delayMax;
        if (pick(0, 2) == 0) {
            switches.push_back(plant.condition(influence, 1));
        }
    }
    void setSecondOrder(s_Influence* influence) {
        influence->a1 = makeReal(0.9);
        influence->a2 = makeReal(-0.3);
        influence->b2 = makeReal(between(-1, 1));
    }
    void chooseMeasures() {
        for (auto const& list : {plant.rt.temporal, plant.rt.untemporal})
            for (s_Variable* variable : list)
                if (pick(0, 1) == 0) {
                    plant.measure(variable, course.at(variable->slot, 0));
                    variable->noise = noise;
                    engine.meas.push_back(0.0);
                    measured.push_back(variable->slot);
                }
    }

    double truthOf(s_Variable const& variable) {
        s_CGraph const& graph = *variable.graph;
        double sum = 0.0;
        for (s_Influence const* influence : graph.causes)
            if (influence->cond == nullptr || influence->cond->val)
                sum += truthOf(*influence);
        int const v = variable.slot;
        s_Influence const& last = *graph.causes.back();
        double const a = within(last.a1);
        if (graph.kind == INF_INTEGRAL)
            return course.at(v, time - 1) + sum;
        if (graph.kind == INF_DYNAMIC)
            return a * course.at(v, time - 1) + (1 - a) * sum;
        if (graph.kind == INF_DYNAMIC2)
            return last.a1.real * course.at(v, time - 1) + last.a2.real * course.at(v, time - 2) +
                   sum;
        return sum;
    }
    double truthOf(s_Influence const& influence) {
        int const extra = influence.type == INF_STATIC ? 0 : 1;
        int const ago = extra + pick(influence.delayMin, influence.delayMax);
        int const cause = influence.cause->slot;
        double const first = within(influence.b1) * course.at(cause, time - ago);
        if (influence.type != INF_DYNAMIC2)
            return first;
        return first + influence.b2.real * course.at(cause, time - ago - 1);
    }

    std::mt19937 random;
    double noise;
    Rules rules;
    s_engine engine{testHost(), rules};
    Plant plant;
    Course course;
    std::vector<s_Condition*> switches;
    std::vector<int> measured;
    int time = 0;
};

class RandomPlants : public EngineTest, public testing::WithParamInterface<double> {};

TEST_P(RandomPlants, TheTruthIsAlwaysInside) {
    for (unsigned seed = 1; seed <= 400; ++seed) {
        RandomPlant plant(seed, GetParam());
        for (int k = 0; k < steps; ++k) {
            plant.step();
            plant.expectTruthInside();
            if (HasFatalFailure())
                FAIL() << "seed " << seed;
        }
    }
}

// The same run twice, once with the measures taken away.
TEST_P(RandomPlants, MeasuresNeverWiden) {
    double with = 0.0, without = 0.0;
    for (unsigned seed = 1; seed <= 50; ++seed) {
        RandomPlant plant(seed, GetParam()), blind(seed, GetParam());
        blind.forgetMeasures();
        for (int k = 0; k < 20; ++k) {
            plant.step();
            blind.step();
            for (std::size_t v = 0; v < plant.runtime().dico.size(); ++v) {
                s_Objet const& a = plant.runtime().dico[v]->old;
                s_Objet const& b = blind.runtime().dico[v]->old;
                double const slack = 1e-9 * (1 + std::fabs(sn_infOf(b)) + std::fabs(sn_supOf(b)));
                ASSERT_GE(sn_infOf(a), sn_infOf(b) - slack) << seed << " at " << k;
                ASSERT_LE(sn_supOf(a), sn_supOf(b) + slack) << seed << " at " << k;
                with += sn_supOf(a) - sn_infOf(a);
                without += sn_supOf(b) - sn_infOf(b);
            }
        }
    }
    EXPECT_LT(with, 0.7 * without);
}

INSTANTIATE_TEST_SUITE_P(Noise, RandomPlants, testing::Values(0.0, 0.02));

}  // namespace
