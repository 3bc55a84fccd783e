#ifndef QEL_TESTS_SUPPORT_ALLOCATIONFAILURES_H
#define QEL_TESTS_SUPPORT_ALLOCATIONFAILURES_H

// Operations with memory that ends at their first allocation, at their second, and so on. For
// programs that take in AllocationLimit.cpp.

#include <new>

#include <gtest/gtest.h>

#include "support/AllocationLimit.h"

namespace qel_test {

/// Runs an operation on new objects until it has memory enough; each that fails must leave the
/// object as it was. Returns how often it failed.
///
/// @param make     gives a new object; prvalues are not copied
/// @param stateOf  gives what a caller can see of an object, to compare and print
template <typename Make, typename StateOf, typename Operation>
int allocationFailures(const Make& make, const StateOf& stateOf, const Operation& operation) {
    constexpr int kMost = 1000;
    for (int allowed = 0; allowed < kMost; ++allowed) {
        auto object = make();
        const auto before = stateOf(object);
        bool failed = false;
        {
            const AllocationLimit limit(allowed);
            try {
                operation(object);
            } catch (const std::bad_alloc&) {
                failed = true;
            }
        }
        if (!failed) {
            EXPECT_NE(stateOf(object), before) << "the operation shows nothing";
            return allowed;
        }
        EXPECT_EQ(stateOf(object), before) << "with " << allowed << " allocations";
    }
    ADD_FAILURE() << "never done";
    return kMost;
}

} // namespace qel_test

#endif
