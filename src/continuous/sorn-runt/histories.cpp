// Filling and pushing the histories of values and measures.
#include "continuous/sorn-runt.h"

#include <cassert>

void sn_fillHisto(s_Variable* variable) {
    variable->histo.fill(variable->old);
}

void sn_fillHistoMes(s_Variable* variable) {
    variable->mesHisto.fill(variable->mes);
    variable->lowHisto.fill(0);
    variable->highHisto.fill(0);
}

void sn_fillAllHistos(s_runtime* rt) {
    for (auto const& variable : rt->dico)
        if (!variable->isParam)
            sn_fillHisto(variable.get());
}

void sn_fillAllHistosMes(s_runtime* rt) {
    for (s_Variable* measure : rt->measure)
        sn_fillHistoMes(measure);
}

void sn_pushHisto(s_Variable* variable) {
    variable->histo.push(variable->old);
}

void sn_pushHistoMes(s_Variable* variable) {
    variable->mesHisto.push(variable->mes);
    // A measure bears at most one flag, the low one first.
    int const low = variable->lowalarm != 0 ? 1 : 0;
    int const high = low == 0 && variable->highalarm != 0 ? 1 : 0;
    variable->lowHisto.push(low);
    variable->highHisto.push(high);
}
