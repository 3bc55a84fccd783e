#include "polyline/CrossingArguments.h"

#include <algorithm>
#include <cmath>
#include <tuple>

#include <qel/QELException.h>

namespace qel {
namespace {

double largestOf(const TripletBase<double>& p, bool isInSpace) {
    const double inPlane = std::max(std::fabs(p.x), std::fabs(p.y));
    return isInSpace ? std::max(inPlane, std::fabs(p.z)) : inPlane;
}

bool isFinite(const TripletBase<double>& p, bool isInSpace) {
    return std::isfinite(p.x) && std::isfinite(p.y) && (!isInSpace || std::isfinite(p.z));
}

double largestOf(const CrossingArguments& arguments, const CurveView& curve, bool isInSpace) {
    double largest = 0.0;
    for (std::size_t i = 0; i < curve.size(); ++i) {
        const TripletBase<double> p = curve[i];
        if (!isFinite(p, isInSpace)) {
            arguments.refuse("Point " + std::to_string(i) + " is not finite.");
        }
        largest = std::max(largest, largestOf(p, isInSpace));
    }
    return largest;
}

} // namespace

void CrossingArguments::refuse(const std::string& reason) const {
    throw data::invalid("CurveCrossings", method_, reason, argumentError);
}

double CrossingArguments::largestInPlane(const CurveView& curve) const {
    return largestOf(*this, curve, false);
}

double CrossingArguments::largestInSpace(const CurveView& curve) const {
    return largestOf(*this, curve, true);
}

double CrossingArguments::largestInPlane(const TripletBase<double>& point, const char* name) const {
    if (!isFinite(point, false)) {
        refuse(std::string(name) + " is not finite.");
    }
    return largestOf(point, false);
}

double CrossingArguments::largestInSpace(const TripletBase<double>& point, const char* name) const {
    if (!isFinite(point, true)) {
        refuse(std::string(name) + " is not finite.");
    }
    return largestOf(point, true);
}

void sortCrossings(std::vector<CurveCrossing>& crossings) {
    const auto rank = [](const CurveCrossing& c) {
        return std::tie(c.sBegin, c.otherBegin, c.sEnd, c.otherEnd, c.edge, c.otherEdge);
    };
    std::sort(crossings.begin(), crossings.end(),
              [&](const CurveCrossing& a, const CurveCrossing& b) { return rank(a) < rank(b); });
}

} // namespace qel
