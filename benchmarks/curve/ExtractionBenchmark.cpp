// Cutting the middle half out of a curve: two searches and a copy of the points in between.
#include <cstring>
#include <memory>

#include <benchmark/benchmark.h>

#include <qel/ParametricCurve.h>

#include "support/Bandwidth.h"
#include "support/Curves.h"
#include "support/Sizes.h"

#if defined(QEL_BENCHMARK_HAS_GEOS)
#include <geos/geom/Coordinate.h>
#include <geos/geom/CoordinateArraySequence.h>
#include <geos/geom/GeometryFactory.h>
#include <geos/geom/LineString.h>
#include <geos/linearref/LengthIndexedLine.h>
#endif

namespace {

using namespace qel_benchmark;

// One item is one point of the piece.
void setItems(benchmark::State& state, std::size_t points) {
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(points));
}

void cutQel(benchmark::State& state) {
    const qel::ParametricCurve curve(wave(static_cast<std::size_t>(state.range(0))),
                                     qel::ParametricCurve::dim3D);
    Points piece;
    std::vector<double> svalues;
    curve.getCurve(0.25, 0.75, piece, svalues); // into memory that is there already, as the copy
    for (auto _ : state) {
        curve.getCurve(0.25, 0.75, piece, svalues);
        benchmark::DoNotOptimize(piece.data());
        benchmark::ClobberMemory();
    }
    setItems(state, piece.size());
}

// Points and s-values of a piece of that size, copied.
void cutCopy(benchmark::State& state) {
    const Points points = wave(static_cast<std::size_t>(state.range(0)) / 2);
    const std::vector<double> svalues(points.size(), 0.5);
    Points piece(points);
    std::vector<double> copied(svalues);
    for (auto _ : state) {
        std::memcpy(static_cast<void*>(piece.data()), points.data(), points.size() * sizeof(Point));
        std::memcpy(copied.data(), svalues.data(), svalues.size() * sizeof(double));
        benchmark::ClobberMemory();
    }
    setItems(state, piece.size());
}

#if defined(QEL_BENCHMARK_HAS_GEOS)
void cutGeos(benchmark::State& state) {
    const Points points = wave(static_cast<std::size_t>(state.range(0)));
    auto sequence = std::make_unique<geos::geom::CoordinateArraySequence>();
    for (const Point& p : points) {
        sequence->add(geos::geom::Coordinate(p.x, p.y));
    }
    const auto line =
        geos::geom::GeometryFactory::getDefaultInstance()->createLineString(std::move(sequence));
    const geos::linearref::LengthIndexedLine indexed(line.get());
    const double length = line->getLength();
    std::size_t size = 0;
    for (auto _ : state) {
        const auto piece = indexed.extractLine(0.25 * length, 0.75 * length);
        size = piece->getNumPoints();
        benchmark::DoNotOptimize(size);
    }
    setItems(state, size);
}
BENCHMARK(cutGeos)->Name("cut/geos")->Arg(30000)->Arg(5000000);
#endif

BENCHMARK(cutQel)->Name("cut/qel")->Arg(30000)->Arg(5000000)->Apply(growthSizes);
BENCHMARK(cutCopy)->Name("cut/copy")->Arg(30000)->Arg(5000000);

} // namespace
