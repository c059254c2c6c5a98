// Deep copies of runtimes whose pointers go anywhere.
#include "copy_fixture.h"

namespace engine_test {
namespace {

// A runtime of random size: every pointer to a record goes to a random one, or nowhere.
class RandomRuntime {
public:
    explicit RandomRuntime(unsigned seed) : dice(seed) {
        rt.engine = &theEngine;
        make(rt.dico);
        make(rt.gvPool);
        make(rt.exprPool);
        make(rt.condPool);
        make(rt.influ);
        make(rt.cG);
        point();
        for (auto* list : {&rt.input, &rt.display, &rt.measure, &rt.temporal, &rt.untemporal})
            *list = some(rt.dico);
        for (auto* list : {&rt.gC, &rt.aC, &rt.mapExprs})
            *list = some(rt.exprPool);
        rt.gV = some(rt.gvPool);
        rt.condi = some(rt.condPool);
        rt.num = -1;
    }

    s_runtime rt;

private:
    template <typename Record>
    void make(std::vector<std::unique_ptr<Record>>& pool) {
        for (int count = dice(0, 6); count > 0; --count) {
            pool.push_back(std::make_unique<Record>());
            pool.back()->slot = static_cast<int>(pool.size()) - 1;
        }
    }
    template <typename Record>
    Record* any(std::vector<std::unique_ptr<Record>> const& pool) {
        int const i = dice(-1, static_cast<int>(pool.size()) - 1);
        return i < 0 ? nullptr : pool[static_cast<std::size_t>(i)].get();
    }
    template <typename Record>
    std::vector<Record*> some(std::vector<std::unique_ptr<Record>> const& pool) {
        std::vector<Record*> list;
        for (int count = dice(0, 4); count > 0; --count)
            if (Record* record = any(pool))
                list.push_back(record);
        return list;
    }
    void point() {
        for (auto const& v : rt.dico)
            v->graph = any(rt.cG);
        for (auto const& g : rt.gvPool)
            g->var = any(rt.dico);
        for (auto const& e : rt.exprPool) {
            e->gvar = any(rt.gvPool);
            e->left = any(rt.exprPool);
            e->right = any(rt.exprPool);
        }
        for (auto const& c : rt.condPool) {
            c->left = any(rt.condPool);
            c->right = any(rt.condPool);
            c->var = any(rt.dico);
            c->var2 = any(rt.dico);
            c->expr = any(rt.exprPool);
        }
        for (auto const& i : rt.influ) {
            i->cause = any(rt.dico);
            i->effect = any(rt.dico);
            i->cond = any(rt.condPool);
        }
        for (auto const& n : rt.cG) {
            n->causes = some(rt.influ);
            n->effects = some(rt.influ);
        }
    }

    Dice dice;
};

class CopyTwin : public EngineTest {};

TEST_F(CopyTwin, OfRandomRuntimes) {
    for (unsigned seed = 1; seed <= 300; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        RandomRuntime const random(seed);
        auto const copy = sn_copyRuntime(&random.rt);
        SideBySide(random.rt, *copy).check();
        if (HasFailure())
            break;
    }
}

}  // namespace
}  // namespace engine_test
