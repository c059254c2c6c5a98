// Masking and comparing.
#include "fuzz/outcome.h"

#include <algorithm>
#include <functional>

namespace fuzz {

namespace {

template <typename Change>
void changeLines(std::string& text, Change change) {
    std::string changed;
    changed.reserve(text.size());
    for (std::size_t start = 0; start < text.size();) {
        std::size_t const end = std::min(text.find('\n', start), text.size());
        std::string line = text.substr(start, end - start);
        change(line);
        changed += line;
        if (end < text.size())
            changed += '\n';
        start = end + 1;
    }
    text.swap(changed);
}

// Cuts the line behind *prefix*, up to the next blank when there *remains* something behind it.
bool cutAfter(std::string& line, std::string const& prefix, bool remains) {
    if (!line.starts_with(prefix))
        return false;
    std::size_t const end = remains ? line.find(' ', prefix.size()) : std::string::npos;
    line = prefix + "(time)" + (end == std::string::npos ? "" : line.substr(end));
    return true;
}

// Steps of a discrete run are told in the words of a time, and count from 1.
bool isTiming(std::string const& number) {
    return number == "0" || number.find('.') != std::string::npos ||
           number.find("e-") != std::string::npos;
}

void maskNan(std::string& line) {
    for (std::size_t at = line.find("-nan"); at != std::string::npos; at = line.find("-nan", at))
        line.erase(at, 1);
}

void maskLine(std::string& line) {
    maskNan(line);
    if (cutAfter(line, "cycle: ", false) ||
        cutAfter(line, "Diagnosis at continuous level in: ", true) ||
        cutAfter(line, "cover_track execution time : ", false))
        return;
    if (std::size_t const at = line.find("elapsed time"); at != std::string::npos) {
        if (std::size_t const colon = line.find(": ", at); colon != std::string::npos)
            line.resize(colon + 2);
    } else if (line.starts_with("Rank : ")) {
        line.resize(std::min(line.size(), line.find(" (")));
    } else if (line.starts_with("Time : ") && isTiming(line.substr(7))) {
        line = "Time : (time)";
    }
}

void maskFile(std::string const& path, std::string& text) {
    if (path == "cycbench.bmk")
        changeLines(text,
                    [](std::string& line) { line.resize(std::min(line.size(), line.find('\t'))); });
    else if (path == "bench1.bmk" || path == "itmsbench.bmk")
        changeLines(text, [](std::string& line) {
            std::size_t const first = line.find(' ');
            if (first == std::string::npos)
                return;
            std::size_t const second = std::min(line.find(' ', first + 1), line.size());
            line.erase(first, second - first);
        });
    else
        changeLines(text, maskNan);
}

std::string lineAt(std::string const& text, std::size_t at) {
    std::size_t const start = at == 0 ? 0 : text.rfind('\n', at - 1) + 1;
    return text.substr(start, std::min<std::size_t>(text.find('\n', at) - start, 120));
}

}  // namespace

void mask(Outcome& outcome) {
    changeLines(outcome.out, maskLine);
    changeLines(outcome.err, maskLine);
    for (auto& [path, text] : outcome.files)
        maskFile(path, text);
}

std::string differenceOf(std::string const& what, std::string const& expected,
                         std::string const& found) {
    if (expected == found)
        return "";
    std::size_t const at = static_cast<std::size_t>(
        std::mismatch(expected.begin(), expected.end(), found.begin(), found.end()).first -
        expected.begin());
    return what + ": expected \"" + lineAt(expected, at) + "\", found \"" +
           lineAt(found, std::min(at, found.size())) + "\"";
}

std::string difference(Outcome const& expected, Outcome const& found) {
    if (expected.status != found.status || expected.signal != found.signal)
        return "status " + std::to_string(expected.status) + " and " + std::to_string(found.status);
    for (auto const& [what, one, other] :
         {std::tuple("error stream", &expected.err, &found.err),
          std::tuple("standard output", &expected.out, &found.out)})
        if (std::string const text = differenceOf(what, *one, *other); !text.empty())
            return text;
    for (auto const& [path, text] : expected.files) {
        auto const same = found.files.find(path);
        if (same == found.files.end())
            return path + " is missing";
        if (std::string const told = differenceOf(path, text, same->second); !told.empty())
            return told;
    }
    for (auto const& entry : found.files)
        if (expected.files.count(entry.first) == 0)
            return entry.first + " is there too";
    return "";
}

// FNV-1a, with the lengths so that no text runs into the next.
std::uint64_t digestOf(Outcome const& masked) {
    std::uint64_t digest = 0xcbf29ce484222325u;
    auto const take = [&digest](std::string const& text) {
        for (unsigned char const c : text + '\0' + std::to_string(text.size()))
            digest = (digest ^ c) * 0x100000001b3u;
    };
    take(std::to_string(masked.status) + " " + std::to_string(masked.signal));
    take(masked.out);
    take(masked.err);
    for (auto const& [path, text] : masked.files) {
        take(path);
        take(text);
    }
    return digest;
}

}  // namespace fuzz
