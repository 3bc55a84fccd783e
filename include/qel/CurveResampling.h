#ifndef QEL_CURVERESAMPLING_H
#define QEL_CURVERESAMPLING_H

/// @file
/// Points along a polyline, and data that its vertices carry. Part of the batch interface
/// (docs/batch-interface.md).
///
/// The functions may be called from any number of threads at once, on outputs of their own.

#include <cstddef>
#include <type_traits>

#include <qel/CurveView.h>
#include <qel/Export.h>
#include <qel/StridedView.h>
#include <qel/TripletBase.h>

namespace qel {

/// A borrowed view of a table of numbers: a row for each vertex or sample, a column for each
/// quantity. Owns nothing.
template <typename T>
struct TableView {
    T* first = nullptr;
    std::size_t rows = 0;
    std::size_t columns = 0;
    std::ptrdiff_t rowStride = 0;    ///< bytes from one row to the next
    std::ptrdiff_t columnStride = 0; ///< bytes from one column to the next

    /// A table of nothing.
    TableView() = default;
    /// One row behind the other.
    TableView(T* firstNumber, std::size_t rowCount, std::size_t columnCount)
        : TableView(firstNumber, rowCount, columnCount,
                    static_cast<std::ptrdiff_t>(columnCount * sizeof(T)),
                    static_cast<std::ptrdiff_t>(sizeof(T))) {}
    TableView(T* firstNumber, std::size_t rowCount, std::size_t columnCount,
              std::ptrdiff_t bytesToNextRow, std::ptrdiff_t bytesToNextColumn)
        : first(firstNumber),
          rows(rowCount),
          columns(columnCount),
          rowStride(bytesToNextRow),
          columnStride(bytesToNextColumn) {}
    /// What may be written may be read.
    template <typename U, typename = std::enable_if_t<std::is_same<const U, T>::value>>
    TableView(const TableView<U>& other)
        : TableView(other.first, other.rows, other.columns, other.rowStride, other.columnStride) {}

    /// The numbers of one column, which must be one of the table's.
    ScalarView<T> column(std::size_t i) const {
        const auto offset = static_cast<std::ptrdiff_t>(i) * columnStride;
        using Byte = std::conditional_t<std::is_const<T>::value, const char, char>;
        return {reinterpret_cast<T*>(reinterpret_cast<Byte*>(first) + offset), rows, rowStride};
    }
};

/// Points at s-values, in any order, and the data that the curve's vertices carry, linear in s
/// between vertices; beyond the ends, those of the nearer end.
///
///     resampleCurve(curve, svalues, {pressure.data(), curve.size(), 1}, points,
///                   {resampled.data(), svalues.size(), 1});
///
/// Points have the bits of ParametricCurve::getPointAtParameter. The data at an s that several
/// vertices share are those of the first of them. O(n + m (log n + columns)).
///
/// @param data       a row for each vertex; may be a table of nothing
/// @param points     a point for each s; a view of nothing is not written
/// @param resampled  a row for each s and as many columns as data; a table of nothing where data is
/// @throws data::invalid  (class "CurveResampling", method "resampleCurve") before anything is
///     written, for sizes that do not match, numbers at a null pointer, an s-value that is NaN (the
///     reason names its index), or an output whose memory overlaps an input, itself or another
///     output
QEL_API void resampleCurve(const CurveView& curve, const ScalarView<const double>& svalues,
                           const TableView<const double>& data, const TripletView<double>& points,
                           const TableView<double>& resampled);

} // namespace qel

#endif
