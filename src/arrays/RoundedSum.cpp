// The sum in index order, many values at once where the roundings can be told beforehand.
//
// In the plain loop each addition waits for the one before; that wait is its cost. It can be
// avoided: between 2^e and 2^(e+1) the doubles are the multiples of one grid u = 2^(e-52). While
// the sum stays in there it lies on the grid, and to round sum + x to the grid is to add R(x), x
// rounded to the grid by itself. The R(x) do not depend on the sum, and adding them is exact in
// any order.
//
// Where x lies halfway between two multiples, the sum goes to the even one. So R(x) does depend on
// the sum, but on its last digit only, which the last digits of the steps before it tell. Such
// values are few: they are marked, as are the odd steps, one bit each, and put right one by one.
//
// Runs in which the sum might leave its interval take the plain loop.

#include "arrays/RoundedSum.h"

#include "platform/FloatBits.h"
#include "platform/VectorUnit.h"

#if defined(QEL_VECTOR_UNITS)

#include <algorithm>
#include <cmath>
#include <cstdint>

#include <immintrin.h>

namespace qel {
namespace {

constexpr std::size_t kLanes = 8;
constexpr __mmask8 kAllLanes = 0xff;
constexpr __mmask8 kHalfOfLanes = 0xf;
constexpr std::size_t kRun = 32; // longer ones meet more halfway values and leave more often

// The interval from 2^e to 2^(e+1) on which the doubles are evenly spaced.
struct Binade {
    double low;
    double grid;

    // That of a sum of floats, which is too large to be denormal. The one of 0 holds no sum.
    QEL_KERNEL static Binade of(double sum) {
        constexpr double kGridOfOne = 0x1p-52;
        const double low = lowOf(sum);
        return {low, low * kGridOfOne};
    }

    QEL_KERNEL bool holds(double sum) const { return lowOf(sum) == low; }

    // Added to a value and taken away again, rounds it to the grid.
    QEL_KERNEL double rounder() const { return 1.5 * low; }

private:
    QEL_KERNEL static double lowOf(double sum) {
        constexpr std::uint64_t kExponentBits = 0x7ff0000000000000;
        return doubleOf(bitsOf(sum) & kExponentBits);
    }
};

// What one pass over a run finds.
struct Steps {
    double sum;         // of all R
    double magnitude;   // of all |x|, up to roundings
    std::uint32_t odd;  // whose R is an odd multiple of the grid
    std::uint32_t tied; // which lie halfway; their R is an even multiple
};

QEL_AVX512 __m256d addHalves(__m512d lanes) {
    return _mm256_add_pd(_mm512_maskz_extractf64x4_pd(kHalfOfLanes, lanes, 0),
                         _mm512_maskz_extractf64x4_pd(kHalfOfLanes, lanes, 1));
}

// The sums of the lanes of both.
QEL_AVX512 __m128d sumsOf(__m512d first, __m512d second) {
    const __m256d pairs = _mm256_hadd_pd(addHalves(first), addHalves(second));
    return _mm_add_pd(_mm256_castpd256_pd128(pairs), _mm256_extractf128_pd(pairs, 1));
}

QEL_AVX512 Steps stepsOf(const float* values, const Binade& binade) {
    const __m512d rounder = _mm512_set1_pd(binade.rounder());
    const __m512d half = _mm512_set1_pd(0.5 * binade.grid);
    const __m512i lastDigit = _mm512_set1_epi64(1);
    __m512d sum = _mm512_setzero_pd();
    __m512d magnitude = _mm512_setzero_pd();
    Steps steps = {};
    for (std::size_t k = 0; k < kRun; k += kLanes) {
        const __m512d x = _mm512_maskz_cvtps_pd(kAllLanes, _mm256_loadu_ps(values + k));
        const __m512d shifted = _mm512_add_pd(x, rounder);
        const __m512d rounded = _mm512_sub_pd(shifted, rounder);
        const __m512d rest = _mm512_abs_pd(_mm512_sub_pd(x, rounded));
        sum = _mm512_add_pd(sum, rounded);
        magnitude = _mm512_add_pd(magnitude, _mm512_abs_pd(x));
        const std::uint32_t odd = _mm512_test_epi64_mask(_mm512_castpd_si512(shifted), lastDigit);
        const std::uint32_t tied = _mm512_cmp_pd_mask(rest, half, _CMP_EQ_OQ);
        steps.odd |= odd << k;
        steps.tied |= tied << k;
    }
    const __m128d sums = sumsOf(sum, magnitude);
    steps.sum = _mm_cvtsd_f64(sums);
    steps.magnitude = _mm_cvtsd_f64(_mm_unpackhi_pd(sums, sums));
    return steps;
}

// True if the sum keeps to the interval at every step of the run.
QEL_KERNEL bool staysInside(const Binade& binade, double sum, double magnitude) {
    constexpr double kOfMagnitude = 0x1p-40; // beyond its roundings, 32 of 2^-53
    constexpr double kSteps = 2.0 * kRun;    // beyond those of the sum, half a grid each
    const double reach = magnitude + (magnitude * kOfMagnitude + kSteps * binade.grid);
    const double distance = std::fabs(sum);
    return distance - reach >= binade.low && distance + reach < 2.0 * binade.low;
}

// What the halfway values add beyond their R: a step of the grid, up or down, where the sum before
// them is odd. After each of them the sum is even.
QEL_AVX512 double correctionOfTies(double sum, const float* values, const Binade& binade,
                                   const Steps& steps) {
    double correction = 0.0;
    std::uint32_t isOdd = bitsOf(sum) & 1;
    std::uint32_t odd = steps.odd;
    for (std::uint32_t tied = steps.tied; tied != 0; tied &= tied - 1) {
        const std::uint32_t before = (tied & (~tied + 1)) - 1;
        isOdd ^= static_cast<std::uint32_t>(__builtin_parity(odd & before));
        const double x = static_cast<double>(values[__builtin_ctz(tied)]);
        const double rounded = (x + binade.rounder()) - binade.rounder();
        correction += isOdd * (2.0 * (x - rounded));
        isOdd = 0;
        odd &= ~before;
    }
    return correction;
}

QEL_AVX512 double sumInSteps(double sum, const float* values, std::size_t n) {
    constexpr std::size_t kLongestPause = 4;
    std::size_t pause = 1; // runs to take the plain loop for, where few keep to an interval
    Binade binade = Binade::of(sum);
    std::size_t i = 0;
    while (n - i >= kRun) {
        if (!binade.holds(sum)) {
            binade = Binade::of(sum);
        }
        const Steps steps = stepsOf(values + i, binade);
        if (staysInside(binade, sum, steps.magnitude)) {
            sum += steps.sum + correctionOfTies(sum, values + i, binade, steps);
            i += kRun;
            pause = 1;
        } else {
            const std::size_t count = std::min(pause * kRun, n - i);
            sum = sumOneByOne(sum, values + i, count);
            i += count;
            pause = std::min(2 * pause, kLongestPause);
        }
    }
    return sumOneByOne(sum, values + i, n - i);
}

} // namespace

double sumInOrder(double sum, const float* values, std::size_t n) {
    return vectorUnit() == VectorUnit::avx512 ? sumInSteps(sum, values, n)
                                              : sumOneByOne(sum, values, n);
}

} // namespace qel

#else

namespace qel {

double sumInOrder(double sum, const float* values, std::size_t n) {
    return sumOneByOne(sum, values, n);
}

} // namespace qel

#endif
