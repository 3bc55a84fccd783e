#ifndef QEL_TRIPLETBASE_H
#define QEL_TRIPLETBASE_H

/// @file
/// The point and vector type of the library.

#include <cmath>
#include <limits>
#include <ostream>
#include <string>
#include <type_traits>

#include <qel/QELError.h>
#include <qel/QELException.h>

namespace qel {

/// A point or vector of space: three components of type float or double, nothing else, so that an
/// array of triplets is one run of numbers.
///
///     TripletBase<double> p(3.0, 0.0, 4.0);
///     p.normalize(); // (0.6, 0, 0.8)
///
/// A component that equals the largest finite value of T is undefined, and so is a triplet that
/// has one. A NaN is an ordinary value. Scalars are double: a float triplet is scaled in double
/// and rounded, which for a float factor is the float product or quotient.
///
/// Const members may be called on one triplet from many threads.
template <typename T>
class TripletBase {
    static_assert(std::is_same<T, float>::value || std::is_same<T, double>::value,
                  "a triplet holds floats or doubles");

public:
    T x = T(0);
    T y = T(0);
    T z = T(0);

    // -- Building ----

    constexpr TripletBase() = default;
    constexpr TripletBase(T xValue, T yValue, T zValue) : x(xValue), y(yValue), z(zValue) {}

    /// Widens or narrows component by component.
    template <typename U, typename = std::enable_if_t<!std::is_same<T, U>::value>>
    constexpr explicit TripletBase(const TripletBase<U>& other)
        : x(static_cast<T>(other.x)), y(static_cast<T>(other.y)), z(static_cast<T>(other.z)) {}

    // -- Components ----

    /// Component i: 0 is x, 1 is y, 2 is z.
    /// @throws data::invalid  for any other i
    T& getRef(int i) { return const_cast<T&>(component(i, "getRef")); }
    const T& getRef(int i) const { return component(i, "getRef"); }
    T& operator[](int i) { return const_cast<T&>(component(i, "operator[]")); }
    const T& operator[](int i) const { return component(i, "operator[]"); }

    /// True if any component is the undefined marker.
    constexpr bool isUndefined() const {
        return x == undefinedMarker() || y == undefinedMarker() || z == undefinedMarker();
    }

    // -- Length ----

    /// Euclidean norm, sqrt(x*x + y*y + z*z). The length of an undefined triplet is the largest
    /// finite float, also for doubles: large, but finite and comparable.
    T length() const {
        return isUndefined() ? undefinedLength() : std::sqrt(x * x + y * y + z * z);
    }

    /// Divides the triplet by its length. A zero triplet stays as it is; an undefined one is
    /// divided by the largest finite float.
    void normalize() {
        const T divisor = isUndefined() ? undefinedLength() : std::sqrt(y * y + x * x + z * z);
        if (divisor != T(0)) {
            *this /= static_cast<double>(divisor);
        }
    }

    // -- Products ----

    constexpr T dot(const TripletBase& o) const { return x * o.x + y * o.y + z * o.z; }

    /// Right-handed cross product, this x o.
    constexpr TripletBase cross(const TripletBase& o) const {
        return {y * o.z - z * o.y, z * o.x - x * o.z, x * o.y - y * o.x};
    }

    // -- Arithmetic, component by component ----

    constexpr TripletBase operator-() const { return {-x, -y, -z}; }

    constexpr TripletBase& operator+=(const TripletBase& o) {
        x += o.x;
        y += o.y;
        z += o.z;
        return *this;
    }
    constexpr TripletBase& operator-=(const TripletBase& o) {
        x -= o.x;
        y -= o.y;
        z -= o.z;
        return *this;
    }
    constexpr TripletBase& operator*=(double factor) {
        x = static_cast<T>(x * factor);
        y = static_cast<T>(y * factor);
        z = static_cast<T>(z * factor);
        return *this;
    }

    /// @throws data::invalid  if the divisor is exactly zero; the triplet is unchanged then
    TripletBase& operator/=(double divisor) {
        refuseZero(divisor, "operator/=");
        return *this = dividedBy(divisor);
    }
    /// @throws data::invalid  if the divisor is exactly zero
    TripletBase operator/(double divisor) const {
        refuseZero(divisor, "operator/");
        return dividedBy(divisor);
    }

    constexpr TripletBase operator*(double factor) const {
        TripletBase scaled = *this;
        return scaled *= factor;
    }
    friend constexpr TripletBase operator*(double factor, const TripletBase& t) {
        return t * factor;
    }
    constexpr TripletBase operator+(const TripletBase& o) const {
        return {x + o.x, y + o.y, z + o.z};
    }
    constexpr TripletBase operator-(const TripletBase& o) const {
        return {x - o.x, y - o.y, z - o.z};
    }

    /// Exact comparison; a NaN component makes two triplets differ.
    constexpr bool operator==(const TripletBase& o) const {
        return x == o.x && y == o.y && z == o.z;
    }
    constexpr bool operator!=(const TripletBase& o) const { return !(*this == o); }

    // -- Text ----

    /// Writes (x, y, z) with the stream's formatting; an undefined component reads UNDEF.
    friend std::ostream& operator<<(std::ostream& os, const TripletBase& t) {
        os << "(";
        writeComponent(os, t.x) << ", ";
        writeComponent(os, t.y) << ", ";
        return writeComponent(os, t.z) << ")";
    }

private:
    static constexpr T undefinedMarker() { return std::numeric_limits<T>::max(); }
    static constexpr T undefinedLength() { return std::numeric_limits<float>::max(); }

    const T& component(int i, const char* methodName) const {
        switch (i) {
        case 0:
            return x;
        case 1:
            return y;
        case 2:
            return z;
        default:
            throw data::invalid("Triplet", methodName,
                                "Index (" + std::to_string(i) + ") out of range 0..2",
                                argumentError);
        }
    }

    constexpr TripletBase dividedBy(double divisor) const {
        return {static_cast<T>(x / divisor), static_cast<T>(y / divisor),
                static_cast<T>(z / divisor)};
    }

    static void refuseZero(double divisor, const char* methodName) {
        if (divisor == 0.0) {
            throw data::invalid("Triplet", methodName,
                                UserMsg("Attempt to divide by zero.", nullptr), argumentError);
        }
    }

    static std::ostream& writeComponent(std::ostream& os, T component) {
        return component == undefinedMarker() ? os << "UNDEF" : os << component;
    }
};

static_assert(sizeof(TripletBase<float>) == 3 * sizeof(float), "an array is one run of floats");
static_assert(sizeof(TripletBase<double>) == 3 * sizeof(double), "an array is one run of doubles");

} // namespace qel

#endif
