// Ramer-Douglas-Peucker with the distance from the segment (Ramer 1972; Douglas and Peucker 1973).
// A part of the curve, between two vertices that are kept, is split at its farthest vertex.

#include <qel/CurveSimplification.h>

#include <algorithm>
#include <cmath>
#include <queue>
#include <string>

#include <qel/QELException.h>

#include "batch/PointLoop.h"
#include "polyline/CoordinateScale.h"
#include "polyline/FarthestFromSegment.h"
#include "polyline/VertexArrays.h"

namespace qel {
namespace {

// Coordinates between these powers of two have squares that neither overflow nor vanish.
constexpr int kMinExponent = -300;
constexpr int kMaxExponent = 300;

// Parts between two calls of progress.
constexpr std::size_t kPartsPerCall = 4096;

VertexArrays<3> verticesOf(const CurveView& curve) {
    VertexArrays<3> vertices(curve.size());
    double* const x = vertices.axis(0);
    double* const y = vertices.axis(1);
    double* const z = vertices.axis(2);
    curve.visitPoints([&](const auto& points) {
        forEachPoint(points, [x, y, z](std::size_t i, double pX, double pY, double pZ) {
            x[i] = pX;
            y[i] = pY;
            z[i] = pZ;
        });
    });
    return vertices;
}

// Brings coordinates into range.
CoordinateScale scale(VertexArrays<3>& vertices) {
    const CoordinateScale scale =
        CoordinateScale::into(kMinExponent, kMaxExponent, largestCoordinate(vertices));
    for (int d = 0; d < 3 && scale.factor != 1.0; ++d) {
        for (std::size_t i = 0; i < vertices.vertices(); ++i) {
            vertices.axis(d)[i] *= scale.factor;
        }
    }
    return scale;
}

// A part between two vertices and how far its farthest vertex lies; 0 without vertices between.
struct Part {
    std::size_t from;
    std::size_t to;
    std::size_t farthest;
    double distance;
};

// For a heap: the part with the larger error comes first, of equal ones the first on the curve.
struct IsLess {
    bool operator()(const Part& a, const Part& b) const {
        return a.distance != b.distance ? a.distance < b.distance : a.from > b.from;
    }
};

class Simplification {
public:
    explicit Simplification(const CurveView& curve)
        : vertices_(verticesOf(curve)),
          scale_(scale(vertices_)),
          search_(vertices_),
          isKept_(curve.size(), 0) {
        keep(0);
        keep(curve.size() - 1);
        parts_.push_back(partBetween(0, curve.size() - 1));
        if (curve.isClosed()) {
            splitClosed();
        }
    }

    // The parts between the vertices that are kept always.
    const std::vector<Part>& parts() const { return parts_; }
    std::size_t keptCount() const { return kept_; }
    double scaled(double length) const { return length * scale_.factor; }
    double unscaled(double length) const { return length * scale_.inverse; }
    std::size_t size() const { return isKept_.size(); }

    // Keeps the farthest vertex of a part.
    std::pair<Part, Part> split(const Part& part) {
        keep(part.farthest);
        return {partBetween(part.from, part.farthest), partBetween(part.farthest, part.to)};
    }

    std::vector<std::size_t> kept() const {
        std::vector<std::size_t> indices;
        indices.reserve(kept_);
        for (std::size_t i = 0; i < isKept_.size(); ++i) {
            if (isKept_[i] != 0) {
                indices.push_back(i);
            }
        }
        return indices;
    }

private:
    void keep(std::size_t i) {
        isKept_[i] = 1;
        ++kept_;
    }

    Part partBetween(std::size_t from, std::size_t to) {
        if (to - from < 2) {
            return {from, to, from, 0.0};
        }
        const FarthestVertex3D farthest = search_.inRange({from, to});
        return {from, to, farthest.vertex, std::sqrt(farthest.d2)};
    }

    // At the vertex farthest from the first one, then at that farthest from the segment of both.
    void splitClosed() {
        for (int step = 0; step < 2; ++step) {
            const auto part =
                std::max_element(parts_.begin(), parts_.end(),
                                 [](const Part& a, const Part& b) { return IsLess()(a, b); });
            if (!(part->distance > 0.0)) {
                return;
            }
            const auto [before, behind] = split(*part);
            *part = before;
            parts_.insert(part + 1, behind);
        }
    }

    VertexArrays<3> vertices_;
    CoordinateScale scale_;
    FarthestFromSegment search_;
    std::vector<char> isKept_;
    std::size_t kept_ = 0;
    std::vector<Part> parts_;
};

// Calls progress now and then.
class Report {
public:
    explicit Report(const Progress& progress) : progress_(progress) {}

    // True to stop.
    bool stopsAt(std::size_t done, std::size_t all) {
        if (!progress_ || ++parts_ % kPartsPerCall != 0) {
            return false;
        }
        return !progress_(static_cast<double>(done) / static_cast<double>(all));
    }
    bool stopsAtEnd() const { return progress_ && !progress_(1.0); }

private:
    const Progress& progress_;
    std::size_t parts_ = 0;
};

// Depth first along the curve, so that what lies before a part is done.
bool splitDownTo(double tolerance, Simplification& simplification, Report& report) {
    std::vector<Part> stack;
    const auto offer = [&](const Part& part) {
        if (part.distance > tolerance) {
            stack.push_back(part);
        }
    };
    std::for_each(simplification.parts().rbegin(), simplification.parts().rend(), offer);
    while (!stack.empty()) {
        const Part part = stack.back();
        stack.pop_back();
        if (report.stopsAt(part.from, simplification.size())) {
            return false;
        }
        const auto [before, behind] = simplification.split(part);
        offer(behind);
        offer(before);
    }
    return true;
}

[[noreturn]] void refuse(const char* method, const std::string& reason) {
    throw data::invalid("CurveSimplification", method, reason, argumentError);
}

} // namespace

std::vector<std::size_t> simplifyToError(const CurveView& curve, double tolerance,
                                         const Progress& progress) {
    if (!(tolerance >= 0.0)) {
        refuse("simplifyToError", "The tolerance is negative or NaN.");
    }
    Simplification simplification(curve);
    Report report(progress);
    const bool isDone = splitDownTo(simplification.scaled(tolerance), simplification, report) &&
                        !report.stopsAtEnd();
    return isDone ? simplification.kept() : std::vector<std::size_t>();
}

std::vector<std::size_t> simplifyToCount(const CurveView& curve, std::size_t count, double& error,
                                         const Progress& progress) {
    if (count < 2) {
        refuse("simplifyToCount",
               "A curve keeps 2 vertices at least, not " + std::to_string(count) + ".");
    }
    Simplification simplification(curve);
    if (count < simplification.keptCount()) {
        refuse("simplifyToCount", "The closed curve keeps " +
                                      std::to_string(simplification.keptCount()) +
                                      " vertices at least, not " + std::to_string(count) + ".");
    }
    Report report(progress);
    std::priority_queue<Part, std::vector<Part>, IsLess> parts(IsLess(), simplification.parts());
    while (simplification.keptCount() < count && parts.top().distance > 0.0) {
        const Part part = parts.top();
        parts.pop();
        if (report.stopsAt(simplification.keptCount(), std::min(count, curve.size()))) {
            return {};
        }
        const auto [before, behind] = simplification.split(part);
        parts.push(before);
        parts.push(behind);
    }
    if (report.stopsAtEnd()) {
        return {};
    }
    std::vector<std::size_t> kept = simplification.kept();
    error = simplification.unscaled(parts.top().distance);
    return kept;
}

} // namespace qel
