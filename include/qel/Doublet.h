#ifndef QEL_DOUBLET_H
#define QEL_DOUBLET_H

/// @file
/// A point or vector of the plane.

#include <iosfwd>

#include <qel/Export.h>

namespace qel {

/// A point or vector of the plane in single precision; zero when built.
///
///     Doublet d(3.0f, 4.0f);
///     d.length(); // 5
///     d.unit();   // (0.6, 0.8)
///
/// Mixed precision, which results elsewhere depend on to the last bit: sums and products of
/// components are formed in float and widened only when they are returned; a scaled component is
/// formed in double and rounded. Nothing here throws: degenerate input gives what IEEE arithmetic
/// gives. Const members may be called on one object from many threads.
class QEL_API Doublet {
public:
    float x = 0.0f;
    float y = 0.0f;

    // -- Building and reading ----

    constexpr Doublet() = default;
    constexpr Doublet(float xValue, float yValue) : x(xValue), y(yValue) {}

    constexpr float getX() const { return x; }
    constexpr float getY() const { return y; }
    void set(float xValue, float yValue);

    // -- Arithmetic in place ----

    Doublet& operator+=(const Doublet& o);
    Doublet& operator-=(const Doublet& o);
    /// Each component is scaled in double and rounded.
    Doublet& operator*=(double factor);

    // -- Comparison ----

    /// Exact; a NaN component makes two doublets differ.
    bool operator==(const Doublet& o) const;
    bool operator!=(const Doublet& o) const;

    /// True if both components are exactly zero, of either sign.
    bool isZero() const;

    // -- Length and products ----

    /// x*x + y*y, formed in float.
    double sqlength() const;
    /// The float square root of the float x*x + y*y.
    double length() const;
    /// x*o.x + y*o.y, formed in float.
    double dotProduct(const Doublet& o) const;

    // -- Directions ----

    /// (y, -x): turned clockwise by a right angle. Vector::perp turns the other way.
    Doublet normal() const;
    /// Divided by its length. An unchanged copy if the length is zero or NaN.
    Doublet unit() const;

    // -- Text ----

    /// Writes (x,y) with the stream's formatting.
    void write(std::ostream& os) const;
};

/// Scaled copy, by the rule of Doublet::operator*=.
QEL_API Doublet operator*(const Doublet& d, double factor);
QEL_API Doublet operator*(double factor, const Doublet& d);

/// Sum and difference by component, in float.
QEL_API Doublet operator+(const Doublet& a, const Doublet& b);
QEL_API Doublet operator-(const Doublet& a, const Doublet& b);

/// Writes as Doublet::write does.
QEL_API std::ostream& operator<<(std::ostream& os, const Doublet& d);

} // namespace qel

#endif
