#ifndef QEL_TESTS_ARRAYS_REFERENCESTATISTICS_H
#define QEL_TESTS_ARRAYS_REFERENCESTATISTICS_H

// The reference implementation of the statistics of floats.

#include <vector>

#include "support/SpecialFloats.h"

namespace qel_test {

struct Statistics {
    float min = kUndef;
    float max = kUndef;
    double sum = 0.0;
    int count = 0;
};

inline Statistics valueByValue(const std::vector<float>& values) {
    Statistics s;
    for (const float v : values) {
        if (v != kUndef) {
            s.min = s.min == kUndef || s.min > v ? v : s.min;
            s.max = s.max == kUndef || v > s.max ? v : s.max;
            s.count += 1;
            s.sum += static_cast<double>(v);
        }
    }
    return s;
}

} // namespace qel_test

#endif
