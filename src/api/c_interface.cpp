// The C interface: the C++ one with its exceptions turned into codes and a text.
#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <new>
#include <optional>

#include "api/builtin_models.h"
#include "tavro/tavro.h"
#include "tavro/tavro.hpp"

struct tavro_plant {
    tavro::Plant plant;
};

struct tavro_step {
    tavro::Step told;
};

struct tavro_run {
    tavro::Run run;
    tavro_step last{};
};

namespace {

// A fixed buffer, since the text of an allocation that failed must not need another. A longer text
// is cut.
thread_local char lastError[512] = "";

tavro_code fail(tavro_code code, char const* text) {
    std::size_t const length = std::min(std::strlen(text), sizeof lastError - 1);
    std::memcpy(lastError, text, length);
    lastError[length] = '\0';
    return code;
}

// The codes follow the kinds, behind success and the argument.
tavro_code codeOf(tavro::ErrorKind kind) {
    static_assert(TAVRO_INTERNAL - TAVRO_PLANT == static_cast<int>(tavro::ErrorKind::internal) -
                                                      static_cast<int>(tavro::ErrorKind::plant));
    return static_cast<tavro_code>(static_cast<int>(kind) + TAVRO_PLANT);
}

// Does *work*, which throws; nothing passes out of here but a code.
template <typename Work>
tavro_code guarded(Work work) {
    try {
        work();
        return TAVRO_OK;
    } catch (tavro::Error const& error) {
        return fail(codeOf(error.kind()), error.what());
    } catch (std::bad_alloc const&) {
        return fail(TAVRO_MEMORY, "memory ran short");
    } catch (std::exception const& error) {
        return fail(TAVRO_INTERNAL, error.what());
    } catch (...) {
        return fail(TAVRO_INTERNAL, "unknown exception");
    }
}

tavro_code missing(char const* what) {
    char text[64] = "no ";
    std::strncat(text, what, sizeof text - std::strlen(text) - 1);
    return fail(TAVRO_ARGUMENT, text);
}

std::vector<double> valuesOf(double const* values, std::size_t count) {
    if (values == nullptr && count > 0)
        throw tavro::Error(tavro::ErrorKind::data, "a count of values without values");
    return count > 0 ? std::vector<double>(values, values + count) : std::vector<double>();
}

std::vector<std::string> textsOf(char const* const* texts, std::size_t count) {
    std::vector<std::string> copies;
    for (std::size_t i = 0; i < count; ++i) {
        if (texts == nullptr || texts[i] == nullptr)
            throw tavro::Error(tavro::ErrorKind::data, "a count of texts without a text");
        copies.emplace_back(texts[i]);
    }
    return copies;
}

tavro::Line lineOf(tavro_line const* line) {
    if (line == nullptr)
        return {};
    return {valuesOf(line->inputs, line->input_count),
            valuesOf(line->measures, line->measure_count),
            textsOf(line->commands, line->command_count),
            textsOf(line->observations, line->observation_count)};
}

using LineSink = void (*)(void*, char const*);

std::function<void(std::string_view)> sinkOf(LineSink sink, void* context) {
    if (sink == nullptr)
        return nullptr;
    return [sink, context](std::string_view line) { sink(context, std::string(line).c_str()); };
}

// What is not told is 0, also for a plant without measures.
std::map<std::string, double> noiseOf(tavro_options const& given) {
    std::map<std::string, double> noise;
    if (given.noise != 0.0)
        noise[""] = given.noise;
    for (std::size_t i = 0; i < given.noise_count; ++i) {
        if (given.noise_measures == nullptr || given.noise_measures[i] == nullptr ||
            given.noise_bounds == nullptr)
            throw tavro::Error(tavro::ErrorKind::options, "a count of noises without a noise");
        noise[given.noise_measures[i]] = given.noise_bounds[i];
    }
    return noise;
}

tavro::Options optionsOf(tavro_options const* given) {
    tavro::Options options;
    if (given == nullptr)
        return options;
    // A program that knows more or fewer options than the library was built for another version.
    if (given->size != sizeof(tavro_options))
        throw tavro::Error(tavro::ErrorKind::options, "the options were not initialised");
    options.mode = given->simulate != 0 ? tavro::Mode::simulate : tavro::Mode::detect;
    options.isolation = given->isolation;
    options.threshold = given->threshold;
    options.globalConstraints = given->global_constraints != 0;
    options.precision = given->precision;
    options.accumulation = given->accumulation;
    options.merge = given->merge != 0;
    if (given->rules != nullptr)
        options.rules = given->rules;
    options.candidates = given->candidates;
    options.noise = noiseOf(*given);
    options.multi = given->multi != 0;
    options.reset = given->reset;
    options.watchMemory = given->watch_memory != 0;
    options.trace = sinkOf(given->trace, given->context);
    options.messages = sinkOf(given->messages, given->context);
    if (given->give_up != nullptr)
        options.giveUp = [ask = given->give_up, context = given->context] {
            return ask(context) != 0;
        };
    return options;
}

std::vector<std::string> const* namesOf(tavro_plant const* plant, tavro_names names) {
    if (plant == nullptr)
        return nullptr;
    switch (names) {
        case TAVRO_INPUTS:
            return &plant->plant.inputs();
        case TAVRO_MEASURES:
            return &plant->plant.measures();
        case TAVRO_VARIABLES:
            return &plant->plant.variables();
        case TAVRO_COMPONENTS:
            return &plant->plant.components();
        case TAVRO_MODES:
            return &plant->plant.modes();
        case TAVRO_COMMANDS:
            return &plant->plant.commands();
        case TAVRO_OBSERVATIONS:
            return &plant->plant.observations();
    }
    return nullptr;
}

// The entry of a list of a step, or null.
template <typename Entry>
Entry const* entryOf(tavro_step const* step, std::vector<Entry> tavro::Step::*list,
                     std::size_t place) {
    if (step == nullptr || place >= (step->told.*list).size())
        return nullptr;
    return &(step->told.*list)[place];
}

template <typename Entry>
std::size_t countOf(tavro_step const* step, std::vector<Entry> tavro::Step::*list) {
    return step != nullptr ? (step->told.*list).size() : 0;
}

// Fills *out* from an entry; an argument error when either is missing.
template <typename Out, typename Entry, typename Fill>
tavro_code fill(Out* out, Entry const* entry, Fill make) {
    if (out == nullptr || entry == nullptr)
        return missing(out == nullptr ? "place for the answer" : "such entry in the step");
    *out = make(*entry);
    return TAVRO_OK;
}

template <typename Take>
tavro_code go(tavro_run* run, tavro_line const* line, tavro_step const** step, Take take) {
    if (step != nullptr)
        *step = nullptr;
    if (run == nullptr)
        return missing("run");
    tavro_code const code = guarded([&] { run->last.told = take(run->run, lineOf(line)); });
    if (code == TAVRO_OK && step != nullptr)
        *step = &run->last;
    return code;
}

}  // namespace

