// What the continuous engine holds for one run.
//
// A runtime (records.h) is one candidate's causal graph; everything that its functions share beside
// it is here: the host, the current data line, the current split, the scratch objects. All runtimes
// of a run point to its engine, which outlives them and never owns them. Two engines know nothing
// of each other. An engine is not reentrant: its scratch objects are in use throughout.
#pragma once

#include <functional>
#include <map>
#include <ostream>
#include <vector>

#include "continuous/objets.h"
#include "continuous/printer.h"
#include "support/host.h"
#include "support/nelder.h"
#include "support/optim.h"
#include "support/rules.h"

struct s_runtime;

struct s_engine {
    // The host and the rules must outlive the engine, and the host keep its streams.
    explicit s_engine(Host& host, Rules const& rules = classicRules);
    s_engine(s_engine const&) = delete;
    s_engine& operator=(s_engine const&) = delete;

    Host& host;
    Rules const& rules;
    std::ostream& out;  // of the host: what the engine tells of its work
    std::ostream& err;  // of the host: messages for the user

    int env_opti = 1;                // not 0: the bound search is on, for the whole run
    int rt_num = 0;                  // the identity that the next copy of a runtime takes
    std::vector<double> inps, meas;  // the current line of inputs and of measures

    // The runtimes of the current split, by identity. The caller of the split owns every entry but
    // the runtime that was split, which stays its candidate's, and empties the table; also after a
    // split that ended by an exception, when the table holds the parts settled until then.
    std::multimap<long, s_runtime*, std::less<long>> nrt;

    // Scratch objects with fixed roles, unset at the start. They are not reentrant: a nested
    // evaluation that overwrites one still in use is a fault of the caller.
    s_Objet TMP1;  // the sum being formed for one variable
    s_Objet TMP2;  // the current cause value
    s_Objet TMP3;  // work object of the dynamic update
    s_Objet TMP4;  // the result of every expression evaluation
    s_Objet TMP5;  // the cause value one step older, for second-order influences
    // The corner sums of a second-order influence: bound of b1, then bound of b2; I lower, S upper.
    s_Objet TMPII, TMPIS, TMPSI, TMPSS;

    // The costs of the searches for bounds of a sine and of a cosine, set by each search over an
    // interval; null before the first one.
    Nelder_cost sin_cost_ptr = nullptr;
    Nelder_cost cos_cost_ptr = nullptr;
    // The costs of the bound search (search.h), set by init_nelder; null before it, and then no
    // search may run.
    Nelder_cost opti_static_obs_ptr = nullptr;
    Nelder_cost opti_integral_obs_ptr = nullptr;
    Nelder_cost opti_first_order_obs_ptr = nullptr;
    Nelder_cost opti_second_order_ptr = nullptr;
    Nelder_cost opti_second_order_obs_ptr = nullptr;

    Optim_random random;  // of all searches of the run, so that their draws never repeat each other
};

// Prints in the form for people, on the stream for messages.
s_Printer peoplePrinter(s_engine& engine);
// Prints bare data on *stream*, such as engine.out.
s_Printer dataPrinter(s_engine& engine, std::ostream& stream);
