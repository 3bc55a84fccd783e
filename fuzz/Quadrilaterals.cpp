// The machine spacing and the plane quadrilaterals, compared with their definitions.

#include <algorithm>
#include <cmath>
#include <cstddef>

#include <qel/NumericalUtils.h>

#include "Input.h"
#include "support/Bits.h"

namespace {

using namespace qel_fuzz;
using qel::NumericalUtils;
using qel_test::sameBits;

// The power of ten that rules the spacing at x, which is positive and finite.
double decade(double x) {
    const float up[] = {1e1f, 1e2f, 1e3f, 1e4f, 1e5f, 1e6f, 1e7f, 1e8f, 1e9f};
    const float down[] = {1e-1f, 1e-2f, 1e-3f, 1e-4f, 1e-5f, 1e-6f, 1e-7f, 1e-8f, 1e-9f};
    double scale = 1.0;
    if (x >= 1.0) {
        for (; x > 1e9; x /= 1e9) {
            scale *= 1e9;
        }
        for (std::size_t i = 0; i < 9 && x > static_cast<double>(up[i]); ++i) {
            scale *= 10.0;
        }
        return scale;
    }
    const double least = static_cast<double>(down[8]);
    for (; least > x; x /= least) {
        scale *= least;
    }
    for (std::size_t i = 0; i < 9 && static_cast<double>(down[i]) > x; ++i) {
        scale *= 0.1;
    }
    return scale;
}

void checkSpacing(Input& input) {
    const double x = input.number<double>();
    const float narrow = input.number<float>();
    if (std::isfinite(x) && x != 0.0) {
        require(sameBits(NumericalUtils::spacing(x), decade(std::abs(x)) * 2.220446049250313e-16),
                "the spacing of a double");
    }
    if (std::isfinite(narrow) && narrow != 0.0f) {
        const double wide = static_cast<double>(std::abs(narrow));
        require(sameBits(NumericalUtils::spacing(narrow),
                         static_cast<float>(decade(wide) * 1.1920928955078125e-7)),
                "the spacing of a float");
    }
}

template <typename T>
struct Quad {
    T x[4], y[4];
};

double valueAt(double s, double t, const double (&f)[4]) {
    return (1.0 - t) * (1.0 - s) * f[0] + (1.0 - t) * s * f[1] + (1.0 - s) * t * f[2] +
           s * t * f[3];
}

// The Newton search in double.
struct Search {
    double s = 0.5, t = 0.5;
    bool outside = false, converged = false, singular = false;

    void run(const Quad<double>& q, double px, double py, int most, double margin,
             double tolerance);

private:
    bool step(const Quad<double>& q, double rx, double ry, double tolerance);
};

bool Search::step(const Quad<double>& q, double rx, double ry, double tolerance) {
    const auto alongS = [this](const double(&f)[4]) {
        return t * (f[3] - f[2]) + (1.0 - t) * (f[1] - f[0]);
    };
    const auto alongT = [this](const double(&f)[4]) {
        return s * (f[3] - f[1]) + (1.0 - s) * (f[2] - f[0]);
    };
    const double xs = alongS(q.x), ys = alongS(q.y), xt = alongT(q.x), yt = alongT(q.y);
    const double d = xs * yt - xt * ys;
    const double ns = yt * rx - xt * ry, nt = xs * ry - ys * rx;
    const auto largest = static_cast<float>(std::max(std::abs(ns), std::abs(nt)));
    if (std::abs(d) < static_cast<double>(100.0f * NumericalUtils::spacing(largest))) {
        singular = true;
        return true;
    }
    s += ns / d;
    t += nt / d;
    converged = std::abs(ns) < tolerance && std::abs(nt) < tolerance;
    return converged;
}

void Search::run(const Quad<double>& q, double px, double py, int most, double margin,
                 double tolerance) {
    const auto x = std::minmax({q.x[0], q.x[1], q.x[2], q.x[3]});
    const auto y = std::minmax({q.y[0], q.y[1], q.y[2], q.y[3]});
    const double ex = x.second - x.first, ey = y.second - y.first;
    outside = px < x.first - ex * margin || px > x.second + ex * margin ||
              py < y.first - ey * margin || py > y.second + ey * margin;
    const double residual = tolerance * std::max(ex, ey);
    for (int i = 0; i < most && !outside; ++i) {
        const double rx = px - valueAt(s, t, q.x), ry = py - valueAt(s, t, q.y);
        if (std::abs(rx) < residual && std::abs(ry) < residual) {
            converged = true;
            return;
        }
        if (step(q, rx, ry, tolerance)) {
            return;
        }
    }
}

template <typename T>
Quad<T> quadOf(Input& input) {
    Quad<T> q;
    for (int i = 0; i < 4; ++i) {
        q.x[i] = input.moderate<T>();
        q.y[i] = input.moderate<T>();
    }
    return q;
}

void checkSearch(Input& input) {
    const auto q = quadOf<double>(input);
    const double px = input.moderate<double>(), py = input.moderate<double>();
    const int most = input.integer(-1, 12);
    const double margin = input.flag() ? 0.1 : input.moderate<double>();
    const double tolerance = input.flag() ? 1e-6 : input.moderate<double>();
    Search expected;
    expected.run(q, px, py, most, margin, tolerance);
    double s = -1.0, t = -1.0;
    bool outside = true, converged = true, singular = true;
    NumericalUtils::searchForSTinQuadD(s, t, px, py, q.x[0], q.y[0], q.x[1], q.y[1], q.x[2], q.y[2],
                                       q.x[3], q.y[3], outside, converged, singular, most, margin,
                                       tolerance);
    require(outside == expected.outside && converged == expected.converged &&
                singular == expected.singular,
            "the outcome of the search");
    require(sameBits(s, expected.s) && sameBits(t, expected.t), "the place found");
}

void checkNarrowSearch(Input& input) {
    const auto q = quadOf<float>(input);
    float s = -1.0f, t = -1.0f;
    bool outside = true, converged = true, singular = true;
    NumericalUtils::searchForSTinQuad(s, t, input.number<float>(), input.number<float>(), q.x[0],
                                      q.y[0], q.x[1], q.y[1], q.x[2], q.y[2], q.x[3], q.y[3],
                                      outside, converged, singular, input.integer(-1, 20),
                                      input.number<float>(), input.number<float>());
    require(outside + converged + singular <= 1, "a search ends in one way");
    require(!outside || (s == 0.5f && t == 0.5f), "outside, no search is made");
}

void checkValues(Input& input) {
    const auto q = quadOf<double>(input);
    const double s = input.number<double>(), t = input.number<double>();
    require(
        sameBits(NumericalUtils::calculateValueInQuadFromSTD(s, t, q.x[0], q.x[1], q.x[2], q.x[3]),
                 valueAt(s, t, q.x)),
        "the value in a quadrilateral");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    using Check = void (*)(Input&);
    constexpr Check kChecks[] = {checkSpacing, checkSearch, checkNarrowSearch, checkValues};
    for (int checks = 0; input.hasMore() && checks < 12; ++checks) {
        kChecks[input.count(0, std::size(kChecks) - 1)](input);
    }
    return 0;
}
