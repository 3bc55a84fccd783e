#ifndef QEL_PLATFORM_VECTORUNIT_H
#define QEL_PLATFORM_VECTORUNIT_H

/// @file
/// Choice of the vector unit at run time.
///
/// One binary built for plain x86-64 runs its hot loops on the widest unit that the machine has.
/// A loop is written once as an inline function, marked QEL_KERNEL, and compiled for each unit as
/// part of a function with that unit's attribute, which is never called on a machine without the
/// unit: see VectorDispatch.h.
///
/// A lambda of such a loop is marked QEL_KERNEL_LAMBDA, behind its parameters.
///
/// Lanes compute what the scalar loop computes, in the same order and without contraction, so the
/// bits do not depend on the unit. Without the compiler's support the portable function remains.

namespace qel {

#if (defined(__GNUC__) || defined(__clang__)) && defined(__x86_64__)
#define QEL_VECTOR_UNITS 1
#define QEL_KERNEL __attribute__((always_inline)) inline
#define QEL_KERNEL_LAMBDA __attribute__((always_inline))
#define QEL_AVX2 __attribute__((target("avx2,fma")))
#define QEL_AVX512_SET "avx2,fma,avx512f,avx512dq,avx512bw,avx512vl"
#if defined(__clang__) // takes the full width by itself and does not know the option
#define QEL_AVX512 __attribute__((target(QEL_AVX512_SET)))
#else
#define QEL_AVX512 __attribute__((target(QEL_AVX512_SET ",prefer-vector-width=512")))
#endif
#else
#define QEL_KERNEL inline
#define QEL_KERNEL_LAMBDA
#endif

// Whether kernels can shuffle the lanes of registers that they name themselves.
#if defined(QEL_VECTOR_UNITS) && defined(__has_builtin)
#if __has_builtin(__builtin_shufflevector)
#define QEL_SHUFFLES 1
#endif
#endif

enum class VectorUnit { portable = 0, avx2 = 1, avx512 = 2 };

/// The widest unit of this machine, or the one that forceVectorUnit has set.
VectorUnit vectorUnit();

/// True if this machine (and this build) can run the unit.
bool hasVectorUnit(VectorUnit unit);

/// For tests and benchmarks: makes vectorUnit() answer this, which the machine must have.
void forceVectorUnit(VectorUnit unit);

/// Undoes forceVectorUnit.
void restoreVectorUnit();

} // namespace qel

#endif
