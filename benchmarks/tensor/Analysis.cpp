// The analysis of gradients where they lie, nine by nine, of floats and doubles.

#include <algorithm>
#include <array>
#include <cstddef>
#include <vector>

#include <qel/GradientAnalysis.h>

#include "support/Limit.h"
#include "tensor/AnalysisWorks.h"
#include "tensor/GradientLoops.h"

namespace qel_benchmark {
namespace {

// The gradients of the input side by side.
template <typename T>
std::vector<T> nineByNine(const GradientInput& in) {
    std::vector<T> nine;
    nine.reserve(9 * in.n);
    for (std::size_t k = 0; k < in.n; ++k) {
        for (const Triplet& row : {in.r1[k], in.r2[k], in.r3[k]}) {
            nine.insert(nine.end(),
                        {static_cast<T>(row.x), static_cast<T>(row.y), static_cast<T>(row.z)});
        }
    }
    return nine;
}

void analyzeQ(Row& row, const GradientInput& in) {
    const std::vector<float> nine = nineByNine<float>(in);
    std::vector<float> a(in.n), b(in.n);
    qel::GradientFields<float> out;
    out.invariantQ = a;
    row.add(kLibrary, [&] { qel::analyzeGradients({nine.data(), in.n}, out); });
    row.add(kPlain, [&] {
        for (std::size_t k = 0; k < in.n; ++k) {
            const float* t = &nine[9 * k];
            b[k] = loops::invariantQ({t[0], t[1], t[2]}, {t[3], t[4], t[5]}, {t[6], t[7], t[8]});
        }
    });
    addCopy(row, in.n * 10 * sizeof(float));
    row.measure();
    row.expectSame(sameBits(a.data(), b.data(), in.n));
}

// All fields that TensorEigenizer has, by it one after the other from arrays of rows.
class AllFields {
public:
    explicit AllFields(const GradientInput& in) : in_(in) {}

    void compute() {
        const qel::TensorEigenizer& t = in_.eigenizer;
        t.getInvariantQ(numbers_[0]);
        t.getDivergence(numbers_[1]);
        t.getDiscrim(numbers_[2]);
        t.get2ndEValSymmTT(numbers_[3]);
        t.getSwirlStrength(numbers_[4], numbers_[5]);
        t.getSwirlStretchRate(numbers_[4], numbers_[5], numbers_[6]);
        t.getRealEigenHelicity(numbers_[4], numbers_[5], numbers_[7]);
        t.getNormEigenHelicity(numbers_[4], numbers_[5], numbers_[8]);
        t.getHelicity(in_.velocity, numbers_[9]);
        t.getVorticity(triplets_[0]);
        t.getEVecReal(numbers_[4], numbers_[5], triplets_[1]);
        t.getSwirlNormal(numbers_[4], numbers_[5], triplets_[2]);
    }

    // The same outputs for the analysis in one pass.
    qel::GradientFields<float> views() {
        for (qel::FloatQELVectorConcrete& array : numbers_) {
            array.resize(in_.n);
        }
        for (qel::TripletQELVector& array : triplets_) {
            array.resize(in_.n);
        }
        qel::GradientFields<float> out;
        qel::ScalarView<float>* const scalars[] = {&out.invariantQ,          &out.divergence,
                                                   &out.discriminant,        &out.lambda2,
                                                   &out.swirlStrength,       &out.realEigenvalue,
                                                   &out.swirlStretchRate,    &out.realEigenHelicity,
                                                   &out.normalEigenHelicity, &out.helicity};
        for (std::size_t i = 0; i < numbers_.size(); ++i) {
            *scalars[i] = numbers_[i];
        }
        out.vorticity = triplets_[0];
        out.realEigenvector = triplets_[1];
        out.swirlNormal = triplets_[2];
        return out;
    }

    bool isSameAs(const AllFields& other) const {
        bool same = true;
        for (std::size_t i = 0; i < numbers_.size(); ++i) {
            same = same && sameBits(numbers_[i].getInternals().data(),
                                    other.numbers_[i].getInternals().data(), in_.n);
        }
        for (std::size_t i = 0; i < triplets_.size(); ++i) {
            same = same && sameBits(&triplets_[i].getInternals()[0].x,
                                    &other.triplets_[i].getInternals()[0].x, 3 * in_.n);
        }
        return same;
    }

private:
    const GradientInput& in_;
    std::array<qel::FloatQELVectorConcrete, 10> numbers_;
    std::array<qel::TripletQELVector, 3> triplets_;
};

void analyzeAll(Row& row, const GradientInput& in) {
    const std::vector<float> nine = nineByNine<float>(in);
    AllFields a(in), b(in);
    const qel::GradientFields<float> out = a.views();
    const qel::TripletView<const float> velocity(in.u, in.n);
    row.add(kLibrary, [&] { qel::analyzeGradients({nine.data(), in.n}, velocity, out); });
    row.add("one by one", [&] { b.compute(); });
    row.measure();
    b.compute();
    row.expectSame(a.isSameAs(b));
}

qel::TripletBase<double> rowOf(const double* t, int i) {
    return {t[3 * i], t[3 * i + 1], t[3 * i + 2]};
}

// Into one field of doubles, or two.
template <typename Plain>
void doubles(Row& row, const char* work, const GradientInput& in,
             const qel::GradientFields<double>& out, const std::vector<double>& nine,
             const Plain& plain) {
    std::vector<double> other(2 * in.n);
    row.add(kLibrary, [&] { qel::analyzeGradients({nine.data(), in.n}, out); });
    row.add(kPlain, [&] {
        for (std::size_t k = 0; k < in.n; ++k) {
            plain(&nine[9 * k], other[k], other[in.n + k]);
        }
    });
    const DoubleGradients gradients = {nine.data(), in.n, in.isFinite()};
#if defined(QEL_BENCHMARK_HAS_EIGEN)
    addEigenOfDoubles(row, work, gradients);
#endif
#if defined(QEL_BENCHMARK_HAS_GSL)
    addGslOfDoubles(row, work, gradients);
#endif
    (void)work, (void)gradients;
    row.measure();
}

void lambda2OfDoubles(Row& row, const GradientInput& in) {
    const std::vector<double> nine = nineByNine<double>(in);
    std::vector<double> lambda2(in.n);
    qel::GradientFields<double> out;
    out.lambda2 = lambda2;
    doubles(row, "lambda2", in, out, nine, [](const double* t, double& value, double&) {
        value = loops::lambda2(loops::strainAndSpin(rowOf(t, 0), rowOf(t, 1), rowOf(t, 2)));
    });
}

void swirlOfDoubles(Row& row, const GradientInput& in) {
    const std::vector<double> nine = nineByNine<double>(in);
    std::vector<double> strength(in.n), eigenvalue(in.n);
    qel::GradientFields<double> out;
    out.swirlStrength = strength;
    out.realEigenvalue = eigenvalue;
    doubles(row, "swirl", in, out, nine, [](const double* t, double& swirl, double& real) {
        const auto cubic = loops::cubicOf(rowOf(t, 0), rowOf(t, 1), rowOf(t, 2));
        loops::swirlStrength(cubic, swirl, real);
    });
}

} // namespace

void addAnalysisWorks(GradientWorks& works) {
    works.add("analyze_q", analyzeQ);
    works.add("analyze_all", analyzeAll);
    works.add("lambda2_of_doubles", lambda2OfDoubles);
    works.add("swirl_of_doubles", swirlOfDoubles);
}

} // namespace qel_benchmark
