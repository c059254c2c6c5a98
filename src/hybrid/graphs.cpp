// Graphs of the candidates that survived a run.
#include "hybrid/tavro-runt.h"
#include "trajectory/model_tools.h"

void graphTrajs(Host& host, HybMap const& trajectories, int most) {
    int i = 0;
    for (auto entry = trajectories.begin(); entry != trajectories.end() && i < most; ++entry, ++i)
        toDot(host, entry->second->traj.get(), "htraj" + std::to_string(i));
}
