#include "curve/NearestVertex.h"

namespace qel {

std::size_t nearestVertex(const Points& points, const Point& q) {
    std::size_t nearest = 0;
    double least = squaredDistance(points[0], q);
    for (std::size_t i = 1; i < points.size(); ++i) {
        const double d2 = squaredDistance(points[i], q);
        if (d2 < least) {
            least = d2;
            nearest = i;
        }
    }
    return nearest;
}

} // namespace qel
