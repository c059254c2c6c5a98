// The one exception by which the engine leaves a run that cannot go on.
//
// Where a state is fatal the engine has told its host why, and throws this: nothing of the run may
// be stepped afterwards, but all of it can be released, and rows and graphs can still be taken from
// what stood before the step. Exhausted memory is std::bad_alloc, as everywhere.
#pragma once

#include <stdexcept>
#include <string>

class RunStopped : public std::runtime_error {
public:
    // Why a run stops. Each has the status with which a console that ends with it must exit.
    enum Reason {
        scenarioEnded,    // a discrete run has no line to begin with
        noCover,          // no condition covers a value
        outsideWindow,    // a fault lies outside the discrete or the continuous window
        eventImpossible,  // an event of the continuous side fits no state
        noDiagnosis,      // nothing explains the misbehaviour
        initialisation,   // the scheduler could not be made ready
        overdue,          // whoever holds the run wanted it to end, and the step took too long
    };

    RunStopped(Reason reason, std::string const& text) : std::runtime_error(text), reason(reason) {}

    int exitStatus() const {
        switch (reason) {
            case scenarioEnded:
            case noCover:
                return 0;
            case noDiagnosis:
                return -1;
            default:
                return 1;
        }
    }

    Reason const reason;
};
