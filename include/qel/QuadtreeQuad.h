#ifndef QEL_QUADTREEQUAD_H
#define QEL_QUADTREEQUAD_H

/// @file
/// A node of a bucket quadtree.

#include <cstdint>
#include <vector>

#include <qel/Export.h>
#include <qel/QuadtreeObject.h>

namespace qel {

/// A node of a bucket quadtree: a rectangle that is a leaf with points, or is cut in two halves.
///
/// For those who keep or draw the tree: QuadtreeBucket finds the same points without building it.
/// Links and points are not owned; a copy shares them. An empty leaf without links when built. May
/// be read from many threads.
class QEL_API QuadtreeQuad {
public:
    /// Values of splitType.
    enum : std::int32_t { splitAcrossX = 0, splitAcrossY = 1, leaf = 2 };

    float xmin = 0.0f;
    float ymin = 0.0f;
    float xmax = 0.0f;
    float ymax = 0.0f;
    std::int32_t depth = 0;        ///< 0 for the root
    std::int32_t splitType = leaf; ///< across x: left and right halves; across y: lower and upper
    QuadtreeQuad* lowChild = nullptr;  ///< the half below the middle; null for a leaf
    QuadtreeQuad* highChild = nullptr; ///< the other half, the middle included; null for a leaf
    QuadtreeQuad* parent = nullptr;    ///< null for the root
    std::vector<const QuadtreeObject*> objects; ///< the points of a leaf, in order of their index

    QuadtreeQuad();
};

} // namespace qel

#endif
