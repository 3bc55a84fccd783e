#ifndef QEL_SPATIAL_DIGITSORT_H
#define QEL_SPATIAL_DIGITSORT_H

/// @file
/// The pass of a radix sort.

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

namespace qel {

/// The most bits of a digit.
constexpr int kMaxDigitBits = 8;

/// Finds places by ascending digit, and in the order given where digits are the same.
/// @param keyOf  (i) -> the key of element i
/// @param put    (i, place) moves element i there
template <typename KeyOf, typename Put>
void dealByDigit(std::size_t count, int shift, int digitBits, KeyOf keyOf, Put put) {
    std::array<std::uint32_t, std::size_t{1} << kMaxDigitBits> next;
    const std::size_t digits = std::size_t{1} << digitBits;
    const auto digit = [&](std::size_t i) { return (keyOf(i) >> shift) & (digits - 1); };
    std::fill(next.begin(), next.begin() + static_cast<std::ptrdiff_t>(digits), 0u);
    for (std::size_t i = 0; i < count; ++i) {
        ++next[digit(i)];
    }
    std::uint32_t sum = 0;
    for (std::size_t d = 0; d < digits; ++d) {
        const std::uint32_t size = next[d];
        next[d] = sum;
        sum += size;
    }
    for (std::size_t i = 0; i < count; ++i) {
        put(i, next[digit(i)]++);
    }
}

} // namespace qel

#endif
