// A search for the host of a run: whose options it takes, and where its trace goes.
#include "support/host.h"

#include <cmath>

#include "support/nelder_fixture.h"

namespace {

// Sets options, and keeps what a search asked for.
class Asked : public Host {
public:
    void optimiserOptions(Nelder_options& options) override {
        ++asked;
        defaults = options;
        change(options);
    }
    std::shared_ptr<std::ostream> optimiserTrace(Nelder_options const&) override {
        ++traces;
        if (!withStream)
            return nullptr;
        auto stream = std::make_shared<std::ostringstream>();
        trace = stream;
        return {stream.get(), [this, stream](std::ostream*) { text += stream->str(); }};
    }

    std::function<void(Nelder_options&)> change = [](Nelder_options&) {};
    bool withStream = true;
    int asked = 0, traces = 0;
    Nelder_options defaults;
    std::weak_ptr<std::ostringstream> trace;
    std::string text;  // of the traces that were given back
};

struct NelderHost : NelderTest {
    int search(double start = 4.0) {
        x = {start, start};
        double lower[] = {0.0, 0.0}, upper[] = {10.0, 10.0};
        int n = 2, status = 0;
        costAt = [](Point const& z) { return z[0] + 3 * z[1]; };
        Nelder_minimise(host, random, recordedCost, &n, x.data(), lower, upper, nullptr, nullptr,
                        &status);
        return status;
    }

    static void oneIteration(Nelder_options& options) {
        options.initialType = 2;
        options.stopType = 0;
        options.maxEvalFactor = 0;
    }

    Asked host;
    Optim_random random;
    Point x;
};

TEST_F(NelderHost, TheSilentHostGetsTheDefaults) {
    Host silent;
    double x[] = {3.0}, lower[] = {-10.0}, upper[] = {10.0};
    int n = 1, status = 0;
    costAt = [](Point const& z) { return (z[0] - 1) * (z[0] - 1); };
    Nelder_minimise(silent, random, recordedCost, &n, x, lower, upper, nullptr, nullptr, &status);
    EXPECT_GT(status, 0);
    EXPECT_NEAR(x[0], 1.0, 1e-2);
    // The edge of the first regular simplex of size 0.1 in a box of width 20.
    EXPECT_EQ(visited[0], (Point{3.0}));
    EXPECT_DOUBLE_EQ(visited[1][0], 3.0 + 20 * 0.1 * std::sqrt(2.0));
}

TEST_F(NelderHost, TheHostChangesTheDefaultsBeforeEachSearch) {
    host.change = oneIteration;
    EXPECT_EQ(search(), NELDER_LIMITE);
    EXPECT_EQ(search(), NELDER_LIMITE);
    EXPECT_EQ(host.asked, 2);
    EXPECT_EQ(host.defaults.initialType, 1);
    EXPECT_EQ(host.defaults.maxEvalFactor, 1000);
    EXPECT_EQ(visited.size(), 10u);
}

TEST_F(NelderHost, ATraceGoesToTheStreamOfTheHostAndIsGivenBack) {
    host.change = [](Nelder_options& options) {
        oneIteration(options);
        options.trace = 1;
    };
    search();
    EXPECT_EQ(host.traces, 1);
    EXPECT_TRUE(host.trace.expired());
    EXPECT_EQ(host.text,
              "============  ============  ============ \n"
              "     x1            x2           cout \n"
              "============  ============  ============ \n\n"
              "           4             5            19 \n"
              "           5             4            17 \n"
              "           4             4            16 \n\n"
              "---> expansion \n"
              "           5             4            17 \n"
              "           4             4            16 \n"
              "         5.5             2          11.5 \n\n"
              "Etat des calculs: NOMBRE MAXIMUM D'EVALUATIONS DU COUT ATTEINT\n"
              "Nombre d'iterations du simplexe:        1\n"
              "Nombre d'evaluations du cout:           5\n\n");
}

TEST_F(NelderHost, AHostMayHaveNoStreamForATrace) {
    host.change = [](Nelder_options& options) { options.trace = 1; };
    host.withStream = false;
    EXPECT_GT(search(), 0);
    EXPECT_EQ(host.traces, 1);
}

TEST_F(NelderHost, NoStreamIsAskedForWithoutATrace) {
    search();
    EXPECT_EQ(host.traces, 0);
}

TEST_F(NelderHost, NothingIsAskedForWithoutADimension) {
    int n = 0, status = 0;
    Nelder_minimise(host, random, recordedCost, &n, nullptr, nullptr, nullptr, nullptr, nullptr,
                    &status);
    EXPECT_EQ(status, NELDER_ERREUR);
    EXPECT_EQ(host.asked + host.traces, 0);
}

// The points of a random simplex are the draws of the generator that was handed in.
TEST_F(NelderHost, ARandomSimplexTakesTheGeneratorOfTheRun) {
    host.change = [](Nelder_options& options) {
        oneIteration(options);
        options.initialType = 3;
    };
    int seed = 0, other = 0;
    Optim_random same;
    std::vector<double> drawn;
    for (int i = 0; i < 8; ++i)
        drawn.push_back(same.draw(&seed));
    search();
    EXPECT_EQ(visited[1], (Point{10 * drawn[0], 10 * drawn[1]}));
    EXPECT_EQ(visited[2], (Point{10 * drawn[2], 10 * drawn[3]}));
    EXPECT_EQ(random.draw(&other), drawn[4]);
}

}  // namespace
