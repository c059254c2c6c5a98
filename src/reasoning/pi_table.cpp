// The table of prime implicates and its text forms.
#include "reasoning/pi_table.h"

#include <sstream>

#include "model/Atom.h"
#include "support/host.h"

void PiTable::addPIAtom(Atom* atom, Implicates list) {
    table[atom->getId()] = Entry{atom, std::move(list)};
}

Implicates const* PiTable::getPIs(Atom const* atom) const {
    auto const found = table.find(atom->getId());
    return found == table.end() ? nullptr : &found->second.list;
}

void PiTable::showPI(std::ostream& out, Atom const* atom) const {
    Implicates const* list = getPIs(atom);
    if (list == nullptr)
        return;
    out << "\nPI(" << atom->getId() << ") => ";
    char const* separator = "";
    for (Implicate const& implicate : *list) {
        out << separator;
        for (Atom const* member : implicate)
            out << member->getId() << " - ";
        separator = "\n\t\t=>";
    }
}

void PiTable::showAllPI(std::ostream& out) const {
    for (auto const& entry : table)
        showPI(out, entry.second.atom);
}

namespace {

void writeImplicate(std::ostream& file, Implicate const& implicate) {
    char const* separator = "";
    for (Atom const* member : implicate) {
        file << separator << member->getId();
        separator = " ";
    }
}

}  // namespace

bool PiTable::writePI(Host& host, char const* name) const {
    std::string const path = std::string(name) + ".pi";
    host.out() << "writing file " << path << "\n";
    std::ostringstream file;
    for (auto const& entry : table) {
        file << entry.second.atom->getId() << ":";
        char const* separator = "";
        for (Implicate const& implicate : entry.second.list) {
            file << separator;
            writeImplicate(file, implicate);
            separator = ",";
        }
        file << "\n";
    }
    return host.write(path, file.str());
}
