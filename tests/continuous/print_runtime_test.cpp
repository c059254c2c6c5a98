// What the printers of a runtime write, byte for byte, for people (the error stream) and as bare
// numbers (any other stream).
#include "engine_fixture.h"

namespace engine_test {
namespace {

// A runtime with a parameter p, an input u, a measured and displayed x, and a plain y.
class PrintRuntime : public EngineTest {
protected:
    PrintRuntime() {
        p = parameter(plant, "r.p", 2.5);
        u = plant.add("r.u", obj("3"), 0);
        x = plant.add("r.x", obj("[1, 2["));
        y = plant.add("r.y", obj("4"));
        x->domain = obj("[0, 9]");
        y->domain = obj("[-MAX, MAX]");
        for (s_Variable* variable : {p, u, x, y})
            variable->defined = 1;
        plant.rt.input = {u};
        plant.rt.display = {x};
        plant.measure(x, 1.5);
    }

    // What a printer of the runtime, or of a record of it, writes for people, and as data.
    template <typename... Parameters, typename... Records>
    static std::string people(void (*print)(std::FILE*, Parameters...), Records... records) {
        std::string err;
        out = printed([&] { err = complaint([&] { print(stderr, records...); }); });
        return err;
    }
    template <typename... Parameters, typename... Records>
    static std::string data(void (*print)(std::FILE*, Parameters...), Records... records) {
        return printed([&] { print(stdout, records...); });
    }

