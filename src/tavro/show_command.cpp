// `tavro show FILE`: a plant in words, and in pictures.
#include <CLI/CLI.hpp>
#include <cstdio>
#include <filesystem>
#include <memory>

#include "language/describe.h"
#include "language/file_reader.h"
#include "language/language.h"
#include "tavro/commands.h"

namespace {

namespace fs = std::filesystem;

// For the shell.
std::string quoted(std::string const& text) {
    std::string result = "'";
    for (char const c : text)
        result += c == '\'' ? "'\\''" : std::string(1, c);
    return result.append("'");
}

bool draw(Picture const& picture, fs::path const& directory) {
    std::string const path = (directory / (picture.name + ".svg")).string();
    std::string const command = "dot -Tsvg -o " + quoted(path);
    std::FILE* pipe = popen(command.c_str(), "w");
    if (pipe == nullptr)
        return false;
    std::fputs(picture.dot.c_str(), pipe);
    if (pclose(pipe) != 0)
        return false;
    std::printf("%s\n", path.c_str());
    return true;
}

int drawAll(FlatPlant const& plant, std::string const& directory) {
    std::error_code error;
    fs::create_directories(directory, error);
    for (Picture const& picture : picturesOf(plant))
        if (error || !draw(picture, directory)) {
            std::fprintf(stderr,
                         "tavro show: can't draw into %s: it takes the program dot of "
                         "graphviz, and a directory to write to\n",
                         directory.c_str());
            return outputIsLost;
        }
    return succeeded;
}

int show(std::string const& path, std::string const& pictures,
         std::vector<std::string> const& settings) {
    FileReader reader;
    PlantFile const file(path, reader, settings);
    if (!file.isSound()) {
        std::fputs(rendered(file.messages(), file.sources()).c_str(), stderr);
        return plantIsWrong;
    }
    if (!pictures.empty())
        return drawAll(file.flat(), pictures);
    std::fputs(described(file.flat()).c_str(), stdout);
    return std::fflush(stdout) == 0 ? succeeded : outputIsLost;
}

}  // namespace

void addShow(CLI::App& program, int& status) {
    auto file = std::make_shared<std::string>();
    auto pictures = std::make_shared<std::string>();
    CLI::App* command = program.add_subcommand("show", "Show a plant in words or in pictures");
    command->add_option("FILE", *file, "The plant")->required();
    command->add_option("--svg", *pictures,
                        "A directory to draw into: causal.svg, and the modes of each component");
    auto const settings = addSettings(*command);
    command->callback(
        [file, pictures, settings, &status] { status = show(*file, *pictures, *settings); });
}
