// The table of fields: names, formulas and units.
#include "vtkQELVortexFields.h"

namespace vtkQELVortex {

const std::array<FieldInfo, kFieldCount>& fields() {
    static const std::array<FieldInfo, kFieldCount> table{{
        {Q, "q", "Q", 1, 2, "second invariant, ((tr T)^2 - tr(T^2)) / 2", "1/t^2"},
        {QCriterion, "q-criterion", "QCriterion", 1, 2, "-tr(T^2) / 2 (VTK's Q-criterion)",
         "1/t^2"},
        {Divergence, "divergence", "Divergence", 1, 1, "tr T", "1/t"},
        {Discriminant, "discriminant", "Discriminant", 1, 6,
         "p^3/27 + q^2/4 of the characteristic cubic", "1/t^6"},
        {Vorticity, "vorticity", "Vorticity", 3, 1, "w = curl u", "1/t"},
        {Helicity, "helicity", "Helicity", 1, 1, "w . u", "L/t^2"},
        {Lambda2, "lambda2", "Lambda2", 1, 2, "middle eigenvalue of S^2 + W^2", "1/t^2"},
        {SwirlStrength, "swirl", "SwirlStrength", 1, 1,
         "s, imaginary part of the complex eigenvalues of T", "1/t"},
        {RealEigenvalue, "real-eigenvalue", "RealEigenvalue", 1, 1, "real eigenvalue of T", "1/t"},
        {RealEigenvector, "real-eigenvector", "RealEigenvector", 3, 1,
         "s e, e the unit real eigenvector", "1/t"},
        {SwirlNormal, "swirl-normal", "SwirlNormal", 3, 1,
         "s n, n the unit normal of the swirl plane", "1/t"},
        {SwirlStretchRate, "swirl-stretch-rate", "SwirlStretchRate", 1, 1, "s (e . n)", "1/t"},
        {RealEigenHelicity, "real-eigen-helicity", "RealEigenHelicity", 1, 1, "e . w", "1/t"},
        {NormalEigenHelicity, "normal-eigen-helicity", "NormalEigenHelicity", 1, 1, "n . w", "1/t"},
    }};
    return table;
}

const FieldInfo& info(Field field) {
    return fields()[static_cast<std::size_t>(field)];
}

const FieldInfo* findField(const std::string& name) {
    for (const FieldInfo& candidate : fields()) {
        if (name == candidate.key || name == candidate.array) {
            return &candidate;
        }
    }
    return nullptr;
}

} // namespace vtkQELVortex