    static inline std::string out;  // what a printer for people left on standard output
    Plant plant;
    s_runtime* rt = &plant.rt;
    s_Variable *p, *u, *x, *y;
};

// ---- Values ----

TEST_F(PrintRuntime, TheName) {
    EXPECT_EQ(people(sn_printVarNom, x), "r.x");
    EXPECT_EQ(data(sn_printVarNom, x), "r.x");
}

TEST_F(PrintRuntime, AValueForPeople) {
    EXPECT_EQ(people(sn_printVarValue, u), "  r.u =3\n");
    EXPECT_EQ(people(sn_printVarValue, x), "  r.x in  [1, 2[\n");
    EXPECT_EQ(out, "");
}

TEST_F(PrintRuntime, AValueAsTwoColumns) {
    EXPECT_EQ(data(sn_printVarValue, u), "3 3 ");
    EXPECT_EQ(data(sn_printVarValue, x), "1 2 ");
}

TEST_F(PrintRuntime, AValueThatIsNotDefined) {
    x->defined = 0;
    EXPECT_EQ(people(sn_printVarValue, x), "  r.x ?\n");
    EXPECT_EQ(data(sn_printVarValue, x), " ? ");
    EXPECT_EQ(people(sn_printVarValueNV, x), "  r.x ?\n");
}

TEST_F(PrintRuntime, TheNewValue) {
    x->new_ = obj("7");
    EXPECT_EQ(people(sn_printVarValueNV, x), "  r.x =7\n");
    EXPECT_EQ(data(sn_printVarValueNV, x), "7 7 ");
    EXPECT_EQ(data(sn_printVarValue, x), "1 2 ");
}

// ---- The dictionary ----

TEST_F(PrintRuntime, Roles) {
    u->domain = obj("1");
    EXPECT_EQ(people(sn_printVariable, rt, u), "  r.u: input; variable =1; no history\n");
    EXPECT_EQ(people(sn_printVariable, rt, x),
              "  r.x: measured, display; variable in  [0, 9]; history length = 4*Ts\n");
    rt->display = {u, y};
    EXPECT_EQ(people(sn_printVariable, rt, u), "  r.u: input, display; variable =1; no history\n");
    EXPECT_EQ(people(sn_printVariable, rt, x),
              "  r.x: measured; variable in  [0, 9]; history length = 4*Ts\n");
    EXPECT_EQ(people(sn_printVariable, rt, y),
              "  r.y: display; variable in  [-oo, +oo]; history length = 4*Ts\n");
    rt->display.clear();
    EXPECT_EQ(people(sn_printVariable, rt, y),
              "  r.y:  variable in  [-oo, +oo]; history length = 4*Ts\n");
}

TEST_F(PrintRuntime, TheDictionaryInOrder) {
    std::string const lines = people(sn_printDic, rt);
    EXPECT_EQ(lines, people(sn_printVariable, rt, p) + people(sn_printVariable, rt, u) +
                         people(sn_printVariable, rt, x) + people(sn_printVariable, rt, y));
    EXPECT_EQ(lines.find("  r.p:  parameter  =2.5; "), 0u);
}

TEST_F(PrintRuntime, HistoriesOfAMeasure) {
    x->histo = historyOf<s_Objet>({obj("1"), obj("[2, 3]")});
    x->mesHisto = historyOf<s_Objet>({obj("4"), obj("5")});
    x->new_ = obj("8");
    EXPECT_EQ(people(sn_printVarHistory, rt, x),
              " =4 *  =5 * \nmes:  =1.5\n =1 *  in  [2, 3] * \nold:  in  [1, 2[\nnew:  =8");
    EXPECT_EQ(data(sn_printVarHistory, rt, x), "4 * 5 * \nmes: 1.5\n1 * 2 3 * \nold: 1 2\nnew: 8");
}

TEST_F(PrintRuntime, HistoriesOfOthers) {
    y->histo = historyOf<s_Objet>({obj("6")});
    EXPECT_EQ(data(sn_printVarHistory, rt, y), "6 * \nold: 4\nnew: 4");
    p->histo = historyOf<s_Objet>({obj("2.5")});
    EXPECT_EQ(data(sn_printVarHistory, rt, p), "2.5 * \nold: 2.5");
}

// ---- Lists of the runtime ----

TEST_F(PrintRuntime, TheSpaceLeavesParametersOut) {
    EXPECT_EQ(people(sn_printSpace, rt), "  r.u =3\n  r.x in  [1, 2[\n  r.y =4\n");
    EXPECT_EQ(data(sn_printSpace, rt), "3 3 1 2 4 4 ");
}

TEST_F(PrintRuntime, InputsDisplaysAndMeasuresInTheirOrder) {
    rt->input = {u, y};
    rt->display = {y, x};
    EXPECT_EQ(people(sn_printInputs, rt), "  r.u =3\n  r.y =4\n");
    EXPECT_EQ(people(sn_printDisplays, rt), "  r.y =4\n  r.x in  [1, 2[\n");
    EXPECT_EQ(people(sn_printMeasures, rt), "  r.x in  [1, 2[\n");
}

TEST_F(PrintRuntime, Initializations) {
    rt->init = {{x, obj("4")}, {y, obj("]0, 1]")}};
    EXPECT_EQ(people(sn_printInits, rt), "  r.x =4\n  r.y in ]0, 1]\n");
}

TEST_F(PrintRuntime, ConditionsWithTheirCount) {
    EXPECT_EQ(people(sn_printConds, rt), "size : 0\n");
    s_Condition* yes = adoptCondition(*rt, mkCond());
    yes->kind = COND_CONST;
    yes->val = 1;
    s_Condition* no = adoptCondition(*rt, mkCond());
    no->kind = COND_CONST;
    rt->condi = {no, yes, no};
    EXPECT_EQ(people(sn_printConds, rt), "size : 3\n(false)(true)(false)");
    EXPECT_EQ(out, "\n\n\n") << "the ends of the lines";
    EXPECT_EQ(data(sn_printConds, rt), "size : 3\n(false)\n(true)\n(false)\n");
}

TEST_F(PrintRuntime, ConditionsWithCurrentValues) {
    s_Condition* c = adoptCondition(*rt, mkCond());
    c->kind = COND_REL;
    c->var = x;
    c->op = REL_LE;
    c->value = obj("10");
    EXPECT_EQ(data(sn_printCondValues, c), "(r.x : 1 2 <= 10)\n");
    c->var2 = y;
    EXPECT_EQ(data(sn_printCondValues, c), "(r.x : 1 2 <= r.y : 4)\n");
    EXPECT_EQ(people(sn_printCondValues, c), "(r.x :  in  [1, 2[ <= r.y :  =4)");
    s_Condition* negated = adoptCondition(*rt, mkCond());
    negated->kind = COND_NOT;
    negated->left = c;
    EXPECT_EQ(data(sn_printCondValues, negated), "(! (r.x : 1 2 <= r.y : 4)\n)\n");
    EXPECT_EQ(data(sn_printCondValues, mkBinaryCond(*rt, COND_OR, c, c, 0)),
              "((r.x : 1 2 <= r.y : 4)\n | (r.x : 1 2 <= r.y : 4)\n)\n");
    EXPECT_EQ(data(sn_printCondValues, mkBinaryCond(*rt, COND_AND, c, c, 0)),
              "((r.x : 1 2 <= r.y : 4)\n & (r.x : 1 2 <= r.y : 4)\n)\n");
    EXPECT_EQ(people(sn_printCondValues, nullptr), "Unable to print condition (NULL Pointer)\n");
}

TEST_F(PrintRuntime, AnExpressionWithTheCurrentValueOfItsVariable) {
    s_GVar* gx = mkConstraintVar(*rt, x, obj("0"));
    s_Condition* c = mkExprCond(*rt, x, REL_LT, mkSpace(*rt, gx, 10, obj("[0, 1]")), 0, nullptr, 0);
    EXPECT_EQ(data(sn_printCondValues, c), "(r.x : 1 2 : 10+0 1)\n");
}

// ---- Influences ----

TEST_F(PrintRuntime, AnInfluenceWithAllThatItCanHave) {
    s_Condition* yes = adoptCondition(*rt, mkCond());
    yes->kind = COND_CONST;
    yes->val = 1;
    s_Influence* i = mkInfluence(*rt, "i1", INF_DYNAMIC2, u, x, yes, 3, obj("[0.5, 2]"), 1, 0);
    i->delayMax = 4;
    i->respTime = obj("1.5");
    i->xi = obj("0.5");
    i->w = obj("2");
    i->n1 = obj("11");
    i->n2 = obj("12");
    i->d0 = obj("13");
    i->d1 = obj("14");
    i->d2 = obj("15");
    EXPECT_EQ(
        data(sn_printRules, rt),
        "  i1: condition (true)\n r.u -D2-> r.x: gain0.5 2: xi 0.5: w 2: n1 11: n2 12: d0 13: "
        "d1 14: d2 15; delay in [1, 4]; resp. time1.5;\n");
    EXPECT_EQ(people(sn_printRules, rt),
              "  i1: condition (true) r.u -D2-> r.x: gain in  [0.5, 2]: w  =2: n1  =11: n2  =12: "
              "d0  =13: d1  =14: d2  =15; delay in [1, 4]; resp. time =1.5;\n");
    EXPECT_EQ(out, "\n: xi 0.5") << "the end of the condition, and the damping";
}

TEST_F(PrintRuntime, InfluencesWithTheLeast) {
    mkInfluence(*rt, "", INF_STATIC, u, x, nullptr, 0, obj("1"), 2, 0);
    s_Influence* second = mkInfluence(*rt, "b", INF_COUPLING, x, y, nullptr, 0, obj("2"), 0, 0);
    second->n2 = second->d0 = obj("5");
    EXPECT_EQ(people(sn_printRules, rt),
              "  r.u -S-> r.x: gain =1; delay =2; resp. time =0;\n"
              "  b: r.x -C-> r.y: gain =2; delay =0; resp. time =0;\n");
    second->n1 = obj("4");
    second->n2.reset();
    EXPECT_NE(people(sn_printRules, rt).find(": gain =2: n1  =4: d0  =5; delay"),
              std::string::npos);
}

TEST_F(PrintRuntime, TheCausalGraph) {
    s_Influence* named = mkInfluence(*rt, "i1", INF_DYNAMIC, u, x, nullptr, 0, obj("1"), 0, 0);
    s_Influence* second = mkInfluence(*rt, "i2", INF_DYNAMIC, y, x, nullptr, 0, obj("1"), 0, 0);
    mkGraph(*rt, u, INF_STATIC, {}, {named});
    mkGraph(*rt, x, INF_DYNAMIC, {named, second}, {});
    EXPECT_EQ(people(sn_printCGraph, rt),
              "  r.u:\n    no causes;\n    effects: i1; \n"
              "  r.x:\n    causes (dynamic): i1; i2; \n    no effects;\n");
}

TEST_F(PrintRuntime, TheWordOfEachKind) {
    s_Influence* i = mkInfluence(*rt, "i", INF_DYNAMIC, u, x, nullptr, 0, obj("1"), 0, 0);
    s_CGraph* node = mkGraph(*rt, x, INF_DYNAMIC, {i}, {});
    std::vector<std::pair<influType, char const*>> const words = {{INF_DYNAMIC, "dynamic"},
                                                                  {INF_INTEGRAL, "integral"},
                                                                  {INF_STATIC, "static"},
                                                                  {INF_COUPLING, ""},
                                                                  {INF_DYNAMIC2, "dynamic2"}};
    for (auto const& [kind, word] : words) {
        node->kind = kind;
        EXPECT_EQ(people(sn_printCGraph, rt),
                  std::string("  r.x:\n    causes (") + word + "): i; \n    no effects;\n");
    }
}

// ---- Update lists and global constraints ----

TEST_F(PrintRuntime, TheUpdateLists) {
    EXPECT_EQ(people(sn_printUpdateListsorn, rt), "\n Untemporal listsorn: ;\n");
    rt->temporal = {x};
    rt->untemporal = {y, u};
    EXPECT_EQ(people(sn_printUpdateListsorn, rt),
              "\n Temporal listsorn: r.x;\n Untemporal listsorn: r.y, r.u;\n");
}

TEST_F(PrintRuntime, GlobalConstraints) {
    s_GVar* gx = mkConstraintVar(*rt, x, obj("0"));
    s_GVar* gy = mkConstraintVar(*rt, y, obj("0"));
    rt->gV = {gx, gy};
    // Entry 0 is no constraint.
    gx->gcIdx = {2, 0, 4};
    gy->gcIdx = {0};
    EXPECT_EQ(people(sn_printGlobVs, rt), "  r.x: 1 5;\n  r.y;\n");
    s_Expr* space = mkSpace(*rt, gx, 10, obj("[0, 1]"));
    rt->gC = {space, space};
    EXPECT_EQ(data(sn_printGContr, space), "r.x = 10+0 1;\n");
    EXPECT_EQ(people(sn_printGlobCs, rt),
              "  (1) r.x =  =10+ in  [0, 1];\n  (2) r.x =  =10+ in  [0, 1];\n");
}

}  // namespace
}  // namespace engine_test
