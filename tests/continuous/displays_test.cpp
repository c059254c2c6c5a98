// The table of displays: room for rows, and which row a time writes.
#include "continuous/displays.h"

#include "engine_fixture.h"

namespace engine_test {
namespace {

class Displays : public EngineTest {
protected:
    Displays() {
        plant.rt.display = {plant.add("a", obj("[1, 2]")), plant.add("b", obj("3"))};
        sizeArrays(plant.rt);
        sn_yieldDisplays(&plant.rt);
    }
    std::string rows() const {
        std::string result;
        for (int i = 0; i < plant.rt.extra.size(); ++i)
            result += (i > 0 ? " " : "") + text(makeReal(plant.rt.extra[i]));
        return result;
    }

    Plant plant;
};

TEST_F(Displays, ARowHoldsTheBoundsOfEachVariable) {
    EXPECT_EQ(initDispAll(&plant.rt, 2), 1);
    tavro_setRTDisplays(2, &plant.rt, 2);
    EXPECT_EQ(rows(), "0 0 0 0 1 2 3 3");
}

TEST_F(Displays, APartOfARowCountsAsTheWhole) {
    initDispAll(&plant.rt, 2);
    tavro_setRTDisplays(2, &plant.rt, 0.25);
    EXPECT_EQ(rows(), "1 2 3 3 0 0 0 0");
}

TEST_F(Displays, RowsOutsideTheTableAreSkipped) {
    initDispAll(&plant.rt, 1);
    for (double const row : {-1.0, 0.0, 1.5, 1e12})
        tavro_setRTDisplays(2, &plant.rt, row);
    tavro_setRTDisplays(0, &plant.rt, 1);
    EXPECT_EQ(rows(), "0 0 0 0");
}

// Two variables make four values a row: 2^31 / 4 rows are one too many.
TEST_F(Displays, TooManyRowsAreRefused) {
    initDispAll(&plant.rt, 1);
    EXPECT_EQ(initDispAll(&plant.rt, 536870912.0), 0);
    EXPECT_EQ(plant.rt.extra.size(), 4);
    EXPECT_EQ(initDispAll(&plant.rt, 536870911.0), 1);
    EXPECT_EQ(plant.rt.extra.size(), 2147483644);
}

}  // namespace
}  // namespace engine_test
