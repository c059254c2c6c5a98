// Reading the file of prime implicates.
#include <cassert>
#include <optional>
#include <sstream>

#include "reasoning/itmsrt.h"

namespace {

// The whole file, or nothing when it cannot be opened.
std::optional<std::string> readWhole(Host& host, std::string const& path) {
    std::unique_ptr<std::istream> const file = host.open(path);
    if (file == nullptr)
        return std::nullopt;
    std::ostringstream text;
    text << file->rdbuf();
    return text.str();
}

std::vector<std::string> splitAt(std::string const& text, char separator) {
    std::vector<std::string> parts;
    std::size_t start = 0;
    for (std::size_t end; (end = text.find(separator, start)) != std::string::npos; start = end + 1)
        parts.push_back(text.substr(start, end - start));
    parts.push_back(text.substr(start));
    return parts;
}

bool isSymbolOfComponent(itms const& engine, std::string const& symbol) {
    for (auto const& entry : engine.active_comps)
        if (entry.second != nullptr && entry.second->symbol == symbol)
            return true;
    return false;
}

// The atom, or null and a line on the error stream. Enters nothing for an unknown id, since the
// word does not live on.
Atom* findAtom(itms const& engine, std::string const& id) {
    auto const found = engine.active_atoms.find(id.c_str());
    if (found != engine.active_atoms.end() && found->second != nullptr)
        return found->second;
    engine.host.loss() << "Atom not found: " << id << "\n";
    return nullptr;
}

// One alternative; false on an unknown atom.
bool readImplicate(itms const& engine, std::string const& text, Implicate& implicate) {
    for (std::string const& word : splitAt(text, ' ')) {
        if (word.empty())
            continue;
        Atom* atom = findAtom(engine, word);
        if (atom == nullptr)
            return false;
        implicate.push_back(atom);
    }
    return true;
}

// One line of the file; false on an unknown atom.
bool readLine(itms const& engine, std::string const& line, PiTable& table) {
    std::size_t const colon = line.find(':');
    std::string const head = line.substr(0, colon);
    std::string const symbol = head.substr(0, head.find('.'));
    if (!isSymbolOfComponent(engine, symbol))
        engine.out << "Component not found: " << symbol << "\n";
    Atom* atom = findAtom(engine, head);
    if (atom == nullptr)
        return false;
    std::vector<std::string> const parts =
        splitAt(colon == std::string::npos ? "" : line.substr(colon + 1), ',');
    if (parts.front().empty())
        return true;
    Implicates list;
    for (std::string const& part : parts)
        if (!readImplicate(engine, part, list.emplace_back()))
            return false;
    table.addPIAtom(atom, std::move(list));
    return true;
}

}  // namespace

int itms::readPI() {
    piTable = std::make_unique<PiTable>();
    std::string const path = model_name + ".pi";
    std::optional<std::string> const text = readWhole(host, path);
    if (!text) {
        out << "can't open " << path << "\n";
        return 0;
    }
    out << "*** File " << path << " found. Reading file...\n";
    std::vector<std::string> lines = splitAt(*text, '\n');
    lines.pop_back();  // Required: what no line end closes is dropped
    for (std::string const& line : lines)
        if (!readLine(*this, line, *piTable))
            return -1;
    piTable->showAllPI(out);
    return 1;
}
