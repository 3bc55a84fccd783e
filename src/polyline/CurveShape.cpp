// Direction, curvature and turning angle of polylines.
//
// A vertex b between its neighbours a and c lies with them on one circle. With u = b - a and
// v = c - b, its tangent there is along u / |u|^2 + v / |v|^2 and its curvature is
// 2 |u x v| / (|u| |v| |u + v|) (Menger curvature). The tangent at a is that at b, mirrored at the
// direction of u, since a chord makes equal angles with the tangents at its ends.

#include <qel/CurveShape.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "batch/ArgumentCheck.h"
#include "polyline/CurveArguments.h"
#include "polyline/EdgeWeight.h"

namespace qel {
namespace {

using Point = TripletBase<double>;

struct Shape {
    Point tangent;
    double curvature = 0.0;
    double turningAngle = 0.0;
};

double norm(const Point& p) {
    return std::sqrt(p.x * p.x + p.y * p.y + p.z * p.z);
}

Point unit(const Point& p) {
    const double length = norm(p);
    return length > 0.0 ? Point(p.x / length, p.y / length, p.z / length) : Point();
}

// The largest component as a power of two, 0 for the zero vector. Vectors divided by it have
// squares that neither overflow nor vanish.
int exponentOf(const Point& p) {
    const double largest = std::max({std::abs(p.x), std::abs(p.y), std::abs(p.z)});
    return largest > 0.0 ? std::ilogb(largest) : 0;
}

Point scaledBy(const Point& p, int exponent) {
    return {std::ldexp(p.x, exponent), std::ldexp(p.y, exponent), std::ldexp(p.z, exponent)};
}

Point direction(const Point& p) {
    return unit(scaledBy(p, -exponentOf(p)));
}

// The difference of two points may overflow where they do not; half of it does not.
Point halfStep(const Point& from, const Point& to) {
    return to * 0.5 - from * 0.5;
}

// Of the circle through three points, of which the second differs from the others.
class Circle {
public:
    Circle(const Point& a, const Point& b, const Point& c) {
        const Point halfIn = halfStep(a, b);
        const Point halfOut = halfStep(b, c);
        in_ = direction(halfIn);
        out_ = direction(halfOut);
        const double sine = norm(in_.cross(out_));
        turningAngle_ = std::atan2(sine, in_.dot(out_));
        // Lengths as multiples of a power of two near the longer one.
        const int exponent = std::max(exponentOf(halfIn), exponentOf(halfOut));
        const double lengthIn = norm(scaledBy(halfIn, -exponent));
        const double lengthOut = norm(scaledBy(halfOut, -exponent));
        const double lengthAcross = norm(scaledBy(halfStep(a, c), -exponent));
        if (sine > 0.0 && lengthAcross > 0.0) {
            curvature_ = std::ldexp(sine / lengthAcross, -exponent); // 2 sine over a whole length
        }
        const Point along = in_ * lengthOut + out_ * lengthIn; // times |u| |v|
        tangent_ = norm(along) > 0.0 ? unit(along) : out_;
    }

    double curvature() const { return curvature_; }
    double turningAngle() const { return turningAngle_; }

    // At the second point; where the curve turns straight back, the direction after it.
    const Point& tangent() const { return tangent_; }
    // At the first and the third.
    Point tangentAtFirst() const { return mirrored(in_); }
    Point tangentAtThird() const { return mirrored(out_); }

private:
    Point mirrored(const Point& chord) const {
        return unit(chord * (2.0 * chord.dot(tangent_)) - tangent_);
    }

    Point in_, out_, tangent_;
    double curvature_ = 0.0;
    double turningAngle_ = 0.0;
};

// The neighbours of every vertex: the nearest vertices on both sides that differ from it, across
// the end of a closed curve.
class Neighbours {
public:
    static constexpr std::size_t kNone = std::numeric_limits<std::size_t>::max();

