// Deinterleaving of triplets: every component in its place, whatever the number of triplets.

#include "foundation/Deinterleave.h"

#include <cstddef>
#include <cstdint>
#include <vector>

#include <gtest/gtest.h>

#include "platform/VectorDispatch.h"
#include "support/VectorUnits.h"

namespace {

using Triplet = qel::TripletBase<float>;
using Triplets = std::vector<Triplet>;

// x, y and z of triplet k are 3 k, 3 k + 1 and 3 k + 2.
Triplets counted(std::size_t n) {
    Triplets triplets;
    for (std::size_t k = 0; k < n; ++k) {
        const auto first = static_cast<float>(3 * k);
        triplets.emplace_back(first, first + 1.0f, first + 2.0f);
    }
    return triplets;
}

template <std::size_t width>
struct DeinterleaveAll {
    QEL_KERNEL static std::size_t run(const Triplet* from, std::size_t n, float* x, float* y,
                                      float* z) {
        qel::deinterleave<width>(from, n, x, y, z);
        return n;
    }
};

TEST(Deinterleave, PutsEveryComponentInItsPlace) {
    qel_test::onEveryVectorUnit([] {
        for (std::size_t n = 0; n < 70; ++n) {
            const Triplets triplets = counted(n);
            std::vector<float> x(n + 1, -1.0f), y(n + 1, -1.0f), z(n + 1, -1.0f);
            const Triplet* const from = triplets.data();
            const std::size_t done =
                qel::onFloatLanes<DeinterleaveAll>(from, n, x.data(), y.data(), z.data());
            for (std::size_t k = 0; k < done; ++k) {
                ASSERT_EQ(Triplet(x[k], y[k], z[k]), triplets[k]) << k << " of " << n;
            }
            EXPECT_EQ(Triplet(x[n], y[n], z[n]), Triplet(-1, -1, -1)) << "not beyond the end";
        }
    });
}

#if defined(QEL_SHUFFLES)

// Reads a group, and writes its triplets and the sums of their components.
template <std::size_t width>
struct ReadAndWrite {
    QEL_KERNEL static std::size_t run(const Triplet* from, Triplet* to, float* sums) {
        const qel::TripleLanes<width> t = qel::readTriplets<width>(from);
        qel::writeGroup(t, to);
        qel::writeGroup(t.x + t.y + t.z, sums);
        return width;
    }
};

TEST(Deinterleave, WritesGroupsInTheOrderOfMemory) {
    qel_test::onEveryVectorUnit([] {
        const Triplets triplets = counted(16);
        Triplets written(16);
        std::vector<float> sums(16);
        const Triplet* const from = triplets.data();
        const std::size_t width =
            qel::onFloatLanes<ReadAndWrite>(from, written.data(), sums.data());
        for (std::size_t k = 0; k < width; ++k) {
            EXPECT_EQ(written[k], triplets[k]) << k;
            EXPECT_EQ(sums[k], static_cast<float>(9 * k + 3)) << k;
        }
    });
}

#endif

} // namespace
