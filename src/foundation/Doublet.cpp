// Points and vectors of the plane. The products of components stay in float until they are
// returned; only scaling and unit vectors compute in double.

#include <qel/Doublet.h>

#include <cmath>
#include <ostream>

namespace qel {

void Doublet::set(float xValue, float yValue) {
    x = xValue;
    y = yValue;
}

// -- Arithmetic ----

Doublet& Doublet::operator+=(const Doublet& o) {
    x += o.x;
    y += o.y;
    return *this;
}

Doublet& Doublet::operator-=(const Doublet& o) {
    x -= o.x;
    y -= o.y;
    return *this;
}

Doublet& Doublet::operator*=(double factor) {
    x = static_cast<float>(x * factor);
    y = static_cast<float>(y * factor);
    return *this;
}

Doublet operator*(const Doublet& d, double factor) {
    Doublet scaled = d;
    return scaled *= factor;
}

Doublet operator*(double factor, const Doublet& d) {
    return d * factor;
}

Doublet operator+(const Doublet& a, const Doublet& b) {
    return {a.x + b.x, a.y + b.y};
}

Doublet operator-(const Doublet& a, const Doublet& b) {
    return {a.x - b.x, a.y - b.y};
}

// -- Comparison ----

bool Doublet::operator==(const Doublet& o) const {
    return x == o.x && y == o.y;
}

bool Doublet::operator!=(const Doublet& o) const {
    return !(*this == o);
}

bool Doublet::isZero() const {
    return x == 0.0f && y == 0.0f;
}

// -- Length and products ----

double Doublet::sqlength() const {
    return x * x + y * y;
}

double Doublet::length() const {
    return std::sqrt(x * x + y * y);
}

double Doublet::dotProduct(const Doublet& o) const {
    return x * o.x + y * o.y;
}

// -- Directions ----

Doublet Doublet::normal() const {
    return {y, -x};
}

Doublet Doublet::unit() const {
    const double len = length();
    if (len > 0.0) {
        return {static_cast<float>(x / len), static_cast<float>(y / len)};
    }
    return *this;
}

// -- Text ----

void Doublet::write(std::ostream& os) const {
    os << "(" << x << "," << y << ")";
}

std::ostream& operator<<(std::ostream& os, const Doublet& d) {
    d.write(os);
    return os;
}

} // namespace qel
