#include "curve/PartitionPoint.h"

#include <algorithm>
#include <limits>
#include <vector>

#include <gtest/gtest.h>

#include "support/Curves.h"

namespace {

using namespace qel_test;

// Finds what the standard's search finds, and looks at the same values on the way.
void checkAgainstStandard(const std::vector<double>& values, double limit) {
    std::vector<const double*> expectedPlaces, places;
    const auto expected = std::partition_point(values.begin(), values.end(), [&](const double& v) {
        expectedPlaces.push_back(&v);
        return v < limit;
    });
    const std::size_t found =
        qel::partitionPoint(values.data(), values.size(), [&](const double& v) {
            places.push_back(&v);
            return v < limit;
        });
    ASSERT_EQ(found, static_cast<std::size_t>(expected - values.begin()));
    ASSERT_EQ(places, expectedPlaces);
}

TEST(PartitionPoint, OfAnyCountIsThatOfTheStandard) {
    std::vector<double> values;
    for (int count = 0; count < 70; ++count) {
        for (int limit = -1; limit <= count; ++limit) {
            checkAgainstStandard(values, static_cast<double>(limit));
            ASSERT_FALSE(HasFatalFailure()) << limit << " among " << count;
        }
        values.push_back(static_cast<double>(count));
    }
}

TEST(PartitionPoint, GoesTheStandardsWayThroughValuesInNoOrder) {
    RandomCurves random(41);
    for (int round = 0; round < 2000; ++round) {
        std::vector<double> values = random.svalues(random.count(2, 200));
        const std::size_t at = random.count(0, values.size() - 1);
        if (round % 2 == 0) {
            values[at] = std::numeric_limits<double>::quiet_NaN();
        } else {
            std::reverse(values.begin(), values.begin() + static_cast<std::ptrdiff_t>(at));
        }
        for (int k = 0; k < 20; ++k) {
            checkAgainstStandard(values, random.parameter(values));
            ASSERT_FALSE(HasFatalFailure()) << "round " << round;
        }
    }
}

} // namespace
