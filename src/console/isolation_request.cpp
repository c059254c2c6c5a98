// The request for isolation, and the hooks through which the engine reads it.
#include "console/isolation_request.h"

#include <algorithm>
#include <cstdio>

#include "console/console.h"
#include "continuous/isolation.h"
#include "continuous/records.h"
#include "continuous/sorn-runt.h"
#include "hybrid/tavro-runt.h"

IsolationRequest tDiag(nullptr);

namespace {

// The position among the measures of the model, or -1.
int measureOf(std::string const& name) {
    auto const& measures = consoleRun->tavro_rt->measure;
    auto const found = std::find_if(measures.begin(), measures.end(),
                                    [&](s_Variable const* v) { return v->nom == name; });
    return found == measures.end() ? -1 : static_cast<int>(found - measures.begin());
}

// The value of one condition; -1, and a message, when it is missing or wrong.
int readCondition() {
    std::optional<std::string> const& token = tDiag.token();
    if (!token) {
        std::fprintf(stderr, "Not enough condition values !\n");
        return -1;
    }
    int const value = token->starts_with('0') ? 0 : token->starts_with('1') ? 1 : -1;
    if (value == -1)
        std::fprintf(stderr, "Wrong condition value !\n");
    else
        tDiag.advance();
    return value;
}

}  // namespace

int sorn_getMisbs(char const*, int count, int* values) {
    std::fill(values, values + count, 0);
    while (tDiag.token() && !isNumeric(*tDiag.token())) {
        int const index = measureOf(*tDiag.token());
        if (index < 0 || index >= count) {
            std::fprintf(stderr, "Variable %s either is not measured or does not exist !\n",
                         tDiag.token()->c_str());
            std::fill(values, values + count, 0);
            tDiag.abandon();
            return 0;
        }
        values[index] = 1;
        tDiag.advance();
    }
    return 1;
}

// An influence without a condition takes 1 and uses no token.
int sorn_getConds(char const*, int count, int* values) {
    for (int i = 0; i < count; ++i) {
        bool const given =
            consoleRun->tavro_rt->influ[static_cast<std::size_t>(i)]->cond != nullptr;
        int const value = given ? readCondition() : 1;
        if (value == -1)
            return 0;
        values[i] = value;
    }
    return 1;
}

int isolationLevelOf(std::string const& word) {
    for (int level : {LEVEL_PLAIN, LEVEL_PREFERENCE, LEVEL_EXONERATION})
        if (word.find(std::string("fault").append(std::to_string(level))) != std::string::npos)
            return level;
    return 0;
}

namespace {

// Required: the usage ends in a word with a double n.
void tellUsage() {
    std::fprintf(stderr, "\nUsage: diagnosis fault[1 2 3] misb-var1 misb-var2 ...\n%sn\n",
                 isolationLevels);
}

}  // namespace

int snDiagnosis(char const* arg) {
    if (consoleRun->tavro_rt == nullptr) {
        std::fprintf(stderr, "The model has no continuous runtime.\n");
        return 1;
    }
    tDiag = IsolationRequest(arg);
    if (!tDiag.token()) {
        tellUsage();
        return 1;
    }
    int const level = isolationLevelOf(*tDiag.token());
    if (level == 0) {
        std::fprintf(stderr, "Unknown parameter %s. Expecting one of\n%s\n\n",
                     tDiag.token()->c_str(), isolationLevels);
        return 1;
    }
    tDiag.advance();
    if (!tDiag.token()) {
        std::fprintf(stderr, "Missing misbehaving variables !\n");
        return 1;
    }
    if (sorn_doCycle(consoleRun->tavro_rt, CYCLE_DIAGNOSE + level - LEVEL_PLAIN, 0) == -1)
        std::fprintf(stderr, "Invalid model !\n");
    sorn_close(consoleRun->tavro_rt);
    return 1;
}