char const* tavro_version(void) {
    return tavro::version();
}

char const* tavro_last_error(void) {
    return lastError;
}

// ---- Plants ----

size_t tavro_builtin_count(void) {
    return builtinModels().size();
}

char const* tavro_builtin_name(size_t place) {
    return place < builtinModels().size() ? builtinModels()[place]->model_name : nullptr;
}

tavro_code tavro_plant_builtin(char const* name, tavro_plant** plant) {
    if (plant == nullptr)
        return missing("place for the plant");
    *plant = nullptr;
    if (name == nullptr)
        return missing("name");
    return guarded([&] { *plant = new tavro_plant{tavro::Plant::builtin(name)}; });
}

tavro_code tavro_plant_load(char const* path, tavro_plant** plant) {
    if (plant == nullptr)
        return missing("place for the plant");
    *plant = nullptr;
    if (path == nullptr)
        return missing("path");
    return guarded([&] { *plant = new tavro_plant{tavro::Plant::load(path)}; });
}

void tavro_plant_free(tavro_plant* plant) {
    delete plant;
}

char const* tavro_plant_own_name(tavro_plant const* plant) {
    return plant != nullptr ? plant->plant.name().c_str() : nullptr;
}

int tavro_plant_is_discrete(tavro_plant const* plant) {
    return plant != nullptr && plant->plant.discrete() ? 1 : 0;
}

double tavro_plant_period(tavro_plant const* plant) {
    return plant != nullptr ? plant->plant.period() : std::numeric_limits<double>::quiet_NaN();
}

size_t tavro_plant_count(tavro_plant const* plant, tavro_names names) {
    auto const* list = namesOf(plant, names);
    return list != nullptr ? list->size() : 0;
}

char const* tavro_plant_name(tavro_plant const* plant, tavro_names names, size_t place) {
    auto const* list = namesOf(plant, names);
    return list != nullptr && place < list->size() ? (*list)[place].c_str() : nullptr;
}

// ---- Runs ----

void tavro_options_init_sized(tavro_options* options, size_t size) {
    if (options == nullptr || size != sizeof(tavro_options))
        return;
    tavro::Options const defaults;
    *options = {};
    options->size = size;
    options->isolation = defaults.isolation;
    options->threshold = defaults.threshold;
    options->global_constraints = defaults.globalConstraints;
    options->precision = defaults.precision;
    options->accumulation = defaults.accumulation;
    options->merge = defaults.merge;
    options->candidates = defaults.candidates;
    options->multi = defaults.multi;
}

