#ifndef QEL_SPATIAL_QUADRECTANGLE_H
#define QEL_SPATIAL_QUADRECTANGLE_H

/// @file
/// The rectangles of the bucket quadtree and the measures that the search compares. All in float;
/// the order of operations decides which of two nearly equal points wins.

namespace qel {

struct QuadRectangle {
    float xmin, ymin, xmax, ymax;
};

/// Takes another rectangle in. A NaN in either is passed over, or stays.
inline void extend(QuadRectangle& box, const QuadRectangle& other) {
    box.xmin = other.xmin < box.xmin ? other.xmin : box.xmin;
    box.ymin = other.ymin < box.ymin ? other.ymin : box.ymin;
    box.xmax = other.xmax > box.xmax ? other.xmax : box.xmax;
    box.ymax = other.ymax > box.ymax ? other.ymax : box.ymax;
}

/// Where a rectangle is cut: the sum in float, halved in double, rounded.
inline float middle(float low, float high) {
    return static_cast<float>(static_cast<double>(low + high) * 0.5);
}

/// What has to be added to a query's coordinate to reach the range; 0 inside. A NaN bound bounds
/// nothing.
inline float outsideBy(float q, float low, float high) {
    return low > q ? q - low : (q > high ? q - high : 0.0f);
}

/// Squared distance of a query from a rectangle. Never above that of a point in the rectangle:
/// rounding keeps the order of differences, squares and sums.
inline float squaredDistance(const QuadRectangle& r, float qx, float qy) {
    const float dx = outsideBy(qx, r.xmin, r.xmax);
    const float dy = outsideBy(qy, r.ymin, r.ymax);
    return dx * dx + dy * dy;
}

} // namespace qel

#endif
