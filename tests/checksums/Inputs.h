#ifndef QEL_TESTS_CHECKSUMS_INPUTS_H
#define QEL_TESTS_CHECKSUMS_INPUTS_H

// Inputs that are the same bits everywhere: from a generator of our own, since the standard
// library's distributions differ between its makers, and from the four operations alone, since the
// C library's functions differ between its versions.

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include <qel/TripletBase.h>

namespace qel_checksums {

using Point = qel::TripletBase<double>;
using FloatPoint = qel::TripletBase<float>;
using Points = std::vector<Point>;
using FloatPoints = std::vector<FloatPoint>;

/// SplitMix64 (Steele, Lea and Flood 2014).
class Random {
public:
    explicit Random(std::uint64_t seed) : state_(seed) {}

    std::uint64_t bits();
    /// Evenly spread over [from, to).
    double between(double from, double to);
    float floatBetween(float from, float to);
    /// 0 to count - 1.
    std::size_t index(std::size_t count);
    bool chance(double probability) { return between(0.0, 1.0) < probability; }

    Point pointBetween(double from, double to);
    FloatPoint floatPointBetween(float from, float to);

private:
    std::uint64_t state_;
};

/// A shape of curve that some operation treats in its own way.
struct CurveInput {
    const char* name;
    Points points;
};

/// Smooth, rough, crowded, repeated, on a lattice (ties), flat, tiny, huge, of two points, of many,
/// and with values that are no numbers.
const std::vector<CurveInput>& curveInputs();

/// n values between -10 and 10, a share of them undefined, zero, repeated or not finite.
std::vector<float> fieldValues(std::size_t n, std::uint64_t seed, bool withOddities);
FloatPoints fieldTriplets(std::size_t n, std::uint64_t seed, bool withOddities);

FloatPoints narrowed(const Points& points);

} // namespace qel_checksums

#endif
