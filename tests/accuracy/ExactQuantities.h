#ifndef QEL_TESTS_ACCURACY_EXACTQUANTITIES_H
#define QEL_TESTS_ACCURACY_EXACTQUANTITIES_H

// Vortex quantities from their definitions, in long double, by other methods than the library's.

#include "accuracy/Flows.h"

namespace qel_accuracy {

/// The Frobenius norm.
Real norm(const Gradient& t);

Real invariantQ(const Gradient& t);
Real discriminant(const Gradient& t);
/// By Jacobi's rotations.
Real lambda2(const Gradient& t);
/// By Newton's method for the real eigenvalue and the quadratic that is left.
Real swirlStrength(const Gradient& t);
Real vorticityMagnitude(const Gradient& t);
Real strainMagnitude(const Gradient& t);

} // namespace qel_accuracy

#endif
