#include "curve/Bounds.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "platform/VectorDispatch.h"

namespace qel {
namespace {

constexpr std::size_t kDimensions = kSides / 2;

double numberOf(const Point& point, std::size_t side) {
    constexpr double Point::*components[] = {&Point::x, &Point::y, &Point::z};
    return point.*components[side % kDimensions];
}

// The extremes of all numbers but NaN. Numbers of points lie side by side, so lanes take them in
// turn, as many at a round as hold the same components each time.
struct ExtremesKernel {
    static constexpr std::size_t kPoints = 8;
    static constexpr std::size_t kNumbers = kPoints * kDimensions;

    QEL_KERNEL static void run(const Point* points, std::size_t count, double* extremes) {
        static_assert(sizeof(Point) == kDimensions * sizeof(double), "points lie side by side");
        const double* numbers = &points->x;
        double least[kNumbers];
        double greatest[kNumbers];
        std::fill_n(least, kNumbers, std::numeric_limits<double>::infinity());
        std::fill_n(greatest, kNumbers, -std::numeric_limits<double>::infinity());
        for (; count >= kPoints; count -= kPoints, numbers += kNumbers) {
            include(numbers, kNumbers, least, greatest);
        }
        include(numbers, kDimensions * count, least, greatest);
        for (std::size_t j = kDimensions; j < kNumbers; ++j) {
            const std::size_t c = j % kDimensions;
            least[c] = std::min(least[c], least[j]);
            greatest[c] = std::max(greatest[c], greatest[j]);
        }
        std::copy_n(least, kDimensions, extremes);
        std::copy_n(greatest, kDimensions, extremes + kDimensions);
    }

private:
    QEL_KERNEL static void include(const double* numbers, std::size_t count, double* least,
                                   double* greatest) {
        for (std::size_t j = 0; j < count; ++j) {
            least[j] = numbers[j] < least[j] ? numbers[j] : least[j];
            greatest[j] = numbers[j] > greatest[j] ? numbers[j] : greatest[j];
        }
    }
};

// The first point with a number; the first of all, if that is a NaN.
std::size_t indexOf(double number, const Points& points, std::size_t side) {
    for (std::size_t i = 0; i < points.size(); ++i) {
        if (numberOf(points[i], side) == number) {
            return i;
        }
    }
    return 0;
}

} // namespace

std::array<double, kSides> boundsOf(const Points& points) {
    std::array<double, kSides> bounds{};
    onVectorUnitFrom<ExtremesKernel>(points.size(), points.data(), points.size(), bounds.data());
    for (std::size_t side = 0; side < kSides; ++side) {
        const double first = numberOf(points[0], side);
        if (std::isnan(first)) {
            bounds[side] = first;
        } else if (bounds[side] == 0.0) { // of either sign
            bounds[side] = numberOf(points[indexOf(0.0, points, side)], side);
        }
    }
    return bounds;
}

std::size_t indexOfExtreme(const Points& points, Side side) {
    return indexOf(boundsOf(points)[side], points, side);
}

} // namespace qel
