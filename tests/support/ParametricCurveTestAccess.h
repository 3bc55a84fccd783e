#ifndef QEL_TESTS_SUPPORT_PARAMETRICCURVETESTACCESS_H
#define QEL_TESTS_SUPPORT_PARAMETRICCURVETESTACCESS_H

// Lets tests call the curve's private steps, whose results reach callers only combined.

#include <qel/ParametricCurve.h>

namespace qel {

class ParametricCurveTestAccess {
public:
    static TripletBase<double> projectToEdge(const ParametricCurve& curve, int i, int j, double d2i,
                                             double d2j, double& s) {
        return curve.projectToEdge(i, j, d2i, d2j, s);
    }

    static void calculateDistanceFromTwoPoints(const ParametricCurve& curve, int i, int j,
                                               double& distance, int& index, bool& done) {
        curve.calculateDistanceFromTwoPoints(i, j, distance, index, done);
    }
};

} // namespace qel

#endif
