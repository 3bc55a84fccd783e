#ifndef QEL_ARRAYS_EXACTSUM_H
#define QEL_ARRAYS_EXACTSUM_H

/// @file
/// Sums without rounding: a fixed-point number as wide as the range of the type (a
/// superaccumulator; Kulisch and Miranker 1986, Neal 2015), and what is rounded from it in the end,
/// once.

#include <cstddef>
#include <cstdint>

namespace qel {

/// The fixed-point numbers that hold the sum of 2^64 numbers of a type, and that of their squares:
/// the exponent of the lowest bit, and how many limbs of 64 bits they take.
template <typename T>
struct ExactFormat;

template <>
struct ExactFormat<float> {
    static constexpr int kSumUnit = -149;
    static constexpr int kSquareUnit = -298;
    static constexpr std::size_t kSumLimbs = 6;
    static constexpr std::size_t kSquareLimbs = 10;
};

template <>
struct ExactFormat<double> {
    static constexpr int kSumUnit = -1074;
    static constexpr int kSquareUnit = -2148;
    static constexpr std::size_t kSumLimbs = 34;
    static constexpr std::size_t kSquareLimbs = 67;
};

/// A fixed-point number that lies elsewhere: limb i counts 2^(unit + 64 i), the whole in two's
/// complement.
struct FixedPoint {
    const std::uint64_t* limbs;
    std::size_t count;
    int unit; ///< the exponent of the lowest bit
};

/// One that can be added to. Equal numbers have equal limbs, whatever they are the sum of.
class FixedPointSum {
public:
    FixedPointSum(std::uint64_t* limbs, std::size_t count, int unit)
        : limbs_(limbs), count_(count), unit_(unit) {}

    /// Adds value * 2^exponent, which is a multiple of the lowest bit. O(1), and as long as the
    /// carry travels.
    void add(std::int64_t value, int exponent);

    /// Adds a finite number, or its square. T is float or double.
    template <typename T>
    void addNumber(T value);
    template <typename T>
    void addSquare(T value);

    /// Adds a number of the same unit and width.
    void add(const FixedPoint& other);

private:
    std::uint64_t* limbs_;
    std::size_t count_;
    int unit_;
};

/// The number, rounded to the nearest double; an infinity if it is too large. Of 0, +0.
double rounded(const FixedPoint& number);

/// The same of number / count. count is not 0.
double roundedMean(const FixedPoint& number, std::uint64_t count);

/// The same of squares / count - (sum / count)^2, for the sum of `count` numbers of at most 34
/// limbs and that of their squares, which has twice the unit.
double roundedVariance(const FixedPoint& sum, const FixedPoint& squares, std::uint64_t count);

} // namespace qel

#endif
