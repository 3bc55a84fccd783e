#ifndef QEL_NUMERICALUTILS_H
#define QEL_NUMERICALUTILS_H

/// @file
/// Machine spacing, and bilinear interpolation in a plane quadrilateral with its inverse.

#include <qel/Export.h>

namespace qel {

/// Numerical helpers; static functions only.
class QEL_API NumericalUtils {
public:
    // -- Machine spacing ----

    /// Machine epsilon scaled to the decade of |x|: epsilon for |x| in [0.1, 10] and for 0, ten
    /// times epsilon in (10, 100], and so on. The tolerance unit of the curve operations.
    ///
    /// Not a rounding of log10: decades are found by comparing with powers of ten in single
    /// precision. NaN gives epsilon; an infinity gives NaN. O(log |x|).
    static double spacing(double x);
    static float spacing(float x);
};

} // namespace qel

#endif
