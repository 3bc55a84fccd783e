// Sums of floating-point numbers are exact where every partial sum is a multiple of one power of
// two, its unit, and less than 2^53 units. Numbers of more digits are cut into parts by addition to
// a large constant (binned summation; Demmel and Nguyen 2013, Ahrens, Demmel and Nguyen 2020): with
// M = 1.5 * 2^52 units and |x| <= 2^51 units, M + x is x rounded to whole units, and the bits of
// M + x, as an integer, exceed those of M by their number. So integers add up the units, in any
// order, and x - ((M + x) - M) is what is left, exactly, half a unit at most.
//
// A block is summed at a scale E with |x| < 2^E. The parts, by their units:
//
// - float: x is a multiple of 2^(E-51) if it is 0 or not less than 2^(E-28), or if 2^(E-51) is the
//   last digit of all floats. x^2 is exact in double; what 2^(2E-51) leaves of it is a multiple of
//   2^(2E-102).
// - double: for |x| not less than 2^(E-24), what 2^(E-51) leaves of x is a multiple of 2^(E-102).
//   x^2 is the rounded product p plus an error e, which is a double, too (Dekker 1971): what
//   2^(2E-51) leaves of p is a multiple of 2^(2E-102), and what that leaves of e one of 2^(2E-153).
//
// Numbers out of the range of the scale are added one by one.

#include "arrays/BlockSums.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <limits>

#include "platform/FloatBits.h"
#include "platform/VectorDispatch.h"

namespace qel {
namespace {

// -- Extremes ----

// In integers, whose extremes have no order to keep.
template <typename T>
struct FiniteKernel {
    using Int = SignedBits<T>;
    static constexpr Int kMost = std::numeric_limits<Int>::max(); // also all bits but the sign
    static constexpr Int kLeast = std::numeric_limits<Int>::min();

    Int least = kMost; // in the order of the numbers, see keyOf
    Int most = kLeast;
    Int smallest = kMost;
    Int largest = 0;
    Int undefined = 0;
    Int notANumber = 0;

    // By value: a reference would keep the extremes in memory.
    QEL_KERNEL static Int lesser(Int a, Int b) { return a < b ? a : b; }
    QEL_KERNEL static Int greater(Int a, Int b) { return a > b ? a : b; }

    // Integers in the order of the numbers: -0 lies directly below +0. A key is its own inverse.
    QEL_KERNEL static Int keyOf(Int bits) { return bits ^ (-static_cast<Int>(bits < 0) & kMost); }

    QEL_KERNEL static void run(const char* from, std::size_t n, T* finite, Int infinity,
                               FiniteKernel* found) {
        FiniteKernel r;
        for (std::size_t i = 0; i < n; ++i) {
            Int bits;
            std::memcpy(&bits, from + i * sizeof(T), sizeof(T));
            const Int magnitude = bits & kMost;
            const Int isUndefined = -static_cast<Int>(bits == infinity - 1);
            const Int isNotANumber = -static_cast<Int>(magnitude > infinity);
            const Int isInvalid = isUndefined | isNotANumber;
            const Int key = keyOf(bits);
            r.least = lesser(r.least, (key & ~isInvalid) | (isInvalid & kMost));
            r.most = greater(r.most, (key & ~isInvalid) | (isInvalid & kLeast));
            r.undefined -= isUndefined;
            r.notANumber -= isNotANumber;
            const Int kept = bits & ~(isInvalid | -static_cast<Int>(magnitude == infinity));
            const Int size = kept & kMost;
            r.smallest = lesser(r.smallest, size | (-static_cast<Int>(size == 0) & kMost));
            r.largest = greater(r.largest, size);
            std::memcpy(finite + i, &kept, sizeof(T));
        }
        *found = r;
    }
};

// -- Sums ----

// Adds numbers as multiples of a unit.
struct Bin {
    double start = 0.0; // M
    std::uint64_t total = 0;

    void setUnit(int exponent) { start = std::ldexp(3.0, exponent + 51); }

    // Returns what is left of the number.
    QEL_KERNEL double add(double x) {
        const double sum = start + x;
        total += bitsOf(sum);
        return x - (sum - start);
    }

