// The rig's intervals beside true rigs: each draws its parameters from the intervals, once for all,
// and follows the differential equations themselves over the held inputs (stepInvariant of
// ../continuous/dynamic_fixture.h), with none of the closed forms. In open loop every true rig must
// stay within the predicted bounds, and the bounds of one step must be reached.
#include <gtest/gtest.h>

#include <map>

#include "continuous/dynamic_fixture.h"
#include "recurrence.h"
#include "rig_fixture.h"

namespace plants_test {
namespace {

using dynamic_test::Recursion;
using dynamic_test::stepInvariant;

constexpr double Ts = 0.5;

// What is uncertain of the rig.
struct Parameters {
    double lagGain, lagTime, integralGain, staticGain;
    double underXi, underW, underGain;
    double overXi, overW, overGain;
    double accGain, n1, d0, d1;
};

// Each entry by a choice of a point of its interval.
template <typename Choose>
Parameters choose(Choose from) {
    return {from(1.5, 2.5), from(3.0, 6.0), from(0.9, 1.1), from(0.9, 1.1), from(0.2, 0.3),
            from(1.9, 2.1), from(2.8, 3.2), from(1.9, 2.1), from(0.9, 1.1), from(1.5, 2.0),
            from(0.4, 0.6), from(0.9, 1.1), from(1.8, 2.2), from(0.9, 1.1)};
}

class TrueRig {
public:
    TrueRig(Parameters const& p, double u, double v)
        : p(p),
          under(ofDamping(p.underXi, p.underW, p.underGain), u),
          over(ofDamping(p.overXi, p.overW, p.overGain), v),
          acc(stepInvariant(p.accGain, 0, 0, 0, 1, Ts), u),
          ratio(stepInvariant(p.n1, 0.5, p.d0, p.d1, 1, Ts), u),
          u(u),
          v(v) {}

    // The next sample, and the inputs that hold from it on.
    void step(double newU, double newV) {
        double const kept = std::exp(-3 * Ts / p.lagTime);
        integral += Ts * p.integralGain * lag;
        lag = kept * lag + (1 - kept) * p.lagGain * u;
        under.step(u);
        over.step(v);
        acc.step(u);
        ratio.step(u);
        u = newU;
        v = newV;
    }

    std::map<std::string, double> values() const {
        return {{"ilag", lag},         {"iint", integral},  {"istat", p.staticGain * lag},
                {"iunder", under.now}, {"iover", over.now}, {"iacc", acc.now},
                {"iratio", ratio.now}};
    }

private:
    // At rest, after an input that was held for long.
    struct Second {
        Second(Recursion const& r, double u) : r(r), before(u) {}
        void step(double u) {
            double const next = r.a1 * now + r.a2 * older + r.b1 * u + r.b2 * before;
            older = now;
            now = next;
            before = u;
        }
        Recursion r;
        double now = 0.0, older = 0.0, before;
    };

    static Recursion ofDamping(double xi, double w, double gain) {
        return dynamic_test::stepInvariantOfDamping(xi, w, gain, Ts);
    }

    Parameters p;
    Second under, over, acc, ratio;
    double u, v, lag = 0.0, integral = 1.0;
};

// Sines and cosines of intervals are searched to about this much; the rest is rounding.
constexpr double tolerance = 1e-6;

class RigTruth : public testing::TestWithParam<unsigned> {
protected:
    void add(Parameters const& p) { rigs.emplace_back(p, u, v); }

    void step() {
        u = signal.next();
        v = signal.next();
        for (TrueRig& rig : rigs)
            rig.step(u, v);
        run.simulate({u, v}, {0, 0, 0, 0});
    }

    Signal signal{GetParam()};
    double u = 1.25, v = -0.75;
    RigRun run{{u, v}, {0, 0, 0, 0}};
    std::vector<TrueRig> rigs;
};

TEST_P(RigTruth, EveryTrueRigStaysWithinTheBounds) {
    for (int i = 0; i < 200; ++i)
        add(choose([this](double lo, double hi) { return signal.between(lo, hi); }));
    for (int k = 1; k <= 30; ++k) {
        step();
        for (std::size_t i = 0; i < rigs.size(); ++i)
            for (auto const& [name, value] : rigs[i].values()) {
                Num const bounds = run.value(name);
                double const slack = tolerance * (1 + std::fabs(value));
                EXPECT_LE(bounds.lo, value + slack) << name << " of rig " << i << " at step " << k;
                EXPECT_GE(bounds.hi, value - slack) << name << " of rig " << i << " at step " << k;
            }
    }
}

// Where the value of one step is monotone in each parameter, some corner of the parameters reaches
// each bound: no form has more than four, and those of one form stand beside each other. The
// coefficients of iunder, iover and iratio hang together, so theirs are wider.
TEST_P(RigTruth, TheBoundsOfAStepAreReached) {
    for (int corner = 0; corner < 16; ++corner) {
        int entry = 0;
        add(choose([&](double lo, double hi) { return corner >> entry++ % 4 & 1 ? hi : lo; }));
    }
    step();
    for (char const* name : {"ilag", "iacc", "istat", "iunder", "iover", "iratio"}) {
        double lo = HUGE_VAL, hi = -HUGE_VAL;
        for (TrueRig const& rig : rigs) {
            double const value = rig.values().at(name);
            lo = std::min(lo, value);
            hi = std::max(hi, value);
        }
        Num const bounds = run.value(name);
        bool const independent = name[1] == 'l' || name[1] == 'a' || name[1] == 's';
        if (independent) {
            EXPECT_NEAR(bounds.lo, lo, 1e-12) << name;
            EXPECT_NEAR(bounds.hi, hi, 1e-12) << name;
        } else {
            EXPECT_LE(bounds.lo, lo + tolerance) << name;
            EXPECT_GE(bounds.hi, hi - tolerance) << name;
        }
    }
}

// gratio is searched: number poles and an interval gain, so that one step is linear in each of the
// values that are searched, and its true extremes are at their corners. The search stops when its
// costs are 1e-6 apart. What it finds replaces the bounds, and may narrow the state but never widen
// it.
TEST_P(RigTruth, ASearchedStepHasNearlyTheTrueBounds) {
    Recursion const r = stepInvariant(1, 0.5, 2, 1, 1, Ts);
    double lastU = u;
    for (int k = 1; k <= 30; ++k) {
        double const u1 = u, u2 = lastU;
        Num const y1 = run.value("gratio"), y2 = run.before("gratio");
        lastU = u;
        step();
        Corners expected;
        for (double const gain : {1.0, 2.0})
            expected.note(num(gain * (r.b1 * u1 + r.b2 * u2)) + num(r.a1) * y1 + num(r.a2) * y2);
        Num const bounds = run.value("gratio"), y1After = run.before("gratio");
        double const slack = 2e-3 * (1 + std::fabs(expected.hull().lo));
        EXPECT_NEAR(bounds.lo, expected.hull().lo, slack) << k;
        EXPECT_NEAR(bounds.hi, expected.hull().hi, slack) << k;
        EXPECT_LE(y1.lo, y1After.lo) << k;
        EXPECT_GE(y1.hi, y1After.hi) << k;
    }
}

INSTANTIATE_TEST_SUITE_P(Seeds, RigTruth, testing::Values(5u, 6u, 7u),
                         [](auto const& info) { return "seed" + std::to_string(info.param); });

}  // namespace
}  // namespace plants_test
