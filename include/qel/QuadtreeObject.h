#ifndef QEL_QUADTREEOBJECT_H
#define QEL_QUADTREEOBJECT_H

/// @file
/// A stored point of a bucket quadtree.

#include <cstdint>

#include <qel/Export.h>
#include <qel/TripletBase.h>

namespace qel {

/// A point and its position in the list that the tree was built from; zero when built. May be
/// read from many threads.
class QEL_API QuadtreeObject {
public:
    TripletBase<float> point;
    std::uint64_t index = 0;

    QuadtreeObject();
    QuadtreeObject(const TripletBase<float>& storedPoint, std::uint64_t position)
        : point(storedPoint), index(position) {}
};

} // namespace qel

#endif
