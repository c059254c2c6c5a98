// The rig (../sessions/models/rig.cpp) stepped by hand: a line for each variable with its
// recurrence and parameters. In place of the engine's lists, graph and histories there is a past
// for each name.
//
// Past values are counted from the step before: 0 is k-1. All causes are read there, but for the
// static ones, which see this very step.
#pragma once

#include <cmath>
#include <deque>
#include <map>
#include <string>
#include <vector>

#include "recurrence.h"

namespace plants_test {

class RigTwin {
public:
    // The measures are those of lag, over, late and out, here and below.
    RigTwin(double u, double v, std::vector<double> const& measures) {
        for (char const* name : measured)
            sensors[name] = {};
        takeMeasures(measures);
        for (char const* name : {"ilag", "iunder", "iover", "iacc", "iratio", "still", "istat",
                                 "held", "under", "crit", "acc", "swing"})
            fill(name, num(0));
        for (char const* name : measured)
            fill(name, num(sensors[name].now));
        for (auto& entry : sensors)
            entry.second.past.assign(depth, {entry.second.now, true});
        fill("iint", num(1));
        // The inputs have no value yet when the first values are computed: only what lag gives
        // counts. Its history is filled with its measure by then.
        fill("drift", value("lag") * num(0.5 * 0.5));
        // No initial value: a1 times a state that is not there stays a1. The history starts at 0.
        Coefs const c = ratioCoefs();
        fill("ratio", value("lag") * c.b1 + value("lag") * c.b2 + (c.a1 + c.a2 * num(0)));
        fill("u", num(u));
        fill("v", num(v));
    }

    // The value at the end of the newest step.
    Num value(std::string const& name) const { return past.at(name).front(); }

    bool isTrusted(std::string const& name) const {
        Sensor const& sensor = sensors.at(name);
        return sensor.low == 0 && sensor.high == 0;
    }

    // Steps outside the prediction, below and above it.
    int low(std::string const& name) const { return sensors.at(name).low; }
    int high(std::string const& name) const { return sensors.at(name).high; }

    // One step of `simul`: no measure is trusted.
    void simulate(double u, double v, std::vector<double> const& measures) {
        openAndStep(u, v, measures);
        check(0);  // a simulation has no threshold
    }

    // The same with a change of mode at its end: the brake takes hold, or lets go.
    void simulateAndJump(double u, double v, std::vector<double> const& measures, bool nowFree) {
        openAndStep(u, v, measures);
        free = nowFree;
        jump();
        check(0);
    }

    // One step of `detect`, with that threshold.
    void detect(double u, double v, std::vector<double> const& measures, int threshold) {
        step(u, v, measures);
        check(threshold);
    }

    static constexpr double Ts = 0.5;
    static constexpr char const* measured[] = {"lag", "over", "late", "out"};

private:
    static constexpr int depth = 8;

    // A measure of a past step, and whether it was trusted when it was the newest.
    struct PastMeasure {
        double value;
        bool trusted;
    };
    struct Sensor {
        double now = 0.0;
        int low = 0, high = 0;  // steps outside the prediction
        std::deque<PastMeasure> past;
    };

    // ---- Parameters ----

    static Num lagA1() { return firstOrderA1(num(3), Ts); }
    static Num lateA1() { return firstOrderA1(num(1.5), Ts); }
    static Num ilagA1() { return firstOrderA1(range_(3, 6), Ts); }
    static Coefs underCoefs() { return underdamped(num(0.25), num(2), num(3), Ts); }
    static Coefs overCoefs(double gain) { return overdamped(num(2), num(1), num(gain), Ts); }
    static Coefs ratioCoefs() {
        return rational(num(1), num(0.5), num(2), num(1), num(1), num(1.5), Ts);
    }
    static Coefs swingCoefs() {
        return underdamped(num(0), num(4.0 * 3.14159265358979323846 / 3.0), num(2), Ts);
    }
    static Coefs iunderCoefs() {
        return underdamped(range_(0.2, 0.3), range_(1.9, 2.1), range_(2.8, 3.2), Ts);
    }
    static Coefs ioverCoefs() {
        return overdamped(range_(1.9, 2.1), range_(0.9, 1.1), range_(1.5, 2), Ts);
    }
    static Coefs iratioCoefs() {
        return rational(range_(0.9, 1.1), num(0.5), range_(1.8, 2.2), range_(0.9, 1.1), num(1),
                        num(1), Ts);
    }
    static Coefs stillCoefs() {
        return rational(num(1), num(0.5), range_(1.8, 2.2), num(1), num(1), num(1), Ts);
    }

