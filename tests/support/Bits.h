#ifndef QEL_TESTS_SUPPORT_BITS_H
#define QEL_TESTS_SUPPORT_BITS_H

// Exact comparison of floating-point results: same bits, or both NaN (whose payload and sign no
// operation fixes).

#include <cmath>
#include <cstring>
#include <vector>

#include <gtest/gtest.h>

#include <qel/TripletBase.h>

namespace qel_test {

template <typename T>
bool sameBits(T a, T b) {
    return (std::isnan(a) && std::isnan(b)) || std::memcmp(&a, &b, sizeof(T)) == 0;
}

template <typename T>
bool sameBits(const qel::TripletBase<T>& a, const qel::TripletBase<T>& b) {
    return sameBits(a.x, b.x) && sameBits(a.y, b.y) && sameBits(a.z, b.z);
}

// Names the first element that differs.
template <typename Container>
::testing::AssertionResult sameBitsInAll(const Container& actual, const Container& expected) {
    if (actual.size() != expected.size()) {
        return ::testing::AssertionFailure()
               << "sizes differ: " << actual.size() << " and " << expected.size();
    }
    for (std::size_t i = 0; i < actual.size(); ++i) {
        if (!sameBits(actual[i], expected[i])) {
            return ::testing::AssertionFailure()
                   << "element " << i << ": " << ::testing::PrintToString(actual[i]) << " is not "
                   << ::testing::PrintToString(expected[i]);
        }
    }
    return ::testing::AssertionSuccess();
}

} // namespace qel_test

#endif
