#include "curve/Rotation.h"

#include "platform/VectorDispatch.h"

namespace qel {
namespace {

struct RotationKernel {
    QEL_KERNEL static void run(Point* points, std::size_t n, Rotation rotation) {
        for (std::size_t i = 0; i < n; ++i) {
            points[i] = rotatedPoint(rotation, points[i]);
        }
    }
};

} // namespace

void rotatePoints(Points& points, const Rotation& rotation) noexcept {
    onVectorUnit<RotationKernel>(points.data(), points.size(), rotation);
}

} // namespace qel
