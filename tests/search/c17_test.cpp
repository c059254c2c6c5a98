// The covering search on the circuit c17, beside all 64 sets of broken gates.
//
// Where one broken gate explains the outputs, the search gives exactly the gates that do. Where two
// are needed it gives some of the pairs and no other: the failure of a gate is expanded once in a
// search, so a gate that was tried in one pair, found or not, is in no later one. Without that rule
// it gives all of them, some more than once.
#include "search/c17_fixture.h"

#include <gtest/gtest.h>

#include <bitset>

namespace {

using namespace c17;

using GateSet = std::bitset<wiring.size()>;  // by position in wiring
using Sets = std::set<std::set<int>>;

constexpr Inputs allOne{true, true, true, true, true};
constexpr int outputs = 4;  // pairs of values of 22 and 23

// Whether the outputs can be seen when the broken gates show what *forced* says.
bool shows(Inputs const& inputs, GateSet broken, GateSet forced, bool out22, bool out23) {
    // 1, 2, 3, 6, 7 are the inputs; the gates by their numbers.
    bool value[24] = {};
    value[1] = inputs[0];
    value[2] = inputs[1];
    value[3] = inputs[2];
    value[6] = inputs[3];
    value[7] = inputs[4];
    value[10] = broken[0] ? forced[0] : !(value[1] && value[3]);
    value[11] = broken[1] ? forced[1] : !(value[3] && value[6]);
    value[16] = broken[2] ? forced[2] : !(value[2] && value[11]);
    value[19] = broken[3] ? forced[3] : !(value[11] && value[7]);
    value[22] = broken[4] ? forced[4] : !(value[10] && value[16]);
    value[23] = broken[5] ? forced[5] : !(value[16] && value[19]);
    return value[22] == out22 && value[23] == out23;
}

bool explains(Inputs const& inputs, GateSet broken, bool out22, bool out23) {
    for (unsigned forced = 0; forced < 64; ++forced)
        if (shows(inputs, broken, forced, out22, out23))
            return true;
    return false;
}

std::set<int> numbersOf(GateSet broken) {
    std::set<int> numbers;
    for (std::size_t i = 0; i < wiring.size(); ++i)
        if (broken[i])
            numbers.insert(wiring[i].number);
    return numbers;
}

// The sets of the fewest broken gates that explain. Two always do: 22 and 23.
Sets leastExplanations(Inputs const& inputs, bool out22, bool out23) {
    for (std::size_t size = 0; size <= 2; ++size) {
        Sets found;
        for (unsigned broken = 0; broken < 64; ++broken)
            if (GateSet(broken).count() == size && explains(inputs, broken, out22, out23))
                found.insert(numbersOf(broken));
        if (!found.empty())
            return found;
    }
    return {};
}

struct Answer {
    Sets candidates;
    bool repeats = false;
    bool searched = false;
    std::string trace;
};

Answer ask(Inputs const& inputs, bool out22, bool out23, bool expandsOnce = true,
           bool namesInputs = true) {
    Circuit circuit(inputs);
    if (!expandsOnce)
        circuit.allowRepeatedFailures();
    circuit.observe(out22, out23, namesInputs);
    auto const found = circuit.candidates();
    Answer answer{{found.begin(), found.end()}, false, false, circuit.trace};
    answer.repeats = answer.candidates.size() != found.size();
    answer.searched = circuit.trace.find("---------> Diagnosing...") != std::string::npos;
    return answer;
}

// All inputs are 1, so 10 and 11 show 0, 16 and 19 show 1, 22 shows 1 and 23 shows 0.
TEST(C17, WithAllInputsOneAndOutputsZeroZeroGateTenOrTwentyTwoIsBroken) {
    Sets const expected{{10}, {22}};
    EXPECT_EQ(leastExplanations(allOne, false, false), expected);
    EXPECT_EQ(ask(allOne, false, false).candidates, expected);
}

TEST(C17, WithAllInputsOneAndOutputsOneOneOneOfFourGatesIsBroken) {
    Sets const expected{{11}, {16}, {19}, {23}};
    EXPECT_EQ(leastExplanations(allOne, true, true), expected);
    EXPECT_EQ(ask(allOne, true, true).candidates, expected);
}

// Calls *check* with every input and every reading of the outputs, and what explains it.
template <typename Check>
void forEveryReading(Check check) {
    for (unsigned bits = 0; bits < 32; ++bits)
        for (int output = 0; output < outputs; ++output) {
            Inputs inputs;
            for (std::size_t i = 0; i < inputs.size(); ++i)
                inputs[i] = (bits >> i & 1u) != 0;
            bool const out22 = output % 2 != 0, out23 = output / 2 != 0;
            SCOPED_TRACE("inputs " + std::bitset<5>(bits).to_string() + " from 7 to 1, 22 shows " +
                         std::to_string(out22) + ", 23 shows " + std::to_string(out23));
            Sets const expected = leastExplanations(inputs, out22, out23);
            check(inputs, out22, out23, expected, expected.begin()->size());
        }
}

TEST(C17, EverySingleFaultOfEveryReadingIsFoundOnce) {
    int nominal = 0, single = 0;
    forEveryReading(
        [&](Inputs const& inputs, bool out22, bool out23, Sets const& expected, std::size_t size) {
            if (size > 1)
                return;
            ++(size == 0 ? nominal : single);
            Answer const answer = ask(inputs, out22, out23);
            EXPECT_EQ(answer.searched, size == 1);
            EXPECT_EQ(answer.candidates, expected);
            EXPECT_FALSE(answer.repeats);
        });
    // One reading of each of the 32 inputs is nominal; 83 of the other 96 need one broken gate, by
    // the enumeration above.
    EXPECT_EQ(nominal, 32);
    EXPECT_EQ(single, 83);
}

TEST(C17, OfTheDoubleFaultsEachGateIsTriedInOne) {
    int readings = 0;
    forEveryReading(
        [&](Inputs const& inputs, bool out22, bool out23, Sets const& expected, std::size_t size) {
            if (size != 2)
                return;
            ++readings;
            Answer const once = ask(inputs, out22, out23);
            std::set<int> tried;
            for (std::set<int> const& pair : once.candidates) {
                EXPECT_EQ(expected.count(pair), 1u);
                for (int const number : pair)
                    EXPECT_TRUE(tried.insert(number).second) << number << " is in two pairs";
            }
            EXPECT_FALSE(once.candidates.empty());
            EXPECT_FALSE(once.repeats);
            // Some gate is in several pairs that explain.
            EXPECT_LT(once.candidates.size(), expected.size());
            EXPECT_NE(once.trace.find("out of rank !\ncurrent rank : 0 -- rank : 2\n"),
                      std::string::npos);
            EXPECT_EQ(ask(inputs, out22, out23, false).candidates, expected);
        });
    EXPECT_EQ(readings, 96 - 83) << "the readings that one broken gate does not explain";
}

// An input that is not observed is free: with inputs 00000, for one, every gate is ok and the
// outputs show 0, 0. Such a history has no failure, and ends the search at rank 1.
TEST(C17, InputsThatAreNotObservedEndTheSearch) {
    EXPECT_EQ(leastExplanations({}, false, false), Sets{{}});
    Answer const answer = ask(allOne, false, false, true, false);
    EXPECT_NE(answer.trace.find("too high rank found: 0\n"), std::string::npos);
    EXPECT_EQ(answer.candidates.count({}), 0u);
    EXPECT_FALSE(answer.candidates.empty());
}

}  // namespace
