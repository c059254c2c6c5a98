// Follows two plants side by side, in one program and in step: the room by the measures of a file,
// and the feed line by what is commanded and seen. In the line the pump dies.
#include <fstream>
#include <iostream>
#include <limits>
#include <tavro/tavro.hpp>

static void tell(tavro::Run const& run, tavro::Step const& step) {
    for (tavro::Explanation const& explanation : step.explanations)
        std::cout << run.plant().name() << ", step " << step.time << ": " << explanation.summary
                  << "\n";
}

static tavro::Line commands(std::string const& pump, std::string const& valve1,
                            std::string const& valve2) {
    return {.commands = {"pump.cmd=" + pump, "valve1.cmd=" + valve1, "valve2.cmd=" + valve2}};
}

int main(int argc, char** argv) {
    std::ifstream measures(argc > 1 ? argv[1] : "");
    auto const nextRate = [&measures] {
        double rate = 0.0;
        measures >> rate;
        measures.ignore(std::numeric_limits<std::streamsize>::max(), '\n');
        return rate;
    };
    try {
        tavro::Run room(tavro::Plant::builtin("therm"));
        tavro::Run line(tavro::Plant::builtin("line"));
        room.start({.measures = {nextRate()}});
        line.start();
        std::vector<tavro::Line> const day = {
            commands("start", "none", "none"), commands("none", "open", "none"),
            commands("none", "none", "open"),  {.observations = {"sensor.flow=positive"}},
            commands("none", "none", "none"),  {.observations = {"sensor.flow=zero"}}};
        for (std::size_t step = 0; step < 40 && measures; ++step) {
            tell(room, room.step({.measures = {nextRate()}}));
            if (step < day.size())
                tell(line, line.step(day[step]));
        }
    } catch (tavro::Error const& error) {
        std::cerr << "two_plants: " << error.what() << "\n";
        return 1;
    }
}
