#include "curve/Rotation.h"

#include "platform/VectorUnit.h"

namespace qel {
namespace {

QEL_KERNEL void rotate(Point* points, std::size_t n, const Rotation& shared) {
    const Rotation rotation = shared; // known not to change while points are written
    for (std::size_t i = 0; i < n; ++i) {
        points[i] = rotatedPoint(rotation, points[i]);
    }
}

void rotatePortable(Point* points, std::size_t n, const Rotation& rotation) {
    rotate(points, n, rotation);
}

#if defined(QEL_VECTOR_UNITS)
QEL_AVX2 void rotateAvx2(Point* points, std::size_t n, const Rotation& rotation) {
    rotate(points, n, rotation);
}
QEL_AVX512 void rotateAvx512(Point* points, std::size_t n, const Rotation& rotation) {
    rotate(points, n, rotation);
}
#endif

} // namespace

void rotatePoints(Points& points, const Rotation& rotation) noexcept {
    switch (vectorUnit()) {
#if defined(QEL_VECTOR_UNITS)
    case VectorUnit::avx512:
        return rotateAvx512(points.data(), points.size(), rotation);
    case VectorUnit::avx2:
        return rotateAvx2(points.data(), points.size(), rotation);
#endif
    default:
        return rotatePortable(points.data(), points.size(), rotation);
    }
}

} // namespace qel
