// Tangent and curvature at all vertices, area, and data carried to n s-values.

#include <cmath>

#include <qel/CurveResampling.h>
#include <qel/CurveShape.h>

#include "curve/BoostLine.h"
#include "curve/CurveInput.h"

namespace qel_benchmark {
namespace {

double norm(const Point& p) {
    return std::sqrt(p.dot(p));
}

// Without a thought of repeats, of large and of small numbers.
void shapeByLoop(const Points& points, Points& tangents, Values& curvatures) {
    for (std::size_t i = 1; i + 1 < points.size(); ++i) {
        const Point in = points[i] - points[i - 1], out = points[i + 1] - points[i];
        const double lengthIn = norm(in), lengthOut = norm(out);
        const Point along = in * (lengthOut / lengthIn) + out * (lengthIn / lengthOut);
        tangents[i] = along * (1.0 / norm(along));
        curvatures[i] = 2.0 * norm(in.cross(out)) / (lengthIn * lengthOut * norm(in + out));
    }
}

void shapeAtVertices(Row& row, const CurveInput& in) {
    if (!in.isFinite()) {
        return;
    }
    Points tangents(in.n);
    Values curvatures(in.n);
    qel::CurveShapeFields out;
    out.tangent = tangents;
    out.curvature = curvatures;
    row.add(kLibrary, [&] { qel::computeCurveShape(in.points, out); });
    row.add(kPlain, [&] { shapeByLoop(in.points, tangents, curvatures); });
    row.measure();
}

void signedArea(Row& row, const CurveInput& in) {
    if (!in.isFinite()) {
        return;
    }
    row.add(kLibrary, [&] { keep(qel::computeSignedArea(in.points)); });
#if defined(QEL_BENCHMARK_HAS_BOOST)
    boost::geometry::model::ring<BoostFlatPoint> ring;
    for (const Point& p : in.points) {
        ring.emplace_back(p.x, p.y);
    }
    row.add(kBoost, [&] { keep(boost::geometry::area(ring)); });
#endif
    row.measure();
}

void resampleWithData(Row& row, const CurveInput& in) {
    if (!in.isFinite()) {
        return;
    }
    constexpr std::size_t kColumns = 3;
    const Values svalues = randomParameters(in.n);
    const Values data(kColumns * in.n, 1.0);
    Values resampled(kColumns * in.n);
    Points points(in.n);
    const qel::CurveView curve(in.points, in.svalues());
    row.add(kLibrary, [&] {
        qel::resampleCurve(curve, svalues, {data.data(), in.n, kColumns}, points,
                           {resampled.data(), in.n, kColumns});
    });
    row.measure();
}

const bool registered = addCurveWork("tangent_and_curvature", shapeAtVertices) &&
                        addCurveWork("signed_area", signedArea) &&
                        addCurveWork("resample_with_data", resampleWithData);

} // namespace
} // namespace qel_benchmark
