// A lamp with a button: the smallest model with no continuous side. It is for the roads that the
// console takes without a runtime.
#include "hybrid/tavro-runt.h"
#include "model/CommandVar.h"
#include "model/Comprt.h"
#include "model/ModeVarrt.h"
#include "model/exclusiveChoice.h"
#include "model/labels.h"
#include "model/transitionParts.h"
#include "reasoning/Scheduler.h"
#include "reasoning/compiled_model.h"

std::string model_name = "lamp";

namespace {

// The button turns the lamp on, and it stays on.
void buildLamp(Comp* lamp) {
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
    addExclusiveChoice(button);
    addExclusiveChoice(mode);
}

}  // namespace

void startinit(Scheduler* scheduler) {
    buildLamp(scheduler->addComp(std::make_unique<Comp>("lamp")));
    tavro_rt = nullptr;
}
