#ifndef QEL_TESTS_CHECKSUMS_OPERATIONS_H
#define QEL_TESTS_CHECKSUMS_OPERATIONS_H

// Every public operation of the library, each run on fixed inputs, all its overloads into one
// checksum.

#include <functional>
#include <string>
#include <vector>

#include "Checksum.h"

namespace qel_checksums {

/// What an operation's bits depend on beside its inputs.
enum class Arithmetic {
    /// The four operations, square roots and comparisons, which IEEE 754 fixes: the same bits on
    /// every machine, to be held against values written down.
    exact,
    /// Also sin, cos, acos, atan2 or pow, in which versions of the C library differ, and one
    /// version between processors: the same bits in all builds on one machine, no further.
    libm,
};

struct Operation {
    std::string name; ///< class and member, without spaces
    Arithmetic arithmetic;
    std::function<void(Checksum&)> run;
};

using Operations = std::vector<Operation>;

// One function for each subsystem's concern, in the file of its name. A new operation is an entry
// there; a new file is a line here, one in allOperations() and one in CMakeLists.txt.
void addValueTypeOperations(Operations& operations);
void addNumericalOperations(Operations& operations);
void addArrayOperations(Operations& operations);
void addTensorOperations(Operations& operations);
void addCurveModelOperations(Operations& operations);
void addCurveQueryOperations(Operations& operations);
void addCurvePieceOperations(Operations& operations);
void addCurveChangeOperations(Operations& operations);
void addCurveRelationOperations(Operations& operations);
void addSpatialOperations(Operations& operations);
void addBatchCurveOperations(Operations& operations);

inline Operations allOperations() {
    Operations operations;
    addValueTypeOperations(operations);
    addNumericalOperations(operations);
    addArrayOperations(operations);
    addTensorOperations(operations);
    addCurveModelOperations(operations);
    addCurveQueryOperations(operations);
    addCurvePieceOperations(operations);
    addCurveChangeOperations(operations);
    addCurveRelationOperations(operations);
    addSpatialOperations(operations);
    addBatchCurveOperations(operations);
    return operations;
}

} // namespace qel_checksums

#endif