    // ---- The past ----

    Num y(std::string const& name, int steps) const {
        return past.at(name).at(static_cast<std::size_t>(steps));
    }
    Two two(std::string const& name) const { return {y(name, 0), y(name, 1)}; }

    void push(std::string const& name, Num x) {
        std::deque<Num>& values = past[name];
        values.push_front(x);
        values.resize(depth);
    }
    void fill(std::string const& name, Num x) { past[name].assign(depth, x); }

    // What a measured variable was, by the sensor where it is trusted. In a step's first half the
    // newest measure is that of k-1, and in its second half that of k.
    Two seen(std::string const& name) const {
        if (!isTrusted(name))
            return two(name);
        Sensor const& sensor = sensors.at(name);
        return {num(sensor.now), num(sensor.past.front().value)};
    }

    // ---- One step ----

    void step(double u, double v, std::vector<double> const& measures) {
        std::map<std::string, Num> next;
        firstHalf(next);
        takeMeasures(measures);
        next["u"] = num(u);
        next["v"] = num(v);
        secondHalf(next);
        for (auto const& [name, x] : next)
            push(name, x);
    }

    // What is computed before this step's inputs and measures are known.
    void firstHalf(std::map<std::string, Num>& next) const {
        next["lag"] = firstOrder(lagA1(), lagSum(0), seen("lag").newest);
        next["held"] = firstOrder(num(std::exp(-1.5)), y("u", 2) * num(3), y("held", 0));
        Num const lateU = unite(unite(y("u", 3), y("u", 2)), y("u", 1));
        next["drift"] = delayedLag() * num(0.25) + lateU * num(0.125) + y("drift", 0);
        next["under"] = secondOrder(
            underCoefs(), free ? contribution(underCoefs(), two("u")) : num(0), two("under"));
        next["crit"] = numbers(underdamped(num(1), num(1.5), num(2), Ts), two("v"), two("crit"));
        next["over"] = secondOrder(overCoefs(-1),
                                   contribution(overCoefs(2), two("u")) +
                                       y("v", 1) * overCoefs(-1).b1 + y("v", 2) * overCoefs(-1).b2,
                                   seen("over"));
        next["acc"] = numbers(doubleIntegrator(num(0.5), Ts), two("u"), two("acc"));
        next["ratio"] = numbers(ratioCoefs(), seen("lag"), two("ratio"));
        next["swing"] = numbers(swingCoefs(), two("u"), two("swing"));
        next["ilag"] =
            firstOrder(ilagA1(), free ? y("u", 0) * range_(1.5, 2.5) : num(0), y("ilag", 0));
        next["iint"] = y("ilag", 0) * (num(Ts) * range_(0.9, 1.1)) + y("iint", 0);
        next["iunder"] = secondOrderCorners(iunderCoefs(), two("u"), two("iunder"));
        next["iover"] = secondOrderCorners(ioverCoefs(), two("v"), two("iover"));
        next["iacc"] =
            secondOrderCorners(doubleIntegrator(range_(0.4, 0.6), Ts), two("u"), two("iacc"));
        next["iratio"] = secondOrderCorners(iratioCoefs(), two("u"), two("iratio"));
        // An interval d0 alone leaves a2 a number beside an interval a1: there is no such
        // recurrence.
        next["still"] = num(0);
    }

    // late stands in the list of the second half, and so takes the measure of this step for what it
    // was one step before.
    void secondHalf(std::map<std::string, Num>& next) const {
        next["late"] = firstOrder(lateA1(), y("v", 0) * num(4), seen("late").newest);
        next["istat"] = next["ilag"] * range_(0.9, 1.1);
        Num const over = isTrusted("over") ? num(sensors.at("over").now) : next["over"];
        next["out"] = outOf(over, y("acc", 0), next["u"], next["v"]);
    }

    void openAndStep(double u, double v, std::vector<double> const& measures) {
        for (auto& entry : sensors)
            entry.second.low = 1;
        step(u, v, measures);
    }

