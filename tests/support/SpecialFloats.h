#ifndef QEL_TESTS_SUPPORT_SPECIALFLOATS_H
#define QEL_TESTS_SUPPORT_SPECIALFLOATS_H

// Floats that formulas and statistics have rules for.

#include <limits>

namespace qel_test {

inline constexpr float kUndef = std::numeric_limits<float>::max();
inline constexpr float kInf = std::numeric_limits<float>::infinity();
inline constexpr float kNan = std::numeric_limits<float>::quiet_NaN();

} // namespace qel_test

#endif
