#ifndef QEL_ARRAYS_STATISTICSBUILDER_H
#define QEL_ARRAYS_STATISTICSBUILDER_H

/// @file
/// Builds the statistics of a field of numbers block by block.

#include <array>
#include <cstddef>
#include <cstdint>

#include <qel/ViewStatistics.h>

#include "arrays/BlockSums.h"
#include "arrays/ExactSum.h"

namespace qel {

/// Makes statistics what ScalarStatistics::add of every number would make them.
///
///     StatisticsBuilder<float> builder(statistics, firstIndex);
///     builder.add(block, kSumBlock, 0); // and so on
///     builder.finish(valueAt);
template <typename T>
class StatisticsBuilder {
public:
    /// @param statistics  of no numbers yet
    StatisticsBuilder(ScalarStatistics<T>& statistics, std::uint64_t firstIndex)
        : statistics_(statistics), firstIndex_(firstIndex) {}

    /// Adds a block of at most kSumBlock numbers, given by its first byte.
    ///
    /// @param first  the place of the block's first number in the field
    void add(const char* block, std::size_t n, std::size_t first) {
        std::array<T, kSumBlock> finite;
        const BlockContents<T> found = copyFinite(block, n, finite.data());
        statistics_.count_ += n;
        statistics_.undefined_ += found.undefined;
        statistics_.notANumber_ += found.notANumber;
        if (found.undefined + found.notANumber < n) {
            takeExtremes(found, first);
            addFinite(finite.data(), n, found, sumOf(statistics_), squaresOf(statistics_));
        }
    }

    /// To be called behind the last block: looks up where the extremes stand.
    ///
    /// @param valueAt  gives the number at a place once more
    template <typename ValueAt>
    void finish(const ValueAt& valueAt) {
        if (statistics_.getValid() > 0) {
            find(min_, valueAt, statistics_.min_, statistics_.minIndex_);
            find(max_, valueAt, statistics_.max_, statistics_.maxIndex_);
        }
    }

    /// The exact sums of statistics.
    static FixedPointSum sumOf(ScalarStatistics<T>& statistics) {
        return {statistics.sum_, Format::kSumLimbs, Format::kSumUnit};
    }
    static FixedPoint sumOf(const ScalarStatistics<T>& statistics) {
        return {statistics.sum_, Format::kSumLimbs, Format::kSumUnit};
    }
    static FixedPointSum squaresOf(ScalarStatistics<T>& statistics) {
        return {statistics.squares_, Format::kSquareLimbs, Format::kSquareUnit};
    }
    static FixedPoint squaresOf(const ScalarStatistics<T>& statistics) {
        return {statistics.squares_, Format::kSquareLimbs, Format::kSquareUnit};
    }

private:
    using Format = ExactFormat<T>;
    static_assert(ScalarStatistics<T>::kSumLimbs == Format::kSumLimbs &&
                      ScalarStatistics<T>::kSquareLimbs == Format::kSquareLimbs,
                  "statistics hold exact sums");

    /// An extreme so far, and the first block that holds it.
    struct Extreme {
        T value = 0;
        std::size_t block = 0;
    };

    void takeExtremes(const BlockContents<T>& found, std::size_t first) {
        if (!hasExtremes_ || found.least < min_.value) {
            min_ = {found.least, first};
        }
        if (!hasExtremes_ || found.most > max_.value) {
            max_ = {found.most, first};
        }
        hasExtremes_ = true;
    }

    /// Zeros of both signs are equal: the value is that of the lowest index.
    template <typename ValueAt>
    void find(const Extreme& extreme, const ValueAt& valueAt, T& value,
              std::uint64_t& index) const {
        std::size_t place = extreme.block;
        for (value = valueAt(place); !(value == extreme.value); value = valueAt(place)) {
            ++place;
        }
        index = firstIndex_ + place;
    }

    ScalarStatistics<T>& statistics_;
    std::uint64_t firstIndex_;
    Extreme min_;
    Extreme max_;
    bool hasExtremes_ = false;
};

} // namespace qel

#endif
