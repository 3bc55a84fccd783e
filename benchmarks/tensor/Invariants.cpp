// Invariants of the velocity gradient and its eigen-analysis at every point of a field.
//
// The plain loop of the eigenvector works calls the library's two functions for one point.

#include <string>

#include "support/Limit.h"
#include "support/Program.h"
#include "tensor/AnalysisWorks.h"
#include "tensor/GradientInput.h"
#include "tensor/GradientLoops.h"

namespace qel_benchmark {
namespace {

using qel::FloatQELVector;
using qel::FloatQELVectorConcrete;
using qel::TripletQELVector;

void addPeers(Row& row, const char* work, const GradientInput& in) {
#if defined(QEL_BENCHMARK_HAS_EIGEN)
    addEigen(row, work, in);
#endif
#if defined(QEL_BENCHMARK_HAS_GSL)
    addGsl(row, work, in);
#endif
    (void)row, (void)work, (void)in;
}

constexpr std::size_t kBytesOfGradient = 9 * sizeof(float);

// The library's run(output) beside the loop at(k), the peers of that work and a copy of its bytes.
template <typename Run, typename At>
void floats(Row& row, const char* work, const GradientInput& in, const Run& run, const At& at,
            std::size_t bytesRead = kBytesOfGradient) {
    FloatQELVectorConcrete a;
    a.resize(in.n);
    std::vector<float> b(in.n);
    row.add(kLibrary, [&] { run(a); });
    row.add(kPlain, [&] {
        for (std::size_t k = 0; k < in.n; ++k) {
            b[k] = at(k);
        }
    });
    addPeers(row, work, in);
    addCopy(row, in.n * (bytesRead + sizeof(float)));
    row.measure();
    row.expectSame(sameBits(a.getInternals().data(), b.data(), in.n));
}

template <typename Run, typename At>
void triplets(Row& row, const char* work, const GradientInput& in, const Run& run, const At& at) {
    TripletQELVector a;
    a.resize(in.n);
    std::vector<Triplet> b(in.n);
    row.add(kLibrary, [&] { run(a); });
    row.add(kPlain, [&] {
        for (std::size_t k = 0; k < in.n; ++k) {
            b[k] = at(k);
        }
    });
    addPeers(row, work, in);
    addCopy(row, in.n * (kBytesOfGradient + sizeof(Triplet)));
    row.measure();
    row.expectSame(sameBits(&a.getInternals()[0].x, &b[0].x, 3 * in.n));
}

// -- Invariants ----

void invariantQ(Row& row, const GradientInput& in) {
    floats(
        row, "q", in, [&](FloatQELVector& out) { in.eigenizer.getInvariantQ(out); },
        [&](std::size_t k) { return loops::invariantQ(in.r1[k], in.r2[k], in.r3[k]); });
}

void divergence(Row& row, const GradientInput& in) {
    floats(
        row, "divergence", in, [&](FloatQELVector& out) { in.eigenizer.getDivergence(out); },
        [&](std::size_t k) { return loops::divergence(in.r1[k], in.r2[k], in.r3[k]); });
}

Triplet vorticityAt(const GradientInput& in, std::size_t k) {
    return loops::vorticity(in.r1[k], in.r2[k], in.r3[k]);
}

void vorticity(Row& row, const GradientInput& in) {
    triplets(
        row, "vorticity", in, [&](TripletQELVector& out) { in.eigenizer.getVorticity(out); },
        [&](std::size_t k) { return vorticityAt(in, k); });
}

void helicity(Row& row, const GradientInput& in) {
    floats(
        row, "helicity", in,
        [&](FloatQELVector& out) { in.eigenizer.getHelicity(in.velocity, out); },
        [&](std::size_t k) { return loops::helicity(vorticityAt(in, k), in.u[k]); },
        kBytesOfGradient + sizeof(Triplet));
}

loops::Cubic cubicAt(const GradientInput& in, std::size_t k) {
    return loops::cubicOf(in.r1[k], in.r2[k], in.r3[k]);
}

void discriminant(Row& row, const GradientInput& in) {
    floats(
        row, "discriminant", in, [&](FloatQELVector& out) { in.eigenizer.getDiscrim(out); },
        [&](std::size_t k) { return static_cast<float>(cubicAt(in, k).discriminant()); });
}

void lambda2(Row& row, const GradientInput& in) {
    floats(
        row, "lambda2", in, [&](FloatQELVector& out) { in.eigenizer.get2ndEValSymmTT(out); },
        [&](std::size_t k) {
            return static_cast<float>(
                loops::lambda2(loops::strainAndSpin(in.r1[k], in.r2[k], in.r3[k])));
        });
}

// Into a component of an array of triplets, where every third float is written.
void lambda2Component(Row& row, const GradientInput& in) {
    TripletQELVector triplets;
    triplets.resize(in.n);
    qel::FloatQELVectorComponent view(triplets, 1);
    std::vector<Triplet> b(in.n, Triplet(0.0f, 0.0f, 0.0f));
    row.add(kLibrary, [&] { in.eigenizer.get2ndEValSymmTT(view); });
    row.add(kPlain, [&] {
        for (std::size_t k = 0; k < in.n; ++k) {
            b[k].y = static_cast<float>(
                loops::lambda2(loops::strainAndSpin(in.r1[k], in.r2[k], in.r3[k])));
        }
    });
    row.measure();
    row.expectSame(sameBits(&triplets.getInternals()[0].x, &b[0].x, 3 * in.n));
}

void swirlStrength(Row& row, const GradientInput& in) {
    FloatQELVectorConcrete swirl;
    FloatQELVectorConcrete eigenvalue;
    std::vector<float> a(in.n);
    std::vector<float> b(in.n);
    row.add(kLibrary, [&] { in.eigenizer.getSwirlStrength(swirl, eigenvalue); });
    row.add(kPlain, [&] {
        for (std::size_t k = 0; k < in.n; ++k) {
            loops::swirlStrength(cubicAt(in, k), a[k], b[k]);
        }
    });
    addPeers(row, "swirl", in);
    row.measure();
    row.expectSame(sameBits(swirl.getInternals().data(), a.data(), in.n) &&
                   sameBits(eigenvalue.getInternals().data(), b.data(), in.n));
}

// -- Eigenvectors, where the point swirls ----

float swirlAt(const GradientInput& in, std::size_t k) {
    return in.swirl.getInternals()[k];
}

Triplet eigenvectorAt(const GradientInput& in, std::size_t k) {
    return in.eigenizer.realeigenvec(in.r1[k], in.r2[k], in.r3[k],
                                     in.realEigenvalue.getInternals()[k]);
}

Triplet normalAt(const GradientInput& in, std::size_t k) {
    return in.eigenizer.swirlnormal(in.r1[k], in.r2[k], in.r3[k],
                                    in.realEigenvalue.getInternals()[k], swirlAt(in, k));
}

Triplet scaled(const Triplet& t, float factor) {
    return {t.x * factor, t.y * factor, t.z * factor};
}

void eigenvector(Row& row, const GradientInput& in) {
    triplets(
        row, "eigenvector", in,
        [&](TripletQELVector& out) { in.eigenizer.getEVecReal(in.swirl, in.realEigenvalue, out); },
        [&](std::size_t k) {
            const float swirl = swirlAt(in, k);
            return swirl > 0.0f ? scaled(eigenvectorAt(in, k), swirl) : Triplet(0.0f, 0.0f, 0.0f);
        });
}

void swirlNormal(Row& row, const GradientInput& in) {
    triplets(
        row, "normal", in,
        [&](TripletQELVector& out) {
            in.eigenizer.getSwirlNormal(in.swirl, in.realEigenvalue, out);
        },
        [&](std::size_t k) {
            const float swirl = swirlAt(in, k);
            return swirl > 0.0f ? scaled(normalAt(in, k), swirl) : Triplet(0.0f, 0.0f, 0.0f);
        });
}

void eigenvectorHelicity(Row& row, const GradientInput& in) {
    floats(
        row, "eigenvector_helicity", in,
        [&](FloatQELVector& out) {
            in.eigenizer.getRealEigenHelicity(in.swirl, in.realEigenvalue, out);
        },
        [&](std::size_t k) {
            return swirlAt(in, k) > 0.0f ? loops::helicity(eigenvectorAt(in, k), vorticityAt(in, k))
                                         : 0.0f;
        });
}

void normalHelicity(Row& row, const GradientInput& in) {
    floats(
        row, "normal_helicity", in,
        [&](FloatQELVector& out) {
            in.eigenizer.getNormEigenHelicity(in.swirl, in.realEigenvalue, out);
        },
        [&](std::size_t k) {
            return swirlAt(in, k) > 0.0f ? loops::helicity(normalAt(in, k), vorticityAt(in, k))
                                         : 0.0f;
        });
}

void stretchRate(Row& row, const GradientInput& in) {
    floats(
        row, "stretch_rate", in,
        [&](FloatQELVector& out) {
            in.eigenizer.getSwirlStretchRate(in.swirl, in.realEigenvalue, out);
        },
        [&](std::size_t k) {
            const float swirl = swirlAt(in, k);
            if (!(swirl > 0.0f)) {
                return 0.0f;
            }
            const Triplet e = eigenvectorAt(in, k);
            const Triplet n = normalAt(in, k);
            return (e.x * n.x + e.y * n.y + e.z * n.z) * swirl;
        });
}

} // namespace
} // namespace qel_benchmark

int main(int argc, char** argv) {
    using namespace qel_benchmark;
    Program program(argc, argv, "tensor");
    GradientWorks works;
    works.add("q", invariantQ);
    works.add("divergence", divergence);
    works.add("vorticity", vorticity);
    works.add("helicity", helicity);
    works.add("discriminant", discriminant);
    works.add("lambda2", lambda2);
    works.add("lambda2_into_component", lambda2Component);
    works.add("swirl", swirlStrength);
    works.add("eigenvector", eigenvector);
    works.add("swirl_normal", swirlNormal);
    works.add("eigenvector_helicity", eigenvectorHelicity);
    works.add("normal_helicity", normalHelicity);
    works.add("stretch_rate", stretchRate);
    addAnalysisWorks(works);
    works.measure(program, qel_test::gradientShapes());
}
