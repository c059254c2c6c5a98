// The table of prime implicates and its text forms.
#include "reasoning/pi_table.h"

#include <fstream>
#include <iostream>

#include "model/Atom.h"

void PiTable::addPIAtom(Atom* atom, Implicates list) {
    table[atom->getId()] = Entry{atom, std::move(list)};
}

Implicates const* PiTable::getPIs(Atom const* atom) const {
    auto const found = table.find(atom->getId());
    return found == table.end() ? nullptr : &found->second.list;
}

void PiTable::showPI(Atom const* atom) const {
    Implicates const* list = getPIs(atom);
    if (list == nullptr)
        return;
    std::cout << "\nPI(" << atom->getId() << ") => ";
    char const* separator = "";
    for (Implicate const& implicate : *list) {
        std::cout << separator;
        for (Atom const* member : implicate)
            std::cout << member->getId() << " - ";
        separator = "\n\t\t=>";
    }
}

void PiTable::showAllPI() const {
    for (auto const& entry : table)
        showPI(entry.second.atom);
}

namespace {

void writeImplicate(std::ofstream& file, Implicate const& implicate) {
    char const* separator = "";
    for (Atom const* member : implicate) {
        file << separator << member->getId();
        separator = " ";
    }
}

}  // namespace

void PiTable::writePI(char const* name) const {
    std::string const path = std::string(name) + ".pi";
    std::cout << "writing file " << path << "\n";
    std::ofstream file(path, std::ios::trunc);
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
}
