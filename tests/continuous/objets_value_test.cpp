// Making, copying and bounds of the value objects, and the shared objects.

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <type_traits>

#include "continuous/objets.h"
#include "fixtures/one_engine.h"

namespace objets_test {

s_Objet obj(char const* notation);
std::string text(s_Objet const& o);

namespace {

s_Objet makeWord(int word) {
    s_Objet o;
    o.type = OBJ_WORD;
    o.word = word;
    return o;
}

static_assert(std::is_same_v<boolVal, int>);

TEST(ObjetsMaking, ANewObjectIsUnsetAndZero) {
    s_Objet const o;
    EXPECT_EQ(o.type, 0);
    EXPECT_EQ(o.rng.inf, 0.0);
    EXPECT_EQ(o.rng.sup, 0.0);
    EXPECT_EQ(o.rng.infClosed, 0);
    EXPECT_EQ(o.rng.supClosed, 0);
}

TEST(ObjetsMaking, TheKindsHaveTheirNumbers) {
    EXPECT_EQ(OBJ_REAL, 1);
    EXPECT_EQ(OBJ_RANGE, 2);
    EXPECT_EQ(OBJ_WORD, 3);
}

TEST(ObjetsMaking, NumbersAndIntervals) {
    EXPECT_EQ(text(makeReal(-3.5)), "-3.5");
    EXPECT_EQ(text(mkObjReal(-3.5)), "-3.5");
    EXPECT_EQ(text(makeRange(1, 2, 1, 0)), "[1, 2[");
    EXPECT_EQ(text(makeRange(1, 2, 0, 1)), "]1, 2]");
}

TEST(ObjetsMaking, ASpaceIntervalIsOpenAtBothEnds) {
    EXPECT_EQ(text(sn_mkSpObjet(-1, 4)), "]-1, 4[");
}

TEST(ObjetsCopy, NullGivesNothing) {
    EXPECT_FALSE(copyObjet(nullptr).has_value());
}

TEST(ObjetsCopy, EveryKindIsCarried) {
    for (char const* notation : {"7", "[1, 2[", "]1, 2]", "]-MAX, MAX["}) {
        s_Objet const o = obj(notation);
        EXPECT_EQ(text(copyObjet(&o).value()), notation);
    }
    s_Objet const word = makeWord(0x7fedcba9);
    EXPECT_EQ(copyObjet(&word)->type, OBJ_WORD);
    EXPECT_EQ(copyObjet(&word)->word, 0x7fedcba9);
}

TEST(ObjetsCopy, AnUnsetObjectIsCopiedWithItsBounds) {
    s_Objet o = obj("[1, 2]");
    o.type = OBJ_UNSET;
    s_Objet copy = copyObjet(&o).value();
    EXPECT_EQ(copy.type, OBJ_UNSET);
    copy.type = OBJ_RANGE;
    EXPECT_EQ(text(copy), "[1, 2]");
}

TEST(ObjetsCopy, ACopyIsIndependent) {
    s_Objet o = obj("[1, 2]");
    s_Objet const copy = copyObjet(&o).value();
    o.rng.inf = -5;
    EXPECT_EQ(text(copy), "[1, 2]");
}

TEST(ObjetsPut, TheDestinationBecomesTheSource) {
    for (char const* from : {"7", "[1, 2[", "]1, 2]"}) {
        for (char const* to : {"9", "[3, 4]", "]3, 4["}) {
            s_Objet const source = obj(from);
            s_Objet destination = obj(to);
            sn_putObjet(&source, &destination);
            EXPECT_EQ(text(destination), from);
            EXPECT_EQ(text(source), from);
        }
    }
}

TEST(ObjetsPut, AWordIsCarried) {
    s_Objet const source = makeWord(-12);
    s_Objet destination = obj("[3, 4]");
    sn_putObjet(&source, &destination);
    EXPECT_EQ(destination.type, OBJ_WORD);
    EXPECT_EQ(destination.word, -12);
}

TEST(ObjetsPut, OfAnotherKindTheTypeAloneIsTaken) {
    for (int const type : {0, 4, -1}) {
        s_Objet source = obj("[1, 2]");
        source.type = type;
        s_Objet destination = obj("[3, 4[");
        sn_putObjet(&source, &destination);
        EXPECT_EQ(destination.type, type);
        destination.type = OBJ_RANGE;
        EXPECT_EQ(text(destination), "[3, 4[");
    }
}

TEST(ObjetsPut, AnObjectMayBePutOnItself) {
    s_Objet o = obj("[1, 2[");
    sn_putObjet(&o, &o);
    EXPECT_EQ(text(o), "[1, 2[");
}

TEST(ObjetsBounds, OfEachKind) {
    EXPECT_EQ(sn_infOf(obj("[1, 2[")), 1.0);
    EXPECT_EQ(sn_supOf(obj("[1, 2[")), 2.0);
    EXPECT_EQ(sn_infOf(obj("7")), 7.0);
    EXPECT_EQ(sn_supOf(obj("7")), 7.0);
    EXPECT_EQ(sn_infOf(makeWord(5)), 0.0);
    EXPECT_EQ(sn_supOf(makeWord(5)), 0.0);
}

TEST(ObjetsBounds, SettingOneLeavesTheRestOfAnInterval) {
    s_Objet o = obj("[1, 2[");
    sn_setInf(&o, 5);
    EXPECT_EQ(text(o), "[5, 2[");
    sn_setSup(&o, 9);
    EXPECT_EQ(text(o), "[5, 9[");
}

TEST(ObjetsBounds, OnlyTheLowerOneSetsANumber) {
    s_Objet o = obj("7");
    sn_setInf(&o, 5);
    EXPECT_EQ(text(o), "5");
    sn_setSup(&o, 9);
    EXPECT_EQ(text(o), "5");
}

TEST(ObjetsBounds, SettingLeavesOtherKinds) {
    s_Objet unset, word = makeWord(5);
    for (s_Objet* o : {&unset, &word}) {
        sn_setInf(o, 3);
        sn_setSup(o, 4);
    }
    EXPECT_EQ(unset.type, OBJ_UNSET);
    EXPECT_EQ(unset.rng.inf, 0.0);
    EXPECT_EQ(unset.rng.sup, 0.0);
    EXPECT_EQ(word.word, 5);
}

TEST(ObjetsShared, Constants) {
    EXPECT_EQ(text(*objZero), "0");
    EXPECT_EQ(text(*objUn), "1");
    EXPECT_EQ(text(*objDix), "10");
    EXPECT_EQ(text(*objMax), "]-MAX, MAX[");
}

// The engine fills one scratch object while it reads another, so no two may share their storage.
TEST(ObjetsShared, TheScratchObjectsAreNineDistinctOnes) {
    s_Objet* const scratch[] = {TMP1, TMP2, TMP3, TMP4, TMP5, TMPII, TMPIS, TMPSI, TMPSS};
    for (int i = 0; i < 9; ++i)
        *scratch[i] = makeRange(i, i + 1, 1, 1);
    for (int i = 0; i < 9; ++i) {
        EXPECT_EQ(scratch[i]->rng.inf, i);
        std::construct_at(scratch[i]);
    }
}

// A later file's initialiser may already compute with the constants.
s_Objet const madeBeforeMain = [] {
    s_Objet sum = *objDix;
    sn_addObjet(&sum, objUn);
    return sum;
}();

TEST(ObjetsShared, TheConstantsServeStaticInitialisation) {
    EXPECT_EQ(text(madeBeforeMain), "11");
}

// Operations without a meaning for a word or an unset object leave both operands and answer 0.
class ObjetsOddKinds : public testing::TestWithParam<int> {
protected:
    s_Objet odd() const {
        s_Objet o;
        o.type = GetParam();
        return o;
    }

