#ifndef QEL_PLATFORM_VECTORDISPATCH_H
#define QEL_PLATFORM_VECTORDISPATCH_H

/// @file
/// Runs a kernel on the chosen vector unit.
///
///     struct Steps {
///         QEL_KERNEL static void run(const double* x, std::size_t n, double* steps) { ... }
///     };
///     onVectorUnit<Steps>(x, n, steps);
///
/// A kernel that names its lanes is a template of their number, see onFloatLanes().

#include <cstddef>

#include "platform/VectorUnit.h"

namespace qel {

template <typename Kernel, typename... Arguments>
auto runPortable(Arguments... arguments) {
    return Kernel::run(arguments...);
}

#if defined(QEL_VECTOR_UNITS)
template <typename Kernel, typename... Arguments>
QEL_AVX2 auto runAvx2(Arguments... arguments) {
    return Kernel::run(arguments...);
}

template <typename Kernel, typename... Arguments>
QEL_AVX512 auto runAvx512(Arguments... arguments) {
    return Kernel::run(arguments...);
}
#endif

/// Returns Kernel::run(arguments...), compiled for the vector unit in use. Arguments are passed by
/// value.
template <typename Kernel, typename... Arguments>
auto onVectorUnit(Arguments... arguments) {
#if defined(QEL_VECTOR_UNITS)
    switch (vectorUnit()) {
    case VectorUnit::avx512:
        return runAvx512<Kernel, Arguments...>(arguments...);
    case VectorUnit::avx2:
        return runAvx2<Kernel, Arguments...>(arguments...);
    case VectorUnit::portable:
        break;
    }
#endif
    return runPortable<Kernel, Arguments...>(arguments...);
}

/// Returns what Kernel<lanes>::run(arguments...) does, the number of elements it has computed;
/// `lanes` is how many floats the vector unit in use computes at once. Does nothing on the portable
/// one.
template <template <std::size_t> class Kernel, typename... Arguments>
std::size_t onFloatLanes([[maybe_unused]] const Arguments&... arguments) {
#if defined(QEL_VECTOR_UNITS)
    switch (vectorUnit()) {
    case VectorUnit::avx512:
        return runAvx512<Kernel<16>, const Arguments&...>(arguments...);
    case VectorUnit::avx2:
        return runAvx2<Kernel<8>, const Arguments&...>(arguments...);
    case VectorUnit::portable:
        break;
    }
#endif
    return 0;
}

/// As onVectorUnit, for a kernel over `count` elements: so few of them are done before a unit is
/// chosen.
template <typename Kernel, typename... Arguments>
auto onVectorUnitFrom(std::size_t count, Arguments... arguments) {
    constexpr std::size_t kPays = 32;
    return count < kPays ? runPortable<Kernel, Arguments...>(arguments...)
                         : onVectorUnit<Kernel, Arguments...>(arguments...);
}

} // namespace qel

#endif
