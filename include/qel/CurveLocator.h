#ifndef QEL_CURVELOCATOR_H
#define QEL_CURVELOCATOR_H

/// @file
/// The nearest place on a polyline, for one or many probes. Part of the batch interface
/// (docs/batch-interface.md).

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include <qel/CurveView.h>
#include <qel/Export.h>
#include <qel/Progress.h>
#include <qel/StridedView.h>
#include <qel/TripletBase.h>

namespace qel {

/// A place on a polyline as seen from a probe.
struct CurveLocation {
    TripletBase<double> foot; ///< on the edge
    double s = 0.0;           ///< at the foot, linear along the edge
    std::int64_t edge = -1;   ///< from vertex `edge` to the next; -1 for a probe that is not finite
    double distance = 0.0;    ///< of the probe from the foot, same unit as the points
};

/// Where CurveLocator::locate writes. A view of nothing is not written; any other has the size of
/// the probes.
struct CurveLocations {
    TripletView<double> foot;
    ScalarView<double> s;
    ScalarView<std::int64_t> edge;
    ScalarView<double> distance;
};

/// An index over the edges of a polyline that finds the truly nearest place on it.
///
///     const CurveLocator wall(curve);
///     CurveLocation place = wall.locate({5, 0.4, 0});
///     wall.locate(cellCentres, out); // 1e6 of them
///
/// All edges count, not only those at the nearest vertex as in ParametricCurve::projectPoint. The
/// foot of a probe q on the edge from a to b is a + (b - a) * t with t = ((q - a) . (b - a)) /
/// ((b - a) . (b - a)), a for t <= 0 or an edge of no length, and b for t >= 1; the nearest edge is
/// the one whose foot has the least squared distance as computed in double, the lowest of equal
/// ones. s is sa + (sb - sa) * t. Where squares of very small or very large coordinates would
/// underflow or overflow, all of this is computed on coordinates times a power of two.
///
/// The index, a bounding volume hierarchy over the edges, passes over edges that cannot be nearest
/// and changes no bit of the answer. It is built once, in O(n log n) time, keeps its own copy of
/// the vertices, some 40 bytes an edge, and is immutable: const members may be called from any
/// number of threads at once. One that was moved from may only be assigned to or destroyed.
class QEL_API CurveLocator {
public:
    /// @throws data::invalid  (class "CurveLocator", method "constructor") for a vertex that is not
    ///     finite; the reason names its index
    explicit CurveLocator(const CurveView& curve);
    CurveLocator(CurveLocator&&) noexcept;
    CurveLocator& operator=(CurveLocator&&) noexcept;
    ~CurveLocator();

    /// Number of edges.
    std::size_t size() const;

    /// The nearest place. For a probe that is not finite: edge -1, and NaN for all else. O(log n)
    /// where few edges are about equally near, O(n) at worst (the centre of a circle).
    CurveLocation locate(const TripletBase<double>& probe) const;

    /// The nearest places of many probes, each as locate(probe) gives it. Large indices answer
    /// faster if probes that follow each other are near each other. Writes in the order of the
    /// probes; when it is stopped, those behind are left as they were.
    ///
    /// @return the probes answered: all, unless progress stopped the call
    /// @throws data::invalid  (class "CurveLocator", method "locate") before anything is written,
    ///     for an output of another size than the probes or whose memory overlaps theirs, itself or
    ///     another output
    std::size_t locate(const TripletView<const double>& probes, const CurveLocations& out,
                       const Progress& progress = {}) const;
    std::size_t locate(const TripletView<const float>& probes, const CurveLocations& out,
                       const Progress& progress = {}) const;

    /// All edges within a distance, the distance itself included, in increasing order, each with
    /// the place on it that is nearest to the probe. Replaces what is in the list. None for a probe
    /// that is not finite or a distance that is NaN or negative.
    void locateWithin(const TripletBase<double>& probe, double distance,
                      std::vector<CurveLocation>& places) const;

private:
    class Index;

    template <typename Number>
    std::size_t locateAll(const TripletView<const Number>& probes, const CurveLocations& out,
                          const Progress& progress) const;

    std::unique_ptr<const Index> index_;
};

} // namespace qel

#endif
