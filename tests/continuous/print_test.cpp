// Text forms of constraint variables, expressions, conditions and influences, byte for byte.
#include "engine_fixture.h"

namespace engine_test {
namespace {

class Print : public EngineTest {
protected:
    Print() : choice("mode", {"on", "off"}) {
        x = plant.add("room.x", obj("0"));
        y = plant.add("room.y", obj("0"));
        gx = mkConstraintVar(plant.rt, x, obj("0"));
    }

    s_Expr* node(int op, s_GVar* gvar, s_Expr* left = nullptr, s_Expr* right = nullptr) {
        s_Expr* e = adoptExpr(plant.rt, std::make_unique<s_Expr>());
        e->op = op;
        e->gvar = gvar;
        e->left = left;
        e->right = right;
        return e;
    }
    s_Expr* constant(char const* value) {
        return node(EXPR_CONST, mkConstant(plant.rt, obj(value)));
    }
    s_Condition* make(int kind) {
        s_Condition* c = adoptCondition(plant.rt, mkCond());
        c->kind = kind;
        return c;
    }

    static std::string of(s_GVar const* g) {
        return printed([g] { sn_printGVar(stdout, g); });
    }
    static std::string of(s_Expr const* e) {
        return printed([e] { sn_printExpr(stdout, e); });
    }
    static std::string of(s_Condition const* c) {
        return printed([c] { sn_printCondition(stdout, c); });
    }
    static std::string of(s_Influence const* i) {
        return printed([i] { printInfluence(i); });
    }
    // What arrives on the error stream.
    template <typename Record>
    static std::string forPeople(void (*print)(std::FILE*, Record const*), Record const* record) {
        std::string text;
        printed([&] { text = complaint([&] { print(stderr, record); }); });
        return text;
    }

