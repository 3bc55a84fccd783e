#ifndef QEL_TENSOR_BLOCKFORMULAS_H
#define QEL_TENSOR_BLOCKFORMULAS_H

/// @file
/// The formulas over the points of a block, on the vector unit in use. Gradients of floats give the
/// bits of TensorEigenizer.

#include <cmath>
#include <cstddef>

#include "platform/FloatBits.h"
#include "platform/VectorDispatch.h"
#include "platform/VectorUnit.h"
#include "tensor/DoubleRoots.h"
#include "tensor/FieldMemory.h"
#include "tensor/FieldOperations.h"
#include "tensor/GradientBlock.h"
#include "tensor/PointFormulas.h"

namespace qel {

// -- Formulas that TensorEigenizer does not have, computed in double ----

struct QCriterion {
    template <typename Number>
    QEL_KERNEL static Number at(const BasicGradient<Number>& gradient) {
        const WideGradient t = widened(gradient);
        return static_cast<Number>(-0.5 * (t.t11 * t.t11 + t.t22 * t.t22 + t.t33 * t.t33) -
                                   (t.t12 * t.t21 + t.t13 * t.t31 + t.t23 * t.t32));
    }
};

struct VorticityMagnitude {
    template <typename Number>
    QEL_KERNEL static Number at(const BasicGradient<Number>& gradient) {
        return static_cast<Number>(std::sqrt(square(Vorticity::at(widened(gradient)))));
    }
};

/// sqrt(2 S:S)
struct StrainMagnitude {
    template <typename Number>
    QEL_KERNEL static Number at(const BasicGradient<Number>& gradient) {
        const WideGradient t = widened(gradient);
        const WideTriple diagonal = {t.t11, t.t22, t.t33};
        const WideTriple shear = {t.t23 + t.t32, t.t13 + t.t31, t.t12 + t.t21};
        return static_cast<Number>(std::sqrt(2.0 * square(diagonal) + square(shear)));
    }
};

/// |T|^2, the sum of the squares of the elements.
struct SquaredNorm {
    template <typename Number>
    QEL_KERNEL static double at(const BasicGradient<Number>& gradient) {
        const WideGradient t = widened(gradient);
        return square({t.t11, t.t12, t.t13}) + square({t.t21, t.t22, t.t23}) +
               square({t.t31, t.t32, t.t33});
    }
};

struct DoubleDiscriminant {
    QEL_KERNEL static double at(const WideGradient& t) {
        return characteristicCubic<Reciprocal>(t).discriminant;
    }
};

struct DoubleSwirlAnalysis {
    QEL_KERNEL static DoubleSwirl at(const WideGradient& t) {
        return doubleSwirlOf(characteristicCubic<Reciprocal>(t));
    }
};

// -- Over a block ----

template <typename Number>
struct SwirlColumns {
    Column<Number> strength, eigenvalue;

