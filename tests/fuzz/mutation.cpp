// Changes of bytes, words, lines, files and arguments.
//
// No path that is made here leads out of the directory of the session: the words for arguments are
// a fixed list, and a spoilt file of the optimiser, which names files, has no slash.
#include "fuzz/mutation.h"

#include <algorithm>

namespace fuzz {

namespace {

using Words = std::vector<std::string>;

Words const oddNumbers = {"0",       "-1",         "1e300",       "1e-320", "nan", "inf",
                          "0x10",    "3abc",       "2147483648",  "1e10",   "0,5", "+1",
                          "1.5e",    "9999999999", "-2147483649", ".5",     "1e8", "0.9999999",
                          "99",      "1e999",      "000003",      "5.",     "--1", "1 2",
                          "1000000", "1000001",    "2.9",         "1e",     "1d3", "\xc2\xbd"};
Words const oddWords = {"noglob",  "xnoglobx", "multi",   "nomerge",     "fault1", "fault9",
                        "nofault", "#",        "init",    "quit",        "detect", "simul",
                        "disc",    "print",    "Command", "Observation", "debug",  "\t",
                        ":",       ",",        "=",       "a=b",         "%s%n",   "''"};

// ---- Of a text ----

std::string randomBytes(Random& random, int count) {
    std::string text;
    for (; count > 0; --count)
        text += static_cast<char>(random.below(256));
    return text;
}

void changeByte(Random& random, std::string& text) {
    std::size_t const at = random.below(text.size() + 1);
    switch (random.below(4)) {
        case 0:
            text.insert(at, 1, static_cast<char>(random.below(256)));
            break;
        case 1:
            text.erase(std::min(at, text.size()), 1);
            break;
        case 2:
            if (at < text.size())
                text[at] = static_cast<char>(text[at] ^ (1 << random.below(8)));
            break;
        default:
            text.insert(at, random.pick(Words{"\n", "\r", " ", "\t", std::string(1, '\0'), "\x10",
                                              "\x7f", "\xff", "\n\n", "0", "-", "."}));
    }
}

// The place of the *nth* word, counted from 0: its beginning and its end.
std::pair<std::size_t, std::size_t> wordAt(std::string const& text, std::size_t nth) {
    std::size_t end = 0;
    for (std::size_t i = 0;; ++i) {
        std::size_t const start = text.find_first_not_of(" \n\t", end);
        if (start == std::string::npos)
            return {text.size(), text.size()};
        end = std::min(text.find_first_of(" \n\t", start), text.size());
        if (i == nth)
            return {start, end};
    }
}

std::size_t countWords(std::string const& text) {
    std::size_t count = 0;
    while (wordAt(text, count).first != text.size())
        ++count;
    return count;
}

std::string oddWord(PlantFacts const& plant, Random& random) {
    switch (random.below(4)) {
        case 0:
            return random.pick(oddWords);
        case 1:
            return plant.atoms.empty() ? "" : random.pick(plant.atoms);
        default:
            return random.pick(oddNumbers);
    }
}

void changeWord(PlantFacts const& plant, Random& random, std::string& text) {
    auto const [start, end] =
        wordAt(text, random.below(std::min<std::size_t>(countWords(text), 60)));
    switch (random.below(4)) {
        case 0:
            text.erase(start, end - start);
            break;
        case 1:
            text.insert(start, oddWord(plant, random) + " ");
            break;
        default:
            text.replace(start, end - start, oddWord(plant, random));
    }
}

Words linesOf(std::string const& text) {
    Words lines;
    for (std::size_t start = 0; start < text.size();) {
        std::size_t const end = std::min(text.find('\n', start), text.size() - 1) + 1;
        lines.push_back(text.substr(start, end - start));
        start = end;
    }
    return lines;
}

void changeLine(PlantFacts const& plant, Random& random, std::string& text) {
    Words lines = linesOf(text);
    lines.emplace_back("");
    std::size_t const at = random.below(lines.size()), other = random.below(lines.size());
    switch (random.below(6)) {
        case 0:
            lines[at].clear();
            break;
        case 1:
            lines[at] += lines[other];
            break;
        case 2:
            std::swap(lines[at], lines[other]);
            break;
        case 3:
            lines[at].insert(0, "\n");
            break;
        case 4:
            lines[at].insert(0, oddWord(plant, random) + " " + oddWord(plant, random) + "\n");
            break;
        default:
            lines[at].insert(0, random.chance(50)
                                    ? std::string(static_cast<std::size_t>(random.between(1, 5000)),
                                                  static_cast<char>(random.between('0', 'z')))
                                    : randomBytes(random, random.between(1, 60)));
    }
    text.clear();
    for (std::string const& line : lines)
        text += line;
}

void spoilText(PlantFacts const& plant, Random& random, std::string& text) {
    for (int i = random.between(1, 4); i > 0; --i)
        switch (random.below(8)) {
            case 0:
            case 1:
                changeByte(random, text);
                break;
            case 2:
            case 3:
                changeLine(plant, random, text);
                break;
            case 4:
                // No end of the last line, or half a file.
                text.resize(random.below(text.size() + 1));
                break;
            default:
                changeWord(plant, random, text);
        }
    if (random.chance(3))
        text = randomBytes(random, random.between(0, 300));
}

// ---- Of files and arguments ----

void spoilFile(PlantFacts const& plant, Random& random, SessionCase& spoilt) {
    if (spoilt.files.empty())
        return;
    auto const entry = std::next(spoilt.files.begin(),
                                 static_cast<std::ptrdiff_t>(random.below(spoilt.files.size())));
    if (random.chance(4)) {
        spoilt.files[entry->first + "/"] = "";
        spoilt.files.erase(entry);
        return;
    }
    if (random.chance(4)) {
        spoilt.files.erase(entry);
        return;
    }
    spoilText(plant, random, entry->second);
    if (entry->first == "nelder.dat")
        std::replace(entry->second.begin(), entry->second.end(), '/', '_');
}

std::string oddArgument(Random& random) {
    return random.pick(Words{"",
                             ".",
                             "..",
                             "../obs/meas",
                             "../inp/in",
                             "../inp/scn",
                             "meas",
                             "missing",
                             "missing/file",
                             "display",
                             "../nelder.dat",
                             "../itmsbench.bmk",
                             "../cycbench.bmk",
                             "../htraj0.dot",
                             "--strict",
                             "--rules=",
                             "--rules=sharp,",
                             "--rules=nothing",
                             "--candidates=0",
                             "--candidates=1",
                             "--candidates=99999999999",
                             "--candidates=2x",
                             "--noise=",
                             "--noise=-1",
                             "--noise=nan",
                             "--noise=nobody=1",
                             "--noise=0.1,0.2",
                             "--noise==",
                             "--help",
                             "--version",
                             "a b",
                             "%s%n",
                             "\xff\xfe",
                             std::string(300, 'n')});
}

void spoilArguments(Random& random, SessionCase& spoilt) {
    auto& args = spoilt.args;
    std::size_t const at = random.below(args.size() + 1);
    if (at == args.size() || random.chance(30))
        args.insert(args.begin() + static_cast<std::ptrdiff_t>(at), oddArgument(random));
    else if (random.chance(30))
        args.erase(args.begin() + static_cast<std::ptrdiff_t>(at));
    else
        args[at] = oddArgument(random);
}

}  // namespace

void spoil(PlantFacts const& plant, Random& random, SessionCase& spoilt) {
    spoilt.valid = false;
    // A script that is spoilt no longer says where a line may be put in; its files may be.
    if (spoilt.check != Check::STRICT && spoilt.check != Check::FAULT)
        spoilt.check = Check::PLAIN;
    switch (random.below(6)) {
        case 0:
        case 1:
            spoilText(plant, random, spoilt.script);
            break;
        case 2:
        case 3:
            spoilFile(plant, random, spoilt);
            break;
        case 4:
            spoilArguments(random, spoilt);
            break;
        default:
            spoilText(plant, random, spoilt.script);
            spoilFile(plant, random, spoilt);
            if (random.chance(30))
                spoilArguments(random, spoilt);
    }
    // Most spoilt scripts still end.
    if (random.chance(90))
        spoilt.script += "\nquit\n";
}

}  // namespace fuzz
