// Part of the library that is measured: it alone can reach the choice of the vector unit, which the
// library does not hand out.
#include "support/MeasuredLibrary.h"

#include "platform/VectorUnit.h"

namespace qel_benchmark {
namespace {

constexpr const char* kNames[] = {"portable", "AVX2", "AVX-512"};

} // namespace

std::string useVectorUnit(const std::string& name) {
    qel::restoreVectorUnit();
    if (name.empty()) {
        return kNames[static_cast<int>(qel::vectorUnit())];
    }
    for (const qel::VectorUnit unit :
         {qel::VectorUnit::portable, qel::VectorUnit::avx2, qel::VectorUnit::avx512}) {
        if (name == kNames[static_cast<int>(unit)] && qel::hasVectorUnit(unit)) {
            qel::forceVectorUnit(unit);
            return name;
        }
    }
    return "";
}

} // namespace qel_benchmark
