// Graphs of the candidates that survived a run.
#include "hybrid/tavro-runt.h"
#include "trajectory/model_tools.h"

void graphTrajs(Host& host, HybMap const& trajectories) {
    int i = 0;
    for (auto const& entry : trajectories)
        toDot(host, entry.second->traj.get(), "htraj" + std::to_string(i++));
}