    QEL_KERNEL void set(std::size_t k, const DoubleSwirl& swirl) {
        strength[k] = swirl.strength;
        eigenvalue[k] = swirl.realEigenvalue;
    }
};

template <typename Formula>
struct FormulaKernel {
    template <typename Number, typename Columns, typename... Inputs>
    QEL_KERNEL static void run(const BasicGradientBlock<Number>* t, std::size_t count,
                               Columns* result, const Inputs*... inputs) {
        Columns values; // shares memory with nothing
        for (std::size_t k = 0; k < count; ++k) {
            values.set(k, Formula::at(t->at(k), (*inputs)[k]...));
        }
        *result = values;
    }
};

/// result = the formula at each of the first points of a block.
template <typename Formula, typename Number, typename Columns, typename... Inputs>
void computeFormula(const BasicGradientBlock<Number>& t, std::size_t count, Columns& result,
                    const Inputs&... inputs) {
    onVectorUnit<FormulaKernel<Formula>>(&t, count, &result, &inputs...);
}

inline void computeDiscriminant(const GradientBlock& t, std::size_t count, Column<float>& result) {
    compute<Discriminant>(count, Elements<float>{result.values}, BlockPoints{&t});
}
inline void computeDiscriminant(const BasicGradientBlock<double>& t, std::size_t count,
                                Column<double>& result) {
    computeFormula<DoubleDiscriminant>(t, count, result);
}

inline void computeLambda2(const GradientBlock& t, std::size_t count, Column<float>& result) {
    compute<SecondEigenvalue>(count, Elements<float>{result.values}, BlockPoints{&t});
}
inline void computeLambda2(const BasicGradientBlock<double>& t, std::size_t count,
                           Column<double>& result) {
    computeFormula<DoubleLambda2>(t, count, result);
}

inline void computeSwirl(const GradientBlock& t, std::size_t count, SwirlColumns<float>& result) {
    const SwirlValues<Elements<float>> out = {{result.strength.values}, {result.eigenvalue.values}};
    compute<SwirlAnalysis>(count, out, BlockPoints{&t});
}
inline void computeSwirl(const BasicGradientBlock<double>& t, std::size_t count,
                         SwirlColumns<double>& result) {
    computeFormula<DoubleSwirlAnalysis>(t, count, result);
}

struct RealEigenvector {
    template <typename Number>
    QEL_KERNEL static BasicTriple<Number> at(const BasicGradient<Number>& t, Number eigenvalue) {
        return realEigenvector(t, eigenvalue);
    }
};

struct SwirlNormal {
    template <typename Number>
    QEL_KERNEL static BasicTriple<Number> at(const BasicGradient<Number>& t, Number eigenvalue,
                                             Number strength) {
        return swirlPlaneNormal(t, eigenvalue, strength);
    }
};

// -- Scaling ----

/// Divides each gradient by the power of two of its largest element, or its fourth, and sets
/// `inverse` to what makes up for it. A gradient that is not finite is left as it is, one of
/// denormal numbers comes as near to 1 as a power of two brings it.
struct ScaleKernel {
    template <typename Number>
    QEL_KERNEL static void run(BasicGradientBlock<Number>* t, std::size_t count,
                               Column<Number>* inverse) {
        Column<Number> factors; // shares memory with nothing
        using Bits = SignedBits<Number>;
        constexpr int kDigits = sizeof(Number) == sizeof(float) ? 23 : 52;
        constexpr Bits kMaxExponent = sizeof(Number) == sizeof(float) ? 255 : 2047;
        for (std::size_t k = 0; k < count; ++k) {
            const BasicGradient<Number> g = t->at(k);
            const Bits largest = largestOf(largestOf(sizeOf(g.t11), sizeOf(g.t12), sizeOf(g.t13)),
                                           largestOf(sizeOf(g.t21), sizeOf(g.t22), sizeOf(g.t23)),
                                           largestOf(sizeOf(g.t31), sizeOf(g.t32), sizeOf(g.t33)));
            const Bits exponent = largest >> kDigits;
            const Bits raised = exponent > 2 ? exponent : 2;
            const Bits used = exponent == kMaxExponent ? (kMaxExponent + 1) / 2 : raised;
            factors[k] = numberOf<Number>((kMaxExponent - used) << kDigits);
            (*inverse)[k] = numberOf<Number>((used - 1) << kDigits);
        }
        for (std::size_t k = 0; k < count; ++k) {
            const BasicGradient<Number> g = t->at(k);
            const Number factor = factors[k];
            t->set(k,
                   {g.t11 * factor, g.t12 * factor, g.t13 * factor, g.t21 * factor, g.t22 * factor,
                    g.t23 * factor, g.t31 * factor, g.t32 * factor, g.t33 * factor});
        }
    }

private:
    // The bits of the size have its order.
    template <typename Number>
    QEL_KERNEL static SignedBits<Number> sizeOf(Number value) {
        return signedBitsOf(std::fabs(value));
    }
    template <typename Bits>
    QEL_KERNEL static Bits largestOf(Bits a, Bits b, Bits c) {
        const Bits larger = a > b ? a : b;
        return larger > c ? larger : c;
    }
};

} // namespace qel

#endif
