#ifndef QEL_TESTS_SUPPORT_SAMPLES_H
#define QEL_TESTS_SUPPORT_SAMPLES_H

// Seeded numbers for tests, from ordinary ones to those that break formulas.

#include <cmath>
#include <limits>
#include <random>

namespace qel_test {

// Mostly numbers in [-10, 10]; now and then small integers, zeros of both signs, tiny and huge
// numbers, the undefined marker, infinities and NaN.
template <typename T>
class Samples {
public:
    explicit Samples(unsigned seed) : engine_(seed) {}

    T plain() { return std::uniform_real_distribution<T>(T(-10), T(10))(engine_); }
    int integer(int low, int high) {
        return std::uniform_int_distribution<int>(low, high)(engine_);
    }

    T any() {
        using limits = std::numeric_limits<T>;
        switch (integer(0, 30)) {
        case 0:
            return T(0);
        case 1:
            return -T(0);
        case 2:
            return limits::max();
        case 3:
            return limits::infinity();
        case 4:
            return -limits::infinity();
        case 5:
            return limits::quiet_NaN();
        case 6:
            return limits::denorm_min();
        case 7:
        case 8:
        case 9:
            return static_cast<T>(integer(-2, 2));
        case 10:
        case 11:
            return std::ldexp(plain(), integer(limits::min_exponent, limits::max_exponent - 4));
        default:
            return plain();
        }
    }

private:
    std::mt19937 engine_;
};

} // namespace qel_test

#endif