    // Every variable is computed anew from what its causes hold now, in the order of the lists.
    void jump() {
        fill("lag", firstOrderStart(lagA1(), lagSum(0), y("lag", 0)));
        fill("held", firstOrderStart(num(std::exp(-1.5)), y("u", 0) * num(3), y("held", 0)));
        fill("drift", y("lag", 0) * num(0.25) + y("u", 0) * num(0.125) + y("drift", 0));
        fill("under",
             secondOrderStart(underCoefs(), free ? contribution(underCoefs(), two("u")) : num(0),
                              two("under")));
        startSecondOrder("crit", underdamped(num(1), num(1.5), num(2), Ts), "v");
        fill("over",
             secondOrderStart(overCoefs(-1),
                              contribution(overCoefs(2), two("u")) + y("v", 0) * overCoefs(-1).b1 +
                                  y("v", 1) * overCoefs(-1).b2,
                              two("over")));
        startSecondOrder("acc", doubleIntegrator(num(0.5), Ts), "u");
        startSecondOrder("ratio", ratioCoefs(), "lag");
        startSecondOrder("swing", swingCoefs(), "u");
        fill("ilag",
             firstOrderStart(ilagA1(), free ? y("u", 0) * range_(1.5, 2.5) : num(0), y("ilag", 0)));
        fill("iint", y("ilag", 0) * (num(Ts) * range_(0.9, 1.1)) + y("iint", 0));
        startSecondOrder("iunder", iunderCoefs(), "u");
        startSecondOrder("iover", ioverCoefs(), "v");
        startSecondOrder("iacc", doubleIntegrator(range_(0.4, 0.6), Ts), "u");
        startSecondOrder("iratio", iratioCoefs(), "u");
        startSecondOrder("still", stillCoefs(), "u");
        fill("late", firstOrderStart(lateA1(), y("v", 0) * num(4), y("late", 0)));
        fill("istat", y("ilag", 0) * range_(0.9, 1.1));
        fill("out", outOf(y("over", 0), y("acc", 0), y("u", 0), y("v", 0)));
    }

    Num lagSum(int steps) const {
        Num const fromU = free ? y("u", steps) * num(2) : num(0);
        return fromU + y("v", steps) * num(-0.5);
    }

    // lag two steps before: its measure, unless that was in doubt when it came.
    Num delayedLag() const {
        PastMeasure const& measure = sensors.at("lag").past.front();
        return measure.trusted ? num(measure.value) : y("lag", 1);
    }

    Num outOf(Num over, Num acc, Num u, Num v) const {
        return over * num(0.5) + acc + (free ? u * num(0.25) : v * num(4));
    }

    static Num numbers(Coefs const& c, Two u, Two state) {
        return secondOrder(c, contribution(c, u), state);
    }

    void startSecondOrder(std::string const& name, Coefs const& c, std::string const& cause) {
        fill(name, secondOrderStart(c, y(cause, 0) * c.b1 + y(cause, 1) * c.b2, two(name)));
    }

    // ---- Measures ----

    void takeMeasures(std::vector<double> const& measures) {
        for (std::size_t i = 0; i < measures.size(); ++i) {
            Sensor& sensor = sensors[measured[i]];
            sensor.past.push_front({sensor.now, sensor.low == 0 && sensor.high == 0});
            sensor.past.resize(depth);
            sensor.now = measures[i];
        }
    }

    // All predictions of measured variables are numbers here: a measure agrees within a hundredth
    // of both values together.
    void check(int threshold) {
        for (char const* name : measured) {
            Sensor& sensor = sensors[name];
            double const p = value(name).lo, m = sensor.now;
            if ((m == 0 && p == 0) || std::fabs(m - p) / (std::fabs(m) + std::fabs(p)) < 0.01)
                sensor.low = sensor.high = 0;
            else
                count(m > p ? sensor.high : sensor.low, threshold);
        }
    }

    static void count(int& steps, int threshold) {
        steps = steps >= threshold - 1 ? threshold : steps + 1;
    }

    std::map<std::string, std::deque<Num>> past;
    std::map<std::string, Sensor> sensors;
    bool free = true;
};

}  // namespace plants_test
