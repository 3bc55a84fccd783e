#ifndef QEL_GRADIENTANALYSIS_H
#define QEL_GRADIENTANALYSIS_H

/// @file
/// Vortex quantities of a whole field of velocity gradients in one call. Part of the batch
/// interface (docs/batch-interface.md).

#include <cstddef>

#include <qel/Export.h>
#include <qel/Progress.h>
#include <qel/StridedView.h>

namespace qel {

/// Where analyzeGradients writes. A view of nothing is not written, and what only it needs is not
/// computed; any other has the size of the field.
///
/// T is float or double. T_ij is the derivative of velocity component i along axis j; S and W are
/// the symmetric and antisymmetric parts of T; omega is the vorticity, the curl of the velocity.
/// Units are those of T (1/time) to the power stated.
template <typename T>
struct GradientFields {
    /// Second invariant, the sum of the principal 2x2 minors (Hunt, Wray and Moin 1988); as
    /// TensorEigenizer::getInvariantQ. Power 2.
    ScalarView<T> invariantQ;
    /// (|W|^2 - |S|^2) / 2 = -tr(T^2) / 2, which equals the second invariant where the divergence
    /// is zero, and is what some programs call Q. As this and the magnitudes below are not of
    /// TensorEigenizer, they are computed in double for float gradients too. Power 2.
    ScalarView<T> qCriterion;
    /// tr T; as TensorEigenizer::getDivergence. Power 1.
    ScalarView<T> divergence;
    /// Discriminant of the characteristic cubic (Chong, Perry and Cantwell 1990), positive where a
    /// pair of eigenvalues is complex; as TensorEigenizer::getDiscrim. Power 6.
    ScalarView<T> discriminant;
    /// Middle eigenvalue of S^2 + W^2 (Jeong and Hussain 1995); as
    /// TensorEigenizer::get2ndEValSymmTT. Power 2.
    ScalarView<T> lambda2;
    /// Imaginary part of the complex pair of eigenvalues (Zhou et al. 1999), 0 where there is none;
    /// and the real eigenvalue, which has a meaning where there is a pair. As
    /// TensorEigenizer::getSwirlStrength. Power 1.
    ScalarView<T> swirlStrength;
    ScalarView<T> realEigenvalue;
    /// Curl of the velocity, as TensorEigenizer::getVorticity, and its length. Power 1.
    TripletView<T> vorticity;
    ScalarView<T> vorticityMagnitude;
    /// sqrt(2 S:S), the shear rate of simple shear. Power 1.
    ScalarView<T> strainMagnitude;

    // Where the swirl strength is positive, else 0; as the members of TensorEigenizer.
    TripletView<T> realEigenvector;    ///< getEVecReal. Power 1.
    TripletView<T> swirlNormal;        ///< getSwirlNormal. Power 1.
    ScalarView<T> swirlStretchRate;    ///< getSwirlStretchRate. Power 1.
    ScalarView<T> realEigenHelicity;   ///< getRealEigenHelicity. Power 1.
    ScalarView<T> normalEigenHelicity; ///< getNormEigenHelicity. Power 1.

    /// Vorticity times velocity; needs the velocity. As TensorEigenizer::getHelicity. Power 1,
    /// times the unit of the velocity.
    ScalarView<T> helicity;
};

/// What analyzeGradients does beyond the formulas. All off, float gradients give the bits of
/// TensorEigenizer.
struct GradientOptions {
    /// A share f of |T|^2, the sum of the squares of the nine elements. lambda2 is set to 0 where
    /// it is smaller than f |T|^2, the swirl strength where its square is, and the discriminant
    /// where it is smaller than (f |T|^2)^3. What is defined where the swirl strength is positive
    /// follows it. 0 is off.
    ///
    /// At a wall, where the exact values are 0, rounding alone makes vortices of two points in
    /// three. 1e-6 removes these from gradients computed in float, 1e-14 from those in double.
    double noiseFloor = 0.0;

    /// What the swirl strength is where the formula of TensorEigenizer takes the root of a number
    /// that rounding has made negative; only float gradients meet that.
    enum class NotANumber {
        keep,           ///< NaN
        zeroNegligible, ///< 0 where the exact value is at most 1e-5 |T|, else NaN
    };
    NotANumber notANumber = NotANumber::keep;

    /// Scales each gradient of floats by a power of two that brings its largest element near 1, and
    /// the results back: gradients below 1e-9 keep their swirl strength and lambda2, and a result
    /// beyond the range of float is an infinity of the right sign. Gradients of doubles are always
    /// scaled.
    bool isScaled = false;

    Progress progress;
};

/// What analyzeGradients did.
struct GradientReport {
    std::size_t analyzed = 0;   ///< points written: all, unless progress stopped the call
    std::size_t belowFloor = 0; ///< points at which the noise floor set something to 0
    std::size_t madeZero = 0;   ///< points at which a swirl strength that was NaN became 0
};

/// Analyses velocity gradients, in one pass over them.
///
///     GradientFields<double> out;
///     out.invariantQ = q;                // std::vector<double>, sized by the caller
///     out.lambda2 = lambda2;
///     analyzeGradients(TensorView<const double>(&gradU[0][0], n), out); // double gradU[n][9]
///
/// Gradients that lie nine by nine (each point's elements side by side), or for floats in three
/// arrays of rows, are the fast layouts; any other is gathered. Float gradients are analysed in the
/// precision that TensorEigenizer states. Double ones are analysed in double by the same formulas
/// but for lambda2 and the swirl strength, whose roots are taken so that nothing cancels
/// (docs/batch-interface.md has the errors). Points are independent: a field may be analysed in
/// parts, on several threads, with the same bits.
///
/// Stopped by the progress function, it has written the first `analyzed` points. O(n), no
/// allocation.
///
/// @throws data::invalid  (class "GradientAnalysis", method "analyzeGradients") before anything is
///     written: an output of another size than the gradients; an output whose memory overlaps an
///     input, itself or another output; helicity without a velocity, or velocities of another
///     number; a noise floor that is negative or NaN
QEL_API GradientReport analyzeGradients(const TensorView<const float>& gradients,
                                        const GradientFields<float>& out,
                                        const GradientOptions& options = {});
QEL_API GradientReport analyzeGradients(const TensorView<const double>& gradients,
                                        const GradientFields<double>& out,
                                        const GradientOptions& options = {});

/// The same with the velocity at each point, which the helicity needs.
QEL_API GradientReport analyzeGradients(const TensorView<const float>& gradients,
                                        const TripletView<const float>& velocity,
                                        const GradientFields<float>& out,
                                        const GradientOptions& options = {});
QEL_API GradientReport analyzeGradients(const TensorView<const double>& gradients,
                                        const TripletView<const double>& velocity,
                                        const GradientFields<double>& out,
                                        const GradientOptions& options = {});

} // namespace qel

#endif
