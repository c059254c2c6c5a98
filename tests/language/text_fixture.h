// What the tests of the language share: texts without files, and plants built from either.
#pragma once

#include <algorithm>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "language/language.h"
#include "model/Plant.h"
#include "reasoning/Scheduler.h"
#include "support/host.h"

namespace language_fixture {

using Texts = std::vector<std::string>;

// Texts under their paths.
class TextReader : public SourceReader {
public:
    explicit TextReader(std::map<std::string, std::string> texts) : texts(std::move(texts)) {}
    std::optional<std::string> read(std::string const& path) override;

private:
    std::map<std::string, std::string> texts;
};

// The shipped files and those of the tests, by their path from the top of the sources.
class SourceTreeReader : public SourceReader {
public:
    std::optional<std::string> read(std::string const& path) override;
};

// Everything that is told of a text, as it is shown; the file is called p.plant.
std::string told(std::string const& text);
std::string textOfFile(std::string const& path);

// A plant as it was built and not yet started.
class BuiltPlant {
public:
    explicit BuiltPlant(std::function<void(Scheduler*)> const& build);
    Plant const& get() const { return plant; }

private:
    Host host;
    Plant plant{"plant"};
    Scheduler scheduler{plant, host};
};

// Of a file of the source tree, whatever the check of plants says of it.
std::unique_ptr<BuiltPlant> builtFrom(std::string const& path,
                                      std::vector<std::string> const& settings = {});

// Every record of a plant with all its numbers, a line each.
Texts recordsOf(Plant const& plant);
// What a plant says, whatever its numbers are: in the order of names.
Texts meaningOf(Plant const& plant);

}  // namespace language_fixture
