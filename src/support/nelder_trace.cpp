// The trace of a search.
#include "support/nelder.h"
#include "support/numbers.h"

namespace {

void traceRule(std::ostream& trace, int n, char const* end) {
    for (int j = 0; j < n; ++j)
        trace << "============  ";
    trace << end;
}

std::string inColumn(double value) {
    return flushRight(shortText(value), 12);
}

std::string inColumn(int count) {
    return flushRight(std::to_string(count), 8);
}

char const* stateText(int state) {
    switch (state) {
        case NELDER_MINIMUM:
            return "MINIMUM ATTEINT\n";
        case NELDER_LIMITE:
            return "NOMBRE MAXIMUM D'EVALUATIONS DU COUT ATTEINT\n";
        case NELDER_ERREUR:
            return "ERREUR DANS LE CALCUL DU COUT\n";
        default:
            return "CAS INCONNU\n";
    }
}

}  // namespace

void Nelder_trace_initial(std::ostream& trace, int n) {
    traceRule(trace, n, "============ \n");
    for (int j = 0; j < n; ++j)
        trace << "     x" << flushLeft(std::to_string(j + 1), 4) << "    ";
    trace << "    cout \n";
    traceRule(trace, n, "============ \n\n");
}

void Nelder_trace(std::ostream& trace, Nelder_simplex const& simplex) {
    for (int i = simplex.n; i >= 0; --i) {
        for (double const coordinate : simplex.point[i].x)
            trace << inColumn(coordinate) << "  ";
        trace << inColumn(simplex.point[i].cost) << " \n";
    }
    trace << "\n";
}

void Nelder_trace_final(std::ostream& trace, int state, int iterations, int evaluations) {
    trace << "Etat des calculs: " << stateText(state)
          << "Nombre d'iterations du simplexe: " << inColumn(iterations) << "\n"
          << "Nombre d'evaluations du cout:    " << inColumn(evaluations) << "\n\n";
}