    explicit Neighbours(const CurveView& curve)
        : curve_(curve), before_(curve.size(), kNone), after_(curve.size(), kNone) {
        const std::size_t last = curve.size() - 1;
        for (std::size_t i = 1; i <= last; ++i) {
            before_[i] = curve[i] == curve[i - 1] ? before_[i - 1] : i - 1;
        }
        for (std::size_t i = last; i-- > 0;) {
            after_[i] = curve[i] == curve[i + 1] ? after_[i + 1] : i + 1;
        }
        if (curve.isClosed()) {
            // The first vertex of all equals the last one, and so do those beside them that have no
            // neighbour yet.
            for (std::size_t i = 0; i <= last && before_[i] == kNone; ++i) {
                before_[i] = before_[last];
            }
            for (std::size_t i = last + 1; i-- > 0 && after_[i] == kNone;) {
                after_[i] = after_[0];
            }
        }
    }

    Shape shapeAt(std::size_t i) const {
        const std::size_t before = before_[i];
        const std::size_t after = after_[i];
        if (before == kNone && after == kNone) {
            return {}; // all vertices are equal
        }
        if (before == kNone) {
            return shapeAtBegin(i, after);
        }
        if (after == kNone) {
            return shapeAtEnd(before, i);
        }
        const Circle circle(curve_[before], curve_[i], curve_[after]);
        return {circle.tangent(), circle.curvature(), circle.turningAngle()};
    }

private:
    Shape shapeAtBegin(std::size_t first, std::size_t second) const {
        const std::size_t third = after_[second];
        if (third == kNone) {
            return straight(first, second);
        }
        const Circle circle(curve_[first], curve_[second], curve_[third]);
        return {circle.tangentAtFirst(), circle.curvature(), 0.0};
    }

    Shape shapeAtEnd(std::size_t second, std::size_t third) const {
        const std::size_t first = before_[second];
        if (first == kNone) {
            return straight(second, third);
        }
        const Circle circle(curve_[first], curve_[second], curve_[third]);
        return {circle.tangentAtThird(), circle.curvature(), 0.0};
    }

    Shape straight(std::size_t from, std::size_t to) const {
        return {direction(halfStep(curve_[from], curve_[to])), 0.0, 0.0};
    }

    const CurveView& curve_;
    std::vector<std::size_t> before_;
    std::vector<std::size_t> after_;
};

void write(const Shape& shape, std::size_t k, const CurveShapeFields& out) {
    if (!out.tangent.empty()) {
        out.tangent.set(k, shape.tangent);
    }
    if (!out.curvature.empty()) {
        out.curvature.set(k, shape.curvature);
    }
    if (!out.turningAngle.empty()) {
        out.turningAngle.set(k, shape.turningAngle);
    }
}

void addOutputs(ArgumentCheck& check, const CurveShapeFields& out, std::size_t size) {
    check.output("tangent", out.tangent, size);
    check.output("curvature", out.curvature, size);
    check.output("turningAngle", out.turningAngle, size);
}

Shape shapeAt(const CurveView& curve, const Neighbours& neighbours, const EdgeWeight& place) {
    const Shape lo = neighbours.shapeAt(place.lo);
    if (place.lo == place.hi) {
        return lo;
    }
    const Shape hi = neighbours.shapeAt(place.hi);
    Shape shape;
    const Point between = lo.tangent * (1.0 - place.weight) + hi.tangent * place.weight;
    shape.tangent =
        norm(between) > 0.0 ? unit(between) : direction(halfStep(curve[place.lo], curve[place.hi]));
    shape.curvature = lo.curvature + (hi.curvature - lo.curvature) * place.weight;
    return shape;
}

} // namespace

void computeCurveShape(const CurveView& curve, const CurveShapeFields& out) {
    ArgumentCheck check("CurveShape", "computeCurveShape");
    addInput(check, curve);
    addOutputs(check, out, curve.size());
    const Neighbours neighbours(curve);
    for (std::size_t i = 0; i < curve.size(); ++i) {
        write(neighbours.shapeAt(i), i, out);
    }
}

void computeCurveShape(const CurveView& curve, const ScalarView<const double>& svalues,
                       const CurveShapeFields& out) {
    ArgumentCheck check("CurveShape", "computeCurveShape");
    addInput(check, curve);
    check.input(svalues);
    addOutputs(check, out, svalues.size());
    refuseNan(check, svalues);
    const Neighbours neighbours(curve);
    std::vector<double> curveSvalues;
    curve.copySvalues(curveSvalues);
    for (std::size_t k = 0; k < svalues.size(); ++k) {
        write(shapeAt(curve, neighbours, edgeWeightAt(curveSvalues, svalues[k])), k, out);
    }
}

} // namespace qel
