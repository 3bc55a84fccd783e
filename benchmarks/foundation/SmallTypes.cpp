// Small types and functions, each called for n items: parameters in quadrilaterals, segments,
// matrices, spacing.

#include <cmath>
#include <memory>
#include <vector>

#include <qel/LineSegment2D.h>
#include <qel/NumericalUtils.h>
#include <qel/QELMatrix4.h>

#include "foundation/CellShapes.h"
#include "support/Program.h"

#if defined(QEL_BENCHMARK_HAS_EIGEN)
#include <Eigen/Dense>
#endif
#if defined(QEL_BENCHMARK_HAS_VTK)
#include <vtkNew.h>
#include <vtkPoints.h>
#include <vtkQuad.h>
#endif

namespace qel_benchmark {
namespace {

using qel::NumericalUtils;
using Triplet = qel::TripletBase<float>;

struct CellInput {
    CellInput(const CellShape& shapeOfCells, std::size_t count) : shape(shapeOfCells), n(count) {
        qel_test::ShapeRandom random(20261130);
        for (std::size_t i = 0; i < n; ++i) {
            cells.push_back(shape.make(random));
        }
    }

    const CellShape& shape;
    std::size_t n;
    std::vector<Cell> cells;

    // What takes no cells is measured on one shape alone.
    bool isFirst() const { return &shape == &cellShapes().front(); }
};

// -- Parameters in a quadrilateral ----

constexpr int kMaxIterations = 20;
constexpr double kMargin = 0.01;
constexpr double kTolerance = 1e-10;

struct Parameters {
    double s = 0.5;
    double t = 0.5;
    bool converged = false;
};

double valueAt(double s, double t, const double* f) {
    return (1.0 - t) * (1.0 - s) * f[0] + (1.0 - t) * s * f[1] + (1.0 - s) * t * f[2] +
           s * t * f[3];
}

bool isOutside(const double* f, double p) {
    const double low = std::min(std::min(f[0], f[1]), std::min(f[2], f[3]));
    const double high = std::max(std::max(f[0], f[1]), std::max(f[2], f[3]));
    const double extent = high - low;
    return p < low - extent * kMargin || p > high + extent * kMargin;
}

double extentOf(const double* f) {
    return std::max(std::max(f[0], f[1]), std::max(f[2], f[3])) -
           std::min(std::min(f[0], f[1]), std::min(f[2], f[3]));
}

// Newton's method.
Parameters searchByLoop(const Cell& c) {
    Parameters p;
    if (isOutside(c.x, c.px) || isOutside(c.y, c.py)) {
        return p;
    }
    const double small = kTolerance * std::max(extentOf(c.x), extentOf(c.y));
    const auto along = [](const double* f, double t) {
        return t * (f[3] - f[2]) + (1.0 - t) * (f[1] - f[0]);
    };
    const auto across = [](const double* f, double s) {
        return s * (f[3] - f[1]) + (1.0 - s) * (f[2] - f[0]);
    };
    for (int i = 0; i < kMaxIterations; ++i) {
        const double rx = c.px - valueAt(p.s, p.t, c.x);
        const double ry = c.py - valueAt(p.s, p.t, c.y);
        if (std::abs(rx) < small && std::abs(ry) < small) {
            p.converged = true;
            return p;
        }
        const double xs = along(c.x, p.t), ys = along(c.y, p.t);
        const double xt = across(c.x, p.s), yt = across(c.y, p.s);
        const double d = xs * yt - xt * ys;
        const double ns = yt * rx - xt * ry;
        const double nt = xs * ry - ys * rx;
        const auto step = static_cast<float>(std::max(std::abs(ns), std::abs(nt)));
        if (std::abs(d) < static_cast<double>(100.0f * NumericalUtils::spacing(step))) {
            return p;
        }
        p.s += ns / d;
        p.t += nt / d;
        if (std::abs(ns) < kTolerance && std::abs(nt) < kTolerance) {
            p.converged = true;
            return p;
        }
    }
    return p;
}

Parameters search(const Cell& c) {
    Parameters p;
    bool outside = false;
    bool singular = false;
    NumericalUtils::searchForSTinQuadD(p.s, p.t, c.px, c.py, c.x[0], c.y[0], c.x[1], c.y[1], c.x[2],
                                       c.y[2], c.x[3], c.y[3], outside, p.converged, singular,
                                       kMaxIterations, kMargin, kTolerance);
    return p;
}

void quadSearch(Row& row, const CellInput& in) {
    row.add(kLibrary, [&] {
        for (const Cell& c : in.cells) {
            keep(search(c));
        }
    });
    row.add(kPlain, [&] {
        for (const Cell& c : in.cells) {
            keep(searchByLoop(c));
        }
    });
#if defined(QEL_BENCHMARK_HAS_VTK)
    // Round the rim, as its cells have them.
    const int rim[4] = {0, 1, 3, 2};
    std::vector<vtkNew<vtkQuad>> quads(in.n);
    for (std::size_t k = 0; k < in.n; ++k) {
        for (int i = 0; i < 4; ++i) {
            quads[k]->GetPoints()->SetPoint(i, in.cells[k].x[rim[i]], in.cells[k].y[rim[i]], 0.0);
        }
    }
    row.add("VTK", [&] {
        for (std::size_t k = 0; k < in.n; ++k) {
            const double point[3] = {in.cells[k].px, in.cells[k].py, 0.0};
            double closest[3], parameters[3], weights[4], distance = 0.0;
            int subId = 0;
            keep(quads[k]->EvaluatePosition(point, closest, subId, parameters, distance, weights));
        }
    });
#endif
    row.measure();
    bool same = true;
    for (const Cell& c : in.cells) {
        const Parameters a = search(c);
        const Parameters b = searchByLoop(c);
        same = same && a.converged == b.converged && std::abs(a.s - b.s) < 1e-9;
    }
    row.expectSame(same);
}

// -- Segments ----

// The diagonals of the cells.
void segments(Row& row, const CellInput& in) {
    std::vector<qel::LineSegment2D> diagonals;
    for (const Cell& c : in.cells) {
        const auto corner = [&](int i) {
            return qel::Doublet(static_cast<float>(c.x[i]), static_cast<float>(c.y[i]));
        };
        diagonals.emplace_back(corner(0), corner(3));
        diagonals.emplace_back(corner(1), corner(2));
    }
    row.add(kLibrary, [&] {
        for (std::size_t k = 0; k < in.n; ++k) {
            double t = 0.0;
            keep(diagonals[2 * k].intersectWithLimits(diagonals[2 * k + 1], t));
        }
    });
    row.measure();
}

// -- Numbers and matrices ----

void spacing(Row& row, const CellInput& in) {
    if (!in.isFirst()) {
        return;
    }
    row.add(kLibrary, [&] {
        for (const Cell& c : in.cells) {
            keep(NumericalUtils::spacing(c.px));
        }
    });
    row.add(kPlain, [&] { // by the standard library: of the binade, not of the decade
        for (const Cell& c : in.cells) {
            keep(std::nextafter(c.px, HUGE_VAL) - c.px);
        }
    });
    row.measure();
}

std::vector<qel::QELMatrix4> matricesOf(std::size_t n) {
    qel_test::ShapeRandom random(1);
    std::vector<qel::QELMatrix4> matrices(n);
    for (qel::QELMatrix4& m : matrices) {
        for (int i = 0; i < 16; ++i) {
            m[i / 4][i % 4] = random.normal();
        }
    }
    return matrices;
}

void multiplyByLoop(const qel::QELMatrix4& a, const qel::QELMatrix4& b, qel::QELMatrix4& out) {
    for (int i = 0; i < 4; ++i) {
        const float* row = a[i];
        float* result = out[i];
        for (int j = 0; j < 4; ++j) {
            result[j] = row[0] * b[0][j] + row[1] * b[1][j] + row[2] * b[2][j] + row[3] * b[3][j];
        }
    }
}

void multiplyMatrices(Row& row, const CellInput& in) {
    if (!in.isFirst()) {
        return;
    }
    const std::vector<qel::QELMatrix4> matrices = matricesOf(in.n + 1);
    std::vector<qel::QELMatrix4> out(in.n);
    row.add(kLibrary, [&] {
        for (std::size_t k = 0; k < in.n; ++k) {
            matrices[k].multMat(out[k], matrices[k + 1]);
        }
    });
    row.add(kPlain, [&] {
        for (std::size_t k = 0; k < in.n; ++k) {
            multiplyByLoop(matrices[k], matrices[k + 1], out[k]);
        }
    });
#if defined(QEL_BENCHMARK_HAS_EIGEN)
    using Matrix = Eigen::Matrix<float, 4, 4, Eigen::RowMajor>;
    std::vector<Matrix> mats(in.n + 1);
    for (std::size_t k = 0; k <= in.n; ++k) {
        mats[k] = Eigen::Map<const Matrix>(matrices[k][0]);
    }
    std::vector<Matrix> products(in.n);
    row.add("Eigen", [&] {
        for (std::size_t k = 0; k < in.n; ++k) {
            products[k].noalias() = mats[k] * mats[k + 1];
        }
    });
#endif
    row.measure();
}

void matrixTimesPoint(Row& row, const CellInput& in) {
    if (!in.isFirst()) {
        return;
    }
    const qel::QELMatrix4 matrix = matricesOf(1)[0];
    std::vector<Triplet> points;
    for (const Cell& c : in.cells) {
        points.emplace_back(static_cast<float>(c.px), static_cast<float>(c.py), 1.0f);
    }
    std::vector<Triplet> out(in.n);
    row.add(kLibrary, [&] {
        for (std::size_t k = 0; k < in.n; ++k) {
            out[k] = matrix * points[k];
        }
    });
#if defined(QEL_BENCHMARK_HAS_EIGEN)
    using Matrix = Eigen::Matrix<float, 4, 4, Eigen::RowMajor>;
    const Matrix m = Eigen::Map<const Matrix>(matrix[0]);
    const auto columns = static_cast<Eigen::Index>(in.n);
    const Eigen::Map<const Eigen::Matrix3Xf> from(&points[0].x, 3, columns);
    Eigen::Matrix3Xf to(3, columns);
    row.add("Eigen", [&] {
        to = (m * from.colwise().homogeneous()).colwise().hnormalized();
        keep(to.data());
    });
#endif
    row.measure();
}

} // namespace
} // namespace qel_benchmark

int main(int argc, char** argv) {
    using namespace qel_benchmark;
    Program program(argc, argv, "foundation");
    Works<CellShape, CellInput> works;
    works.add("quad_search", quadSearch, 1, 100000);
    works.add("segments", segments, 1, 100000);
    works.add("spacing", spacing, 1, 100000);
    works.add("matrix_times_matrix", multiplyMatrices, 1, 100000);
    works.add("matrix_times_point", matrixTimesPoint, 1, 100000);
    works.measure(program, cellShapes());
}
