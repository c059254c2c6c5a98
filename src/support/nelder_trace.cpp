// The outputs of the optimiser: their opening, and the trace of a search.
#include "support/nelder.h"

namespace {

void traceRule(std::FILE* trace, int n, char const* end) {
    for (int j = 0; j < n; ++j)
        std::fputs("============  ", trace);
    std::fputs(end, trace);
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

void Nelder_ferme::operator()(std::FILE* file) const {
    if (file != stdout)
        std::fclose(file);
}

Nelder_sortie Nelder_ouvre(int wanted, int toFile, char const* name) {
    if (!wanted)
        return nullptr;
    if (!toFile)
        return Nelder_sortie(stdout);
    if (std::FILE* const file = std::fopen(name, "w"))
        return Nelder_sortie(file);
    std::fprintf(stderr, "\n!!! ATTENTION: impossible d'ouvrir le fichier: %s !!!\n", name);
    return Nelder_sortie(stdout);
}

void Nelder_trace_initial(std::FILE* trace, int n) {
    traceRule(trace, n, "============ \n");
    for (int j = 0; j < n; ++j)
        std::fprintf(trace, "     x%-4d    ", j + 1);
    std::fputs("    cout \n", trace);
    traceRule(trace, n, "============ \n\n");
}

void Nelder_trace(std::FILE* trace, Nelder_simplex const& simplex) {
    for (int i = simplex.n; i >= 0; --i) {
        for (double const coordinate : simplex.point[i].x)
            std::fprintf(trace, "%12.6g  ", coordinate);
        std::fprintf(trace, "%12.6g \n", simplex.point[i].cost);
    }
    std::fputs("\n", trace);
}

void Nelder_trace_final(std::FILE* trace, int state, int iterations, int evaluations) {
    std::fprintf(trace, "Etat des calculs: %s", stateText(state));
    std::fprintf(trace, "Nombre d'iterations du simplexe: %8d\n", iterations);
    std::fprintf(trace, "Nombre d'evaluations du cout:    %8d\n\n", evaluations);
}
