#ifndef QEL_POLYLINE_BOXDISTANCE_H
#define QEL_POLYLINE_BOXDISTANCE_H

/// @file
/// Distances of a probe from the boxes of the BVH.

#include <cstddef>

#include "polyline/EdgeBvh.h"
#include "polyline/EdgeFoot.h"

namespace qel {

QEL_KERNEL double beyondSides(double q, double low, double high) {
    const double below = low - q, above = q - high;
    const double farther = below > above ? below : above;
    return farther > 0.0 ? farther : 0.0;
}

/// The squared distance of a probe from a child's box, as it is computed no more than that from any
/// foot in the box: each component of probe minus foot, rounded, is at least the rounded gap
/// between probe and side, and squaring and adding in the same order keep the order of numbers.
QEL_KERNEL double squaredGap(const EdgeBvhNode<3>& node, std::size_t lane, const Probe& q) {
    return squaredLength(beyondSides(q.x, node.low[0][lane], node.high[0][lane]),
                         beyondSides(q.y, node.low[1][lane], node.high[1][lane]),
                         beyondSides(q.z, node.low[2][lane], node.high[2][lane]));
}

} // namespace qel

#endif
