// Vectors of space in double precision.

#include <qel/Vector.h>

#include <cmath>
#include <ostream>

namespace qel {

void Vector::Set(double xValue, double yValue, double zValue) {
    *this = Vector(xValue, yValue, zValue);
}

// -- Length and direction ----

double Vector::length() const {
    return std::sqrt(x * x + y * y + z * z);
}

void Vector::normalize() {
    const double len = length();
    if (len != 0.0) {
        *this /= len;
    }
}

Vector Vector::perp() const {
    return {-y, x, z};
}

// -- Products ----

double Vector::operator*(const Vector& o) const {
    return x * o.x + y * o.y + z * o.z;
}

Vector Vector::cross(const Vector& a, const Vector& b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

// -- Arithmetic ----

Vector Vector::operator*(double factor) const {
    return {x * factor, y * factor, z * factor};
}

Vector Vector::operator+(const Vector& o) const {
    return {x + o.x, y + o.y, z + o.z};
}

Vector Vector::operator-(const Vector& o) const {
    return {x - o.x, y - o.y, z - o.z};
}

Vector Vector::operator-() const {
    return {-x, -y, -z};
}

Vector& Vector::operator*=(double factor) {
    return *this = *this * factor;
}

Vector& Vector::operator/=(double divisor) {
    x /= divisor;
    y /= divisor;
    z /= divisor;
    return *this;
}

Vector& Vector::operator+=(const Vector& o) {
    return *this = *this + o;
}

Vector& Vector::operator-=(const Vector& o) {
    return *this = *this - o;
}

// -- Text ----

std::ostream& operator<<(std::ostream& os, const Vector& v) {
    return os << "(" << v.x << ", " << v.y << ", " << v.z << ")";
}

} // namespace qel
