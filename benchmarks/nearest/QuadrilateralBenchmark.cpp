// Inverse search in a plane quadrilateral: parameters of points in skewed cells.

#include <cstddef>
#include <cstdint>
#include <random>
#include <vector>

#include <benchmark/benchmark.h>

#include <qel/NumericalUtils.h>

#ifdef QEL_BENCHMARK_HAS_VTK
#include <vtkNew.h>
#include <vtkPoints.h>
#include <vtkQuad.h>
#endif

namespace {

constexpr std::size_t kCells = 4096;
constexpr int kMaxIterations = 20;
constexpr double kMargin = 0.01;
constexpr double kTolerance = 1e-10;

// A unit square with its corners moved by up to 0.2, and a point inside.
struct Cell {
    double x[4], y[4];
    double px, py;
};

std::vector<Cell> cells() {
    std::mt19937 random(20240611);
    std::uniform_real_distribution<double> shift(-0.2, 0.2), inside(0.05, 0.95);
    std::vector<Cell> result(kCells);
    for (Cell& c : result) {
        for (int i = 0; i < 4; ++i) {
            c.x[i] = i % 2 + shift(random);
            c.y[i] = i / 2 + shift(random);
        }
        const double s = inside(random), t = inside(random);
        c.px =
            qel::NumericalUtils::calculateValueInQuadFromSTD(s, t, c.x[0], c.x[1], c.x[2], c.x[3]);
        c.py =
            qel::NumericalUtils::calculateValueInQuadFromSTD(s, t, c.y[0], c.y[1], c.y[2], c.y[3]);
    }
    return result;
}

void searchQel(benchmark::State& state) {
    const std::vector<Cell> all = cells();
    for (auto _ : state) {
        for (const Cell& c : all) {
            double s = 0.0, t = 0.0;
            bool outside = false, converged = false, singular = false;
            qel::NumericalUtils::searchForSTinQuadD(
                s, t, c.px, c.py, c.x[0], c.y[0], c.x[1], c.y[1], c.x[2], c.y[2], c.x[3], c.y[3],
                outside, converged, singular, kMaxIterations, kMargin, kTolerance);
            benchmark::DoNotOptimize(s + t);
        }
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(kCells));
}
BENCHMARK(searchQel)->Name("quad_search/qel/4096");

#ifdef QEL_BENCHMARK_HAS_VTK
void searchVtk(benchmark::State& state) {
    // Round the rim, as its cells have them. The cells are made outside the timed region.
    const int rim[4] = {0, 1, 3, 2};
    const std::vector<Cell> all = cells();
    std::vector<vtkNew<vtkQuad>> quads(kCells);
    for (std::size_t k = 0; k < kCells; ++k) {
        for (int i = 0; i < 4; ++i) {
            quads[k]->GetPoints()->SetPoint(i, all[k].x[rim[i]], all[k].y[rim[i]], 0.0);
        }
    }
    for (auto _ : state) {
        for (std::size_t k = 0; k < kCells; ++k) {
            const double point[3] = {all[k].px, all[k].py, 0.0};
            double closest[3], parameters[3], weights[4], distance = 0.0;
            int subId = 0;
            benchmark::DoNotOptimize(
                quads[k]->EvaluatePosition(point, closest, subId, parameters, distance, weights));
        }
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(kCells));
}
BENCHMARK(searchVtk)->Name("quad_search/vtk/4096");
#endif

} // namespace