    // The units of so many numbers, less than 2^11.
    std::int64_t units(std::size_t count) const {
        return static_cast<std::int64_t>(total - count * bitsOf(start));
    }
};

template <typename T>
struct LaneFormat;

template <>
struct LaneFormat<float> {
    static constexpr int kOctaves = 28;
    static constexpr int kLowestScale = -98; // where 2^(E-51) is the last digit of all floats
    static constexpr int kHighestScale = 128;
    static float lowestOf(int scale) {
        return scale == kLowestScale ? 0.0f : std::ldexp(1.0f, scale - kOctaves);
    }
};

template <>
struct LaneFormat<double> {
    static constexpr int kOctaves = 24;
    // The errors of products are far from underflow, and constants from overflow.
    static constexpr int kLowestScale = -400;
    static constexpr int kHighestScale = 500;
    static double lowestOf(int scale) { return std::ldexp(1.0, scale - kOctaves); }
};

constexpr int kStep = 51; // digits of a part

struct Bins {
    std::array<Bin, 2> numbers;
    std::array<Bin, 3> squares;
};

// x^2 - p for p = x * x, rounded.
template <bool hasFusedOperation>
QEL_KERNEL double errorOfSquare(double x, double p) {
    if constexpr (hasFusedOperation) {
        return std::fma(x, x, -p);
    } else {
        constexpr double kSplitter = 134217729.0; // 2^27 + 1 (Veltkamp)
        const double scaled = kSplitter * x;
        const double high = scaled - (scaled - x);
        const double low = x - high;
        return ((high * high - p) + 2.0 * high * low) + low * low;
    }
}

template <bool hasFusedOperation>
struct SumKernel {
    QEL_KERNEL static void run(const float* numbers, std::size_t n, Bins* bins) {
        Bin coarse = bins->numbers[0];
        Bin first = bins->squares[0], second = bins->squares[1];
        for (std::size_t i = 0; i < n; ++i) {
            const auto x = static_cast<double>(numbers[i]);
            coarse.add(x);
            second.add(first.add(x * x));
        }
        bins->numbers[0] = coarse;
        bins->squares[0] = first;
        bins->squares[1] = second;
    }

    QEL_KERNEL static void run(const double* numbers, std::size_t n, Bins* bins) {
        Bin coarse = bins->numbers[0], fine = bins->numbers[1];
        Bin first = bins->squares[0], second = bins->squares[1], third = bins->squares[2];
        for (std::size_t i = 0; i < n; ++i) {
            const double x = numbers[i];
            fine.add(coarse.add(x));
            const double p = x * x;
            second.add(first.add(p));
            third.add(second.add(errorOfSquare<hasFusedOperation>(x, p)));
        }
        bins->numbers = {coarse, fine};
        bins->squares = {first, second, third};
    }
};

template <typename T>
void addInLanes(const T* numbers, std::size_t n, int scale, FixedPointSum sum,
                FixedPointSum squares) {
    constexpr bool kIsDouble = sizeof(T) == sizeof(double);
    constexpr std::size_t kNumberBins = kIsDouble ? 2 : 1;
    constexpr std::size_t kSquareBins = kIsDouble ? 3 : 2;
    Bins bins;
    for (std::size_t k = 0; k < kNumberBins; ++k) {
        bins.numbers[k].setUnit(scale - kStep * static_cast<int>(k + 1));
    }
    for (std::size_t k = 0; k < kSquareBins; ++k) {
        bins.squares[k].setUnit(2 * scale - kStep * static_cast<int>(k + 1));
    }
    if (vectorUnit() == VectorUnit::portable) {
        runPortable<SumKernel<false>>(numbers, n, &bins);
    } else {
        onVectorUnit<SumKernel<true>>(numbers, n, &bins);
    }
    for (std::size_t k = 0; k < kNumberBins; ++k) {
        sum.add(bins.numbers[k].units(n), scale - kStep * static_cast<int>(k + 1));
    }
    for (std::size_t k = 0; k < kSquareBins; ++k) {
        const bool addsTwice = kIsDouble && k == 1;
        squares.add(bins.squares[k].units(addsTwice ? 2 * n : n),
                    2 * scale - kStep * static_cast<int>(k + 1));
    }
}

} // namespace

template <typename T>
BlockContents<T> copyFinite(const char* from, std::size_t n, T* finite) {
    using Kernel = FiniteKernel<T>;
    Kernel found;
    const auto infinity = signedBitsOf(std::numeric_limits<T>::infinity());
    onVectorUnit<Kernel>(from, n, finite, infinity, &found);
    return {numberOf<T>(Kernel::keyOf(found.least)),
            numberOf<T>(Kernel::keyOf(found.most)),
            numberOf<T>(found.smallest),
            numberOf<T>(found.largest),
            static_cast<std::size_t>(found.undefined),
            static_cast<std::size_t>(found.notANumber)};
}

template <typename T>
void addFinite(T* finite, std::size_t n, const BlockContents<T>& contents, FixedPointSum sum,
               FixedPointSum squares) {
    if (contents.largest == 0) {
        return;
    }
    using Format = LaneFormat<T>;
    const int scale =
        std::clamp(std::ilogb(contents.largest) + 1, Format::kLowestScale, Format::kHighestScale);
    const T lowest = Format::lowestOf(scale);
    const T end = std::ldexp(T{1}, scale);
    if (contents.smallest < lowest || contents.largest >= end) {
        for (std::size_t i = 0; i < n; ++i) {
            const T size = std::fabs(finite[i]);
            if (size != 0 && (size < lowest || size >= end)) {
                sum.addNumber(finite[i]);
                squares.addSquare(finite[i]);
                finite[i] = 0;
            }
        }
    }
    addInLanes(finite, n, scale, sum, squares);
}

template BlockContents<float> copyFinite(const char*, std::size_t, float*);
template BlockContents<double> copyFinite(const char*, std::size_t, double*);
template void addFinite(float*, std::size_t, const BlockContents<float>&, FixedPointSum,
                        FixedPointSum);
template void addFinite(double*, std::size_t, const BlockContents<double>&, FixedPointSum,
                        FixedPointSum);

} // namespace qel
