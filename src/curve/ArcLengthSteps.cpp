#include "curve/ArcLengthSteps.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "platform/VectorDispatch.h"

namespace qel {
namespace {

constexpr std::size_t kBlock = 32; // steps computed before they are added

// TripletBase::length() of the differences, without its branches.
QEL_KERNEL void lengthsOfSteps(const Point* points, std::size_t count, double* steps) {
    constexpr double marker = std::numeric_limits<double>::max();
    constexpr double undefinedLength = static_cast<double>(std::numeric_limits<float>::max());
    for (std::size_t i = 0; i < count; ++i) {
        const double x = points[i + 1].x - points[i].x;
        const double y = points[i + 1].y - points[i].y;
        const double z = points[i + 1].z - points[i].z;
        const double norm = std::sqrt(x * x + y * y + z * z);
        const bool undefined = (x == marker) | (y == marker) | (z == marker);
        steps[i] = undefined ? undefinedLength : norm;
    }
}

QEL_KERNEL void cumulate(const Point* points, std::size_t count, double* distances) {
    double steps[kBlock];
    double sum = 0.0;
    distances[0] = sum;
    std::size_t i = 1;
    for (; i + kBlock <= count; i += kBlock) {
        lengthsOfSteps(points + i - 1, kBlock, steps);
        for (std::size_t j = 0; j < kBlock; ++j) {
            distances[i + j] = sum += steps[j];
        }
    }
    lengthsOfSteps(points + i - 1, count - i, steps);
    for (std::size_t j = 0; i + j < count; ++j) {
        distances[i + j] = sum += steps[j];
    }
}

struct DivideKernel {
    QEL_KERNEL static void run(double* values, std::size_t count, double divisor) {
        for (std::size_t i = 0; i < count; ++i) {
            values[i] /= divisor;
        }
    }
};

struct CumulateKernel {
    QEL_KERNEL static void run(const Point* points, std::size_t count, double* distances) {
        cumulate(points, count, distances);
    }
};

} // namespace

void cumulateSteps(const Points& points, double* distances) {
    onVectorUnit<CumulateKernel>(points.data(), points.size(), distances);
}

void divideAll(double* values, std::size_t count, double divisor) {
    onVectorUnit<DivideKernel>(values, count, divisor);
}

} // namespace qel
