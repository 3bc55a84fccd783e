#include "platform/VectorUnit.h"

#include <atomic>

namespace qel {
namespace {

VectorUnit widestUnit() {
    if (hasVectorUnit(VectorUnit::avx512)) {
        return VectorUnit::avx512;
    }
    return hasVectorUnit(VectorUnit::avx2) ? VectorUnit::avx2 : VectorUnit::portable;
}

// Atomic, so that objects on different threads may ask; relaxed reads cost a plain load.
std::atomic<VectorUnit>& chosenUnit() {
    static std::atomic<VectorUnit> unit{widestUnit()};
    return unit;
}

} // namespace

VectorUnit vectorUnit() {
    return chosenUnit().load(std::memory_order_relaxed);
}

bool hasVectorUnit(VectorUnit unit) {
#if defined(QEL_VECTOR_UNITS)
    switch (unit) {
    case VectorUnit::portable:
        return true;
    case VectorUnit::avx2:
        return __builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma");
    case VectorUnit::avx512:
        return hasVectorUnit(VectorUnit::avx2) && __builtin_cpu_supports("avx512f") &&
               __builtin_cpu_supports("avx512dq") && __builtin_cpu_supports("avx512bw") &&
               __builtin_cpu_supports("avx512vl");
    }
    return false;
#else
    return unit == VectorUnit::portable;
#endif
}

void forceVectorUnit(VectorUnit unit) {
    chosenUnit().store(unit, std::memory_order_relaxed);
}

void restoreVectorUnit() {
    forceVectorUnit(widestUnit());
}

} // namespace qel
