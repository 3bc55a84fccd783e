#ifndef QEL_PLATFORM_LANES_H
#define QEL_PLATFORM_LANES_H

/// @file
/// Numbers of one vector register, for kernels that shuffle them: what the compiler makes of a loop
/// gathers interleaved values one by one.

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "platform/VectorUnit.h"

#if defined(QEL_SHUFFLES)

namespace qel {

template <typename Number, std::size_t width>
struct Register;

template <>
struct Register<float, 8> {
    using Type = float __attribute__((vector_size(32)));
};

template <>
struct Register<float, 16> {
    using Type = float __attribute__((vector_size(64)));
};

template <>
struct Register<double, 2> {
    using Type = double __attribute__((vector_size(16)));
};

template <>
struct Register<double, 4> {
    using Type = double __attribute__((vector_size(32)));
};

template <>
struct Register<double, 8> {
    using Type = double __attribute__((vector_size(64)));
};

template <>
struct Register<std::int64_t, 4> {
    using Type = std::int64_t __attribute__((vector_size(32)));
};

template <>
struct Register<std::int64_t, 8> {
    using Type = std::int64_t __attribute__((vector_size(64)));
};

/// Numbers that are computed with lane by lane. Registers themselves cannot be returned by
/// functions that are not of the unit, such as the formulas.
template <typename Number, std::size_t width>
struct Lanes {
    static constexpr std::size_t kBytes = width * sizeof(Number);

    typename Register<Number, width>::Type value;

    QEL_KERNEL static Lanes read(const char* from) {
        Lanes r;
        std::memcpy(&r.value, from, kBytes);
        return r;
    }

    QEL_KERNEL static Lanes all(Number number) {
        Lanes r;
        for (std::size_t lane = 0; lane < width; ++lane) {
            r.value[lane] = number;
        }
        return r;
    }

    QEL_KERNEL void write(char* to) const { std::memcpy(to, &value, kBytes); }

    QEL_KERNEL friend Lanes operator+(const Lanes& a, const Lanes& b) {
        return {a.value + b.value};
    }
    QEL_KERNEL friend Lanes operator-(const Lanes& a, const Lanes& b) {
        return {a.value - b.value};
    }
    QEL_KERNEL friend Lanes operator*(const Lanes& a, const Lanes& b) {
        return {a.value * b.value};
    }
    QEL_KERNEL friend Lanes operator/(const Lanes& a, const Lanes& b) {
        return {a.value / b.value};
    }
    QEL_KERNEL friend Lanes operator*(const Lanes& a, Number factor) { return {a.value * factor}; }
};

} // namespace qel

#endif

#endif
