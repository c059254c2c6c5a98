// `tavro check FILE...`: what is wrong with plants.
#include <CLI/CLI.hpp>
#include <cstdio>
#include <memory>

#include "language/file_reader.h"
#include "language/language.h"
#include "tavro/commands.h"

namespace {

std::string counted(int count, char const* what) {
    return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

// What is told goes to the error stream, and nothing of a plant without fault.
bool check(std::string const& path, std::vector<std::string> const& settings) {
    FileReader reader;
    PlantFile const file(path, reader, settings);
    std::string text = rendered(file.messages(), file.sources());
    if (!text.empty()) {
        std::string const& name = path;
        text += "\n" + name + ": " + counted(file.messages().countErrors(), "error") + ", " +
                counted(file.messages().countWarnings(), "warning") + "\n";
        std::fputs(text.c_str(), stderr);
    }
    return file.isSound();
}

}  // namespace

void addCheck(CLI::App& program, int& status) {
    auto files = std::make_shared<std::vector<std::string>>();
    CLI::App* command = program.add_subcommand("check", "Tell what is wrong with plants");
    command->add_option("FILE", *files, "Plants to look at")->required();
    auto const settings = addSettings(*command);
    command->callback([files, settings, &status] {
        for (std::string const& file : *files)
            if (!check(file, *settings))
                status = plantIsWrong;
    });
}
