#include "platform/VectorUnit.h"

#include <gtest/gtest.h>

namespace {

using qel::VectorUnit;

TEST(VectorUnit, PortableIsAlwaysThere) {
    EXPECT_TRUE(qel::hasVectorUnit(VectorUnit::portable));
}

TEST(VectorUnit, ChoosesOneThatTheMachineHas) {
    EXPECT_TRUE(qel::hasVectorUnit(qel::vectorUnit()));
}

TEST(VectorUnit, ChoosesTheWidest) {
    const VectorUnit chosen = qel::vectorUnit();
    for (const VectorUnit unit : {VectorUnit::portable, VectorUnit::avx2, VectorUnit::avx512}) {
        if (qel::hasVectorUnit(unit)) {
            EXPECT_GE(static_cast<int>(chosen), static_cast<int>(unit));
        }
    }
}

TEST(VectorUnit, CanBeForcedAndRestored) {
    const VectorUnit chosen = qel::vectorUnit();
    qel::forceVectorUnit(VectorUnit::portable);
    EXPECT_EQ(qel::vectorUnit(), VectorUnit::portable);
    qel::restoreVectorUnit();
    EXPECT_EQ(qel::vectorUnit(), chosen);
}

} // namespace
