#ifndef vtkQELVortexFields_h
#define vtkQELVortexFields_h

/// @file
/// The fields that vtkQELVortexFilter computes, with their names.

#include <array>
#include <string>

namespace vtkQELVortex {

/// T is the velocity gradient, T_ij = du_i/dx_j. l is the real eigenvalue and e its unit
/// eigenvector, s the imaginary part of the complex pair of eigenvalues (the swirl strength), n the
/// unit normal of the plane of swirl, w the vorticity; e and n never point against w.
enum Field : unsigned {
    Q = 0,              ///< second invariant, ((tr T)^2 - tr(T^2)) / 2
    QCriterion,         ///< -tr(T^2) / 2, what vtkGradientFilter calls Q-criterion
    Divergence,         ///< tr T
    Discriminant,       ///< of the characteristic cubic; positive where a pair is complex
    Vorticity,          ///< curl of the velocity
    Helicity,           ///< vorticity times velocity
    Lambda2,            ///< middle eigenvalue of S^2 + W^2
    SwirlStrength,      ///< s, 0 where all eigenvalues are real
    RealEigenvalue,     ///< l; of use only where the swirl strength is positive
    RealEigenvector,    ///< s e
    SwirlNormal,        ///< s n
    SwirlStretchRate,   ///< s (e . n)
    RealEigenHelicity,  ///< e . w
    NormalEigenHelicity ///< n . w
};

constexpr int kFieldCount = 14;

struct FieldInfo {
    Field field;
    const char* key;     ///< name on a command line
    const char* array;   ///< name of the array that the filter adds
    int components;      ///< 1 or 3
    int degree;          ///< a gradient c times as large gives a value c^degree times as large
    const char* formula; ///< one line for people
    const char* unit;    ///< with t the unit of time, L that of length
};

/// All fields, in the order of the enumeration.
const std::array<FieldInfo, kFieldCount>& fields();

/// The entry of a field.
const FieldInfo& info(Field field);

/// The field with this key or array name, null if there is none.
const FieldInfo* findField(const std::string& name);

} // namespace vtkQELVortex

#endif
