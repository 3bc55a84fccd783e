// The part of the plane that a plot of curves shows.
#include "PlotFrame.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "Console.h"

namespace program {
namespace {

constexpr double kRoom = 1.1;         // of the frame to the curves in it
constexpr double kResolution = 1e-12; // of the frame to the numbers along it, at the least
constexpr double kMost = std::numeric_limits<double>::max();

struct Extents {
    std::array<double, 3> low{kMost, kMost, kMost};
    std::array<double, 3> high{-kMost, -kMost, -kMost};

    void add(const Point& p) {
        const std::array<double, 3> values{p.x, p.y, p.z};
        for (std::size_t i = 0; i < 3; ++i) {
            if (std::isfinite(values[i])) {
                low[i] = std::min(low[i], values[i]);
                high[i] = std::max(high[i], values[i]);
            }
        }
    }
    double size(std::size_t axis) const { return high[axis] - low[axis]; }
    double middle(std::size_t axis) const { return 0.5 * low[axis] + 0.5 * high[axis]; }
    double largest(std::size_t axis) const {
        return std::max(std::abs(low[axis]), std::abs(high[axis]));
    }
};

// The two longest axes, in the order of their names.
std::array<std::size_t, 2> planeOf(const Extents& extents) {
    std::array<std::size_t, 3> axes{0, 1, 2};
    std::stable_sort(axes.begin(), axes.end(), [&](std::size_t a, std::size_t b) {
        return extents.size(a) > extents.size(b);
    });
    return {std::min(axes[0], axes[1]), std::max(axes[0], axes[1])};
}

} // namespace

PlotFrame frameOf(const std::vector<const std::vector<NamedCurve>*>& curves, double width,
                  double height) {
    Extents extents;
    for (const auto* set : curves) {
        for (const NamedCurve& curve : *set) {
            for (const Point& p : curve.curve.getCurve()) {
                extents.add(p);
            }
        }
    }
    PlotFrame frame;
    frame.axes = planeOf(extents);
    const std::array<double, 2> pixels{width, height};
    double unit =
        std::max(extents.size(frame.axes[0]) / width, extents.size(frame.axes[1]) / height);
    const double largest = std::max(extents.largest(frame.axes[0]), extents.largest(frame.axes[1]));
    unit = kRoom * std::max(unit > 0.0 ? unit : 1.0 / width, kResolution * largest / width);
    if (!std::isfinite(unit * std::max(width, height))) {
        throw UserError("the curves are too large to draw");
    }
    for (std::size_t i = 0; i < 2; ++i) {
        frame.low[i] = extents.middle(frame.axes[i]) - 0.5 * unit * pixels[i];
        frame.high[i] = extents.middle(frame.axes[i]) + 0.5 * unit * pixels[i];
    }
    return frame;
}

} // namespace program
