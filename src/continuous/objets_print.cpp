// Text forms of numbers and intervals.
//
// The same value has two faces: on stderr the one for people, on any other stream the bare numbers
// that display files and plots read. The stream itself decides, so a caller cannot mix them up.

#include "continuous/objets.h"

namespace {

bool isForPeople(FILE* stream) {
    return stream == stderr;
}

void printBound(FILE* stream, double value, double endOfScale, char const* textAtEnd) {
    if (value == endOfScale)
        fputs(textAtEnd, stream);
    else
        fprintf(stream, "%g", value);
}

}  // namespace

void sn_printReal(FILE* stream, double value) {
    if (isForPeople(stream) && value == -DBL_MAX)
        fputs("-oo", stream);
    else if (isForPeople(stream) && value == DBL_MAX)
        fputs("+oo", stream);
    else
        fprintf(stream, "%g", value);
}

void sn_printRange(FILE* stream, range const& r) {
    if (!isForPeople(stream)) {
        fprintf(stream, "%g %g", r.inf, r.sup);
        return;
    }
    // Only the closed bracket has a blank before it.
    fputs(isInfClosed(r) ? " [" : "]", stream);
    printBound(stream, r.inf, -DBL_MAX, "-oo");
    fputs(", ", stream);
    printBound(stream, r.sup, DBL_MAX, "+oo");
    fputs(isSupClosed(r) ? "]" : "[", stream);
}

void sn_printObjet(FILE* stream, s_Objet const* o) {
    if (isReal(*o)) {
        fputs(isForPeople(stream) ? " =" : "", stream);
        sn_printReal(stream, o->real);
    } else if (isRange(*o)) {
        fputs(isForPeople(stream) ? " in " : "", stream);
        sn_printRange(stream, o->rng);
    } else {
        fputs("type ?\n", stream);
    }
}
