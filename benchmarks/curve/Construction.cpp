// Building a curve from points: a copy, the lengths of the steps, their running sum and the
// division by the length.

#include "curve/CurveInput.h"
#include "curve/CurveLoops.h"
#include "curve/EigenCurve.h"
#include "support/Limit.h"

namespace qel_benchmark {
namespace {

using FloatPoints = std::vector<qel::TripletBase<float>>;

FloatPoints narrowed(const Points& points) {
    return {points.begin(), points.end()};
}

// Into memory of its own.
void construct(Row& row, const CurveInput& in) {
    row.add(kLibrary, [&] {
        const ParametricCurve curve(in.points, kSpace);
        keep(curve.getLength());
    });
    Values s;
    row.add(kPlain, [&] {
        const Points copy(in.points);
        s = Values(in.n);
        keep(plain::arcValues(copy, s));
    });
#if defined(QEL_BENCHMARK_HAS_EIGEN)
    row.add(kEigen, [&] {
        const Points copy(in.points);
        Values values(in.n);
        keep(arcValuesByEigen(copy, values));
    });
#endif
    row.measure();
    row.expectSame(sameBits(s, in.svalues()));
}

void constructFromFloats(Row& row, const CurveInput& in) {
    const FloatPoints floats = narrowed(in.points);
    row.add(kLibrary, [&] {
        const ParametricCurve curve(floats, kSpace);
        keep(curve.getLength());
    });
    row.add(kPlain, [&] {
        const Points copy(floats.begin(), floats.end());
        Values s(in.n);
        keep(plain::arcValues(copy, s));
    });
    row.measure();
}

// Into the memory that a curve has.
void setPoints(Row& row, const CurveInput& in) {
    ParametricCurve curve(in.curve);
    row.add(kLibrary, [&] { curve.setPoints(in.points, kSpace); });
    Points copy(in.points);
    Values s(in.n);
    row.add(kPlain, [&] {
        copy = in.points;
        keep(plain::arcValues(copy, s));
    });
#if defined(QEL_BENCHMARK_HAS_EIGEN)
    Points columns(in.points);
    Values values(in.n);
    row.add(kEigen, [&] {
        columns = in.points;
        keep(arcValuesByEigen(columns, values));
    });
#endif
    addCopy(row, in.n * (2 * sizeof(Point) + sizeof(double)));
    row.measure();
    row.expectSame(sameBits(s, curve.getSvalues()) && sameBits(copy, curve.getCurve()));
}

void setPointsFromFloats(Row& row, const CurveInput& in) {
    const FloatPoints floats = narrowed(in.points);
    ParametricCurve curve(in.curve);
    row.add(kLibrary, [&] { curve.setPoints(floats, kSpace); });
    Points copy(in.points);
    Values s(in.n);
    row.add(kPlain, [&] {
        for (std::size_t i = 0; i < in.n; ++i) {
            copy[i] = Point(floats[i]);
        }
        keep(plain::arcValues(copy, s));
    });
    row.measure();
    row.expectSame(sameBits(s, curve.getSvalues()) && sameBits(copy, curve.getCurve()));
}

void setPointsAndS(Row& row, const CurveInput& in) {
    const Values& given = in.svalues();
    ParametricCurve curve(in.curve);
    row.add(kLibrary, [&] { curve.setPoints(in.points, given, kSpace); });
    Points copy(in.points);
    Values s(in.n);
    row.add(kPlain, [&] {
        copy = in.points;
        bool ascending = true;
        for (std::size_t i = 1; i < given.size(); ++i) {
            ascending = ascending && !(given[i - 1] > given[i]);
        }
        keep(ascending);
        s = given;
    });
    row.measure();
}

void setPointsAlongX(Row& row, const CurveInput& in) {
    ParametricCurve curve(in.curve);
    row.add(kLibrary, [&] { curve.setPoints(in.points, ParametricCurve::normalizeX, kSpace); });
    Points copy(in.points);
    Points along(in.n);
    Values s(in.n);
    row.add(kPlain, [&] {
        for (std::size_t i = 0; i < in.n; ++i) {
            along[i] = Point(in.points[i].x, 0.0, 0.0);
        }
        keep(plain::arcValues(along, s));
        copy = in.points;
    });
    row.measure();
    row.expectSame(sameBits(s, curve.getSvalues()));
}

void setX(Row& row, const CurveInput& in) {
    Values xs;
    in.curve.getX(xs);
    ParametricCurve curve(in.curve);
    row.add(kLibrary, [&] { curve.setPointsX(xs); });
    Points points(in.n);
    Values s(in.n);
    row.add(kPlain, [&] {
        for (std::size_t i = 0; i < in.n; ++i) {
            points[i] = Point(xs[i], 0.0, 0.0);
        }
        keep(plain::arcValues(points, s));
    });
    row.measure();
    row.expectSame(sameBits(s, curve.getSvalues()));
}

void setXUniform(Row& row, const CurveInput& in) {
    Values xs;
    in.curve.getX(xs);
    ParametricCurve curve(in.curve);
    row.add(kLibrary, [&] { curve.setPointsXnormalizeUniform(xs); });
    Points points(in.n);
    Values s(in.n);
    row.add(kPlain, [&] {
        const double step = 1.0 / static_cast<double>(in.n - 1);
        for (std::size_t i = 0; i < in.n; ++i) {
            points[i] = Point(xs[i], 0.0, 0.0);
            s[i] = static_cast<double>(i) * step;
        }
        s[in.n - 1] = 1.0;
    });
    row.measure();
    row.expectSame(sameBits(s, curve.getSvalues()));
}

void assign(Row& row, const CurveInput& in) {
    ParametricCurve curve(in.curve);
    row.add(kLibrary, [&] { curve = in.curve; });
    Points points(in.points);
    Values s(in.svalues());
    row.add(kPlain, [&] {
        points = in.points;
        s = in.svalues();
    });
    row.measure();
}

void copyCurve(Row& row, const CurveInput& in) {
    row.add(kLibrary, [&] {
        const ParametricCurve curve(in.curve);
        keep(curve.getLength());
    });
    row.add(kPlain, [&] {
        const Points points(in.points);
        const Values s(in.svalues());
        keep(points.data());
        keep(s.data());
    });
    row.measure();
}

const bool registered = addCurveWork("construct", construct) &&
                        addCurveWork("construct_from_floats", constructFromFloats) &&
                        addCurveWork("set_points", setPoints) &&
                        addCurveWork("set_points_from_floats", setPointsFromFloats) &&
                        addCurveWork("set_points_and_s", setPointsAndS) &&
                        addCurveWork("set_points_along_x", setPointsAlongX) &&
                        addCurveWork("set_x", setX) && addCurveWork("set_x_uniform", setXUniform) &&
                        addCurveWork("assign", assign) && addCurveWork("copy", copyCurve);

} // namespace
} // namespace qel_benchmark
