// The gradients are differentiated by hand from the velocities that stand beside them.

#include "accuracy/Flows.h"

#include <cmath>
#include <cstddef>

namespace qel_accuracy {
namespace {

constexpr Real kPi = 3.141592653589793238462643383279502884L;

// Places in the unit cube that fill it evenly (the additive recurrence of the plastic number in
// three dimensions).
std::vector<std::array<Real, 3>> places() {
    constexpr std::size_t kCount = 500;
    constexpr std::array<Real, 3> kSteps = {0.8191725133961645L, 0.6710436067037893L,
                                            0.5497004779019703L};
    std::vector<std::array<Real, 3>> all(kCount);
    for (std::size_t i = 0; i < kCount; ++i) {
        for (std::size_t d = 0; d < 3; ++d) {
            const Real at = 0.5L + static_cast<Real>(i + 1) * kSteps[d];
            all[i][d] = at - std::floor(at);
        }
    }
    return all;
}

template <typename GradientAt>
std::vector<Gradient> everywhere(Real low, Real high, const GradientAt& gradientAt) {
    std::vector<Gradient> gradients;
    for (const std::array<Real, 3>& p : places()) {
        gradients.push_back(gradientAt(low + (high - low) * p[0], low + (high - low) * p[1],
                                       low + (high - low) * p[2]));
    }
    return gradients;
}

// u = w x r with |w| = 1.
Gradient rigidRotation(Real x, Real y, Real z) {
    const Real length = std::sqrt(x * x + y * y + z * z);
    const Real a = x / length, b = y / length, c = z / length;
    return {0, -c, b, c, 0, -a, -b, a, 0};
}

// Strain by a along x and -a along y, seen in axes that are turned about z.
Gradient planeStrain(Real a, Real turn, Real) {
    const Real c = a * std::cos(2 * kPi * turn), s = a * std::sin(2 * kPi * turn);
    return {c, s, 0, s, -c, 0, 0, 0, 0};
}

// u = a y, in axes turned about z: all eigenvalues are zero.
Gradient simpleShear(Real a, Real turn, Real) {
    const Real c = std::cos(2 * kPi * turn), s = std::sin(2 * kPi * turn);
    return {-a * c * s, a * c * c, 0, -a * s * s, a * c * s, 0, 0, 0, 0};
}

// u = cos x sin y sin z, v = -sin x cos y sin z, w = 0.
Gradient taylorGreen(Real x, Real y, Real z) {
    const Real sx = std::sin(x), cx = std::cos(x), sy = std::sin(y), cy = std::cos(y);
    const Real sz = std::sin(z), cz = std::cos(z);
    return {-sx * sy * sz,
            cx * cy * sz,
            cx * sy * cz, //
            -cx * cy * sz,
            sx * sy * sz,
            -sx * cy * cz, //
            0,
            0,
            0};
}

// u = sin z + cos y, v = sin x + cos z, w = sin y + cos x: Arnold, Beltrami, Childress.
Gradient abc(Real x, Real y, Real z) {
    return {0, -std::sin(y), std::cos(z), std::cos(x), 0, -std::sin(z), -std::sin(x), std::cos(y),
            0};
}

// u_theta = (1 - exp(-r^2)) / r about z, u_r = -strain r, u_z = 2 strain z.
Gradient vortex(Real strain, Real x, Real y) {
    const Real r2 = x * x + y * y;
    const Real decay = std::exp(-r2);
    const Real turn = -std::expm1(-r2) / r2;    // u_theta / r
    const Real slope = 2 * (decay - turn) / r2; // d(turn)/dr / r
    return {-y * x * slope - strain,
            -turn - y * y * slope,
            0,
            turn + x * x * slope,
            x * y * slope - strain,
            0,
            0,
            0,
            2 * strain};
}

Gradient lambOseen(Real x, Real y, Real) {
    return vortex(0, x, y);
}

Gradient burgers(Real x, Real y, Real) {
    return vortex(0.05L, x, y);
}

// Hill's spherical vortex of radius 1, inside: with s^2 = x^2 + y^2, u_s = s z and
// u_z = 1 - z^2 - 2 s^2.
Gradient hill(Real x, Real y, Real z) {
    return {z, 0, x, 0, z, y, -4 * x, -4 * y, -2 * z};
}

// Strain with two eigenvalues that differ by 1e-4, turned about z, and a weak rotation.
Gradient nearEqual(Real x, Real turn, Real z) {
    const Real gap = 1e-4L * x;
    const Real c = std::cos(2 * kPi * turn), s = std::sin(2 * kPi * turn);
    const Real rotation = 1e-2L * z;
    const Real xy = -gap * c * s;
    return {1 + gap * s * s,
            xy - rotation,
            0, //
            xy + rotation,
            1 + gap * c * c,
            0, //
            0,
            0,
            -2 - gap};
}

std::vector<Flow> makeFlows() {
    return {
        {"rigid rotation", everywhere(0.1L, 1.0L, rigidRotation)},
        {"plane strain", everywhere(0.1L, 1.0L, planeStrain)},
        {"simple shear", everywhere(0.1L, 1.0L, simpleShear)},
        {"Taylor-Green vortex", everywhere(0.0L, 2 * kPi, taylorGreen)},
        {"ABC flow", everywhere(0.0L, 2 * kPi, abc)},
        {"Lamb-Oseen vortex", everywhere(-1.7L, 1.8L, lambOseen)},
        {"Burgers vortex", everywhere(-1.7L, 1.8L, burgers)},
        {"Hill's vortex", everywhere(-0.55L, 0.57L, hill)},
        {"near-equal eigenvalues", everywhere(0.0L, 1.0L, nearEqual)},
    };
}

} // namespace

const std::vector<Flow>& flows() {
    static const std::vector<Flow> all = makeFlows();
    return all;
}

} // namespace qel_accuracy
