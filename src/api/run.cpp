// Runs of the library, and its version.
#include "api/plant_data.h"
#include "run/stepwise_run.h"

namespace tavro {

char const* version() {
    return TAVRO_VERSION_TEXT;
}

Run::Run(Plant const& plant, Options options)
    : followed(plant),
      steps(std::make_unique<StepwiseRun>(*plant.data->engine, plant.data->names, options)) {}

Run::Run(Run&&) noexcept = default;
Run::~Run() = default;

// The run that stood here goes before its plant does.
Run& Run::operator=(Run&& other) noexcept {
    steps = std::move(other.steps);
    followed = other.followed;
    return *this;
}

Step Run::start(Line const& line) {
    return steps->start(line);
}

Step Run::step(Line const& line) {
    return steps->step(line);
}

Plant const& Run::plant() const {
    return followed;
}

double Run::time() const {
    return steps->time();
}

}  // namespace tavro
