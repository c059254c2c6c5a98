// Runs of the library, and its version.
#include "api/plant_data.h"
#include "run/stepwise_run.h"

namespace tavro {

struct RunData {
    StepwiseRun steps;
};

char const* version() {
    return TAVRO_VERSION_TEXT;
}

Run::Run(Plant const& plant, Options options)
    : followed(plant), data(new RunData{{*plant.data->engine, plant.data->names, options}}) {}

Run::Run(Run&&) noexcept = default;
Run::~Run() = default;

// The run that stood here goes before its plant does.
Run& Run::operator=(Run&& other) noexcept {
    data = std::move(other.data);
    followed = other.followed;
    return *this;
}

Step Run::start(Line const& line) {
    return data->steps.start(line);
}

Step Run::step(Line const& line) {
    return data->steps.step(line);
}

std::vector<HistoryStep> Run::history(std::size_t candidate) const {
    return data->steps.history(candidate);
}

std::string Run::graph(std::size_t candidate, std::string const& name) const {
    return data->steps.graph(candidate, name);
}

Plant const& Run::plant() const {
    return followed;
}

double Run::time() const {
    return data->steps.time();
}

}  // namespace tavro
