#include "curve/ArcLengthSteps.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "platform/VectorUnit.h"

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

QEL_KERNEL void divide(double* values, std::size_t count, double divisor) {
    for (std::size_t i = 0; i < count; ++i) {
        values[i] /= divisor;
    }
}

void cumulatePortable(const Point* points, std::size_t count, double* distances) {
    cumulate(points, count, distances);
}
void dividePortable(double* values, std::size_t count, double divisor) {
    divide(values, count, divisor);
}
#if defined(QEL_VECTOR_UNITS)
QEL_AVX2 void cumulateAvx2(const Point* points, std::size_t count, double* distances) {
    cumulate(points, count, distances);
}
QEL_AVX512 void cumulateAvx512(const Point* points, std::size_t count, double* distances) {
    cumulate(points, count, distances);
}
QEL_AVX2 void divideAvx2(double* values, std::size_t count, double divisor) {
    divide(values, count, divisor);
}
QEL_AVX512 void divideAvx512(double* values, std::size_t count, double divisor) {
    divide(values, count, divisor);
}
#endif

} // namespace

void cumulateSteps(const Points& points, double* distances) {
#if defined(QEL_VECTOR_UNITS)
    switch (vectorUnit()) {
    case VectorUnit::avx512:
        return cumulateAvx512(points.data(), points.size(), distances);
    case VectorUnit::avx2:
        return cumulateAvx2(points.data(), points.size(), distances);
    case VectorUnit::portable:
        break;
    }
#endif
    cumulatePortable(points.data(), points.size(), distances);
}

void divideAll(double* values, std::size_t count, double divisor) {
#if defined(QEL_VECTOR_UNITS)
    switch (vectorUnit()) {
    case VectorUnit::avx512:
        return divideAvx512(values, count, divisor);
    case VectorUnit::avx2:
        return divideAvx2(values, count, divisor);
    case VectorUnit::portable:
        break;
    }
#endif
    dividePortable(values, count, divisor);
}

} // namespace qel
