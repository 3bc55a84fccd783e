#ifndef QEL_VECTOR_H
#define QEL_VECTOR_H

/// @file
/// A vector of space.

#include <iosfwd>

#include <qel/Export.h>

namespace qel {

/// A vector of space in double precision; zero when built.
///
///     Vector v(1.0, 2.0, 2.0);
///     v.normalize();                        // (1/3, 2/3, 2/3)
///     const Vector n = Vector::cross(v, Vector(0.0, 0.0, 1.0));
///
/// Nothing here throws: degenerate input gives what IEEE arithmetic gives. Const members may be
/// called on one object from many threads.
class QEL_API Vector {
public:
    double x = 0.0;
    double y = 0.0;
    double z = 0.0;

    // -- Building and reading ----

    constexpr Vector() = default;
    constexpr Vector(double xValue, double yValue, double zValue)
        : x(xValue), y(yValue), z(zValue) {}

    void Set(double xValue, double yValue, double zValue);
    constexpr double getX() const { return x; }
    constexpr double getY() const { return y; }
    constexpr double getZ() const { return z; }

    // -- Length and direction ----

    /// sqrt(x*x + y*y + z*z)
    double length() const;
    /// Divides by the length. A zero vector stays as it is.
    void normalize();
    /// (-y, x, z): the x-y part turned counter-clockwise by a right angle. Doublet::normal turns
    /// the other way.
    Vector perp() const;

    // -- Products ----

    /// Dot product.
    double operator*(const Vector& o) const;
    /// Right-handed cross product, a x b.
    static Vector cross(const Vector& a, const Vector& b);

    // -- Arithmetic, component by component ----

    Vector operator*(double factor) const;
    Vector operator+(const Vector& o) const;
    Vector operator-(const Vector& o) const;
    Vector operator-() const;

    Vector& operator*=(double factor);
    /// A zero divisor is not refused: it gives infinities and NaNs.
    Vector& operator/=(double divisor);
    Vector& operator+=(const Vector& o);
    Vector& operator-=(const Vector& o);
};

/// Writes (x, y, z) with the stream's formatting.
QEL_API std::ostream& operator<<(std::ostream& os, const Vector& v);

} // namespace qel

#endif
