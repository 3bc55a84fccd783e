// Quantities of the velocity-gradient tensor.
#include <cmath>

#include <qel/FloatQELVectorComponent.h>
#include <qel/FloatQELVectorConcrete.h>
#include <qel/GradientAnalysis.h>
#include <qel/TensorEigenizer.h>
#include <qel/TripletQELVector.h>

#include "Inputs.h"
#include "Operations.h"

namespace qel_checksums {
namespace {

using qel::FloatQELVector;
using qel::FloatQELVectorConcrete;
using qel::TensorEigenizer;
using qel::TripletQELVector;

// Rows of tensors in general position, and of whole numbers, among which many are singular or have
// a repeated eigenvalue.
struct Field {
    TripletQELVector row1, row2, row3, velocity;
    FloatQELVectorConcrete swirl, realEigenvalue;
    std::size_t size() const { return row1.size(); }
    TensorEigenizer tensor() const { return {size(), row1, row2, row3}; }
};

// Without negative zeros, which a conversion to int and back keeps on some processors.
float wholeFifth(float value) {
    return std::trunc(value / 5.0f) + 0.0f;
}

void makeWhole(TripletQELVector& row) {
    for (std::size_t i = 0; i < row.size(); ++i) {
        FloatPoint& t = row[i];
        t = FloatPoint(wholeFifth(t.x), wholeFifth(t.y), wholeFifth(t.z));
    }
}

Field makeField(std::size_t n, std::uint64_t seed, bool whole, bool withOddities) {
    Field field;
    field.row1 = TripletQELVector(fieldTriplets(n, seed, withOddities));
    field.row2 = TripletQELVector(fieldTriplets(n, seed + 1, withOddities));
    field.row3 = TripletQELVector(fieldTriplets(n, seed + 2, withOddities));
    field.velocity = TripletQELVector(fieldTriplets(n, seed + 3, withOddities));
    if (whole) {
        makeWhole(field.row1);
        makeWhole(field.row2);
        makeWhole(field.row3);
    }
    // Not those of the tensors, on purpose: what follows from them then needs no pow.
    for (const float value : fieldValues(n, seed + 4, withOddities)) {
        field.swirl.push_back(value);
    }
    for (const float value : fieldValues(n, seed + 5, withOddities)) {
        field.realEigenvalue.push_back(value);
    }
    return field;
}

template <typename Use>
void forFields(Use use) {
    for (const std::size_t n : {std::size_t{0}, std::size_t{1}, std::size_t{15}, std::size_t{16},
                                std::size_t{17}, std::size_t{1000}, std::size_t{20011}}) {
        Field general = makeField(n, 71 + n, false, false);
        use(general);
        Field whole = makeField(n, 72 + n, true, false);
        use(whole);
        Field odd = makeField(n, 73 + n, false, true);
        use(odd);
    }
}

void addOutput(Checksum& sum, const FloatQELVector& values) {
    sum.add(values.size());
    for (std::size_t i = 0; i < values.size(); ++i) {
        sum.add(values[i]);
    }
}

void addOutput(Checksum& sum, const TripletQELVector& values) {
    sum.add(values.getInternals());
}

template <typename Output, typename Compute>
void addComputed(Checksum& sum, Field& field, Compute compute) {
    Output out;
    compute(field, out);
    addOutput(sum, out);
}

template <typename AddResults>
Operation onFields(const char* name, Arithmetic arithmetic, AddResults addResults) {
    return {name, arithmetic, [addResults](Checksum& sum) {
                forFields([&](Field& field) { addResults(sum, field); });
            }};
}

// An operation with an output of triplets.
template <typename Compute>
Operation vector(const char* name, Arithmetic arithmetic, Compute compute) {
    return onFields(name, arithmetic, [compute](Checksum& sum, Field& field) {
        addComputed<TripletQELVector>(sum, field, compute);
    });
}

// An operation with an output of floats; into a component view as well, which a caller may use in
// an owning array's place.
template <typename Compute>
Operation scalar(const char* name, Arithmetic arithmetic, Compute compute) {
    return onFields(name, arithmetic, [compute](Checksum& sum, Field& field) {
        addComputed<FloatQELVectorConcrete>(sum, field, compute);
        TripletQELVector triplets;
        qel::FloatQELVectorComponent view(triplets, 1);
        compute(field, view);
        addOutput(sum, view);
    });
}

void onePoint(Checksum& sum) {
    forFields([&](Field& field) {
        const TensorEigenizer tensor = field.tensor();
        for (std::size_t i = 0; i < field.size() && i < 300; ++i) {
            const FloatPoint &r1 = field.row1[i], &r2 = field.row2[i], &r3 = field.row3[i];
            sum.add(tensor.realeigenvec(r1, r2, r3, field.realEigenvalue[i]));
            sum.add(tensor.swirlnormal(r1, r2, r3, field.realEigenvalue[i], field.swirl[i]));
        }
    });
}

void addInvariants(Operations& operations) {
    using Out = FloatQELVector;
    constexpr Arithmetic exact = Arithmetic::exact;
    operations.push_back(scalar("TensorEigenizer.getInvariantQ", exact,
                                [](Field& f, Out& out) { f.tensor().getInvariantQ(out); }));
    operations.push_back(scalar("TensorEigenizer.getDivergence", exact,
                                [](Field& f, Out& out) { f.tensor().getDivergence(out); }));
    operations.push_back(scalar("TensorEigenizer.getDiscrim", exact,
                                [](Field& f, Out& out) { f.tensor().getDiscrim(out); }));
    operations.push_back(scalar("TensorEigenizer.getHelicity", exact, [](Field& f, Out& out) {
        f.tensor().getHelicity(f.velocity, out);
    }));
    operations.push_back(
        vector("TensorEigenizer.getVorticity", exact,
               [](Field& f, TripletQELVector& out) { f.tensor().getVorticity(out); }));
    operations.push_back(scalar("TensorEigenizer.get2ndEValSymmTT", Arithmetic::libm,
                                [](Field& f, Out& out) { f.tensor().get2ndEValSymmTT(out); }));
}

void swirlStrength(Checksum& sum) {
    forFields([&](Field& field) {
        FloatQELVectorConcrete swirl, realEigenvalue;
        field.tensor().getSwirlStrength(swirl, realEigenvalue);
        addOutput(sum, swirl);
        addOutput(sum, realEigenvalue);
    });
}

// The operations one after another, as a caller strings them together.
void vortexAxes(Checksum& sum) {
    forFields([&](Field& field) {
        const TensorEigenizer tensor = field.tensor();
        tensor.getSwirlStrength(field.swirl, field.realEigenvalue);
        TripletQELVector axes, normals;
        FloatQELVectorConcrete stretch;
        tensor.getEVecReal(field.swirl, field.realEigenvalue, axes);
        tensor.getSwirlNormal(field.swirl, field.realEigenvalue, normals);
        tensor.getSwirlStretchRate(field.swirl, field.realEigenvalue, stretch);
        addOutput(sum, axes);
        addOutput(sum, normals);
        addOutput(sum, stretch);
    });
}

void addEigenanalysis(Operations& operations) {
    using Out = FloatQELVector;
    constexpr Arithmetic exact = Arithmetic::exact;
    operations.push_back({"TensorEigenizer.getSwirlStrength", Arithmetic::libm, swirlStrength});
    operations.push_back({"TensorEigenizer.vortexAxes", Arithmetic::libm, vortexAxes});
    operations.push_back(
        scalar("TensorEigenizer.getSwirlStretchRate", exact, [](Field& f, Out& out) {
            f.tensor().getSwirlStretchRate(f.swirl, f.realEigenvalue, out);
        }));
    operations.push_back(
        scalar("TensorEigenizer.getRealEigenHelicity", exact, [](Field& f, Out& out) {
            f.tensor().getRealEigenHelicity(f.swirl, f.realEigenvalue, out);
        }));
    operations.push_back(
        scalar("TensorEigenizer.getNormEigenHelicity", exact, [](Field& f, Out& out) {
            f.tensor().getNormEigenHelicity(f.swirl, f.realEigenvalue, out);
        }));
    operations.push_back(
        vector("TensorEigenizer.getSwirlNormal", exact, [](Field& f, TripletQELVector& out) {
            f.tensor().getSwirlNormal(f.swirl, f.realEigenvalue, out);
        }));
    operations.push_back(
        vector("TensorEigenizer.getEVecReal", exact, [](Field& f, TripletQELVector& out) {
            f.tensor().getEVecReal(f.swirl, f.realEigenvalue, out);
        }));
    operations.push_back({"TensorEigenizer.onePoint", exact, onePoint});
}

// -- The analysis of views ----

// The gradients of a field, nine by nine.
template <typename T>
struct Gradients {
    explicit Gradients(const Field& field) {
        for (std::size_t i = 0; i < field.size(); ++i) {
            for (const FloatPoint& t : {field.row1[i], field.row2[i], field.row3[i]}) {
                nine.insert(nine.end(),
                            {static_cast<T>(t.x), static_cast<T>(t.y), static_cast<T>(t.z)});
            }
            velocity.emplace_back(field.velocity[i]);
        }
    }
    qel::TensorView<const T> view() const { return {nine.data(), velocity.size()}; }

