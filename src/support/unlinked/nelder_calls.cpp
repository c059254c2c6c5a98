// The calls for one search, and the outputs of the optimiser.
#include "unlinked/nelder_calls.h"

#include <fstream>
#include <iostream>

#include "unlinked/optim_calls.h"

namespace {

void tellUnopened(char const* name) {
    std::fprintf(stderr, "\n!!! ATTENTION: impossible d'ouvrir le fichier: %s !!!\n", name);
}

std::shared_ptr<std::ostream> standardOutput() {
    return {&std::cout, [](std::ostream*) {}};
}

}  // namespace

void Nelder_init_options(Nelder_options* options) {
    *options = Nelder_default_options();
    if (std::ifstream file("nelder.dat"); file)
        Nelder_read_options(file, *options);
}

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
    tellUnopened(name);
    return Nelder_sortie(stdout);
}

std::shared_ptr<std::ostream> Nelder_ouvre_trace(Nelder_options const& options) {
    if (!options.trace)
        return nullptr;
    if (!options.traceToFile)
        return standardOutput();
    auto file = std::make_shared<std::ofstream>(options.traceFile);
    if (*file)
        return file;
    tellUnopened(options.traceFile);
    return standardOutput();
}

void Nelder_optimisation(Nelder_options const* options, Nelder_cost cost, int* n, double* x,
                         double* lower, double* upper, double* p, int* q, int* status) {
    Nelder_optimisation(*options, Optim_process_random(), Nelder_ouvre_trace(*options).get(), cost,
                        n, x, lower, upper, p, q, status);
}

void opt_nelder(Nelder_cost cost, int* n, double* x, double* lower, double* upper, double* p,
                int* q, int* status) {
    Nelder_options options;
    Nelder_init_options(&options);
    Nelder_optimisation(&options, cost, n, x, lower, upper, p, q, status);
}

void opt_nelder_(Nelder_cost cost, int* n, double* x, double* lower, double* upper, double* p,
                 int* q, int* status) {
    opt_nelder(cost, n, x, lower, upper, p, q, status);
}
