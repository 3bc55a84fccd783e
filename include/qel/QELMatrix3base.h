#ifndef QEL_QELMATRIX3BASE_H
#define QEL_QELMATRIX3BASE_H

/// @file
/// The 3x3 matrix template.

#include <string>

#include <qel/QELException.h>

namespace qel {

/// A 3x3 matrix, row by row; zero when built.
///
///     QELMatrix3base<float> m;
///     m[0][0] = m[1][1] = m[2][2] = 1.0f;
template <typename T>
class QELMatrix3base {
public:
    /// Pointer to the first of the three values of a row.
    /// @throws data::invalid  if the row is not 0, 1 or 2
    T* operator[](int row) {
        checkRow(row);
        return values_ + 3 * row;
    }
    const T* operator[](int row) const {
        checkRow(row);
        return values_ + 3 * row;
    }

    /// Expansion along the first row, in T.
    constexpr T determinant() const {
        const T* const a = values_;
        const T* const b = values_ + 3;
        const T* const c = values_ + 6;
        return a[0] * (b[1] * c[2] - b[2] * c[1]) - a[1] * (b[0] * c[2] - b[2] * c[0]) +
               a[2] * (b[0] * c[1] - b[1] * c[0]);
    }

private:
    static void checkRow(int row) {
        if (row < 0 || row > 2) {
            throw data::invalid("QELMatrix3", "operator[]",
                                "Index (" + std::to_string(row) + ") out of range 0..2",
                                argumentError);
        }
    }

    T values_[9] = {};
};

} // namespace qel

#endif
