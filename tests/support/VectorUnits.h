#ifndef QEL_TESTS_SUPPORT_VECTORUNITS_H
#define QEL_TESTS_SUPPORT_VECTORUNITS_H

// Runs a check on every vector unit that the machine has.

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "platform/VectorUnit.h"

namespace qel_test {

inline std::vector<qel::VectorUnit> vectorUnitsOfThisMachine() {
    std::vector<qel::VectorUnit> units;
    for (const qel::VectorUnit unit :
         {qel::VectorUnit::portable, qel::VectorUnit::avx2, qel::VectorUnit::avx512}) {
        if (qel::hasVectorUnit(unit)) {
            units.push_back(unit);
        }
    }
    return units;
}

template <typename Check>
void onEveryVectorUnit(const Check& check) {
    struct Restore {
        ~Restore() { qel::restoreVectorUnit(); }
    } restore;
    for (const qel::VectorUnit unit : vectorUnitsOfThisMachine()) {
        SCOPED_TRACE("vector unit " + std::to_string(static_cast<int>(unit)));
        qel::forceVectorUnit(unit);
        check();
    }
}

} // namespace qel_test

#endif
