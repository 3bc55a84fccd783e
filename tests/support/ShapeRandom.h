#ifndef QEL_TESTS_SUPPORT_SHAPERANDOM_H
#define QEL_TESTS_SUPPORT_SHAPERANDOM_H

// Random numbers for the named shapes: the same on every standard library, whose distributions
// differ.

#include <cstddef>
#include <cstdint>
#include <random>
#include <utility>
#include <vector>

namespace qel_test {

class ShapeRandom {
public:
    explicit ShapeRandom(std::uint64_t seed) : engine_(seed) {}

    // In [0, 1), a multiple of 2^-53.
    double unit() { return static_cast<double>(engine_() >> 11) * 0x1p-53; }
    double between(double from, double to) { return from + (to - from) * unit(); }
    // In [0, 1), a multiple of 2^-24.
    float unitFloat() { return static_cast<float>(engine_() >> 40) * 0x1p-24f; }
    float around() { return 2.0f * unitFloat() - 1.0f; }
    // Below size, which is not 0.
    std::size_t index(std::size_t size) { return static_cast<std::size_t>(engine_() % size); }

    // Of mean 0 and variance 1, near the normal distribution: Irwin-Hall, the sum of four uniform
    // numbers, scaled.
    float normal() {
        constexpr double kScale = 1.7320508075688772 * 0x1p-32; // sqrt(3) of the sum's unit
        double sum = -0x1p33;
        for (int i = 0; i < 2; ++i) {
            const std::uint64_t bits = engine_();
            sum += static_cast<double>(bits >> 32) + static_cast<double>(bits & 0xffffffffu);
        }
        return static_cast<float>(sum * kScale);
    }

    // Fisher-Yates.
    template <typename T>
    void shuffle(std::vector<T>& values) {
        for (std::size_t i = values.size(); i > 1; --i) {
            std::swap(values[i - 1], values[index(i)]);
        }
    }

private:
    std::mt19937_64 engine_;
};

} // namespace qel_test

#endif
