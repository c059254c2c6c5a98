// The plants of the library.
#include <algorithm>
#include <new>

#include "api/builtin_models.h"
#include "api/plant_data.h"
#include "continuous/records.h"
#include "language/file_reader.h"
#include "language/language.h"
#include "run/build_plant.h"

namespace tavro {

namespace {

std::unique_ptr<::Plant> build(PlantSource const& source) {
    Host silent;
    try {
        return buildPlant(source, silent);
    } catch (PlantRefused const& refused) {
        throw Error(ErrorKind::plant, refused.what());
    } catch (std::bad_alloc const&) {
        throw;
    } catch (std::exception const& why) {
        throw Error(ErrorKind::internal, why.what());
    }
}

}  // namespace

Plant::Plant(std::shared_ptr<PlantData const> data) : data(std::move(data)) {}
Plant::Plant(Plant const&) = default;
Plant& Plant::operator=(Plant const&) = default;
Plant::~Plant() = default;

Plant Plant::builtin(std::string_view name) {
    auto const models = builtinModels();
    auto const found = std::find_if(models.begin(), models.end(), [name](auto const* model) {
        return name == model->model_name;
    });
    if (found == models.end())
        throw Error(ErrorKind::plant, "no plant is named " + std::string(name));
    return Plant(std::make_shared<PlantData const>(build(**found)));
}

Plant Plant::load(std::string const& path, std::vector<std::string> const& settings) {
    FileReader reader;
    PlantFile const file(path, reader, settings);
    if (!file.isSound())
        throw Error(ErrorKind::plant, rendered(file.messages(), file.sources()));
    return Plant(std::make_shared<PlantData const>(build(file.source())));
}

std::vector<std::string> Plant::builtins() {
    std::vector<std::string> names;
    for (CompiledModel const* model : builtinModels())
        names.emplace_back(model->model_name);
    return names;
}

std::string const& Plant::name() const {
    return data->engine->name;
}

bool Plant::discrete() const {
    return data->engine->tavro_rt == nullptr;
}

double Plant::period() const {
    return discrete() ? 1.0 : data->engine->tavro_rt->Ts;
}

std::vector<std::string> const& Plant::inputs() const {
    return data->names.inputs;
}

std::vector<std::string> const& Plant::measures() const {
    return data->names.measures;
}

std::vector<std::string> const& Plant::variables() const {
    return data->names.variables;
}

std::vector<std::string> const& Plant::components() const {
    return data->names.components;
}

std::vector<std::string> const& Plant::modes() const {
    return data->names.modes;
}

std::vector<std::string> const& Plant::commands() const {
    return data->names.commands;
}

std::vector<std::string> const& Plant::observations() const {
    return data->names.observations;
}

std::vector<std::string> Plant::values(std::string const& mode) const {
    auto const found = data->names.values.find(mode);
    return found != data->names.values.end() ? found->second : std::vector<std::string>();
}

std::vector<Influence> Plant::influences() const {
    return data->names.influences;
}

}  // namespace tavro
