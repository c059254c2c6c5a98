// From a text in the program to the engine's plant.
#include "language/text_model.h"

#include <cassert>

#include "language/language.h"

namespace {

// Knows the one text.
class OwnText : public SourceReader {
public:
    explicit OwnText(TextModel const& model) : model(model) {}
    std::optional<std::string> read(std::string const& path) override {
        return path == model.path ? std::optional<std::string>(model.text) : std::nullopt;
    }

private:
    TextModel const& model;
};

}  // namespace

void buildText(TextModel const& model, Scheduler& scheduler,
               std::vector<std::string> const& settings) {
    OwnText reader(model);
    PlantFile const file(model.path, reader, settings);
    assert(file.isSound());
    file.source().build(&scheduler);
}
