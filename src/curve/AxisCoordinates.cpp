#include "curve/AxisCoordinates.h"

#include <algorithm>
#include <cmath>

#include "curve/VectorLength.h"
#include "platform/VectorDispatch.h"

namespace qel {
namespace {

constexpr std::size_t kBlock = 64; // points converted before they are stored
constexpr std::ptrdiff_t kForwards = 1;

// Vectors of a block, component by component; behind one of the block before.
struct Vectors {
    double x[kBlock + 1];
    double y[kBlock + 1];
    double z[kBlock + 1];

    QEL_KERNEL Point operator[](std::size_t i) const { return {x[i], y[i], z[i]}; }
    QEL_KERNEL void set(std::size_t i, const Point& v) {
        x[i] = v.x;
        y[i] = v.y;
        z[i] = v.z;
    }
};

// A block of points in the coordinates of the axis, and the unit vectors from that to them, behind
// the one to the point before the block.
struct Converted {
    double axial[kBlock];
    double radial[kBlock];
    Vectors radials;
};

// The length by which a vector is made one of unit length: its own, or one for a zero vector. A
// choice between the two would become one between quotients.
QEL_KERNEL double divisorOf(double length) {
    return length + (length == 0.0 ? 1.0 : 0.0);
}

struct ConvertKernel {
    // The points follow each other by a step, which may be backwards.
    QEL_KERNEL static void run(const Axis* axis, const Point* points, std::ptrdiff_t step,
                               std::size_t count, Converted* converted) {
        Vectors fromAxis; // apart, which keeps lanes whole
        for (std::size_t i = 0; i < count; ++i) {
            fromAxis.set(i, points[static_cast<std::ptrdiff_t>(i) * step] - axis->point);
        }
        const Point d = axis->direction;
        for (std::size_t i = 0; i < count; ++i) {
            const Point v = fromAxis[i];
            const Point c = d.cross(v);
            const double around = divisorOf(vectorLength(c.x, c.y, c.z));
            const Point unit(c.x / around, c.y / around, c.z / around);
            const Point r = unit.cross(d);
            const double away = divisorOf(vectorLength(r.y, r.x, r.z)); // in normalize's order
            const Point radial(r.x / away, r.y / away, r.z / away);
            converted->axial[i] = v.dot(d);
            converted->radial[i] = v.dot(radial);
            converted->radials.set(i + 1, radial);
        }
    }
};

// The turns of a block, each from the radial before: y along the turn, x along that radial.
struct Turns {
    double y[kBlock];
    double x[kBlock];

    double angle(std::size_t i) const {
        return x[i] == 0.0 && y[i] == 0.0 ? 0.0 : std::atan2(y[i], x[i]);
    }
};

struct TurnsKernel {
    QEL_KERNEL static void run(const Axis* axis, const Vectors* radials, std::size_t count,
                               Turns* turns) {
        const Point d = axis->direction;
        for (std::size_t i = 0; i < count; ++i) {
            const Point from = (*radials)[i];
            const Point to = (*radials)[i + 1];
            turns->y[i] = to.dot(d.cross(from));
            turns->x[i] = to.dot(from);
        }
    }
};

// Follows a curve one way from a point that is converted already.
template <typename Target>
class AngleWalk {
public:
    AngleWalk(const Axis& axis, const Point& radial, double theta) : axis_(axis), theta_(theta) {
        converted_.radials.set(0, radial);
    }

    // Goes on from an index, by a step of 1 or -1, through `count` points.
    void follow(const Points& points, Target* out, std::ptrdiff_t index, std::ptrdiff_t step,
                std::size_t count) {
        while (count > 0) {
            const std::size_t n = std::min(count, kBlock);
            onVectorUnitFrom<ConvertKernel>(n, &axis_, points.data() + index, step, n, &converted_);
            onVectorUnitFrom<TurnsKernel>(
                n, &axis_, static_cast<const Vectors*>(&converted_.radials), n, &turns_);
            for (std::size_t i = 0; i < n; ++i, index += step) {
                theta_ += turns_.angle(i);
                out[index] = Target(Point(converted_.axial[i], converted_.radial[i], theta_));
            }
            converted_.radials.set(0, converted_.radials[n]);
            count -= n;
        }
    }

private:
    const Axis& axis_;
    double theta_;
    Converted converted_;
    Turns turns_;
};

} // namespace

template <typename Target>
void convertToART0(const Axis& axis, const Points& points, Target* out) {
    Converted converted;
    for (std::size_t first = 0; first < points.size(); first += kBlock) {
        const std::size_t count = std::min(kBlock, points.size() - first);
        onVectorUnitFrom<ConvertKernel>(count, &axis, points.data() + first, kForwards, count,
                                        &converted);
        for (std::size_t i = 0; i < count; ++i) {
            out[first + i] = Target(Point(converted.axial[i], converted.radial[i], 0.0));
        }
    }
}

template <typename Target>
void convertToART(const Axis& axis, const Points& points, std::size_t reference, double theta0,
                  Target* out) {
    Converted converted;
    runPortable<ConvertKernel>(&axis, points.data() + reference, kForwards, std::size_t{1},
                               &converted);
    out[reference] = Target(Point(converted.axial[0], converted.radial[0], theta0));
    const auto index = static_cast<std::ptrdiff_t>(reference);
    AngleWalk<Target>(axis, converted.radials[1], theta0)
        .follow(points, out, index + 1, kForwards, points.size() - 1 - reference);
    AngleWalk<Target>(axis, converted.radials[1], theta0)
        .follow(points, out, index - 1, -kForwards, reference);
}

template void convertToART0(const Axis&, const Points&, Point*);
template void convertToART0(const Axis&, const Points&, FloatPoint*);
template void convertToART(const Axis&, const Points&, std::size_t, double, Point*);
template void convertToART(const Axis&, const Points&, std::size_t, double, FloatPoint*);

} // namespace qel
