// Setting a second session beside the first.
#include "fuzz/oracles.h"

#include <algorithm>

#include "fuzz/plants.h"
#include "fuzz/runner.h"

namespace fuzz {

namespace {

// Replaces every *from*.
void replaceAll(std::string& text, std::string const& from, std::string const& to) {
    for (std::size_t at = text.find(from); at != std::string::npos;
         at = text.find(from, at + to.size()))
        text.replace(at, from.size(), to);
}

Findings compare(std::string const& kind, Outcome const& expected, Outcome const& found) {
    // A session that had done enough was interrupted by a count that another session shifts.
    if (expected.usage.stopped || found.usage.stopped)
        return std::nullopt;
    std::string const detail = difference(expected, found);
    return detail.empty() ? Findings() : Finding{kind, detail};
}

// ---- A comment ----

constexpr char const* comment = "# tavro-fuzz\n";

// Before the first line, and before each `init`: no question waits for an answer there.
std::string withComments(std::string const& script) {
    std::string text = comment;
    for (std::size_t start = 0; start < script.size();) {
        std::size_t const end = std::min(script.find('\n', start), script.size() - 1) + 1;
        std::string const line = script.substr(start, end - start);
        text += (line.starts_with("init") ? comment : "") + line;
        start = end;
    }
    return text;
}

Findings checkComment(SessionCase session, Outcome const& plain) {
    session.script = withComments(session.script);
    Outcome commented = run(session);
    replaceAll(commented.out, std::string("e> ") + comment, "");
    replaceAll(commented.err, comment, "");
    return compare("comment", plain, commented);
}

// ---- Line ends ----

// Of numbers alone: a word of a scenario takes the carriage return in, and is told as unknown.
Findings checkLineEnds(SessionCase session, Outcome const& plain) {
    for (auto& [path, text] : session.files)
        if (path == "obs/meas" || path == "inp/in")
            replaceAll(text, "\n", "\r\n");
    Outcome found = run(session);
    for (auto const& entry : session.files)
        found.files[entry.first] = plain.files.at(entry.first);
    return compare("line ends", plain, found);
}

// ---- Names ----

Findings checkRenaming(SessionCase session, Outcome const& plain) {
    std::map<std::string, std::string> files;
    std::string const mark = "zq";
    for (std::string& arg : session.args)
        if (!arg.starts_with("--"))
            arg.insert(0, mark);
    for (auto const& [path, text] : session.files) {
        std::size_t const name = path.find('/');
        files[name == std::string::npos ? path : std::string(path).insert(name + 1, mark)] = text;
    }
    session.files = files;
    Outcome found = run(session);
    for (std::string* text : {&found.out, &found.err})
        replaceAll(*text, mark, "");
    files.clear();
    for (auto const& [path, text] : found.files) {
        std::string plainPath = path;
        replaceAll(plainPath, mark, "");
        files[plainPath] = text;
    }
    found.files = files;
    return compare("renaming", plain, found);
}

// ---- Two processes ----

// Where the second `init` begins, or npos.
std::size_t secondInit(std::string const& script) {
    std::size_t const first = script.starts_with("init") ? 0 : script.find("\ninit");
    std::size_t const second =
        first == std::string::npos ? first : script.find("\ninit", first + 1);
    return second == std::string::npos ? second : second + 1;
}

// Cuts the text behind the line that begins with *last* of those that the start of a program says.
std::string afterStart(std::string const& text, std::string const& last) {
    std::size_t const at = text.find(last);
    return at == std::string::npos ? text : text.substr(text.find('\n', at) + 1);
}

// Cuts the text at the last *end*, behind which a program that leaves may go on telling.
std::string withoutEnd(std::string const& text, std::string const& end) {
    return text.substr(0, text.rfind(end));
}

// The counters of the logs go on through a session, so they are left out.
void dropLogs(Outcome& outcome) {
    outcome.files.erase("bench1.bmk");
    outcome.files.erase("itmsbench.bmk");
}

Findings checkSplit(SessionCase const& session, Outcome plain) {
    std::size_t const cut = secondInit(session.script);
    if (cut == std::string::npos || plain.out.find("already been inited") != std::string::npos)
        return std::nullopt;
    SessionCase one = session, other = session;
    one.script = session.script.substr(0, cut) + "quit\n";
    other.script = session.script.substr(cut);
    Place const place;
    place.fill(session);
    Outcome const before = runHere(one, place);
    Outcome after = runHere(other, place);
    std::string const leaving = "quit\nLeaving " + plantOf(session.model).program + ".\n";
    if (!before.err.ends_with(leaving) || before.usage.stopped)
        return std::nullopt;
    bool const modes = !session.args.empty() && session.args.back() == "modes";
    after.out = withoutEnd(before.out, "e> quit\n") +
                afterStart(after.out, modes ? "mode file: " : "no mode files");
    after.err = withoutEnd(before.err, leaving) + afterStart(after.err, "Execution parameters: ");
    // A loss of the first process is none of the second's.
    if (plain.status == 3)
        after.status = 3;
    dropLogs(plain);
    dropLogs(after);
    return compare("split", plain, after);
}

// ---- Strictness ----

Findings checkStrict(SessionCase session, Outcome const& plain) {
    session.args.insert(session.args.begin(), "--strict");
    Outcome strict = run(session);
    if (Findings found = judge(session, strict))
        return found;
    if (session.args.size() > 1 && (session.args[1] == "--help" || session.args[1] == "--version"))
        return std::nullopt;
    if (strict.status == 3)
        strict.status = 0;
    Outcome expected = plain;
    if (expected.status == 3)
        expected.status = 0;
    for (std::string* err : {&strict.err, &expected.err}) {
        std::size_t const at = err->find("Execution parameters: ");
        if (at != std::string::npos)
            err->erase(at, err->find('\n', at) - at);
    }
    return compare("strict", expected, strict);
}

// ---- Faults ----

Findings checkFault(SessionCase session, Outcome const& faulty) {
    if (!faulty.usage.faulted || tellsLoss(faulty.err) || faulty.status > 128)
        return std::nullopt;
    session.fault = {};
    Outcome sound = run(session);
    // A file that nothing is written to is no loss.
    std::erase_if(sound.files, [&faulty](auto const& entry) {
        return entry.second.empty() && faulty.files.count(entry.first) == 0;
    });
    return compare("loss", sound, faulty);
}

Findings checkBeside(SessionCase const& session, Outcome const& outcome) {
    switch (session.check) {
        case Check::COMMENT:
            return checkComment(session, outcome);
        case Check::LINE_ENDS:
            return checkLineEnds(session, outcome);
        case Check::RENAMING:
            return checkRenaming(session, outcome);
        case Check::SPLIT:
            return checkSplit(session, outcome);
        case Check::STRICT:
            return checkStrict(session, outcome);
        case Check::FAULT:
            return checkFault(session, outcome);
        default:
            return std::nullopt;
    }
}

// ---- The program ----

// How often the console polled its ended input.
void maskPolling(Outcome& outcome) {
    for (std::string const prompt : {"e> ", "debug>"})
        while (outcome.out.ends_with(prompt))
            outcome.out.resize(outcome.out.size() - prompt.size());
}

}  // namespace

Findings tryCase(SessionCase const& session, Outcome* kept) {
    Outcome const outcome = run(session);
    if (kept != nullptr)
        *kept = outcome;
    if (Findings found = judge(session, outcome))
        return found;
    return checkBeside(session, outcome);
}

Findings tryProgram(SessionCase const& session, std::filesystem::path const& build) {
    SessionCase sound = session;
    sound.fault = {};
    Outcome forked = run(sound);
    // The shell of a fork runs next to nothing, and its runs are interrupted.
    if (forked.usage.ranShell || forked.usage.stopped || forked.signal != 0)
        return std::nullopt;
    Outcome real = runProgram(sound, build, forked);
    for (Outcome* outcome : {&forked, &real})
        maskPolling(*outcome);
    return compare("program", forked, real);
}

}  // namespace fuzz
