#include <qel/CurveResampling.h>

#include <algorithm>
#include <cstdlib>
#include <string>
#include <vector>

#include "batch/ArgumentCheck.h"
#include "curve/BatchEvaluation.h"
#include "polyline/CurveArguments.h"
#include "polyline/EdgeWeight.h"
#include "polyline/Interpolation.h"

namespace qel {
namespace {

template <typename T>
bool isEmpty(const TableView<T>& table) {
    return table.rows == 0 || table.columns == 0;
}

std::string sizeOf(const TableView<const double>& table) {
    return std::to_string(table.rows) + " rows of " + std::to_string(table.columns);
}

void checkSize(const ArgumentCheck& check, const char* name, const TableView<const double>& table,
               std::size_t rows, std::size_t columns) {
    if (table.rows != rows || table.columns != columns) {
        check.refuse("The table " + std::string(name) + " has " + sizeOf(table) + " numbers, not " +
                     std::to_string(rows) + " of " + std::to_string(columns) + ".");
    }
    if (table.first == nullptr && !isEmpty(table)) {
        check.refuse("The table " + std::string(name) + " has " + sizeOf(table) +
                     " numbers at a null pointer.");
    }
}

std::size_t bytesOf(std::ptrdiff_t stride) {
    return static_cast<std::size_t>(std::abs(stride));
}

// The bytes from the lowest of count numbers to the end of the highest.
std::size_t extentOf(std::ptrdiff_t stride, std::size_t count) {
    return bytesOf(stride) * (count - 1) + sizeof(double);
}

// The groups are rows where these lie apart from each other, else columns.
StridedRange rangeOf(const TableView<const double>& table) {
    if (isEmpty(table)) {
        return {};
    }
    const auto* bytes = reinterpret_cast<const char*>(table.first);
    const std::size_t rowWidth = extentOf(table.columnStride, table.columns);
    const std::size_t columnWidth = extentOf(table.rowStride, table.rows);
    if (bytesOf(table.rowStride) >= rowWidth) {
        const auto* low = bytes - (table.columnStride < 0 ? rowWidth - sizeof(double) : 0);
        return {low, table.rows, table.rowStride, rowWidth};
    }
    const auto* low = bytes - (table.rowStride < 0 ? columnWidth - sizeof(double) : 0);
    return {low, table.columns, table.columnStride, columnWidth};
}

// One number shares its memory with the next of its row or column.
bool overlapsItself(const TableView<const double>& table) {
    constexpr std::ptrdiff_t kWidth = sizeof(double);
    return (table.columns > 1 && std::abs(table.columnStride) < kWidth) ||
           (table.rows > 1 && std::abs(table.rowStride) < kWidth);
}

void checkTables(ArgumentCheck& check, const TableView<const double>& data, std::size_t vertices,
                 const TableView<const double>& resampled, std::size_t samples) {
    if (isEmpty(data) && isEmpty(resampled)) {
        return;
    }
    checkSize(check, "data", data, vertices, data.columns);
    checkSize(check, "resampled", resampled, samples, data.columns);
    if (overlapsItself(resampled)) {
        check.refuse("The elements of the output resampled share memory.");
    }
    check.input(rangeOf(data));
    check.output("resampled", rangeOf(resampled));
}

void resampleColumn(const std::vector<EdgeWeight>& places, const ScalarView<const double>& in,
                    const ScalarView<double>& out) {
    for (std::size_t k = 0; k < places.size(); ++k) {
        const EdgeWeight& place = places[k];
        out.set(k, place.lo == place.hi ? in[place.lo]
                                        : interpolated(in[place.lo], in[place.hi], place.weight));
    }
}

void samplePoints(const CurveView& curve, const std::vector<double>& curveSvalues,
                  const ScalarView<const double>& svalues, const TripletView<double>& points) {
    std::vector<TripletBase<double>> curvePoints;
    curve.copyPoints(curvePoints);
    constexpr std::size_t kBlock = BracketSearch::kBlock;
    BatchEvaluation evaluation(curvePoints, curveSvalues, svalues.size());
    double parameters[kBlock];
    Point samples[kBlock];
    for (std::size_t first = 0; first < svalues.size(); first += kBlock) {
        const std::size_t count = std::min(kBlock, svalues.size() - first);
        for (std::size_t k = 0; k < count; ++k) {
            parameters[k] = svalues[first + k];
        }
        evaluation.pointsAt(parameters, count, samples);
        for (std::size_t k = 0; k < count; ++k) {
            points.set(first + k, samples[k]);
        }
    }
}

} // namespace

void resampleCurve(const CurveView& curve, const ScalarView<const double>& svalues,
                   const TableView<const double>& data, const TripletView<double>& points,
                   const TableView<double>& resampled) {
    ArgumentCheck check("CurveResampling", "resampleCurve");
    addInput(check, curve);
    check.input(svalues);
    check.output("points", points, svalues.size());
    checkTables(check, data, curve.size(), resampled, svalues.size());
    refuseNan(check, svalues);

    // All memory is taken before anything is written.
    std::vector<double> curveSvalues;
    curve.copySvalues(curveSvalues);
    std::vector<EdgeWeight> places(isEmpty(resampled) ? 0 : svalues.size());
    if (!points.empty()) {
        samplePoints(curve, curveSvalues, svalues, points);
    }
    for (std::size_t k = 0; k < places.size(); ++k) {
        places[k] = edgeWeightAt(curveSvalues, svalues[k]);
    }
    for (std::size_t i = 0; !places.empty() && i < data.columns; ++i) {
        resampleColumn(places, data.column(i), resampled.column(i));
    }
}

} // namespace qel
