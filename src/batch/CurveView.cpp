#include <qel/CurveView.h>

#include <cmath>
#include <string>

#include <qel/QELException.h>

#include "batch/PointLoop.h"
#include "curve/ArcLength.h"

namespace qel {
namespace {

[[noreturn]] void refuse(const std::string& reason) {
    throw data::invalid("CurveView", "constructor", reason, argumentError);
}

bool isFinite(const TripletBase<double>& p) {
    return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z);
}

void checkSvalues(const ScalarView<const double>& svalues, std::size_t points) {
    if (svalues.size() != points) {
        refuse("There are " + std::to_string(svalues.size()) + " s-values for " +
               std::to_string(points) + " points.");
    }
    for (std::size_t i = 0; i < points; ++i) {
        if (!std::isfinite(svalues[i])) {
            refuse("The s-value of point " + std::to_string(i) + " is not finite.");
        }
        if (i > 0 && svalues[i] < svalues[i - 1]) {
            refuse("The s-value of point " + std::to_string(i) + " is less than the one before.");
        }
    }
}

} // namespace

CurveView::CurveView(const ParametricCurve& curve)
    : CurveView(TripletView<const double>(curve.getCurve()),
                ScalarView<const double>(curve.getSvalues())) {}

CurveView::CurveView(const TripletView<const double>& points) : wide_(points) {
    check();
}

CurveView::CurveView(const TripletView<const float>& points) : narrow_(points), isWide_(false) {
    check();
}

CurveView::CurveView(const std::vector<TripletBase<double>>& points)
    : CurveView(TripletView<const double>(points)) {}

CurveView::CurveView(const std::vector<TripletBase<float>>& points)
    : CurveView(TripletView<const float>(points)) {}

CurveView::CurveView(const TripletView<const double>& points,
                     const ScalarView<const double>& svalues)
    : wide_(points), svalues_(svalues) {
    check();
    checkSvalues(svalues, points.size());
}

CurveView::CurveView(const TripletView<const float>& points,
                     const ScalarView<const double>& svalues)
    : narrow_(points), svalues_(svalues), isWide_(false) {
    check();
    checkSvalues(svalues, points.size());
}

void CurveView::check() const {
    if (size() < 2) {
        refuse("A curve has two points at least; there are " + std::to_string(size()) + ".");
    }
    double zero = 0.0; // a NaN or an infinity among the coordinates makes it a NaN
    visitPoints([&zero](const auto& points) {
        forEachPoint(points, [&zero](std::size_t, double x, double y, double z) {
            zero += x * 0.0 + y * 0.0 + z * 0.0;
        });
    });
    for (std::size_t i = 0; zero != 0.0 && i < size(); ++i) {
        if (!isFinite((*this)[i])) {
            refuse("Point " + std::to_string(i) + " is not finite.");
        }
    }
}

void CurveView::copyPoints(std::vector<TripletBase<double>>& points) const {
    points.resize(size());
    visitPoints([&points](const auto& view) {
        forEachPoint(view, [&points](std::size_t i, double x, double y, double z) {
            points[i] = TripletBase<double>(x, y, z);
        });
    });
}

void CurveView::copySvalues(std::vector<double>& svalues) const {
    if (svalues_.empty()) {
        std::vector<TripletBase<double>> points;
        copyPoints(points);
        double length = 0.0;
        calculateArcValue(points, svalues, length);
        return;
    }
    svalues.resize(size());
    for (std::size_t i = 0; i < size(); ++i) {
        svalues[i] = svalues_[i];
    }
}

} // namespace qel
