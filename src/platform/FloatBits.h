#ifndef QEL_PLATFORM_FLOATBITS_H
#define QEL_PLATFORM_FLOATBITS_H

/// @file
/// The bits of floating-point numbers as integers. Of numbers that are not negative, they have the
/// same order.

#include <cstdint>
#include <cstring>

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

} // namespace qel

#endif
