// Simplification to an error: to hundredths of the extent, and to what drops few points.

#include <qel/CurveSimplification.h>

#include "curve/BoostLine.h"
#include "curve/CurveInput.h"
#include "curve/GeosLine.h"

#if defined(QEL_BENCHMARK_HAS_GEOS)
#include <geos/simplify/DouglasPeuckerSimplifier.h>
#endif

namespace qel_benchmark {
namespace {

void simplify(Row& row, const CurveInput& in, double tolerance) {
    row.add(kLibrary, [&] { keep(qel::simplifyToError(in.points, tolerance).size()); });
#if defined(QEL_BENCHMARK_HAS_BOOST)
    const BoostLine line = boostLine(in.points);
    BoostLine simplified;
    row.add(kBoost, [&] {
        simplified.clear();
        boost::geometry::simplify(line, simplified, tolerance);
    });
#endif
#if defined(QEL_BENCHMARK_HAS_GEOS)
    const std::unique_ptr<geos::geom::LineString> geos = geosLine(in.points);
    row.add("GEOS", [&] {
        keep(geos::simplify::DouglasPeuckerSimplifier::simplify(geos.get(), tolerance).get());
    });
#endif
    row.measure();
}

void simplifyCoarsely(Row& row, const CurveInput& in) {
    if (in.isFinite()) {
        simplify(row, in, 1e-2 * qel_test::extentOf(in.points));
    }
}

void simplifyFinely(Row& row, const CurveInput& in) {
    if (in.isFinite()) {
        simplify(row, in, 1e-9 * qel_test::extentOf(in.points));
    }
}

const bool registered = addCurveWork("simplify_coarsely", simplifyCoarsely) &&
                        addCurveWork("simplify_finely", simplifyFinely);

} // namespace
} // namespace qel_benchmark
