// Following the includes.
#include "language/text.h"

#include "language/parser.h"

namespace {

class TextLoader {
public:
    TextLoader(SourceReader& reader, Sources& sources, Messages& messages)
        : reader(reader), sources(sources), messages(messages) {}

    // The first of the paths that can be read; the message names the first of all. *place* is where
    // the file is asked for; nowhere for the first one.
    void load(std::vector<std::string> const& paths, TextRange const& place) {
        for (std::string const& path : paths) {
            if (sources.find(path) != TextRange::noFile)
                return;  // read once, however often it is included
            if (std::optional<std::string> content = reader.read(path)) {
                take(path, std::move(*content));
                return;
            }
        }
        messages.error(place, "the file " + paths.front() + " cannot be read",
                       "see that it is there and may be read");
    }

    // Messages show such a text as "--set:1:...".
    void loadSetting(std::string const& setting) {
        int const file = sources.add("--set", "set " + setting + "\n");
        text.files.push_back(std::make_unique<FileTree>(Parser(sources, file, messages).parse()));
        for (Statement const& statement : text.files.back()->body)
            if (std::holds_alternative<SetNode>(statement.node))
                text.settings.push_back(&statement);
            else
                messages.error(statement.range, "this is no setting", "write NAME=NUMBER");
    }

    PlantText text;

private:
    void take(std::string const& path, std::string content) {
        int const file = sources.add(path, std::move(content));
        text.files.push_back(std::make_unique<FileTree>(Parser(sources, file, messages).parse()));
        FileTree const& tree = *text.files.back();
        text.damaged.insert(tree.damaged.begin(), tree.damaged.end());
        for (Statement const& statement : tree.body)
            if (auto const* include = std::get_if<IncludeNode>(&statement.node))
                follow(path, *include);
            else
                text.statements.push_back(&statement);
    }

    void follow(std::string const& path, IncludeNode const& include) {
        if (++depth > deepest)
            messages.error(include.path.range, "files include each other too deeply",
                           std::string("no more than ") + std::to_string(deepest) +
                               " may stand in each other");
        else
            load(pathsOf(path, include.path.text), include.path.range);
        --depth;
    }

    std::vector<std::string> pathsOf(std::string const& includer, std::string const& name) const {
        std::vector<std::string> paths{pathBeside(includer, name)};
        if (std::string shipped = reader.shipped(name); !shipped.empty())
            paths.push_back(std::move(shipped));
        return paths;
    }

    static constexpr int deepest = 100;

    SourceReader& reader;
    Sources& sources;
    Messages& messages;
    int depth = 0;
};

}  // namespace

PlantText readPlantText(std::string const& path, SourceReader& reader, Sources& sources,
                        Messages& messages, std::vector<std::string> const& settings) {
    TextLoader loader(reader, sources, messages);
    loader.load({path}, {});
    if (!loader.text.files.empty())
        for (std::string const& setting : settings)
            loader.loadSetting(setting);
    return std::move(loader.text);
}
