// Directed segments of the plane and their intersections.

#include <qel/LineSegment2D.h>

#include <cmath>
#include <ostream>

namespace qel {
namespace {

// Written out: 1.0001 is not computed as 1 plus the tolerance. Both limits belong to the range.
constexpr double kLowestT = -0.0001;
constexpr double kHighestT = 1.0001;
static_assert(kLowestT == -LineSegment2D::intersectionTolerance, "the same slack at both ends");

// A NaN is not beyond: both comparisons fail for it (LineSegment2D, LimitsAcceptNan).
bool isBeyondLimits(double t) {
    return kLowestT > t || t > kHighestT;
}

} // namespace

LineSegment2D::LineSegment2D(const Doublet& startPoint, const Doublet& endPoint)
    : start(startPoint), toVector(endPoint - startPoint) {}

Doublet LineSegment2D::getEnd() const {
    return start + toVector;
}

bool LineSegment2D::isZeroLength() const {
    return toVector.isZero();
}

// -- Places along the line ----

Doublet LineSegment2D::getPointAt(double t) const {
    return start + t * toVector;
}

double LineSegment2D::getT(const Doublet& point) const {
    const Doublet u = toVector.unit();
    const Doublet w = point - start;
    return w.dotProduct(u) / toVector.length();
}

// -- The carrying line ----

Doublet LineSegment2D::unitNormal() const {
    return toVector.normal().unit();
}

void LineSegment2D::nearOrigin(Doublet& n, double& c) const {
    const Doublet from = start; // n may be this segment's own start or direction
    n = unitNormal();
    c = -from.dotProduct(n);
}

// -- Intersections ----

bool LineSegment2D::intersect(const LineSegment2D& other, double& t) const {
    const Doublet n = other.unitNormal();
    const double a = -other.start.dotProduct(n);
    const double denom = n.dotProduct(toVector);
    if (denom == 0.0) {
        return false;
    }
    t = -((n.dotProduct(start) + a) / denom);
    return true;
}

bool LineSegment2D::intersectWithLimits(const LineSegment2D& other, double& t) const {
    if (!intersect(other, t) || isBeyondLimits(t)) {
        return false;
    }
    return !isBeyondLimits(other.getT(getPointAt(t)));
}

bool LineSegment2D::intersectWithCircle(const Doublet& centre, double radius, double& t1,
                                        double& t2) const {
    if (isZeroLength()) {
        return false;
    }
    // |w + lambda u|^2 = radius^2 for the distance lambda along the unit direction u.
    const Doublet w = start - centre;
    const Doublet u = toVector.unit();
    const double a = u.dotProduct(u);
    const double b = 2.0 * u.dotProduct(w);
    const double c = w.dotProduct(w) - radius * radius;
    const double discriminant = b * b - c * (a * 4.0);
    if (0.0 > discriminant) {
        return false;
    }
    const double root = std::sqrt(discriminant);
    const double divisor = toVector.length() * (2.0 * a);
    t1 = (root - b) / divisor;
    t2 = (-b - root) / divisor;
    return true;
}

// -- Text ----

void LineSegment2D::write(std::ostream& os) const {
    os << "[" << start << " " << getEnd() << "]";
}

std::ostream& operator<<(std::ostream& os, const LineSegment2D& segment) {
    segment.write(os);
    return os;
}

} // namespace qel
