// The true values of the variables of a plant over a run, and the recursions that give the next
// ones.
//
// All is plain numbers. Each number that the plant gives as an interval is drawn within it: first
// values and the parameters of dynamic links once, gains of the others and delays once or anew at
// each step, as Uncertainty says. So each value lies within the bounds that a run of the plant must
// hold. The recursions are written anew here, and read no result of the engine; taken from it are
// the coefficients of a sampled dynamic link, and the relations and expressions of conditions,
// constraints and jumps, which are evaluated on points.
//
// Invariants: every course has an entry for each step from 0 to the current one; a slot is a
// variable's place in the plant's list.
#pragma once

#include <memory>
#include <vector>

#include "continuous/engine.h"
#include "continuous/records.h"
#include "model/Transitionrt.h"
#include "support/dice.h"
#include "truth/setting.h"

namespace truth {

class Course {
public:
    // The plant outlives the course.
    Course(s_runtime const& plant, Setting const& setting);
    Course(Course const&) = delete;
    Course& operator=(Course const&) = delete;

    // Step 0, from the first values and the inputs, one for each of the plant.
    void start(std::vector<double> const& inputs);
    // Step 0 again, with the conditions as they are now: what has a first value of its own keeps
    // it.
    void restart();
    // The next step.
    void step(std::vector<double> const& inputs);
    // What the transition does to the variables at once, after the current step.
    void jump(Transition const& transition);

    // A condition of the plant, on the values of the current step.
    bool holds(s_Condition const& condition);
    // Sets the conditions that are the truth of *atom*.
    void tell(Atom const& atom, bool isTrue);

    int now() const { return time; }
    double value(s_Variable const& variable) const { return at(variable.slot, time); }
    // What the sensors show of the current step, in the order of the plant's measures.
    std::vector<double> measures();

private:
    double at(int slot, int when) const;
    double& current(int slot);
    double drawn(s_Objet const& value, Dice& dice);
    s_Objet pointIn(s_Objet const& value);
    void settleParameters();
    void drawFirstValues();
    void define(s_Variable* variable, double value);
    void defineTheRest();
    void noteStart();
    double gainOf(s_Influence const& influence);
    int delayOf(s_Influence const& influence);
    double causeOf(s_Influence const& influence, int older);
    bool acts(s_Influence const& influence);
    double next(s_Variable const& variable);
    double nextStatic(s_CGraph const& graph);
    double nextIntegral(s_CGraph const& graph, int slot);
    double nextFirstOrder(s_CGraph const& graph, int slot);
    double nextSecondOrder(s_CGraph const& graph, int slot);
    void update(s_Variable const& variable);
    bool isGivenBy(s_Expr const& constraint) const;
    void solveConstraints();
    void showValues();

    s_runtime const& plant;
    Setting const setting;
    Host host;
    s_engine engine;
    std::unique_ptr<s_runtime> rt;  // a copy: evaluates conditions and expressions on points
    Dice gains, firsts, noises;
    std::vector<std::vector<double>> courses;  // by slot
    std::vector<s_Objet> wide;                 // by influence, the coefficient as the plant has it
    std::vector<double> shares;                // by influence, where in its interval a gain lies
    std::vector<s_Expr const*> constraints;    // of rt, in the order in which they are worked out
    int time = 0;
};

}  // namespace truth
