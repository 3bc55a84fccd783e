#ifndef QEL_TENSOREIGENIZER_H
#define QEL_TENSOREIGENIZER_H

/// @file
/// Vortex quantities of the velocity-gradient tensor.

#include <cstddef>

#include <qel/Export.h>
#include <qel/FloatQELVector.h>
#include <qel/TripletQELVector.h>

namespace qel {

/// Quantities of a 3x3 tensor T, point by point over a field of n points.
///
/// T is given by its rows: row i holds the gradient of velocity component i, so T12 = du/dy.
///
///     TensorEigenizer gradient(velocity.size(), gradU, gradV, gradW);
///     FloatQELVectorConcrete swirl, realEigenvalue;
///     gradient.getSwirlStrength(swirl, realEigenvalue);
///     gradient.getEVecReal(swirl, realEigenvalue, vortexAxes);
///
/// Holds references to the rows, which must outlive it and hold n triplets at least; an array that
/// is too short ends the process. Each operation resizes its output to n, then stores the points in
/// order through the output's operator[]; an output may be one of the inputs or share memory with
/// it. Every operation is O(n) and needs no memory but the output's. Units: those of T (1/time for
/// a velocity gradient) to the power stated.
///
/// Nothing here throws but what resizing an output throws (no memory), and a
/// FloatQELVectorComponent of a component that does not exist (data::invalid).
///
/// Degenerate input: undefined values are computed with as the numbers they are; NaN and infinite
/// entries give NaN or an infinity at their point alone. Lambda-2 and the directions of the
/// eigen-analysis compare a quantity of the fourth power of T with 1e-36: a tensor whose entries
/// are all below about 1e-9 counts as a multiple of the identity, or as one that leaves the
/// direction undetermined. Where gradients are that small, scale them first.
///
/// Threads: all members are const and may be called on one object from many threads, each with
/// arrays of its own for what it writes, and of its own for velocity, swirl strength and real
/// eigenvalue, whose statistics expire.
class QEL_API TensorEigenizer {
public:
    TensorEigenizer(std::size_t n, const TripletQELVector& row1, const TripletQELVector& row2,
                    const TripletQELVector& row3);
    TensorEigenizer(const TensorEigenizer&);
    /// Refers to the other's rows from now on.
    TensorEigenizer& operator=(const TensorEigenizer&);
    ~TensorEigenizer();

    // -- Invariants and products ----

    /// Second invariant Q, the sum of the principal 2x2 minors (Hunt, Wray and Moin 1988). Single
    /// precision; unit of T squared.
    void getInvariantQ(FloatQELVector& out) const;
    /// T22 + T11 + T33, single precision.
    void getDivergence(FloatQELVector& out) const;
    /// Discriminant p^3/27 + h^2 of the characteristic cubic (Chong, Perry and Cantwell 1990);
    /// positive where a pair of eigenvalues is complex. In double, rounded: beyond the range of
    /// float where entries exceed about 2.6e6 (infinite) or stay below 3e-8 (0). Unit of T to the
    /// sixth power.
    void getDiscrim(FloatQELVector& out) const;
    /// Curl of the velocity, single precision.
    void getVorticity(TripletQELVector& out) const;
    /// Vorticity times velocity, single precision. The statistics of the velocity expire.
    /// @param velocity  at least n triplets
    void getHelicity(TripletQELVector& velocity, FloatQELVector& out) const;
    /// Middle eigenvalue of M = S^2 + W^2, S and W the symmetric and antisymmetric parts of T
    /// (lambda-2 of Jeong and Hussain 1995; trigonometric solution of the cubic, in double). Where
    /// the spread of M, 3/2 of the squared norm of its part without trace, is below 1e-36 (entries
    /// of T below about 1e-9), the middle one of its diagonal. Unit of T squared.
    void get2ndEValSymmTT(FloatQELVector& out) const;

    // -- Eigenvalues and what is built on them ----

    /// Imaginary part of the complex pair of eigenvalues (Zhou et al. 1999), 0 where there is none,
    /// and the real eigenvalue (Cardano's formula, in double). Where all three eigenvalues are
    /// real, the second output is the formula for a repeated one: of use only where the swirl
    /// strength is positive. If both outputs are one array, it holds the eigenvalue.
    void getSwirlStrength(FloatQELVector& swirl, FloatQELVector& realEigenvalue) const;

    // These take both outputs of getSwirlStrength(), with n values at least, whose statistics
    // expire. Where the swirl strength is not positive (or is NaN) the result is 0, and so it is
    // where the direction is undetermined: see realeigenvec() and swirlnormal().

    /// Cosine of the angle between real eigenvector and swirl normal, times the swirl strength.
    /// Single precision.
    void getSwirlStretchRate(FloatQELVector& swirl, FloatQELVector& realEigenvalue,
                             FloatQELVector& out) const;
    /// Real eigenvector times vorticity, single precision. Unit of T.
    void getRealEigenHelicity(FloatQELVector& swirl, FloatQELVector& realEigenvalue,
                              FloatQELVector& out) const;
    /// Swirl normal times vorticity, single precision. Unit of T.
    void getNormEigenHelicity(FloatQELVector& swirl, FloatQELVector& realEigenvalue,
                              FloatQELVector& out) const;
    /// Swirl normal, scaled by the swirl strength.
    void getSwirlNormal(FloatQELVector& swirl, FloatQELVector& realEigenvalue,
                        TripletQELVector& out) const;
    /// Real eigenvector, scaled by the swirl strength.
    void getEVecReal(FloatQELVector& swirl, FloatQELVector& realEigenvalue,
                     TripletQELVector& out) const;

    // -- One point ----

    /// Unit eigenvector of the tensor with these rows for a real eigenvalue, never pointing against
    /// the vorticity. Zero if the tensor leaves it undetermined: if no cross product of two rows of
    /// T - l I is longer than 1e-18 (entries below about 1e-9, or a repeated eigenvalue with more
    /// than one eigenvector).
    TripletBase<float> realeigenvec(const TripletBase<float>& row1, const TripletBase<float>& row2,
                                    const TripletBase<float>& row3, float realEigenvalue) const;
    /// Unit normal of the plane of swirl, spanned by the real and imaginary parts of the complex
    /// eigenvector, never pointing against the vorticity. Zero if no row of
    /// T T - 2 lcr T + (lci^2 + lcr^2) I is longer than 1e-18 (entries below about 1e-9).
    TripletBase<float> swirlnormal(const TripletBase<float>& row1, const TripletBase<float>& row2,
                                   const TripletBase<float>& row3, float realEigenvalue,
                                   float swirlStrength) const;

private:
    std::size_t n_;
    const TripletQELVector* row1_;
    const TripletQELVector* row2_;
    const TripletQELVector* row3_;
};

} // namespace qel

#endif