    std::vector<T> nine;
    std::vector<qel::TripletBase<T>> velocity;
};

template <typename T>
using Numbers = std::vector<T>;

// Fields that need no function of the C library, also scaled.
template <typename T>
void analyzeSimpleFields(Checksum& sum) {
    forFields([&](Field& field) {
        const Gradients<T> gradients(field);
        const std::size_t n = field.size();
        Numbers<T> q(n), criterion(n), divergence(n), discriminant(n), spin(n), strain(n),
            helicity(n);
        std::vector<qel::TripletBase<T>> vorticity(n);
        qel::GradientFields<T> out;
        out.invariantQ = q;
        out.qCriterion = criterion;
        out.divergence = divergence;
        out.discriminant = discriminant;
        out.vorticityMagnitude = spin;
        out.strainMagnitude = strain;
        out.vorticity = vorticity;
        out.helicity = helicity;
        qel::GradientOptions options;
        for (const bool isScaled : {false, true}) {
            options.isScaled = isScaled;
            qel::analyzeGradients(gradients.view(), gradients.velocity, out, options);
            sum.add(q, criterion, divergence, discriminant, spin, strain, vorticity, helicity);
        }
    });
}

template <typename T>
void analyzeRoots(Checksum& sum) {
    forFields([&](Field& field) {
        const Gradients<T> gradients(field);
        const std::size_t n = field.size();
        Numbers<T> lambda2(n), strength(n), eigenvalue(n), stretch(n), along(n), normal(n);
        std::vector<qel::TripletBase<T>> vector(n), swirlNormal(n);
        qel::GradientFields<T> out;
        out.lambda2 = lambda2;
        out.swirlStrength = strength;
        out.realEigenvalue = eigenvalue;
        out.swirlStretchRate = stretch;
        out.realEigenHelicity = along;
        out.normalEigenHelicity = normal;
        out.realEigenvector = vector;
        out.swirlNormal = swirlNormal;
        qel::GradientOptions options;
        for (const double floor : {0.0, 1e-3}) {
            options.noiseFloor = floor;
            options.isScaled = floor > 0.0;
            qel::analyzeGradients(gradients.view(), out, options);
            sum.add(lambda2, strength, eigenvalue, stretch, along, normal, vector, swirlNormal);
        }
    });
}

void addGradientAnalysis(Operations& operations) {
    constexpr Arithmetic exact = Arithmetic::exact;
    operations.push_back({"GradientAnalysis.simpleFields", exact, analyzeSimpleFields<float>});
    operations.push_back(
        {"GradientAnalysis.simpleFieldsOfDoubles", exact, analyzeSimpleFields<double>});
    operations.push_back({"GradientAnalysis.roots", Arithmetic::libm, analyzeRoots<float>});
    operations.push_back({"GradientAnalysis.rootsOfDoubles", exact, analyzeRoots<double>});
}

} // namespace

void addTensorOperations(Operations& operations) {
    addInvariants(operations);
    addEigenanalysis(operations);
    addGradientAnalysis(operations);
}

} // namespace qel_checksums
