#ifndef QEL_QELMATRIX3BASE_H
#define QEL_QELMATRIX3BASE_H

/// @file
/// The 3x3 matrix template.

#include <ostream>
#include <string>

#include <qel/QELException.h>

namespace qel {

/// A 3x3 matrix, row by row; zero when built.
///
///     QELMatrix3base<float> m;
///     m[0][0] = m[1][1] = m[2][2] = 1.0f;
///
/// Const members may be called on one object from many threads.
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

    /// Writes the rows as ((a, b, c), (d, e, f), (g, h, i)) with the stream's formatting.
    friend std::ostream& operator<<(std::ostream& os, const QELMatrix3base& m) {
        os << "(";
        for (int i = 0; i < 3; ++i) {
            const T* const row = m[i];
            os << (i == 0 ? "(" : ", (") << row[0] << ", " << row[1] << ", " << row[2] << ")";
        }
        return os << ")";
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
