#ifndef QEL_QELMATRIX4_H
#define QEL_QELMATRIX4_H

/// @file
/// The 4x4 matrix of homogeneous transformations.

#include <iosfwd>

#include <qel/Export.h>
#include <qel/QELMatrix3base.h>
#include <qel/TripletBase.h>

namespace qel {

/// A 4x4 matrix in single precision that transforms points; zero when built.
///
///     QELMatrix4 shift;
///     shift.setTranslationMatrix(TripletBase<float>(1, 2, 3));
///     const TripletBase<float> moved = shift * TripletBase<float>(0, 0, 0); // (1, 2, 3)
///
/// Points are columns (x, y, z, 1): a translation stands in the fourth column. Element (3, 3) is
/// the homogeneous weight; the matrix is homogeneous when that is exactly 1. A zero weight is not
/// refused: it gives infinities and NaNs. Const members may be called on one object from many
/// threads.
class QEL_API QELMatrix4 {
public:
    // -- Building ----

    /// All elements zero.
    QELMatrix4() = default;
    /// The 3x3 matrix in the upper left, weight 1, zero elsewhere.
    QELMatrix4(const QELMatrix3base<float>& a);

    void setZero();
    void setIdentity();
    /// The identity with t in the fourth column.
    void setTranslationMatrix(const TripletBase<float>& t);

    // -- Elements ----

    /// Pointer to the first of the four values of a row.
    /// @throws data::invalid  if the row is not 0, 1, 2 or 3
    float* operator[](int row);
    const float* operator[](int row) const;

    // -- Homogeneous weight ----

    /// True if the weight is exactly 1.
    bool isHomogeneous() const;
    /// Divides every element by the weight, in double, and sets the weight to exactly 1. Leaves a
    /// homogeneous matrix alone.
    QELMatrix4& homogenize();

    // -- Products ----

    /// Transforms a point: rows 0 to 2 times the point, divided by row 3 times the point. All in
    /// float. `out` may be `in`.
    void multVec(TripletBase<float>& out, const TripletBase<float>& in) const;

    /// result = this x b, sums in float from left to right. The result is zeroed first: a matrix
    /// that is its own result ends as zero.
    /// @throws internal::error  if result and b are the same object; nothing is written then
    void multMat(QELMatrix4& result, const QELMatrix4& b) const;

    // -- Minors ----

    /// The 3x3 minor without a row and a column. Those left stand in cyclic order after the one
    /// removed (for row 1: rows 2, 3, 0), which keeps the minor's determinant.
    /// @throws data::invalid  if row or col is not 0, 1, 2 or 3; row is looked at first
    QELMatrix3base<float> subMatrix(int row, int col) const;

    /// Expansion along row 0: float minors, summed in double.
    float determinant() const;

private:
    float values_[4][4] = {};
};

/// Transforms a point by a homogenized copy of the matrix. May differ from QELMatrix4::multVec in
/// the last bits where the matrix is not homogeneous.
QEL_API TripletBase<float> operator*(const QELMatrix4& m, const TripletBase<float>& p);

/// The product a x b.
QEL_API QELMatrix4 operator*(const QELMatrix4& a, const QELMatrix4& b);

/// Writes the rows as ((a, b, c, d), ...) with the stream's formatting.
QEL_API std::ostream& operator<<(std::ostream& os, const QELMatrix4& m);

} // namespace qel

#endif
