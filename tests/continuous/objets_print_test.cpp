// The two text forms of the value objects: for people on stderr, bare data on any other stream.

#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "continuous/objets.h"
#include "fixtures/one_engine.h"

namespace objets_test {

s_Objet obj(char const* notation);

namespace {

template <typename Print>
std::string onStderr(Print print) {
    testing::internal::CaptureStderr();
    print(stderr);
    return testing::internal::GetCapturedStderr();
}

template <typename Print>
std::string onFile(Print print) {
    FILE* file = std::tmpfile();
    print(file);
    std::rewind(file);
    std::string content;
    for (int c; (c = std::fgetc(file)) != EOF;)
        content += static_cast<char>(c);
    std::fclose(file);
    return content;
}

auto real(double value) {
    return [value](FILE* stream) { sn_printReal(stream, value); };
}

auto interval(char const* notation) {
    return [r = obj(notation).rng](FILE* stream) { sn_printRange(stream, r); };
}

auto object(s_Objet const& o) {
    return [o](FILE* stream) { sn_printObjet(stream, &o); };
}

TEST(ObjetsPrint, ANumberForPeople) {
    EXPECT_EQ(onStderr(real(1.5)), "1.5");
    EXPECT_EQ(onStderr(real(1234567)), "1.23457e+06");
    EXPECT_EQ(onStderr(real(DBL_MAX)), "+oo");
    EXPECT_EQ(onStderr(real(-DBL_MAX)), "-oo");
}

TEST(ObjetsPrint, OnlyTheExactEndsOfTheScaleAreInfinite) {
    EXPECT_EQ(onStderr(real(1.7976931348623155e308)), "1.79769e+308");
    EXPECT_EQ(onStderr(real(-1.7976931348623155e308)), "-1.79769e+308");
}

TEST(ObjetsPrint, ANumberAsData) {
    EXPECT_EQ(onFile(real(1.5)), "1.5");
    EXPECT_EQ(onFile(real(DBL_MAX)), "1.79769e+308");
    EXPECT_EQ(onFile(real(-DBL_MAX)), "-1.79769e+308");
}

TEST(ObjetsPrint, AnIntervalForPeople) {
    EXPECT_EQ(onStderr(interval("[1, 2.5]")), " [1, 2.5]");
    EXPECT_EQ(onStderr(interval("[1, 2.5[")), " [1, 2.5[");
    EXPECT_EQ(onStderr(interval("]1, 2.5]")), "]1, 2.5]");
    EXPECT_EQ(onStderr(interval("]1, 2.5[")), "]1, 2.5[");
}

TEST(ObjetsPrint, TheWholeScale) {
    auto const whole = [](FILE* stream) { sn_printRange(stream, objMax->rng); };
    EXPECT_EQ(onStderr(whole), "]-oo, +oo[");
    EXPECT_EQ(onFile(whole), "-1.79769e+308 1.79769e+308");
}

TEST(ObjetsPrint, ABoundIsInfiniteOnItsOwnSideOnly) {
    EXPECT_EQ(onStderr(interval("[-MAX, -MAX]")), " [-oo, -1.79769e+308]");
    EXPECT_EQ(onStderr(interval("[MAX, MAX]")), " [1.79769e+308, +oo]");
}

TEST(ObjetsPrint, AnIntervalAsData) {
    EXPECT_EQ(onFile(interval("[1, 2.5]")), "1 2.5");
    EXPECT_EQ(onFile(interval("]1, 2.5[")), "1 2.5");
}

TEST(ObjetsPrint, AnOddFlagByteIsOpen) {
    range const odd = {1, 2, 2, 255};
    EXPECT_EQ(onStderr([&](FILE* stream) { sn_printRange(stream, odd); }), "]1, 2[");
}

TEST(ObjetsPrint, AnObjectForPeople) {
    EXPECT_EQ(onStderr(object(obj("1.5"))), " =1.5");
    EXPECT_EQ(onStderr(object(obj("MAX"))), " =+oo");
    EXPECT_EQ(onStderr(object(obj("[1, 2["))), " in  [1, 2[");
    EXPECT_EQ(onStderr(object(obj("]1, 2["))), " in ]1, 2[");
}

TEST(ObjetsPrint, AnObjectAsData) {
    EXPECT_EQ(onFile(object(obj("1.5"))), "1.5");
    EXPECT_EQ(onFile(object(obj("[1, 2["))), "1 2");
}

TEST(ObjetsPrint, AnObjectOfAnotherKind) {
    s_Objet word;
    word.type = OBJ_WORD;
    EXPECT_EQ(onStderr(object(word)), "type ?\n");
    EXPECT_EQ(onFile(object(word)), "type ?\n");
    EXPECT_EQ(onFile(object(s_Objet{})), "type ?\n");
}

// Standard output is a stream like any other: it gets the data form.
TEST(ObjetsPrint, StandardOutputGetsData) {
    testing::internal::CaptureStdout();
    sn_printObjet(stdout, objMax);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "-1.79769e+308 1.79769e+308");
}

}  // namespace
}  // namespace objets_test