tavro_code tavro_run_new(tavro_plant const* plant, tavro_options const* options, tavro_run** run) {
    if (run == nullptr)
        return missing("place for the run");
    *run = nullptr;
    if (plant == nullptr)
        return missing("plant");
    return guarded([&] { *run = new tavro_run{tavro::Run(plant->plant, optionsOf(options))}; });
}

void tavro_run_free(tavro_run* run) {
    delete run;
}

double tavro_run_time(tavro_run const* run) {
    return run != nullptr ? run->run.time() : std::numeric_limits<double>::quiet_NaN();
}

tavro_code tavro_run_start(tavro_run* run, tavro_line const* line, tavro_step const** step) {
    return go(run, line, step, [](tavro::Run& r, tavro::Line const& l) { return r.start(l); });
}

tavro_code tavro_run_step(tavro_run* run, tavro_line const* line, tavro_step const** step) {
    return go(run, line, step, [](tavro::Run& r, tavro::Line const& l) { return r.step(l); });
}

// ---- Steps ----

double tavro_step_time(tavro_step const* step) {
    return step != nullptr ? step->told.time : std::numeric_limits<double>::quiet_NaN();
}

int tavro_step_diagnosed(tavro_step const* step) {
    return step != nullptr && step->told.diagnosed ? 1 : 0;
}

char const* tavro_step_diagnosis(tavro_step const* step) {
    return step != nullptr ? step->told.diagnosis.c_str() : nullptr;
}

size_t tavro_step_candidates(tavro_step const* step) {
    return countOf(step, &tavro::Step::candidates);
}

tavro_code tavro_step_candidate(tavro_step const* step, size_t place, tavro_candidate* candidate) {
    return fill(candidate, entryOf(step, &tavro::Step::candidates, place), [](auto const& c) {
        return tavro_candidate{c.rank, c.probability, c.agrees ? 1 : 0};
    });
}

char const* tavro_step_mode(tavro_step const* step, size_t candidate, char const* variable) {
    tavro::Candidate const* entry = entryOf(step, &tavro::Step::candidates, candidate);
    if (entry == nullptr || variable == nullptr)
        return nullptr;
    for (auto const& [name, mode] : entry->modes)
        if (name == variable)
            return mode.c_str();
    return nullptr;
}

tavro_code tavro_step_bounds(tavro_step const* step, size_t candidate, char const* variable,
                             double* lower, double* upper) {
    if (step == nullptr || variable == nullptr || lower == nullptr || upper == nullptr)
        return missing("step, variable or place for a bound");
    if (tavro::Candidate const* entry = entryOf(step, &tavro::Step::candidates, candidate))
        for (auto const& [name, bounds] : entry->bounds)
            if (name == variable) {
                *lower = bounds.lower;
                *upper = bounds.upper;
                return TAVRO_OK;
            }
    return fail(TAVRO_DATA, "the step has no such candidate or variable");
}

size_t tavro_step_alarms(tavro_step const* step) {
    return countOf(step, &tavro::Step::alarms);
}

tavro_code tavro_step_alarm(tavro_step const* step, size_t place, tavro_alarm* alarm) {
    return fill(alarm, entryOf(step, &tavro::Step::alarms, place), [](auto const& a) {
        return tavro_alarm{a.measure.c_str(), a.side == tavro::Side::high ? 1 : 0};
    });
}

size_t tavro_step_suspect_sets(tavro_step const* step) {
    return countOf(step, &tavro::Step::suspects);
}

size_t tavro_step_suspects(tavro_step const* step, size_t set) {
    tavro::SuspectSet const* entry = entryOf(step, &tavro::Step::suspects, set);
    return entry != nullptr ? entry->size() : 0;
}

tavro_code tavro_step_suspect(tavro_step const* step, size_t set, size_t place,
                              tavro_suspect* suspect) {
    tavro::SuspectSet const* entry = entryOf(step, &tavro::Step::suspects, set);
    bool const present = entry != nullptr && place < entry->size();
    return fill(suspect, present ? &(*entry)[place] : nullptr, [](auto const& s) {
        return tavro_suspect{s.influence.c_str(), s.delay, s.condition.c_str()};
    });
}

size_t tavro_step_explanations(tavro_step const* step) {
    return countOf(step, &tavro::Step::explanations);
}

tavro_code tavro_step_explanation(tavro_step const* step, size_t place,
                                  tavro_explanation* explanation) {
    return fill(explanation, entryOf(step, &tavro::Step::explanations, place), [](auto const& e) {
        return tavro_explanation{e.candidate,
                                 e.component.c_str(),
                                 e.from.c_str(),
                                 e.to.c_str(),
                                 e.step,
                                 e.time,
                                 e.earliest,
                                 e.latest,
                                 e.rank,
                                 e.failure ? 1 : 0,
                                 e.unknown ? 1 : 0,
                                 e.summary.c_str()};
    });
}
