// Texts, and plants built from them.
#include "language/text_fixture.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

#include "language/lower.h"
#include "language/resolve.h"

namespace language_fixture {

std::optional<std::string> TextReader::read(std::string const& path) {
    auto const found = texts.find(path);
    return found == texts.end() ? std::nullopt : std::optional<std::string>(found->second);
}

std::string textOfFile(std::string const& path) {
    std::ifstream file(std::string(TAVRO_SOURCE) + "/" + path, std::ios::binary);
    EXPECT_TRUE(file) << path;
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

std::optional<std::string> SourceTreeReader::read(std::string const& path) {
    return textOfFile(path);
}

std::string told(std::string const& text) {
    TextReader reader({{"p.plant", text}});
    PlantFile const file("p.plant", reader);
    return rendered(file.messages(), file.sources());
}

BuiltPlant::BuiltPlant(std::function<void(Scheduler*)> const& build) {
    scheduler.startBuilding(plant);
    build(&scheduler);
}

std::unique_ptr<BuiltPlant> builtFrom(std::string const& path,
                                      std::vector<std::string> const& settings) {
    SourceTreeReader reader;
    Sources sources;
    Messages messages;
    FlatPlant const flat =
        resolve(readPlantText(path, reader, sources, messages, settings), sources, messages);
    EXPECT_EQ(rendered(messages, sources), "");
    return std::make_unique<BuiltPlant>([&flat](Scheduler* scheduler) { lower(flat, *scheduler); });
}

}  // namespace language_fixture
