// Searches from several starts, with statistics of their outcomes.
//
// One search may end in a local minimum, or in a false one where its simplex has collapsed. Against
// the second every run searches twice, the second time from a new simplex around its own result;
// against the first there are several runs, from starts drawn uniformly in the box. The statistics
// tell how far the best result may be trusted: how many runs found it again, and at what price.
#include <algorithm>

#include "unlinked/nelder_calls.h"
#include "unlinked/optim_calls.h"

namespace {

constexpr double IMPOSSIBLE_COST = 1e20;  // a higher cost marks a physical impossibility

enum Outcome { GLOBAL, LOCAL, VIOLATED, LIMITED, IMPOSSIBLE, OUTCOMES };

struct Account {
    int runs = 0;
    long long evaluations = 0;  // of both searches of these runs
};

struct Optimum {
    Nelder_point point;
    int hits;
};

struct Run {
    int number;           // from 1
    Nelder_point point;   // the start, then the result so far
    int status = 0;       // of the last search
    int evaluations = 0;  // of the searches that reached a minimum
};

// The state of one call of mopt_nelder.
struct Session {
    Session(Nelder_options const& options, Nelder_problem const& problem);

    Nelder_options const& options;
    Nelder_problem problem;  // for the evaluations between the searches
    std::vector<double> range;
    Nelder_sortie log;
    Nelder_sortie stats;
    int seed = 0;  // Optim_ran0 takes it at the first draw of the process only
    bool hasBest = false;
    Nelder_point best = {};  // this and its status are meaningless until hasBest
    int bestStatus = 0;
    Account account[OUTCOMES];
    std::vector<Optimum> optima;  // no two of them near each other
};

Session::Session(Nelder_options const& opts, Nelder_problem const& prob)
    : options(opts),
      problem(prob),
      range(prob.n),
      log(Nelder_ouvre(opts.optLog, opts.optLogToFile, opts.optLogFile)),
      stats(Nelder_ouvre(opts.stats, opts.statsToFile, opts.statsFile)) {
    for (int j = 0; j < prob.n; ++j)
        range[j] = prob.upper[j] - prob.lower[j];
}

bool near(Session const& session, Nelder_point const& a, Nelder_point const& b) {
    double const distance =
        Optim_longvec_norm(session.problem.n, a.x.data(), b.x.data(), session.range.data());
    return distance <= 100 * session.options.tolX;
}

// suffix: "ini" for a start, "opt" for a result.
void logPoint(Session const& session, char const* suffix, Nelder_point const& point) {
    if (!session.log)
        return;
    std::FILE* const log = session.log.get();
    for (int j = 0; j < session.problem.n; ++j)
        std::fprintf(log, "X_%s(%1d) = %15.8g \n", suffix, j + 1, point.x[j]);
    std::fprintf(log, "Cout_%s = %15.8g \n\n", suffix, point.cost);
}

void logText(Session const& session, char const* text) {
    if (session.log)
        std::fputs(text, session.log.get());
}

void tellLimit(Session const& session) {
    char const* const text = "*** maximum d'evaluations de la fonction cout atteint ***\n\n";
    if (session.log)
        logText(session, text);
    else
        std::puts(text);
}

void drawPoint(Session& session, std::vector<double>& x) {
    for (int j = 0; j < session.problem.n; ++j)
        x[j] = session.problem.lower[j] + session.range[j] * Optim_ran0(&session.seed);
}

int startRun(Session& session, Run& run) {
    if (run.number > 1)
        drawPoint(session, run.point.x);
    if (!Nelder_evalue(session.problem, run.point))
        return 0;
    if (session.log)
        std::fprintf(session.log.get(), "\n---> Optimisation no. %1d: \n\n", run.number);
    logPoint(session, "ini", run.point);
    return 1;
}

// One search from the run's point. 0 when a cost could not be computed.
int searchOnce(Session& session, Run& run, char const* title) {
    Nelder_problem& problem = session.problem;
    Nelder_optimisation(&session.options, problem.cost, &problem.n, run.point.x.data(),
                        problem.lower, problem.upper, problem.p, problem.q, &run.status);
    if (run.status == NELDER_ERREUR)
        return 0;
    if (run.status == NELDER_LIMITE) {
        tellLimit(session);
        return 1;
    }
    run.evaluations += run.status;
    if (!Nelder_evalue(problem, run.point))
        return 0;
    logText(session, title);
    logPoint(session, "opt", run.point);
    return 1;
}

int searchTwice(Session& session, Run& run) {
    if (!searchOnce(session, run, ""))
        return 0;
    return run.status == NELDER_LIMITE ||
           searchOnce(session, run, "Relance de l'optimisation: \n\n");
}

// A better result far from the best one shows that the runs which seemed to have found the global
// optimum had found a local one.
void keepBest(Session& session, Run const& run) {
    if (session.hasBest && !(run.point.cost < session.best.cost))
        return;
    if (session.hasBest && !near(session, session.best, run.point)) {
        session.account[LOCAL].runs += session.account[GLOBAL].runs;
        session.account[LOCAL].evaluations += session.account[GLOBAL].evaluations;
        session.account[GLOBAL] = {};
    }
    session.best = run.point;
    session.bestStatus = run.status;
    session.hasBest = true;
}

Outcome outcomeOf(Session const& session, Run const& run) {
    if (run.status == NELDER_LIMITE)
        return LIMITED;
    if (run.point.cost > IMPOSSIBLE_COST)
        return IMPOSSIBLE;
    if (session.problem.constraint < 0)
        return VIOLATED;
    return near(session, session.best, run.point) ? GLOBAL : LOCAL;
}

void countOptimum(Session& session, Nelder_point const& point) {
    auto const known =
        std::find_if(session.optima.begin(), session.optima.end(),
                     [&](Optimum const& optimum) { return near(session, optimum.point, point); });
    if (known != session.optima.end())
        ++known->hits;
    else
        session.optima.push_back({point, 1});
}

void countRun(Session& session, Run const& run) {
    Outcome const outcome = outcomeOf(session, run);
    Account& account = session.account[outcome];
    ++account.runs;
    if (outcome == LIMITED || outcome == IMPOSSIBLE)
        return;
    account.evaluations += run.evaluations;
    countOptimum(session, run.point);
}

// 0 when a cost could not be computed.
int performRun(Session& session, Run& run) {
    if (!startRun(session, run) || !searchTwice(session, run))
        return 0;
    if (run.status != NELDER_LIMITE)
        keepBest(session, run);
    countRun(session, run);
    return 1;
}

int performRuns(Session& session, int nbRuns, double const* x) {
    for (int number = 1; number <= nbRuns; ++number) {
        Run run = {number, {{x, x + session.problem.n}, 0.0}};
        if (!performRun(session, run))
            return 0;
    }
    return 1;
}

int giveBest(Session const& session, double* x) {
    if (!session.hasBest)
        return NELDER_LIMITE;
    std::copy(session.best.x.begin(), session.best.x.end(), x);
    logText(session, "\n---> Commande optimale: \n\n");
    logPoint(session, "opt", session.best);
    return session.bestStatus;
}

double percentage(int runs, int nbRuns) {
    return nbRuns > 0 ? 100.0 * runs / nbRuns : 0.0;
}

int meanEvaluations(Account const& account) {
    return account.runs > 0 ? static_cast<int>(account.evaluations / account.runs) : 0;
}

// label: the first column, its bar and the blanks included.
void printEvaluated(std::FILE* stats, char const* label, Account const& account, int nbRuns) {
    std::fprintf(stats, "%s  %5d  (%5.1f %%) |     %8d      |\n", label, account.runs,
                 percentage(account.runs, nbRuns), meanEvaluations(account));
}

void printCounted(std::FILE* stats, char const* label, Account const& account, int nbRuns) {
    std::fprintf(stats, "%s  %5d  (%5.1f %%) |      -------      |\n", label, account.runs,
                 percentage(account.runs, nbRuns));
}

Account totalOf(Account const* account) {
    Account total;
    for (int outcome = 0; outcome < OUTCOMES; ++outcome)
        total.runs += account[outcome].runs;
    for (int outcome : {GLOBAL, LOCAL, VIOLATED})
        total.evaluations += account[outcome].evaluations;
    return total;
}

void printAccounts(std::FILE* stats, Account const* account, int nbRuns) {
    char const* const rule =
        "+------------------------------------------+-------------------+-------------------+\n";
    std::fputs(rule, stats);
    std::fputs(
        "|      STATISTIQUES DE L'OPTIMISATION      |    Nombre  (%)    |  Moy. eval. cout  |\n",
        stats);
    std::fputs(rule, stats);
    printEvaluated(stats, "|  optimum global & contraintes respectees |", account[GLOBAL], nbRuns);
    printEvaluated(stats, "|  optimum local & contraintes respectees  |", account[LOCAL], nbRuns);
    printEvaluated(stats, "|  optimum local & contraintes violees     |", account[VIOLATED],
                   nbRuns);
    printCounted(stats, "|  maximum d'evaluations du cout atteint   |", account[LIMITED], nbRuns);
    printCounted(stats, "|  impossibilite physique                  |", account[IMPOSSIBLE],
                 nbRuns);
    std::fputs(rule, stats);
    printEvaluated(stats, "|  total                                   |", totalOf(account), nbRuns);
    std::fputs(rule, stats);
}

void printOptimaRule(std::FILE* stats, int n) {
    std::fputs("\n+------+  +-------------+  ", stats);
    for (int j = 0; j < n; ++j)
        std::fputs("+-------------+  ", stats);
}

void printOptimaHeader(std::FILE* stats, int n) {
    printOptimaRule(stats, n);
    std::fputs("\n|  nb  |  |    cout     |  ", stats);
    for (int j = 0; j < n; ++j)
        std::fprintf(stats, "|      x%-4d  |  ", j + 1);
    printOptimaRule(stats, n);
    std::fputs("\n", stats);
}

void printOptimum(std::FILE* stats, Optimum const& optimum) {
    std::fprintf(stats, "%7d  %15.8g  ", optimum.hits, optimum.point.cost);
    for (double const coordinate : optimum.point.x)
        std::fprintf(stats, "%15.8g  ", coordinate);
    std::fputs("\n", stats);
}

void printOptima(Session const& session) {
    std::vector<double> costs;
    for (Optimum const& optimum : session.optima)
        costs.push_back(optimum.point.cost);
    std::vector<int> order(costs.size());
    Optim_tri_index(static_cast<int>(costs.size()), costs.data(), order.data());
    printOptimaHeader(session.stats.get(), session.problem.n);
    for (int const index : order)
        printOptimum(session.stats.get(), session.optima[index]);
}

void printStatistics(Session const& session, int nbRuns) {
    printAccounts(session.stats.get(), session.account, nbRuns);
    printOptima(session);
}

// The status to report.
int runSession(Session& session, int nbRuns, double* x) {
    if (!performRuns(session, nbRuns, x))
        return NELDER_ERREUR;
    int const status = giveBest(session, x);
    if (session.stats)
        printStatistics(session, nbRuns);
    return status;
}

}  // namespace

void mopt_nelder(int* nbRuns, Nelder_cost cost, int* n, double* x, double* lower, double* upper,
                 double* p, int* q, int* status) {
    if (*n < 1) {
        *status = NELDER_ERREUR;
        return;
    }
    Nelder_options options;
    Nelder_init_options(&options);
    Session session(options, {cost, *n, lower, upper, p, q});
    *status = runSession(session, *nbRuns, x);
}

void mopt_nelder_(int* nbRuns, Nelder_cost cost, int* n, double* x, double* lower, double* upper,
                  double* p, int* q, int* status) {
    mopt_nelder(nbRuns, cost, n, x, lower, upper, p, q, status);
}
