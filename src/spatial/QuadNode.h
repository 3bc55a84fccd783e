#ifndef QEL_SPATIAL_QUADNODE_H
#define QEL_SPATIAL_QUADNODE_H

/// @file
/// A node of the bucket quadtree, as far as the search for nearest points needs it, and the
/// measures of rectangles that the search compares. All in float; the order of operations decides
/// which of two nearly equal points wins.

#include <limits>

namespace qel {

struct QuadRectangle {
    float xmin, ymin, xmax, ymax;
};

/// Infinitely far from everything.
inline constexpr QuadRectangle kEmptyRectangle = {
    std::numeric_limits<float>::infinity(), std::numeric_limits<float>::infinity(),
    -std::numeric_limits<float>::infinity(), -std::numeric_limits<float>::infinity()};

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

struct QuadNode {
    QuadRectangle rectangle;
    /// Sides that stem from a cut. A place belongs to the node if it lies on the node's side of all
    /// of them; the other sides are the root's, and places beyond them belong to the node too.
    bool cutLeft = false, cutBelow = false, cutRight = false, cutAbove = false;

    bool contains(float x, float y) const {
        return (!cutLeft || x >= rectangle.xmin) && (!cutRight || !(x >= rectangle.xmax)) &&
               (!cutBelow || y >= rectangle.ymin) && (!cutAbove || !(y >= rectangle.ymax));
    }

    /// Where the node is cut.
    float middle(bool acrossX) const {
        return acrossX ? qel::middle(rectangle.xmin, rectangle.xmax)
                       : qel::middle(rectangle.ymin, rectangle.ymax);
    }

    QuadNode half(bool acrossX, bool isHigh) const {
        const float cut = middle(acrossX);
        QuadNode half = *this;
        if (isHigh) {
            (acrossX ? half.rectangle.xmin : half.rectangle.ymin) = cut;
            (acrossX ? half.cutLeft : half.cutBelow) = true;
        } else {
            (acrossX ? half.rectangle.xmax : half.rectangle.ymax) = cut;
            (acrossX ? half.cutRight : half.cutAbove) = true;
        }
        return half;
    }
};

} // namespace qel

#endif
