#ifndef QEL_NUMERICALUTILS_H
#define QEL_NUMERICALUTILS_H

/// @file
/// Machine spacing, and bilinear interpolation in a plane quadrilateral with its inverse.

#include <qel/Export.h>

namespace qel {

/// Numerical helpers: static functions without state, which many threads may call.
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

    // -- Plane quadrilaterals ----
    //
    // Corners 1 to 4 lie at (s, t) = (0, 0), (1, 0), (0, 1), (1, 1). This is not the order round
    // the rim: corner 4 lies opposite corner 1.

    /// Bilinear value: (1-t)(1-s) f1 + (1-t)s f2 + (1-s)t f3 + st f4, summed from left to right.
    /// The float member forms 1-s and 1-t in double and computes the rest in float.
    static double calculateValueInQuadFromSTD(double s, double t, double f1, double f2, double f3,
                                              double f4);
    static float calculateValueInQuadFromST(float s, float t, float f1, float f2, float f3,
                                            float f4);

    /// Finds the parameters (s, t) of a point in a quadrilateral, the inverse of the bilinear
    /// value, by Newton steps from (0.5, 0.5). At most maxIterations steps of constant time.
    ///
    /// Ends when both residuals are below tolerance times the larger extent of the corners' box,
    /// or when both numerators of a step (before the division by the determinant) are below the
    /// plain tolerance. The results are not limited to [0, 1]. The float member computes in
    /// double and rounds s and t after every step.
    ///
    /// No flag is set where the steps run out, or where maxIterations is below 1.
    /// @param[out] s,t        the parameters; the last iterate if the search did not converge
    /// @param[out] outside    the point lies outside the corners' box, enlarged on every side by
    ///                        margin times its extent; s = t = 0.5 then
    /// @param[out] converged  one of the tests above was met
    /// @param[out] singular   the determinant vanished against the step: less than 100 times the
    ///                        single-precision spacing of the larger numerator
    static void searchForSTinQuadD(double& s, double& t, double px, double py, double x1, double y1,
                                   double x2, double y2, double x3, double y3, double x4, double y4,
                                   bool& outside, bool& converged, bool& singular,
                                   int maxIterations, double margin, double tolerance);
    static void searchForSTinQuad(float& s, float& t, float px, float py, float x1, float y1,
                                  float x2, float y2, float x3, float y3, float x4, float y4,
                                  bool& outside, bool& converged, bool& singular, int maxIterations,
                                  float margin, float tolerance);
};

} // namespace qel

#endif
