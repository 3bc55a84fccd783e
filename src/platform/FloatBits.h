#ifndef QEL_PLATFORM_FLOATBITS_H
#define QEL_PLATFORM_FLOATBITS_H

/// @file
/// The bits of floating-point numbers as integers. Of numbers that are not negative, they have the
/// same order.

#include <cstdint>
#include <cstring>
#include <type_traits>

#include "platform/VectorUnit.h"

namespace qel {

QEL_KERNEL std::int32_t bitsOf(float value) {
    std::int32_t bits;
    std::memcpy(&bits, &value, sizeof bits);
    return bits;
}

QEL_KERNEL std::uint64_t bitsOf(double value) {
    std::uint64_t bits;
    std::memcpy(&bits, &value, sizeof bits);
    return bits;
}

QEL_KERNEL float floatOf(std::int32_t bits) {
    float value;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

QEL_KERNEL double doubleOf(std::uint64_t bits) {
    double value;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

/// Integers as wide as the numbers, whose comparisons give lanes masks.
template <typename T>
using SignedBits = std::conditional_t<sizeof(T) == sizeof(float), std::int32_t, std::int64_t>;

template <typename T>
QEL_KERNEL SignedBits<T> signedBitsOf(T value) {
    SignedBits<T> bits;
    std::memcpy(&bits, &value, sizeof bits);
    return bits;
}

template <typename T>
QEL_KERNEL T numberOf(SignedBits<T> bits) {
    T value;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

} // namespace qel

#endif
