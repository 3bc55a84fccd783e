#include "spatial/InPlaceStorage.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <numeric>

#include <gtest/gtest.h>

#include "support/Samples.h"

using qel::InPlaceStorage;
using qel_test::Samples;

namespace {

constexpr std::size_t kNumbersPerLine = sizeof(InPlaceStorage::CacheLine) / sizeof(std::uint32_t);

// A source of numbers, read from front to back, and a result of which every line holds its own
// number. Checks that neither overwrites the other.
class Building {
public:
    Building(std::size_t sourceNumbers, std::size_t expectedLines) : count_(sourceNumbers) {
        source_ =
            static_cast<std::uint32_t*>(storage.makeSource(sourceNumbers * sizeof(std::uint32_t)));
        std::iota(source_, source_ + count_, 0u);
        storage.expect(expectedLines);
        storage.releaseSourceUntil(source_);
    }

    void read(std::size_t numbers) {
        for (std::size_t i = 0; i < numbers; ++i, ++read_) {
            ASSERT_EQ(source_[read_], read_);
        }
        storage.releaseSourceUntil(source_ + read_);
    }

    void append(std::size_t lines) {
        ASSERT_EQ(storage.append(lines), lines_);
        for (std::size_t i = 0; i < lines; ++i, ++lines_) {
            std::memset(storage.line(lines_), static_cast<int>(lines_ & 0xff),
                        sizeof(InPlaceStorage::CacheLine));
        }
    }

    void check() const {
        for (std::size_t i = 0; i < lines_; ++i) {
            ASSERT_EQ(storage.line(i)->bytes[0], i & 0xff);
            ASSERT_EQ(storage.line(i)->bytes[63], i & 0xff);
        }
    }

    InPlaceStorage storage;

private:
    std::uint32_t* source_;
    std::size_t count_, read_ = 0, lines_ = 0;
};

} // namespace

TEST(InPlaceStorage, ResultTakesThePlaceOfItsSource) {
    Building building(100 * kNumbersPerLine, 100);
    for (int i = 0; i < 100; ++i) {
        building.read(kNumbersPerLine);
        building.append(1);
    }
    EXPECT_TRUE(building.storage.isInPlace());
    building.check();
}

TEST(InPlaceStorage, ResultMovesAtOnceWhereItsSourceIsTooSmall) {
    Building building(10 * kNumbersPerLine, 100);
    EXPECT_FALSE(building.storage.isInPlace());
    building.append(100);
    building.read(10 * kNumbersPerLine);
    building.check();
}

TEST(InPlaceStorage, ResultMovesWhereItCatchesUpWithItsSource) {
    Building building(100 * kNumbersPerLine, 100);
    building.read(50 * kNumbersPerLine);
    building.append(50);
    EXPECT_TRUE(building.storage.isInPlace());
    building.append(1);
    EXPECT_FALSE(building.storage.isInPlace());
    building.read(50 * kNumbersPerLine);
    building.check();
}

TEST(InPlaceStorage, ResultThatHasMovedGrows) {
    Building building(10 * kNumbersPerLine, 20);
    for (int i = 0; i < 1000; ++i) {
        building.append(3);
    }
    building.read(10 * kNumbersPerLine);
    building.check();
}

TEST(InPlaceStorage, ResultOutlivesItsSource) {
    Building moved(100 * kNumbersPerLine, 10);
    moved.append(30);
    EXPECT_FALSE(moved.storage.isInPlace());
    moved.storage.releaseSource();
    moved.check();
    Building inPlace(100 * kNumbersPerLine, 100);
    inPlace.read(100 * kNumbersPerLine);
    inPlace.append(100);
    EXPECT_TRUE(inPlace.storage.isInPlace());
    inPlace.storage.releaseSource();
    inPlace.check();
}

TEST(InPlaceStorage, AnyPaceKeepsResultAndSource) {
    Samples<float> samples(507);
    int inPlace = 0;
    for (int n = 0; n < 600; ++n) {
        SCOPED_TRACE(n);
        const auto numbers = static_cast<std::size_t>(samples.integer(0, 3000));
        const auto any = [&](int most) {
            return static_cast<std::size_t>(samples.integer(0, most));
        };
        Building building(numbers, any(300));
        for (std::size_t left = numbers; left > 0;) {
            const std::size_t step = std::min(left, any(300));
            building.append(any(20));
            building.read(step);
            left -= step;
        }
        building.append(any(20));
        inPlace += building.storage.isInPlace() ? 1 : 0;
        building.storage.releaseSource();
        building.check();
        ASSERT_FALSE(HasFailure());
    }
    EXPECT_GT(inPlace, 20);
    EXPECT_LT(inPlace, 580);
}
