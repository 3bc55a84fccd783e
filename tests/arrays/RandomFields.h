#ifndef QEL_TESTS_ARRAYS_RANDOMFIELDS_H
#define QEL_TESTS_ARRAYS_RANDOMFIELDS_H

// Fields of floats whose sums round, or just do not.

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <random>
#include <vector>

namespace qel_test {

using Values = std::vector<float>;

// Floats of few digits, from 2^lowest over so many octaves.
struct RandomField {
    int digits;
    int lowest;
    int octaves;
    bool bothSigns;

    float draw(std::mt19937& random) const {
        const auto mantissa = static_cast<int>(random() % (1U << digits)) | (1 << digits);
        const int octave = lowest + static_cast<int>(random() % static_cast<unsigned>(octaves));
        const float value = std::ldexp(static_cast<float>(mantissa), octave - digits);
        return bothSigns && random() % 2 == 0 ? -value : value;
    }

    Values drawn(std::mt19937& random, std::size_t n) const {
        Values values(n);
        std::generate(values.begin(), values.end(), [&] { return draw(random); });
        return values;
    }
};

} // namespace qel_test

#endif
