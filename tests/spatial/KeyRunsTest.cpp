#include "spatial/KeyRuns.h"

#include <algorithm>
#include <cstdint>
#include <vector>

#include <gtest/gtest.h>

#include "support/Samples.h"

using qel::KeyRuns;
using qel_test::Samples;

namespace {

struct Part {
    std::size_t begin, end;
    int freeBits;
    bool isTooLong;

    bool operator==(const Part& other) const {
        return begin == other.begin && end == other.end && freeBits == other.freeBits &&
               isTooLong == other.isTooLong;
    }
};

struct Limits {
    std::size_t capacity;
    int leastBits;
};

// Cuts in two where the highest bit changes, as long as a part holds too many keys.
void cutInTwo(const std::vector<std::uint32_t>& keys, const Part& part, const Limits& limits,
              std::vector<Part>& parts) {
    if (part.begin == part.end) {
        return;
    }
    const bool isTooLong = part.end - part.begin > limits.capacity;
    if (!isTooLong || part.freeBits == limits.leastBits) {
        parts.push_back({part.begin, part.end, part.freeBits, isTooLong});
        return;
    }
    const int bit = part.freeBits - 1;
    std::size_t middle = part.begin;
    while (middle < part.end && (keys[middle] >> bit & 1u) == 0) {
        ++middle;
    }
    cutInTwo(keys, {part.begin, middle, bit, false}, limits, parts);
    cutInTwo(keys, {middle, part.end, bit, false}, limits, parts);
}

// Overwrites the keys of the runs that it has passed.
std::vector<Part> runsOf(std::vector<std::uint32_t> keys, const Limits& limits, int bits) {
    KeyRuns runs(keys.data(), keys.size(), limits.capacity, limits.leastBits, bits);
    std::vector<Part> parts;
    while (runs.next()) {
        parts.push_back({runs.begin(), runs.end(), runs.freeBits(), runs.isTooLong()});
        std::fill(keys.begin() + static_cast<std::ptrdiff_t>(runs.begin()),
                  keys.begin() + static_cast<std::ptrdiff_t>(runs.end()), 0xa5a5a5a5u);
    }
    return parts;
}

} // namespace

TEST(KeyRuns, BitWidthCountsTheBitsThatSpellAValue) {
    EXPECT_EQ(qel::bitWidth(0), 0);
    EXPECT_EQ(qel::bitWidth(1), 1);
    EXPECT_EQ(qel::bitWidth(255), 8);
    EXPECT_EQ(qel::bitWidth(256), 9);
    EXPECT_EQ(qel::bitWidth(~std::uint64_t{0}), 64);
}

TEST(KeyRuns, RunsAreThePartsThatCuttingInTwoLeaves) {
    Samples<float> samples(505);
    for (int n = 0; n < 4000; ++n) {
        const int bits = samples.integer(1, 24);
        std::vector<std::uint32_t> keys(static_cast<std::size_t>(samples.integer(1, 300)));
        const int most = (1 << bits) - 1;
        const int mostHere = n % 3 == 0 ? std::min(most, samples.integer(0, 20)) : most;
        for (std::uint32_t& key : keys) {
            key = static_cast<std::uint32_t>(samples.integer(0, mostHere));
        }
        std::sort(keys.begin(), keys.end());
        const Limits limits = {static_cast<std::size_t>(samples.integer(0, n % 2 == 0 ? 20 : 400)),
                               n % 5 == 0 ? samples.integer(0, bits) : 0};
        std::vector<Part> expected;
        cutInTwo(keys, {0, keys.size(), bits, false}, limits, expected);
        ASSERT_EQ(runsOf(keys, limits, bits), expected) << n;
    }
}
