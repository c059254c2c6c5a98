// The program `tavro`: what plants as text are for.
#include <CLI/CLI.hpp>

#include "tavro/commands.h"

std::shared_ptr<std::vector<std::string>> addSettings(CLI::App& command) {
    auto settings = std::make_shared<std::vector<std::string>>();
    command
        .add_option(
            "--set", *settings,
            "NAME=NUMBER: what a constant of the plant is worth in place of what is written")
        ->allow_extra_args(false);
    return settings;
}

int main(int argc, char** argv) {
    CLI::App program(
        "Follows physical systems that are described as text: checks such plants and "
        "runs them.",
        "tavro");
    program.set_version_flag("--version", "tavro " TAVRO_VERSION_TEXT);
    program.require_subcommand(1);
    int status = succeeded;
    addCheck(program, status);
    addShow(program, status);
    addRun(program, status);
    addConsole(program, status);
    addSimulate(program, status);
    try {
        program.parse(argc, argv);
    } catch (CLI::ParseError const& error) {
        // Of a question that was answered 0, else that of a wrong command line.
        return program.exit(error) == 0 ? succeeded : usageIsWrong;
    }
    return status;
}
