// A lamp with a button: the smallest model with no continuous side. It is for the roads that the
// console takes without a runtime.
#include "model/CommandVar.h"
#include "model/Comprt.h"
#include "model/ModeVarrt.h"
#include "model/exclusiveChoice.h"
#include "model/labels.h"
#include "model/transitionParts.h"
#include "reasoning/Scheduler.h"
#include "run/compiled_model.h"

namespace {

// The button turns the lamp on, and it stays on.
void buildLamp(Plant& plant, Comp* lamp) {
    CommandVar* button = lamp->addStateVar(std::make_unique<CommandVar>(
        "lamp.button", std::set<std::string>{"none", "press"}, "none", lamp));
    lamp->newAtom("lamp_button_none", button, "none");
    Atom* press = lamp->newAtom("lamp_button_press", button, "press");
    ModeVar* mode = lamp->addStateVar(
        std::make_unique<ModeVar>("lamp.mode", std::set<std::string>{"off", "on"}, "off", lamp));
    Atom* off = lamp->newAtom("lamp_mode_off", mode, "off");
    Atom* on = lamp->newAtom("lamp_mode_on", mode, "on");
    lamp->commands = {button};
    lamp->addTransitionToC(
        mkTransition({{press, true}, {off, true}}, "and", on, transNominal, 1.0, false));
    addExclusiveChoice(plant, button);
    addExclusiveChoice(plant, mode);
}

void startinit(Scheduler* scheduler) {
    buildLamp(scheduler->building(), scheduler->addComp(std::make_unique<Comp>("lamp")));
}

}  // namespace

extern CompiledModel const lamp_model{"lamp", startinit};
