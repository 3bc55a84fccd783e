#pragma once
// The nearest of many points, in double precision.

#include <cstddef>
#include <limits>
#include <memory>
#include <vector>

#include "curves/Curves.h"

namespace program {

struct Neighbour {
    std::size_t index;
    double distance;
};

/// What to find for a query.
struct NeighbourLimits {
    std::size_t count = 1; ///< at most so many
    double radius = std::numeric_limits<double>::infinity();
};

/// A k-d tree (Bentley 1975; by nanoflann) over points in the plane or in space. It refers to the
/// points and queries, which have to be finite and stay as they are.
class NearestPoints {
public:
    /// @param planar  whether z plays no part
    NearestPoints(const Points& points, const Points& queries, bool planar);
    ~NearestPoints();

    /// Of a query: by distance, and by index where distances are equal. Points at the radius itself
    /// are within.
    std::vector<Neighbour> find(std::size_t query, const NeighbourLimits& limits) const;

private:
    class Tree;
    template <int kDimensions>
    class TreeIn;
    const Points& queries_;
    std::unique_ptr<const Tree> tree_;
};

} // namespace program
