// The files of a session's directory.
#include "fuzz/session_directory.h"

#include <fstream>

#include "fuzz/plants.h"
#include "fuzz/runner.h"

namespace fuzz {

namespace {

namespace fs = std::filesystem;

void write(fs::path const& path, std::string const& text) {
    fs::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary) << text;
}

std::string quoted(std::string const& word) {
    bool const plain = !word.empty() && word.find_first_not_of(
                                            "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ"
                                            "0123456789-_=.,/") == std::string::npos;
    if (plain)
        return word;
    std::string text = "'";
    for (char const c : word)
        text += c == '\'' ? "'\\''" : std::string(1, c);
    return text + "'";
}

std::string argumentLine(SessionCase const& session) {
    std::string line;
    for (std::string const& arg : session.args)
        line += (line.empty() ? "" : " ") + quoted(arg);
    return line + "\n";
}

// Files outside the three directories are brought by a script, as are directories.
void storeFiles(SessionCase const& session, fs::path const& directory) {
    std::string layout;
    for (auto const& [path, text] : session.files) {
        if (path.ends_with('/')) {
            layout += "mkdir -p " + path + "\n";
            continue;
        }
        write(directory / path, text);
        if (path.find('/') == std::string::npos)
            layout += "cp ../session/" + path + " .\n";
    }
    if (!layout.empty())
        write(directory / "layout", layout);
}

void storeExpectation(SessionCase const& session, fs::path const& directory) {
    Outcome const outcome = run(session);
    write(directory / "expected.out", outcome.out);
    write(directory / "expected.err", outcome.err);
    write(directory / "expected.status", std::to_string(outcome.status) + "\n");
    for (auto const& [path, text] : outcome.files)
        if (session.files.count(path) == 0 && path != "bench1.bmk" && path != "itmsbench.bmk")
            write(directory / "expected.files" / path, text);
}

}  // namespace

void storeSession(SessionCase const& session, fs::path const& directory, std::string const& notes) {
    write(directory / "args", argumentLine(session));
    write(directory / "script", session.script);
    std::string const program = plantOf(session.model).program;
    if (program != "tavro-exec")
        write(directory / "program", program + "\n");
    storeFiles(session, directory);
    storeExpectation(session, directory);
    std::string const fault =
        session.fault.kind == Fault::NONE ? "" : "With a fault: " + describe(session.fault) + "\n";
    write(directory / "NOTES", notes + fault +
                                   "What is expected is what it gave when it was found: to be "
                                   "replaced by what is right, with the reason.\n");
}

}  // namespace fuzz
