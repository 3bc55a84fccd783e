#ifndef QEL_CURVEVIEW_H
#define QEL_CURVEVIEW_H

/// @file
/// A borrowed view of a polyline. Part of the batch interface (docs/batch-interface.md).

#include <cstddef>
#include <vector>

#include <qel/Export.h>
#include <qel/ParametricCurve.h>
#include <qel/StridedView.h>
#include <qel/TripletBase.h>

namespace qel {

/// A polyline that lies in the caller's memory: its vertices and, where given, their s-values.
///
///     std::vector<CurveCrossing> crossings = findCrossings(curve, {otherX, otherY, otherZ});
///
/// Made, without being named, wherever a function of the batch interface takes a curve: from a
/// ParametricCurve, from a view or an array of points, or from points and s-values. Without
/// s-values, s is the arc length up to a vertex over the total length, in every bit as
/// ParametricCurve::setPoints computes it. Float points are widened where they are read.
///
/// Owns nothing; the memory must outlive it. Safe to read from any number of threads.
class QEL_API CurveView {
public:
    /// The points and s-values of a curve, which must not be changed meanwhile.
    CurveView(const ParametricCurve& curve);

    // Points alone.
    /// @throws data::invalid  (class "CurveView", method "constructor") for fewer than two points,
    ///     or a point that is not finite; the reason names its index. O(n)
    CurveView(const TripletView<const double>& points);
    CurveView(const TripletView<const float>& points);
    CurveView(const std::vector<TripletBase<double>>& points);
    CurveView(const std::vector<TripletBase<float>>& points);

    /// Points and s-values.
    /// @throws data::invalid  as above, and if the sizes differ or an s-value is not finite or less
    ///     than the one before; the reason names its index. O(n)
    CurveView(const TripletView<const double>& points, const ScalarView<const double>& svalues);
    CurveView(const TripletView<const float>& points, const ScalarView<const double>& svalues);

    /// Number of vertices; one more than there are edges.
    std::size_t size() const { return isWide_ ? wide_.size() : narrow_.size(); }

    /// Vertex i; an index beyond the last ends the process.
    TripletBase<double> operator[](std::size_t i) const {
        return isWide_ ? wide_[i] : TripletBase<double>(narrow_[i]);
    }

    /// The s-values as given; empty if none were.
    const ScalarView<const double>& getSvalues() const { return svalues_; }

    /// True if the first and the last vertex are equal.
    bool isClosed() const { return (*this)[0] == (*this)[size() - 1]; }

    /// Returns visit(points) with the view that the curve is made of, of doubles or of floats.
    template <typename Visit>
    decltype(auto) visitPoints(Visit&& visit) const {
        return isWide_ ? visit(wide_) : visit(narrow_);
    }

    /// Copies the vertices.
    void copyPoints(std::vector<TripletBase<double>>& points) const;

    /// Copies the s-values as given or, where none were, computes them. O(n).
    void copySvalues(std::vector<double>& svalues) const;

private:
    void check() const;

    TripletView<const double> wide_;
    TripletView<const float> narrow_;
    ScalarView<const double> svalues_;
    bool isWide_ = true;
};

} // namespace qel

#endif
