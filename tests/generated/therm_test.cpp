// The reference model as it stands after start-up: names, orders, numbers and links.
#include "fixtures/reference_model.h"

namespace {

TEST(ThermModel, HasItsClausesAndAllAreInternal) {
    ReferenceModel model;
    // 10 pairs and 1 choice for five modes; 3 pairs and 1 choice for each of three variables.
    ASSERT_EQ(DataManager::cls.size(), 23u);
    for (auto const& clause : DataManager::cls)
        EXPECT_TRUE(clause->getInternal());
}

}  // namespace
