// The registry's printing: components, clauses, atoms, and the views of containers.
//
// Ids of one letter have their character code as their place in the tables, so "a" comes before "b"
// whatever the order of entry.
#include "fixtures/the_run.h"
#include "model/model_fixture.h"

using model_fixture::complaint;
using model_fixture::printed;
using model_fixture::RegistryTest;

namespace {

std::string const multimapBanner =
    "*************************** debugging : multimap view ******************************\n";

class ViewsTest : public RegistryTest {
protected:
    ViewsTest() {
        b.propagationNumber = 4;
        registry.addAtom(&b);
        registry.addAtom(&a);
    }
    ~ViewsTest() override { thePlant().active_atoms.clear(); }

    static std::string inFull(Atom const& atom) {
        return printed([&] { atom.showAtom(std::cout, true); });
    }

    ModeVar variable{"v", {"1", "2"}, "1", nullptr};
    Atom a{&variable, "1", "a"};
    Atom b{&variable, "2", "b"};
};

// T has the code 84, R 82.
TEST_F(ViewsTest, ComponentsAsKeyAndName) {
    component("T", {});
    component("R", {});
    EXPECT_EQ(printed([] { theRun().scheduler.showComps(); }), "R -- R\nT -- T\n");
}

TEST_F(ViewsTest, OneComponentByName) {
    Comp* comp = component("T", {0.5});
    std::string const expected = printed([&] { comp->showComp(std::cout, {}); });
    EXPECT_EQ(printed([] { theRun().scheduler.showComp("T", {}); }), expected);
    EXPECT_NE(expected, "");
}

TEST_F(ViewsTest, UnknownComponentIsAWarningAndEntersNothing) {
    std::string const warning = "Warning.\n  ...component doesn't exist.\n";
    std::string output;
    auto const ask = [&] { output = printed([] { theRun().scheduler.showComp("T", {}); }); };
    EXPECT_EQ(complaint(ask), warning);
    EXPECT_EQ(output, "");
    EXPECT_EQ(thePlant().active_comps.size(), 0u);
    theRun().scheduler.getComp("T");
    EXPECT_EQ(complaint(ask), warning) << "a null entry is no component either";
}

TEST_F(ViewsTest, ClausesInOrder) {
    EXPECT_EQ(printed([] { theRun().scheduler.showClauses(); }), "");
    thePlant().addClause(std::make_unique<Clause>(&b, true, nullptr));
    thePlant().addClause(std::make_unique<Clause>(&a, false, nullptr));
    EXPECT_EQ(printed([] { theRun().scheduler.showClauses(); }),
              "cl size: 1\nnon - b\ncl size: 1\na\n");
}

TEST_F(ViewsTest, AtomsOfTheRegistry) {
    theRun().scheduler.getAtom("c");
    EXPECT_EQ(printed([] { theRun().scheduler.showAtoms(); }), "a\nb\n");
}

TEST_F(ViewsTest, ActiveAtomsCountedAndInFullWhenTold) {
    std::string const brief = printed([] { theRun().scheduler.viewActiveAtoms(false); });
    std::string const banner = brief.substr(0, brief.find('\n') + 1);
    EXPECT_EQ(brief, banner + "2 atoms.\n");
    EXPECT_EQ(banner.substr(0, 3), "***");
    EXPECT_EQ(printed([] { theRun().scheduler.viewActiveAtoms(true); }),
              banner + inFull(a) + inFull(b) + "2 atoms.\n");
    theRun().scheduler.getAtom("c");
    EXPECT_EQ(printed([] { theRun().scheduler.viewActiveAtoms(true); }),
              banner + inFull(a) + inFull(b) + "2 atoms.\n")
        << "a null entry is no atom";
}

TEST_F(ViewsTest, VectorsOfAtoms) {
    std::vector<Atom*> const atoms = {&b, &a, &b};
    EXPECT_EQ(printed([&] { theRun().scheduler.viewAtomVector(&atoms); }),
              "size : 3\n" + inFull(b) + inFull(a) + inFull(b));
    EXPECT_EQ(printed([&] { theRun().scheduler.viewAtomVectorId(&atoms); }), "b\na\nb\n");
    std::vector<Atom*> const none;
    EXPECT_EQ(printed([&] { theRun().scheduler.viewAtomVector(&none); }), "size : 0\n");
    EXPECT_EQ(printed([&] { theRun().scheduler.viewAtomVectorId(&none); }), "");
    std::vector<Atom*> const holed = {nullptr, &a};
    EXPECT_EQ(printed([&] { theRun().scheduler.viewAtomVectorId(&holed); }), "null\na\n");
}

TEST_F(ViewsTest, SetsOfAtoms) {
    std::vector<std::vector<Atom*>> const sets = {{&b, &a}, {}, {&a}};
    EXPECT_EQ(printed([&] { theRun().scheduler.viewAtomVector2(&sets); }),
              "size : 2\nb\na\nsize : 0\nsize : 1\na\n");
}

TEST_F(ViewsTest, VectorOfClauses) {
    Clause first(&b, true, nullptr);
    Clause second(static_cast<Comp*>(nullptr));
    std::vector<Clause*> const clauses = {&first, &second};
    EXPECT_EQ(printed([&] { theRun().scheduler.viewClauseVector(&clauses); }),
              "cl size: 1\nnon - b\nnull\ncl size: 0\n\n");
}

TEST_F(ViewsTest, BagOfSignedAtoms) {
    SignedAtoms bag;
    bag.insert({true, &b});
    bag.insert({false, &a});
    EXPECT_EQ(printed([&] { theRun().scheduler.viewMultimapAtom(&bag); }),
              multimapBanner + "1 b\n0 a\n");
}

TEST_F(ViewsTest, TableOfAtoms) {
    EXPECT_EQ(printed([] { theRun().scheduler.viewHashMapAtom(&thePlant().active_atoms); }),
              "size : 2\na\nb\n");
}

}  // namespace
