// The first crossing of two curves of n segments each: that cross once near their ends, and that
// run beside each other without crossing. An item is a segment of either curve's n.
#include <qel/LineSegment2D.h>
#include <qel/ParametricCurve.h>

#include <benchmark/benchmark.h>

#include "support/Bandwidth.h"
#include "support/Curves.h"

#if defined(QEL_BENCHMARK_HAS_GEOS)
#include <geos/geom/CoordinateArraySequence.h>
#include <geos/geom/GeometryFactory.h>
#include <geos/geom/LineString.h>
#include <geos/geom/prep/PreparedGeometryFactory.h>
#endif

#if defined(QEL_BENCHMARK_HAS_BOOST)
#include "support/BoostLines.h"
#endif

namespace {

using namespace qel_benchmark;

// The wave beside the wave; where they cross, it comes down over the last tenth.
Points besideWave(std::size_t n, bool crosses) {
    Points points = wave(n);
    const auto count = static_cast<double>(n);
    for (std::size_t i = 0; i < n; ++i) {
        const double left = 1.0 - static_cast<double>(i) / count;
        points[i].y += crosses && left < 0.1 ? 4.0 * left - 0.2 : 0.2;
    }
    return points;
}

std::size_t pointsOf(const benchmark::State& state) {
    return static_cast<std::size_t>(state.range(0)) + 1;
}

void countSegments(benchmark::State& state) {
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void crossingQel(benchmark::State& state, bool crosses) {
    const auto plane = qel::ParametricCurve::dim2D;
    const qel::ParametricCurve a(wave(pointsOf(state)), plane);
    const qel::ParametricCurve b(besideWave(pointsOf(state), crosses), plane);
    qel::TripletBase<float> point;
    for (auto _ : state) {
        if (a.intersectWithCurve(b, point) != crosses) {
            state.SkipWithError("wrong answer");
        }
    }
    countSegments(state);
}

void segmentQel(benchmark::State& state) {
    const qel::ParametricCurve a(wave(pointsOf(state)), qel::ParametricCurve::dim2D);
    const qel::LineSegment2D across(qel::Doublet(62.0f, -1.0f), qel::Doublet(62.0f, 1.0f));
    qel::TripletBase<float> point;
    for (auto _ : state) {
        if (!a.intersectWithSegment(across, point)) {
            state.SkipWithError("wrong answer");
        }
    }
    countSegments(state);
}

void crossingRead(benchmark::State& state) {
    measureRead(state, wave(2 * pointsOf(state)));
    countSegments(state);
}

#if defined(QEL_BENCHMARK_HAS_GEOS)
std::unique_ptr<geos::geom::LineString> geosLine(const Points& points) {
    auto sequence = std::make_unique<geos::geom::CoordinateArraySequence>(points.size(), 2U);
    for (std::size_t i = 0; i < points.size(); ++i) {
        sequence->setAt(geos::geom::Coordinate(points[i].x, points[i].y), i);
    }
    return geos::geom::GeometryFactory::getDefaultInstance()->createLineString(std::move(sequence));
}

// Answers yes or no only. The index is built at the first question, so once a question here, as
// our curves have none to keep.
void crossingGeos(benchmark::State& state, bool crosses) {
    const auto a = geosLine(wave(pointsOf(state)));
    const auto b = geosLine(besideWave(pointsOf(state), crosses));
    for (auto _ : state) {
        const auto prepared = geos::geom::prep::PreparedGeometryFactory::prepare(a.get());
        if (prepared->intersects(b.get()) != crosses) {
            state.SkipWithError("wrong answer");
        }
    }
    countSegments(state);
}

// The same asked again of an index that is there.
void crossingAgainGeos(benchmark::State& state, bool crosses) {
    const auto a = geosLine(wave(pointsOf(state)));
    const auto b = geosLine(besideWave(pointsOf(state), crosses));
    const auto prepared = geos::geom::prep::PreparedGeometryFactory::prepare(a.get());
    for (auto _ : state) {
        if (prepared->intersects(b.get()) != crosses) {
            state.SkipWithError("wrong answer");
        }
    }
    countSegments(state);
}
#endif

#if defined(QEL_BENCHMARK_HAS_BOOST)
namespace bg = boost::geometry;

void crossingBoost(benchmark::State& state, bool crosses) {
    const BoostLine a = boostLine(wave(pointsOf(state)));
    const BoostLine b = boostLine(besideWave(pointsOf(state), crosses));
    for (auto _ : state) {
        if (bg::intersects(a, b) != crosses) {
            state.SkipWithError("wrong answer");
        }
    }
    countSegments(state);
}
#endif

void addSizes(benchmark::internal::Benchmark* benchmark) {
    benchmark->Arg(40)->Arg(1000)->Arg(100000);
}

BENCHMARK_CAPTURE(crossingQel, , true)->Name("crossNearEnd/qel")->Apply(addSizes);
BENCHMARK_CAPTURE(crossingQel, , false)->Name("noCrossing/qel")->Apply(addSizes);
#if defined(QEL_BENCHMARK_HAS_GEOS)
BENCHMARK_CAPTURE(crossingGeos, , true)->Name("crossNearEnd/geos")->Apply(addSizes);
BENCHMARK_CAPTURE(crossingGeos, , false)->Name("noCrossing/geos")->Apply(addSizes);
BENCHMARK_CAPTURE(crossingAgainGeos, , true)->Name("crossNearEndAgain/geos")->Apply(addSizes);
BENCHMARK_CAPTURE(crossingAgainGeos, , false)->Name("noCrossingAgain/geos")->Apply(addSizes);
#endif
#if defined(QEL_BENCHMARK_HAS_BOOST)
BENCHMARK_CAPTURE(crossingBoost, , true)->Name("crossNearEnd/boost")->Apply(addSizes);
BENCHMARK_CAPTURE(crossingBoost, , false)->Name("noCrossing/boost")->Apply(addSizes);
#endif
BENCHMARK(crossingRead)->Name("noCrossing/read")->Apply(addSizes);
BENCHMARK(segmentQel)->Name("crossSegment/qel")->Apply(addSizes);

} // namespace
