// Follows the room by the measures of a file, a line per step, and tells when something is wrong,
// what is suspected, and what explains it.
#include <fstream>
#include <iostream>
#include <sstream>
#include <tavro/tavro.hpp>

static void tell(tavro::Step const& step) {
    for (tavro::Alarm const& alarm : step.alarms)
        std::cout << "at " << step.time << " " << alarm.measure << " is too "
                  << (alarm.side == tavro::Side::high ? "high" : "low") << "\n";
    for (tavro::SuspectSet const& set : step.suspects) {
        std::cout << "suspected:";
        for (tavro::Suspect const& suspect : set)
            std::cout << " " << suspect.influence << " while " << suspect.condition;
        std::cout << "\n";
    }
    for (tavro::Explanation const& explanation : step.explanations)
        std::cout << "explained: " << explanation.summary << "\n";
}

int main(int argc, char** argv) {
    std::ifstream file(argc > 1 ? argv[1] : "");
    if (!file) {
        std::cerr << "usage: room MEASURE-FILE\n";
        return 2;
    }
    try {
        tavro::Run run(tavro::Plant::builtin("therm"), {.isolation = 1, .threshold = 3});
        bool started = false;
        tavro::Step last;
        for (std::string line; std::getline(file, line);) {
            double rate = 0.0;
            std::istringstream(line) >> rate;  // what follows the number is for people
            last = started ? run.step({.measures = {rate}}) : run.start({.measures = {rate}});
            started = true;
            tell(last);
        }
        for (tavro::Candidate const& candidate : last.candidates)
            std::cout << "at " << last.time << " the thermostat is "
                      << candidate.modes.at("thermostat.mode") << "\n";
    } catch (tavro::Error const& error) {
        std::cerr << "room: " << error.what() << "\n";
        return 1;
    }
}
