#ifndef QEL_VIEWSTATISTICS_H
#define QEL_VIEWSTATISTICS_H

/// @file
/// Statistics of numbers and triplets where they lie, the same for any splitting into parts. Part
/// of the batch interface (docs/batch-interface.md).
///
/// Const members may be called from any number of threads at once, and statistics of one view made.

#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <vector>

#include <qel/Export.h>
#include <qel/Progress.h>
#include <qel/StridedView.h>
#include <qel/TripletBase.h>

namespace qel {

template <typename T>
class StatisticsBuilder; // of the library, not of its interface

/// Statistics of a field of numbers.
///
///     ScalarStatistics all(pressure);
///     ScalarStatistics parts(firstHalf, 0);
///     parts.merge(ScalarStatistics(secondHalf, firstHalf.size())); // equals all, in every bit
///
/// A number that equals the largest finite value of its type is undefined; a NaN is counted by
/// itself; all others, infinities among them, are valid, and the statistics are theirs. The sum and
/// the sum of squares are kept exactly, as fixed-point numbers as wide as the range of the type
/// (a superaccumulator; Kulisch and Miranker 1986, Neal 2015), and rounded once, when asked for. So
/// they do not depend on the order of the numbers, nor on how a field is split.
///
/// The object is plain memory without padding (trivially copyable; 176 bytes for float, 864 for
/// double): equal statistics have equal bytes, and the bytes can be sent to another process. T is
/// float or double.
template <typename T>
class QEL_API ScalarStatistics {
    static_assert(std::is_same<T, float>::value || std::is_same<T, double>::value,
                  "statistics are of floats or doubles");

public:
    /// Of no numbers.
    ScalarStatistics();

    /// Of the numbers of a view. O(n), no allocation.
    ///
    /// @param firstIndex  the index of the view's first number in the whole field
    /// @param progress    stops it: the statistics are then those of the numbers up to there, as
    ///     getCount() tells
    /// @throws data::invalid  (class "ViewStatistics", method "constructor") if an index is
    ///     too large for 64 bits
    explicit ScalarStatistics(const ScalarView<const T>& values, std::uint64_t firstIndex = 0,
                              const Progress& progress = {});

    /// Makes this the statistics of both fields together. O(1).
    ///
    /// Of equal extremes the one with the lower index stays; so each field counts its indices from
    /// where it lies in the whole.
    /// @throws data::invalid  (class "ViewStatistics", method "merge") if there are more
    ///     numbers than 64 bits count; nothing is changed
    void merge(const ScalarStatistics& other);

    /// Adds one number. O(1).
    /// @throws data::invalid  as merge(), with method "add"
    void add(T value, std::uint64_t index);

    std::uint64_t getCount() const { return count_; } ///< all numbers
    /// Numbers that are neither undefined nor NaN.
    std::uint64_t getValid() const { return count_ - undefined_ - notANumber_; }
    std::uint64_t getUndefined() const { return undefined_; } ///< equal to the largest finite value
    std::uint64_t getNotANumber() const { return notANumber_; }

    /// Smallest and largest valid number, and the lowest index at which it stands. NaN, and index
    /// 0, if no number is valid. Zeros of both signs are equal.
    T getMin() const { return min_; }
    T getMax() const { return max_; }
    std::uint64_t getMinIndex() const { return minIndex_; }
    std::uint64_t getMaxIndex() const { return maxIndex_; }

    /// Exact sum of the valid numbers, rounded once to double; 0 if there is none. An infinity
    /// among them gives that infinity, both signs of it NaN.
    double getSum() const;
    /// Exact sum over getValid(), rounded once; NaN if no number is valid. With infinities as the
    /// sum.
    double getMean() const;
    /// Mean square of the distances from the mean (divisor n), computed exactly from both sums and
    /// rounded once; NaN if no number is valid or one is infinite. Never negative.
    double getVariance() const;

    /// True if all bits are equal.
    bool operator==(const ScalarStatistics& other) const;
    bool operator!=(const ScalarStatistics& other) const { return !(*this == other); }

private:
    friend class StatisticsBuilder<T>;

    static constexpr bool kIsFloat = std::is_same<T, float>::value;
    static constexpr std::size_t kSumLimbs = kIsFloat ? 6 : 34;
    static constexpr std::size_t kSquareLimbs = kIsFloat ? 10 : 67;

    bool hasInfinity() const;

    std::uint64_t sum_[kSumLimbs] = {}; // fixed-point numbers, of finite values
    std::uint64_t squares_[kSquareLimbs] = {};
    std::uint64_t count_ = 0;
    std::uint64_t undefined_ = 0;
    std::uint64_t notANumber_ = 0;
    std::uint64_t minIndex_ = 0;
    std::uint64_t maxIndex_ = 0;
    T min_;
    T max_;
};

extern template class ScalarStatistics<float>;
extern template class ScalarStatistics<double>;

template <typename T>
ScalarStatistics(const ScalarView<T>&, std::uint64_t = 0, const Progress& = {})
    -> ScalarStatistics<std::remove_const_t<T>>;
template <typename T>
ScalarStatistics(const std::vector<T>&, std::uint64_t = 0, const Progress& = {})
    -> ScalarStatistics<T>;

/// Statistics of a field of triplets: of each component and of the length.
///
/// A triplet of which any component is undefined is undefined in all four; any other of which a
/// component is NaN counts as NaN in all four. The length is sqrt(x*x + y*y + z*z), in the
/// precision of T, where it may overflow to infinity. As ScalarStatistics otherwise.
template <typename T>
class QEL_API TripletStatistics {
public:
    /// Of no triplets.
    TripletStatistics() = default;

    /// Of the triplets of a view; as for numbers.
    explicit TripletStatistics(const TripletView<const T>& values, std::uint64_t firstIndex = 0,
                               const Progress& progress = {});

    /// As for numbers.
    void merge(const TripletStatistics& other);
    void add(const TripletBase<T>& value, std::uint64_t index);

    const ScalarStatistics<T>& getX() const { return x_; }
    const ScalarStatistics<T>& getY() const { return y_; }
    const ScalarStatistics<T>& getZ() const { return z_; }
    const ScalarStatistics<T>& getLength() const { return length_; }

    bool operator==(const TripletStatistics& other) const;
    bool operator!=(const TripletStatistics& other) const { return !(*this == other); }

private:
    ScalarStatistics<T> x_;
    ScalarStatistics<T> y_;
    ScalarStatistics<T> z_;
    ScalarStatistics<T> length_;
};

extern template class TripletStatistics<float>;
extern template class TripletStatistics<double>;

template <typename T>
TripletStatistics(const TripletView<T>&, std::uint64_t = 0, const Progress& = {})
    -> TripletStatistics<std::remove_const_t<T>>;
template <typename T>
TripletStatistics(const std::vector<TripletBase<T>>&, std::uint64_t = 0, const Progress& = {})
    -> TripletStatistics<T>;

} // namespace qel

#endif