    template <typename Operation>
    void expectUntouched(Operation operation) {
        for (char const* notation : {"7", "[1, 2["}) {
            s_Objet value = obj(notation), other = odd();
            operation(&value, &other);
            EXPECT_EQ(text(value), notation);
            operation(&other, &value);
            EXPECT_EQ(text(other), text(odd()));
            EXPECT_EQ(text(value), notation);
        }
    }

    template <typename Relation>
    void expectZero(Relation relation) {
        s_Objet other = odd();
        for (char const* notation : {"-7", "7", "[1, 2[", "]-2, -1]", "[-1, 1]", "]0, 0["}) {
            s_Objet value = obj(notation);
            EXPECT_EQ(relation(&value, &other), 0) << notation;
            EXPECT_EQ(relation(&other, &value), 0) << notation;
        }
        EXPECT_EQ(relation(&other, &other), 0);
    }
};

TEST_P(ObjetsOddKinds, TwoOperandOperationsDoNothing) {
    expectUntouched(sn_addObjet);
    expectUntouched(sn_subObjet);
    expectUntouched(sn_mulObjet);
    expectUntouched(sn_divObjet);
    expectUntouched(sn_interObjet);
    expectUntouched(sn_uniObjet);
}

TEST_P(ObjetsOddKinds, FunctionsDoNothing) {
    for (auto* function :
         {sn_minusObjet, sn_expObjet, sn_logObjet, sn_sqrtObjet, sn_sinObjet, sn_cosObjet}) {
        s_Objet o = odd();
        function(&o);
        EXPECT_EQ(text(o), text(odd()));
        EXPECT_EQ(o.rng.inf, 0.0);
        EXPECT_EQ(o.rng.sup, 0.0);
    }
}

TEST_P(ObjetsOddKinds, AnswersAreZero) {
    expectZero(sn_eqObjet);
    expectZero(sn_diffObjet);
    expectZero(sn_ltObjet);
    expectZero(sn_geObjet);
    expectZero(sn_inObjet);
    expectZero(sn_interObjet);
    expectZero(sn_divObjet);
    s_Objet const o = odd(), interval = obj("[-1, 1]");
    EXPECT_EQ(sn_sgnObjet(&o), 0);
    EXPECT_FALSE(sn_inSpObjet(&o, &interval).any);
    EXPECT_FALSE(sn_inSpObjet(&interval, &o).any);
}

INSTANTIATE_TEST_SUITE_P(UnsetAndWord, ObjetsOddKinds, testing::Values(OBJ_UNSET, OBJ_WORD));

}  // namespace
}  // namespace objets_test
