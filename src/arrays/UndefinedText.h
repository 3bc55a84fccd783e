#ifndef QEL_ARRAYS_UNDEFINEDTEXT_H
#define QEL_ARRAYS_UNDEFINEDTEXT_H

/// @file
/// The undefined marker of float arrays, and how it prints.

#include <limits>
#include <ostream>

namespace qel {

constexpr float kUndefinedFloat = std::numeric_limits<float>::max();

/// Writes the value with the stream's formatting, or UNDEF.
inline std::ostream& writeValue(std::ostream& os, float value) {
    return value == kUndefinedFloat ? os << "UNDEF" : os << value;
}

} // namespace qel

#endif
