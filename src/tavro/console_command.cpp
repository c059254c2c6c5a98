// `tavro console FILE ...`: the console of tavro-exec on a plant of one's own.
#include <CLI/CLI.hpp>
#include <cstdio>
#include <memory>

#include "console/console.h"
#include "console/process.h"
#include "language/file_reader.h"
#include "language/language.h"
#include "tavro/commands.h"

namespace {

struct Request {
    std::string name = "tavro-exec";  // under which the console speaks of itself
    std::shared_ptr<std::vector<std::string>> settings;
};

[[noreturn]] void run(PlantSource const& source, std::string name,
                      std::vector<std::string> const& words) {
    std::vector<std::string> arguments(words.begin() + 1, words.end());
    std::vector<char*> argv{name.data()};
    for (std::string& argument : arguments)
        argv.push_back(argument.data());
    argv.push_back(nullptr);
    runExecutive(source, static_cast<int>(argv.size()) - 1, argv.data());
}

// Warnings are for `tavro check`; a plant with errors is not run.
int runConsoleOn(std::vector<std::string> const& words, Request const& request) {
    if (words.empty()) {
        std::fputs("tavro console: a plant is missing\nRun tavro console --help for more.\n",
                   stderr);
        return usageIsWrong;
    }
    keepStandardStreams();
    FileReader reader;
    PlantFile const file(words.front(), reader, *request.settings);
    if (file.isSound())
        run(file.source(), request.name, words);
    std::fputs(rendered(file.messages(), file.sources()).c_str(), stderr);
    return plantIsWrong;
}

}  // namespace

// What stands behind the plant is the console's, options and all.
void addConsole(CLI::App& program, int& status) {
    CLI::App* command = program.add_subcommand("console", "Run the console on a plant");
    command->prefix_command();
    command->footer(
        "  tavro console [--set NAME=NUMBER]... [--name NAME] FILE [OPTION]... [INPUT-FILE]\n"
        "                [MEASURE-FILE] [DISPLAY-FILE] [SCENARIO-FILE [MODE-FILE]]\n\n"
        "tavro console FILE --help tells what this plant takes.");
    auto request = std::make_shared<Request>();
    request->settings = addSettings(*command);
    command->add_option("--name", request->name,
                        "What the console calls itself; tavro-exec unless told");
    command->callback(
        [command, request, &status] { status = runConsoleOn(command->remaining(), *request); });
}
