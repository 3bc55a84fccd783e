// Crossings of a curve with a segment of the plane or with another curve.

#include <qel/ParametricCurve.h>

#include <qel/LineSegment2D.h>
#include <qel/QELError.h>

#include "curve/FirstCrossing.h"

namespace qel {
namespace {

// Deliberate: reported, not thrown, and in these words also where a segment is intersected
// (Intersection, ReportsACurveThatIsNotTwoDimensionalAndGoesOn).
void reportUnlessPlane(const ParametricCurve& curve, std::size_t times) {
    if (curve.getDimension() == ParametricCurve::dim2D) {
        return;
    }
    for (std::size_t i = 0; i < times; ++i) {
        ErrorReporter::instance()->report(
            data::invalid("ParametricCurve", "intersectWithSegment",
                          "Intersecting two curves that are not 2 Dimensional.", reportedError));
    }
}

FloatPoint inSpace(const Doublet& p) {
    return {p.x, p.y, 0.0f};
}

} // namespace

bool ParametricCurve::intersectWithSegment(const LineSegment2D& segment, FloatPoint& point) const {
    reportUnlessPlane(*this, 1);
    Doublet crossing;
    if (!findFirstCrossing(points_, segment, crossing)) {
        return false;
    }
    point = inSpace(crossing);
    return true;
}

bool ParametricCurve::intersectWithCurve(const ParametricCurve& other, FloatPoint& point) const {
    std::size_t tried = 0;
    Doublet crossing;
    const bool meet = findFirstCrossing(points_, other.points_, tried, crossing);
    reportUnlessPlane(other, tried); // each segment tried is an intersection of its own
    if (meet) {
        point = inSpace(crossing);
    }
    return meet;
}

} // namespace qel
