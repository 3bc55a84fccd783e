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
    // Of the turning angle.
    double sine = 0.0;
    double cosine = 1.0;
};

double norm(const Point& p) {
    return std::sqrt(p.x * p.x + p.y * p.y + p.z * p.z);
}

Point dividedBy(const Point& p, double length) {
    return length > 0.0 ? Point(p.x / length, p.y / length, p.z / length) : Point();
}

Point unit(const Point& p) {
    return dividedBy(p, norm(p));
}

// Vectors with a largest component between these have squares that neither overflow nor, where they
// count, vanish.
constexpr double kMinUnscaled = 0x1p-300;
constexpr double kMaxUnscaled = 0x1p+300;

// A power of two by which a vector is divided before its components are squared: that of the
// largest component; 0 where there is no need.
int exponentOf(const Point& p) {
    const double largest = std::max(std::max(std::abs(p.x), std::abs(p.y)), std::abs(p.z));
    const bool isScaled = largest < kMinUnscaled || largest > kMaxUnscaled;
    return isScaled && largest > 0.0 ? std::ilogb(largest) : 0;
}

double shifted(double value, int exponent) {
    return exponent == 0 ? value : std::ldexp(value, exponent);
}

Point scaledBy(const Point& p, int exponent) {
    return {shifted(p.x, exponent), shifted(p.y, exponent), shifted(p.z, exponent)};
}

// The difference of two points may overflow where they do not; half of it does not.
Point halfStep(const Point& from, const Point& to) {
    return to * 0.5 - from * 0.5;
}

struct Chord {
    Chord() = default;
    Chord(const Point& from, const Point& to) {
        const Point half = halfStep(from, to);
        exponent = exponentOf(half);
        const Point scaled = scaledBy(half, -exponent);
        scaledLength = norm(scaled);
        direction = dividedBy(scaled, scaledLength);
    }

    double lengthOver(int power) const { return shifted(scaledLength, exponent - power); }

    Point direction;
    double scaledLength = 0.0; // half of the chord's, over 2^exponent
    int exponent = 0;
};

// Of the circle through three points, of which the second differs from the others.
class Circle {
public:
    Circle(const Chord& in, const Chord& out, const Point& first, const Point& third)
        : in_(in.direction), out_(out.direction), sine_(norm(in_.cross(out_))) {
        // Lengths as multiples of a power of two, where they need it.
        const int exponent = std::max(in.exponent, out.exponent);
        const double lengthAcross = norm(scaledBy(halfStep(first, third), -exponent));
        if (sine_ > 0.0 && lengthAcross > 0.0) {
            curvature_ = shifted(sine_ / lengthAcross, -exponent); // 2 sine over a whole length
        }
        // Times |u| |v|.
        const Point along = in_ * out.lengthOver(exponent) + out_ * in.lengthOver(exponent);
        const double size = norm(along);
        tangent_ = size > 0.0 ? dividedBy(along, size) : out_;
    }

    double curvature() const { return curvature_; }
    // Of the turning angle.
    double sine() const { return sine_; }
    double cosine() const { return in_.dot(out_); }

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
    double sine_ = 0.0;
    double curvature_ = 0.0;
};

// Shapes at vertices, from the neighbours of each: the nearest vertices on both sides that differ
// from it, across the end of a closed curve.
class VertexShapes {
public:
    static constexpr std::size_t kNone = std::numeric_limits<std::size_t>::max();

    explicit VertexShapes(const CurveView& curve)
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

    Shape at(std::size_t i) {
        const std::size_t before = before_[i];
        const std::size_t after = after_[i];
        if (before == kNone && after == kNone) {
            return {}; // all vertices are equal
        }
        if (before == kNone) {
            return atBegin(i, after);
        }
        if (after == kNone) {
            return atEnd(before, i);
        }
        const Circle circle = circleAt(before, i, after);
        return {circle.tangent(), circle.curvature(), circle.sine(), circle.cosine()};
    }

private:
    Shape atBegin(std::size_t first, std::size_t second) {
        const std::size_t third = after_[second];
        if (third == kNone) {
            return straight(first, second);
        }
        const Circle circle = circleAt(first, second, third);
        return {circle.tangentAtFirst(), circle.curvature()};
    }

    Shape atEnd(std::size_t second, std::size_t third) {
        const std::size_t first = before_[second];
        if (first == kNone) {
            return straight(second, third);
        }
        const Circle circle = circleAt(first, second, third);
        return {circle.tangentAtThird(), circle.curvature()};
    }

    // The chord out of a vertex is that into the next one, which is mostly asked for next.
    Circle circleAt(std::size_t first, std::size_t second, std::size_t third) {
        const Point a = curve_[first], b = curve_[second], c = curve_[third];
        const Chord in = first == lastFrom_ && second == lastTo_ ? last_ : Chord(a, b);
        last_ = Chord(b, c);
        lastFrom_ = second;
        lastTo_ = third;
        return {in, last_, a, c};
    }

    Shape straight(std::size_t from, std::size_t to) const {
        return {Chord(curve_[from], curve_[to]).direction};
    }

    const CurveView& curve_;
    std::vector<std::size_t> before_;
    std::vector<std::size_t> after_;
    Chord last_;
    std::size_t lastFrom_ = kNone;
    std::size_t lastTo_ = kNone;
};

void write(const Shape& shape, std::size_t k, const CurveShapeFields& out) {
    if (!out.tangent.empty()) {
        out.tangent.set(k, shape.tangent);
    }
    if (!out.curvature.empty()) {
        out.curvature.set(k, shape.curvature);
    }
    if (!out.turningAngle.empty()) {
        out.turningAngle.set(k, std::atan2(shape.sine, shape.cosine));
    }
}

void addOutputs(ArgumentCheck& check, const CurveShapeFields& out, std::size_t size) {
    check.output("tangent", out.tangent, size);
    check.output("curvature", out.curvature, size);
    check.output("turningAngle", out.turningAngle, size);
}

Shape shapeAt(const CurveView& curve, VertexShapes& vertices, const EdgeWeight& place) {
    const Shape lo = vertices.at(place.lo);
    if (place.lo == place.hi) {
        return lo;
    }
    const Shape hi = vertices.at(place.hi);
    Shape shape;
    const Point between = lo.tangent * (1.0 - place.weight) + hi.tangent * place.weight;
    shape.tangent =
        norm(between) > 0.0 ? unit(between) : Chord(curve[place.lo], curve[place.hi]).direction;
    shape.curvature = lo.curvature + (hi.curvature - lo.curvature) * place.weight;
    return shape;
}

} // namespace

void computeCurveShape(const CurveView& curve, const CurveShapeFields& out) {
    ArgumentCheck check("CurveShape", "computeCurveShape");
    addInput(check, curve);
    addOutputs(check, out, curve.size());
    VertexShapes vertices(curve);
    for (std::size_t i = 0; i < curve.size(); ++i) {
        write(vertices.at(i), i, out);
    }
}

void computeCurveShape(const CurveView& curve, const ScalarView<const double>& svalues,
                       const CurveShapeFields& out) {
    ArgumentCheck check("CurveShape", "computeCurveShape");
    addInput(check, curve);
    check.input(svalues);
    addOutputs(check, out, svalues.size());
    refuseNan(check, svalues);
    VertexShapes vertices(curve);
    std::vector<double> curveSvalues;
    curve.copySvalues(curveSvalues);
    for (std::size_t k = 0; k < svalues.size(); ++k) {
        write(shapeAt(curve, vertices, edgeWeightAt(curveSvalues, svalues[k])), k, out);
    }
}

} // namespace qel
