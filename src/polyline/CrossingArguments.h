#ifndef QEL_POLYLINE_CROSSINGARGUMENTS_H
#define QEL_POLYLINE_CROSSINGARGUMENTS_H

/// @file
/// What the functions of CurveCrossings.h check and how they order their results.

#include <string>
#include <vector>

#include <qel/CurveCrossings.h>

namespace qel {

/// The class and the method of a call, to refuse its arguments.
class CrossingArguments {
public:
    explicit CrossingArguments(const char* method) : method_(method) {}

    /// Throws data::invalid.
    [[noreturn]] void refuse(const std::string& reason) const;

    /// The largest |coordinate| of the points in the plane, or in space.
    /// @throws data::invalid  for a point that is not finite
    double largestInPlane(const CurveView& curve) const;
    double largestInSpace(const CurveView& curve) const;

    /// @throws data::invalid  for a point that is not finite; `name` begins the reason
    double largestInPlane(const TripletBase<double>& point, const char* name) const;
    double largestInSpace(const TripletBase<double>& point, const char* name) const;

private:
    const char* method_;
};

/// By sBegin, then otherBegin, then the ends.
void sortCrossings(std::vector<CurveCrossing>& crossings);

} // namespace qel

#endif
