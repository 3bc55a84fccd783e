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
        return values_[row];
    }
    const T* operator[](int row) const {
        checkRow(row);
        return values_[row];
    }

    /// Expansion along the first row, in T.
    constexpr T determinant() const {
        const auto& m = values_;
        return m[0][0] * (m[1][1] * m[2][2] - m[1][2] * m[2][1]) -
               m[0][1] * (m[1][0] * m[2][2] - m[1][2] * m[2][0]) +
               m[0][2] * (m[1][0] * m[2][1] - m[1][1] * m[2][0]);
    }

private:
    static void checkRow(int row) {
        if (row < 0 || row > 2) {
            throw data::invalid("QELMatrix3", "operator[]",
                                "Index (" + std::to_string(row) + ") out of range 0..2",
                                argumentError);
        }
    }

    T values_[3][3] = {};
};

} // namespace qel

#endif
