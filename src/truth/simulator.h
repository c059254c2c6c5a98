// A true run of a plant, step by step: the continuous side, then the discrete one.
//
// At a step the variables take their values from those of the step before, under the modes that it
// left; then conditions and commands are looked at, and moves are taken, which act from the next
// step on. What a sample shows of the variables is what they are before such a move.
#pragma once

#include <memory>
#include <vector>

#include "model/Plant.h"
#include "truth/course.h"
#include "truth/modes.h"

namespace truth {

class Simulator {
public:
    // The plant outlives the simulator.
    Simulator(Plant const& plant, Setting const& setting);

    // Step 0, and each next one. *inputs* has one number for each input of the plant.
    void start(std::vector<double> const& inputs);
    void step(std::vector<double> const& inputs);

    int now() const { return time; }
    // What the sensors show, with noise; in the order of the plant's measures. A discrete plant has
    // none.
    std::vector<double> const& measures() const { return shown; }
    // The true values, by the place of a variable in the plant's list.
    std::vector<double> const& values() const { return sampled; }
    // After the step.
    Modes const& modes() const { return discrete; }

private:
    bool conditionHolds(int index);
    void tellConditions();
    void sample();
    std::vector<Transition const*> move();
    void jump(std::vector<Transition const*> const& taken);

    Plant const& plant;
    std::unique_ptr<Course> course;  // null in a discrete plant
    Modes discrete;
    std::vector<double> shown, sampled;
    int time = 0;
};

}  // namespace truth
