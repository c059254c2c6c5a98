// Text forms of numbers and intervals.
//
// The same value has two faces: the one for people, and the bare numbers that display files and
// plots read. The printer itself tells which, so a caller cannot mix them up.

#include "continuous/objets.h"
#include "support/numbers.h"

namespace {

void printBound(std::ostream& stream, double value, double endOfScale, char const* textAtEnd) {
    if (value == endOfScale)
        stream << textAtEnd;
    else
        stream << shortText(value);
}

}  // namespace

void sn_printReal(s_Printer const& to, double value) {
    if (to.forPeople && value == -DBL_MAX)
        to.stream << "-oo";
    else if (to.forPeople && value == DBL_MAX)
        to.stream << "+oo";
    else
        to.stream << shortText(value);
}

void sn_printRange(s_Printer const& to, range const& r) {
    if (!to.forPeople) {
        to.stream << shortText(r.inf) << " " << shortText(r.sup);
        return;
    }
    // Only the closed bracket has a blank before it.
    to.stream << (isInfClosed(r) ? " [" : "]");
    printBound(to.stream, r.inf, -DBL_MAX, "-oo");
    to.stream << ", ";
    printBound(to.stream, r.sup, DBL_MAX, "+oo");
    to.stream << (isSupClosed(r) ? "]" : "[");
}

void sn_printObjet(s_Printer const& to, s_Objet const* o) {
    if (isReal(*o)) {
        to.stream << (to.forPeople ? " =" : "");
        sn_printReal(to, o->real);
    } else if (isRange(*o)) {
        to.stream << (to.forPeople ? " in " : "");
        sn_printRange(to, o->rng);
    } else {
        to.stream << "type ?\n";
    }
}