    Plant plant;
    Choice choice;
    s_Variable *x, *y;
    s_GVar* gx;
};

// ---- Constraint variables ----

TEST_F(Print, AConstraintVariable) {
    EXPECT_EQ(of(gx), "room.x");
    EXPECT_EQ(of(mkConstant(plant.rt, obj("2.5"))), "2.5");
    EXPECT_EQ(of(mkConstant(plant.rt, obj("[1, 2["))), "1 2");
    s_GVar intermediate;
    intermediate.kind = GV_INTERMEDIATE;
    intermediate.number = 7;
    EXPECT_EQ(of(&intermediate), "InTeRm7");
}

TEST_F(Print, AConstantForPeople) {
    EXPECT_EQ(forPeople(sn_printGVar, static_cast<s_GVar const*>(mkConstant(plant.rt, obj("3")))),
              " =3");
    EXPECT_EQ(
        forPeople(sn_printGVar, static_cast<s_GVar const*>(mkConstant(plant.rt, obj("[-MAX, 0[")))),
        " in  [-oo, 0[");
}

// ---- Expressions ----

TEST_F(Print, ALeaf) {
    EXPECT_EQ(of(constant("4")), "4");
    EXPECT_EQ(of(node(EXPR_VAR, gx)), "room.x");
}

TEST_F(Print, EveryOperation) {
    std::vector<std::pair<int, char const*>> const operations = {
        {EXPR_ADD, "4+room.x"}, {EXPR_SUB, "4-room.x"},  {EXPR_MUL, "4*room.x"},
        {EXPR_DIV, "4/room.x"}, {EXPR_POW, "4**room.x"}, {EXPR_NEG, "-4"}};
    for (auto const& [op, expected] : operations)
        EXPECT_EQ(of(node(op, nullptr, constant("4"), node(EXPR_VAR, gx))), expected);
}

TEST_F(Print, InnerNodesStandInBrackets) {
    s_Expr* sum = node(EXPR_ADD, nullptr, constant("1"), constant("2"));
    s_Expr* negated = node(EXPR_NEG, nullptr, sum);
    EXPECT_EQ(of(node(EXPR_MUL, nullptr, sum, negated)), "(1+2)*(-(1+2))");
    EXPECT_EQ(of(negated), "-(1+2)");
}

TEST_F(Print, AnInnerNodeThatNamesAVariableIsThatVariable) {
    s_Expr* named = node(EXPR_ADD, gx, constant("1"), constant("2"));
    EXPECT_EQ(of(node(EXPR_MUL, nullptr, named, named)), "room.x*room.x");
    EXPECT_EQ(of(named), "1+2");
}

// ---- Conditions; each ends its line ----

TEST_F(Print, AConstantCondition) {
    s_Condition* c = make(COND_CONST);
    EXPECT_EQ(of(c), "(false)\n");
    c->val = 1;
    EXPECT_EQ(of(c), "(true)\n");
}

TEST_F(Print, ARelation) {
    s_Condition* c = make(COND_REL);
    c->var = x;
    c->value = obj("[1, 2]");
    char const* const expected[] = {"(room.x1 2)\n",     "(room.x = 1 2)\n",  "(room.x != 1 2)\n",
                                    "(room.x <= 1 2)\n", "(room.x < 1 2)\n",  "(room.x >= 1 2)\n",
                                    "(room.x > 1 2)\n",  "(room.x in 1 2)\n", "(room.x1 2)\n"};
    for (c->op = 0; c->op <= 8; ++c->op)
        EXPECT_EQ(of(c), expected[c->op]);
    c->op = REL_LT;
    c->var2 = y;
    EXPECT_EQ(of(c), "(room.x < room.y)\n");
}

TEST_F(Print, Operators) {
    s_Condition* yes = make(COND_CONST);
    yes->val = 1;
    s_Condition* no = make(COND_CONST);
    EXPECT_EQ(of(mkBinaryCond(plant.rt, COND_OR, yes, no, 0)), "((true)\n | (false)\n)\n");
    EXPECT_EQ(of(mkBinaryCond(plant.rt, COND_AND, no, yes, 0)), "((false)\n & (true)\n)\n");
    s_Condition* c = make(COND_NOT);
    c->left = yes;
    EXPECT_EQ(of(c), "(! (true)\n)\n");
}

TEST_F(Print, AnAtom) {
    EXPECT_EQ(of(mkAtomCond(plant.rt, choice[1], 0)), "(mode=off)\n");
}

TEST_F(Print, AnExpressionWithItsVariable) {
    s_Expr* space = mkSpace(plant.rt, gx, 10, obj("[-MAX, 0["));
    EXPECT_EQ(of(mkExprCond(plant.rt, y, REL_LT, space, 0, nullptr, 0)),
              "(room.x : 10+-1.79769e+308 0)\n");
}

TEST_F(Print, AnUnknownKind) {
    EXPECT_EQ(of(make(0)), "()\n");
}

// The end of the line and the atom go to standard output whatever the stream.
TEST_F(Print, AConditionForPeople) {
    s_Condition* c = mkAtomCond(plant.rt, choice[0], 0);
    std::string out, err;
    out = printed([&] { err = complaint([c] { sn_printCondition(stderr, c); }); });
    EXPECT_EQ(err, "()");
    EXPECT_EQ(out, "mode=on\n");
    s_Condition* relation = make(COND_REL);
    relation->var = x;
    relation->op = REL_GE;
    relation->value = obj("3");
    EXPECT_EQ(forPeople(sn_printCondition, static_cast<s_Condition const*>(relation)),
              "(room.x >=  =3)");
}

TEST_F(Print, NoCondition) {
    std::string err;
    EXPECT_EQ(printed([&] { err = complaint([] { sn_printCondition(stdout, nullptr); }); }), "");
    EXPECT_EQ(err, "Unable to print condition (NULL Pointer)\n");
    s_Condition* c = make(COND_NOT);
    EXPECT_EQ(printed([&] { err = complaint([c] { sn_printCondition(stdout, c); }); }), "(! )\n");
    EXPECT_EQ(err, "Unable to print condition (NULL Pointer)\n");
}

// ---- Influences ----

TEST_F(Print, AnInfluenceWithAllThatItCanHave) {
    s_Condition* c = make(COND_CONST);
    c->val = 1;
    s_Influence* i =
        mkInfluence(plant.rt, "R1.i1", INF_DYNAMIC2, x, y, c, 3, obj("[0.5, 2]"), 1, 0);
    i->delayMax = 4;
    i->respTime = obj("1.5");
    i->xi = obj("0.5");
    i->w = obj("2");
    i->n1 = obj("11");
    i->n2 = obj("12");
    i->d0 = obj("13");
    i->d1 = obj("14");
    i->d2 = obj("15");
    EXPECT_EQ(of(i),
              "  R1.i1: condition (true)\n room.x -D2-> room.y: gain 0.5 2: xi 0.5: w 2: n1 11: n2 "
              "12: d0 13: d1 14: d2 15; delay 1, 4\n; resp. time 1.5; condHistoLn = 3;\n");
}

TEST_F(Print, AnAnonymousInfluenceWithTheLeast) {
    s_Influence* i = mkInfluence(plant.rt, "", INF_STATIC, x, y, nullptr, 0, obj("1"), 2, 0);
    EXPECT_EQ(of(i),
              "  room.x -S-> room.y: gain 1; delay 2, 2\n; resp. time 0; condHistoLn = 0;\n");
}

TEST_F(Print, TheLetterOfEachType) {
    std::vector<std::pair<influType, char const*>> const letters = {{INF_DYNAMIC, " -D-> "},
                                                                    {INF_INTEGRAL, " -I-> "},
                                                                    {INF_STATIC, " -S-> "},
                                                                    {INF_COUPLING, " -C-> "},
                                                                    {INF_DYNAMIC2, " -D2-> "}};
    for (auto const& [type, arrow] : letters) {
        s_Influence* i = mkInfluence(plant.rt, "i", type, x, y, nullptr, 1, obj("1"), 0, 0);
        EXPECT_EQ(of(i), std::string("  i: room.x") + arrow +
                             "room.y: gain 1; delay 0, 0\n; resp. time 0; condHistoLn = 1;\n");
    }
}

// The rest of the rational form is shown with its first numerator only; a model may lack some of
// it.
TEST_F(Print, TheRationalFormNeedsItsFirstNumerator) {
    s_Influence* i = mkInfluence(plant.rt, "i", INF_DYNAMIC2, x, y, nullptr, 0, obj("1"), 0, 0);
    std::string const before = of(i);
    i->n2 = i->d0 = i->d1 = i->d2 = obj("5");
    EXPECT_EQ(of(i), before);
    i->n1 = obj("4");
    i->n2.reset();
    i->d1.reset();
    EXPECT_EQ(of(i),
              "  i: room.x -D2-> room.y: gain 1: n1 4: d0 5: d2 5; delay 0, 0\n; resp. time 0; "
              "condHistoLn = 0;\n");
}

}  // namespace
}  // namespace engine_test
