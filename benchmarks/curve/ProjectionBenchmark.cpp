// Projection: one probe on a curve, and as many probes as the curve has points.
//
// "project" takes a probe at a time, 16 of them in turn, beside a plain read of the same points.
// "projectMany" is getSvalues, in full: what a peer builds for its search is timed too. The peer
// nanoflann finds the same nearest vertex and leaves the two edges to the caller.
#include <qel/ParametricCurve.h>

#include <algorithm>

#include <benchmark/benchmark.h>

#include "GeosLine.h"
#include "support/Bandwidth.h"
#include "support/Curves.h"

#if defined(QEL_BENCHMARK_HAS_GEOS)
#include <geos/linearref/LengthIndexedLine.h>
#endif
#if defined(QEL_BENCHMARK_HAS_NANOFLANN)
#include <nanoflann.hpp>
#endif
#if defined(QEL_BENCHMARK_HAS_VTK)
#include <vtkCellArray.h>
#include <vtkGenericCell.h>
#include <vtkNew.h>
#include <vtkPoints.h>
#include <vtkPolyData.h>
#include <vtkPolyLine.h>
#include <vtkStaticCellLocator.h>
#endif

namespace {

using namespace qel_benchmark;
using qel::ParametricCurve;

constexpr std::size_t kProbes = 16;

std::size_t sizeOf(const benchmark::State& state) {
    return static_cast<std::size_t>(state.range(0));
}

// -- One probe ----

// The whole search a probe; an item is a vertex, so that it compares with reading them.
template <typename Project>
void measureProbes(benchmark::State& state, const Points& curve, const Project& project) {
    const Points probes = probesAlong(curve, kProbes, 0.3);
    std::size_t k = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(project(probes[k++ % kProbes]));
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void sizes(benchmark::internal::Benchmark* work) {
    work->RangeMultiplier(10)->Range(1000, 1000000);
}

void projectQel(benchmark::State& state) {
    const ParametricCurve curve(helix(sizeOf(state)), ParametricCurve::dim3D);
    measureProbes(state, curve.getCurve(), [&](const Point& q) {
        double s = 0.0;
        curve.projectPoint(q, s);
        return s;
    });
}
BENCHMARK(projectQel)->Name("project/qel")->Apply(sizes);

void closestQel(benchmark::State& state) {
    const ParametricCurve curve(helix(sizeOf(state)), ParametricCurve::dim3D);
    measureProbes(state, curve.getCurve(),
                  [&](const Point& q) { return curve.getClosestPoint(q); });
}
BENCHMARK(closestQel)->Name("closest/qel")->Apply(sizes);

void projectRead(benchmark::State& state) {
    measureRead(state, helix(sizeOf(state)));
}
BENCHMARK(projectRead)->Name("project/read")->Apply(sizes);
BENCHMARK(projectRead)->Name("closest/read")->Apply(sizes);

#if defined(QEL_BENCHMARK_HAS_VTK)
void projectVtk(benchmark::State& state) {
    const Points curve = helix(sizeOf(state));
    vtkNew<vtkPolyLine> line;
    line->GetPoints()->SetDataTypeToDouble();
    line->GetPoints()->SetNumberOfPoints(static_cast<vtkIdType>(curve.size()));
    line->GetPointIds()->SetNumberOfIds(static_cast<vtkIdType>(curve.size()));
    for (std::size_t i = 0; i < curve.size(); ++i) {
        const auto id = static_cast<vtkIdType>(i);
        line->GetPoints()->SetPoint(id, curve[i].x, curve[i].y, curve[i].z);
        line->GetPointIds()->SetId(id, id);
    }
    std::vector<double> weights(curve.size());
    measureProbes(state, curve, [&](const Point& q) {
        double foot[3];
        double parameters[3];
        double d2 = 0.0;
        int edge = 0;
        line->EvaluatePosition(&q.x, foot, edge, parameters, d2, weights.data());
        return edge + parameters[0];
    });
}
BENCHMARK(projectVtk)->Name("project/vtk")->Arg(1000)->Arg(10000)->Arg(100000);
#endif

#if defined(QEL_BENCHMARK_HAS_GEOS)
void projectGeos(benchmark::State& state) {
    const Points curve = wave(sizeOf(state));
    const auto line = geosLine(curve);
    const geos::linearref::LengthIndexedLine indexed(line.get());
    measureProbes(state, curve, [&](const Point& q) {
        return indexed.project(geos::geom::Coordinate(q.x, q.y));
    });
}
BENCHMARK(projectGeos)->Name("project/geos")->Arg(1000)->Arg(10000)->Arg(100000);
#endif

// -- Many probes ----

// As many probes as the curve has points: close to it, or up to 0.3 away from it; in its order, or
// shuffled. Lists of them are taken in turn; of few probes a processor learns by heart which way
// each search goes.
class ManyProbes {
public:
    ManyProbes(const benchmark::State& state, const Points& curve) {
        constexpr std::size_t kLeast = std::size_t{1} << 16;
        for (unsigned k = 0; k * curve.size() < kLeast; ++k) {
            lists_.push_back(
                probesAlong(curve, curve.size(), state.range(1) == 0 ? 0.01 : 0.3, kSeed + k));
            if (state.range(1) == 2) {
                std::shuffle(lists_[k].begin(), lists_[k].end(), std::mt19937(kSeed));
            }
        }
    }

    const Points& next() { return lists_[next_++ % lists_.size()]; }

private:
    std::vector<Points> lists_;
    std::size_t next_ = 0;
};

void probeKinds(benchmark::internal::Benchmark* work) {
    work->ArgNames({"", "probes"})->Unit(benchmark::kMillisecond);
    for (const int n : {100, 1000, 100000}) {
        for (const int probes : {0, 1, 2}) {
            work->Args({n, probes});
        }
    }
}

void projectManyQel(benchmark::State& state, Points (*make)(std::size_t)) {
    const ParametricCurve curve(make(sizeOf(state)), ParametricCurve::dim3D);
    ManyProbes probes(state, curve.getCurve());
    std::vector<double> s;
    for (auto _ : state) {
        curve.getSvalues(probes.next(), s, false);
        benchmark::DoNotOptimize(s.data());
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

Points noisyHelix(std::size_t n) {
    return noisy(n);
}

BENCHMARK_CAPTURE(projectManyQel, helix, helix)->Name("projectMany/qel")->Apply(probeKinds);
BENCHMARK_CAPTURE(projectManyQel, clustered, clustered)
    ->Name("projectManyClustered/qel")
    ->Apply(probeKinds);
BENCHMARK_CAPTURE(projectManyQel, noisy, noisyHelix)
    ->Name("projectManyNoisy/qel")
    ->Apply(probeKinds);

#if defined(QEL_BENCHMARK_HAS_NANOFLANN)
struct Cloud {
    const Points& points;

    std::size_t kdtree_get_point_count() const { return points.size(); }
    double kdtree_get_pt(std::size_t i, std::size_t component) const {
        return (&points[i].x)[component];
    }
    template <typename Box>
    bool kdtree_get_bbox(Box&) const {
        return false;
    }
};

// Squared distance of q from an edge, and the s of its foot.
double footOnEdge(const Points& points, const std::vector<double>& s, std::size_t i, std::size_t j,
                  const Point& q, double& foot) {
    const Point edge = points[j] - points[i];
    const double t = std::clamp((q - points[i]).dot(edge) / edge.dot(edge), 0.0, 1.0);
    const Point away = q - (points[i] + edge * t);
    foot = s[i] + (s[j] - s[i]) * t;
    return away.dot(away);
}

double footBeside(const Points& points, const std::vector<double>& s, std::size_t nearest,
                  const Point& q) {
    const std::size_t last = points.size() - 1;
    double before = 0.0;
    double after = 0.0;
    const double d2Before =
        nearest > 0 ? footOnEdge(points, s, nearest, nearest - 1, q, before) : HUGE_VAL;
    const double d2After =
        nearest < last ? footOnEdge(points, s, nearest, nearest + 1, q, after) : HUGE_VAL;
    return d2Before < d2After ? before : after;
}

void projectManyNanoflann(benchmark::State& state, Points (*make)(std::size_t)) {
    using Tree = nanoflann::KDTreeSingleIndexAdaptor<nanoflann::L2_Simple_Adaptor<double, Cloud>,
                                                     Cloud, 3, std::size_t>;
    const ParametricCurve curve(make(sizeOf(state)), ParametricCurve::dim3D);
    const Points& points = curve.getCurve();
    ManyProbes lists(state, points);
    const Cloud cloud{points};
    std::vector<double> s(points.size());
    for (auto _ : state) {
        const Points& probes = lists.next();
        Tree tree(3, cloud, nanoflann::KDTreeSingleIndexAdaptorParams(10));
        tree.buildIndex();
        for (std::size_t k = 0; k < probes.size(); ++k) {
            std::size_t nearest = 0;
            double d2 = 0.0;
            tree.knnSearch(&probes[k].x, 1, &nearest, &d2);
            s[k] = footBeside(points, curve.getSvalues(), nearest, probes[k]);
        }
        benchmark::DoNotOptimize(s.data());
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK_CAPTURE(projectManyNanoflann, helix, helix)
    ->Name("projectMany/nanoflann")
    ->Apply(probeKinds);
BENCHMARK_CAPTURE(projectManyNanoflann, clustered, clustered)
    ->Name("projectManyClustered/nanoflann")
    ->Apply(probeKinds);
BENCHMARK_CAPTURE(projectManyNanoflann, noisy, noisyHelix)
    ->Name("projectManyNoisy/nanoflann")
    ->Apply(probeKinds);
#endif

#if defined(QEL_BENCHMARK_HAS_VTK)
// Nearest place on any edge, which is more than the nearest vertex's two.
void projectManyVtk(benchmark::State& state) {
    const Points curve = helix(sizeOf(state));
    ManyProbes probes(state, curve);
    vtkNew<vtkPoints> points;
    points->SetDataTypeToDouble();
    vtkNew<vtkCellArray> edges;
    for (std::size_t i = 0; i < curve.size(); ++i) {
        const vtkIdType id = points->InsertNextPoint(&curve[i].x);
        if (i > 0) {
            edges->InsertNextCell({id - 1, id});
        }
    }
    vtkNew<vtkPolyData> data;
    data->SetPoints(points);
    data->SetLines(edges);
    for (auto _ : state) {
        vtkNew<vtkStaticCellLocator> locator;
        locator->SetDataSet(data);
        locator->BuildLocator();
        vtkNew<vtkGenericCell> cell;
        for (const Point& q : probes.next()) {
            double foot[3];
            double d2 = 0.0;
            vtkIdType edge = 0;
            int sub = 0;
            locator->FindClosestPoint(&q.x, foot, cell, edge, sub, d2);
            benchmark::DoNotOptimize(foot);
        }
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(projectManyVtk)->Name("projectMany/vtk")->Apply(probeKinds);
#endif

} // namespace
