#ifndef QEL_CURVE_SIMDPROJECTION_H
#define QEL_CURVE_SIMDPROJECTION_H

/// @file
/// SIMD projection: fast path for the s of many probes' feet beside their nearest vertices.
///
/// On which of two edges a foot lies, and whether at its end, is hard to predict. Here both edges
/// are computed for all probes, a probe in each lane, and the result is chosen without a branch.
/// The operations are those of projectBesideVertex in their order, so the bits are the same.
///
/// Left to projectBesideVertex is what is rare: the ends of the curve, and probes and edges for
/// which the machine spacings that it compares with might matter: see kHundredSpacings.

#include <cstddef>
#include <cstdint>
#include <vector>

#include "curve/Conversions.h"

namespace qel {

/// Probes that are taken together.
constexpr std::size_t kProjectionChunk = 64;

/// Sets s[i] for probe i, whose nearest vertex is nearest[i], and isResolved[i]; where that is 0,
/// s[i] is to be recomputed by projectBesideVertex.
///
/// @param points  three or more
/// @param count   up to kProjectionChunk
void projectInLanes(const Points& points, const std::vector<double>& svalues, const Point* probes,
                    const std::size_t* nearest, std::size_t count, double* s,
                    std::uint64_t* isResolved);

} // namespace qel

#endif
