#include "curve/ParameterWalk.h"

#include <cstdint>

#include "platform/VectorUnit.h"

namespace qel {
namespace {

// All of them are compared, so that lanes help; words as wide as the values keep the lanes whole.
QEL_KERNEL bool ordered(const double* s, std::size_t n) {
    std::uint64_t wrong = 0;
    for (std::size_t i = 1; i < n; ++i) {
        wrong |= s[i - 1] <= s[i] ? std::uint64_t{0} : std::uint64_t{1};
    }
    return wrong == 0;
}

bool orderedPortable(const double* s, std::size_t n) {
    return ordered(s, n);
}
#if defined(QEL_VECTOR_UNITS)
QEL_AVX2 bool orderedAvx2(const double* s, std::size_t n) {
    return ordered(s, n);
}
QEL_AVX512 bool orderedAvx512(const double* s, std::size_t n) {
    return ordered(s, n);
}
#endif

} // namespace

bool ParameterWalk::inOrder(const std::vector<double>& svalues) {
#if defined(QEL_VECTOR_UNITS)
    switch (vectorUnit()) {
    case VectorUnit::avx512:
        return orderedAvx512(svalues.data(), svalues.size());
    case VectorUnit::avx2:
        return orderedAvx2(svalues.data(), svalues.size());
    case VectorUnit::portable:
        break;
    }
#endif
    return orderedPortable(svalues.data(), svalues.size());
}

Point ParameterWalk::at(double s) {
    return pointAtParameter(points_, svalues_, s, hi_);
}

} // namespace qel
