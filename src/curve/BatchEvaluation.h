#ifndef QEL_CURVE_BATCHEVALUATION_H
#define QEL_CURVE_BATCHEVALUATION_H

/// @file
/// Fast path: the points at many parameters of one curve.
///
/// The s-values below a block of parameters are found together (BracketSearch.h), and the points
/// above them computed by the last case of pointBetween, without branches. Where another case may
/// hold (a parameter on an s-value that may be repeated or outside the range, s-values that may
/// count as equal), the point is computed again, the bracket being known. Where s-values are not in
/// order (a NaN among those supplied), or too few parameters are asked for to pay for making sure,
/// all are evaluated by the reference implementation.

#include <cstddef>
#include <vector>

#include "curve/BracketSearch.h"
#include "curve/Evaluation.h"

namespace qel {

class BatchEvaluation {
public:
    /// Refers to the curve's points and s-values.
    ///
    /// @param expected  about how many points will be asked for
    BatchEvaluation(const Points& points, const std::vector<double>& svalues, std::size_t expected);

    /// Sets out[k] to pointAtParameter of each parameter.
    void pointsAt(const double* parameters, std::size_t count, Point* out);

private:
    void pointsOfBlock(const double* parameters, std::size_t count, Point* out);

    // pointAtParameter, if the last s-value that is not above s is known.
    Point pointAbove(std::size_t lower, double s) const;

    const Points& points_;
    const std::vector<double>& svalues_;
    double distinctStep_; // no s-values farther apart count as equal
    Steps steps_ = {false, false};
    BracketSearch search_;
};

} // namespace qel

#endif
