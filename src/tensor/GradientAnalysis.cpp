#include <qel/GradientAnalysis.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <string>
#include <type_traits>

#include "batch/ArgumentCheck.h"
#include "tensor/BlockFormulas.h"
#include "tensor/GradientBlock.h"
#include "tensor/GradientReader.h"

namespace qel {
namespace {

// Points that are analysed between two calls of progress.
constexpr std::size_t kPointsPerCall = 16 * kBlock;

// Of the norm of the tensor: a swirl strength up to here is negligible.
constexpr double kNegligible = 1e-5;

// -- Arguments ----

template <typename Number>
void checkArguments(const TensorView<const Number>& gradients,
                    const TripletView<const Number>* velocity, const GradientFields<Number>& out,
                    const GradientOptions& options) {
    const std::size_t n = gradients.size();
    ArgumentCheck check("GradientAnalysis", "analyzeGradients");
    if (!(options.noiseFloor >= 0.0)) {
        check.refuse("The noise floor is negative or no number.");
    }
    if (velocity == nullptr && !out.helicity.empty()) {
        check.refuse("The helicity needs the velocity.");
    }
    check.input(gradients);
    if (velocity != nullptr) {
        if (velocity->size() != n) {
            check.refuse("There are " + std::to_string(velocity->size()) + " velocities for " +
                         std::to_string(n) + " gradients.");
        }
        check.input(*velocity);
    }
    check.output("invariantQ", out.invariantQ, n);
    check.output("qCriterion", out.qCriterion, n);
    check.output("divergence", out.divergence, n);
    check.output("discriminant", out.discriminant, n);
    check.output("lambda2", out.lambda2, n);
    check.output("swirlStrength", out.swirlStrength, n);
    check.output("realEigenvalue", out.realEigenvalue, n);
    check.output("vorticity", out.vorticity, n);
    check.output("vorticityMagnitude", out.vorticityMagnitude, n);
    check.output("strainMagnitude", out.strainMagnitude, n);
    check.output("realEigenvector", out.realEigenvector, n);
    check.output("swirlNormal", out.swirlNormal, n);
    check.output("swirlStretchRate", out.swirlStretchRate, n);
    check.output("realEigenHelicity", out.realEigenHelicity, n);
    check.output("normalEigenHelicity", out.normalEigenHelicity, n);
    check.output("helicity", out.helicity, n);
}

// -- Writing ----

template <typename Number>
void writeColumn(const Column<Number>& values, const ScalarView<Number>& view, std::size_t first,
                 std::size_t count) {
    char* to =
        reinterpret_cast<char*>(view.data()) + static_cast<std::ptrdiff_t>(first) * view.stride();
    if (view.isContiguous()) {
        std::memcpy(to, values.values, count * sizeof(Number));
        return;
    }
    for (std::size_t k = 0; k < count; ++k, to += view.stride()) {
        std::memcpy(to, &values[k], sizeof(Number));
    }
}

// -- The points of a block ----

template <typename Number>
class BlockAnalysis {
public:
    BlockAnalysis(const TensorView<const Number>& gradients,
                  const TripletView<const Number>* velocity, const GradientFields<Number>& out,
                  const GradientOptions& options);

    // Analyses `count` points, up to kBlock, and writes their results.
    void analyze(std::size_t first, std::size_t count);

    std::size_t belowFloor() const { return belowFloor_; }
    std::size_t madeZero() const { return madeZero_; }

private:
    using Scalars = ScalarView<Number>;
    using Triplets = TripletView<Number>;

    const BasicGradientBlock<Number>& gradients();
    template <typename Formula>
    void analyzeSimple(const Scalars& out, int power);
    template <typename Formula, typename Output, typename... Inputs>
    bool analyzeInPlace(const Output& out, const Inputs&... inputs) const;
    void analyzeSimpleFields();
    void analyzeDiscriminant();
    void analyzeLambda2();
    void analyzeSwirl();
    void zeroNegligibleSwirl();
    void analyzeSwirling();
    void gatherSwirling();
    template <typename Value>
    void writeSwirling(const Scalars& out, const Value& value);
    template <typename Value>
    void writeSwirling(const Triplets& out, const Value& value);

    template <typename IsBelow>
    void setBelowFloor(Column<Number>& values, const IsBelow& isBelow);
    void scaleBack(Column<Number>& values, int power) const;
    void write(const Scalars& out, int power);
    void write(const Triplets& out, int power);

    const GradientReader<Number> reader_;
    const TripletView<const Number>* velocity_;
    const GradientFields<Number>& out_;
    const GradientOptions& options_;
    const bool isScaled_;
    const bool takesEigenvector_;
    const bool takesNormal_;
    const bool takesSwirl_;
    bool isRead_ = false; // the gradients of this block

    std::size_t first_ = 0;
    std::size_t count_ = 0;
    std::size_t swirlingCount_ = 0; // of the points of the block
    std::size_t belowFloor_ = 0;    // of those of the field
    std::size_t madeZero_ = 0;

    BasicGradientBlock<Number> t_; // to be had from gradients(), which reads it
    Column<Number> inverse_;       // what scales results back, once for each power
    Column<double> squaredNorm_;   // where a floor or a policy asks for it
    Column<std::uint8_t> lowered_; // 1 where the floor has set something
    Column<Number> values_;        // of the output that is computed
    TripleColumns<Number> triples_;
    SwirlColumns<Number> swirl_;

    // The points that swirl, moved together.
    Column<std::uint32_t> swirling_;
    BasicGradientBlock<Number> swirlingT_;
    SwirlColumns<Number> swirlingSwirl_;
    TripleColumns<Number> eigenvectors_;
    TripleColumns<Number> normals_;
};

template <typename Number>
BlockAnalysis<Number>::BlockAnalysis(const TensorView<const Number>& gradients,
                                     const TripletView<const Number>* velocity,
                                     const GradientFields<Number>& out,
                                     const GradientOptions& options)
    : reader_(gradients),
      velocity_(velocity),
      out_(out),
      options_(options),
      isScaled_(options.isScaled || std::is_same_v<Number, double>),
      takesEigenvector_(!out.realEigenvector.empty() || !out.realEigenHelicity.empty() ||
                        !out.swirlStretchRate.empty()),
      takesNormal_(!out.swirlNormal.empty() || !out.normalEigenHelicity.empty() ||
                   !out.swirlStretchRate.empty()),
      takesSwirl_(!out.swirlStrength.empty() || !out.realEigenvalue.empty() || takesEigenvector_ ||
                  takesNormal_) {}

template <typename Number>
void BlockAnalysis<Number>::analyze(std::size_t first, std::size_t count) {
    first_ = first;
    count_ = count;
    isRead_ = false;
    analyzeSimpleFields();
    analyzeDiscriminant();
    analyzeLambda2();
    if (takesSwirl_) {
        analyzeSwirl();
    }
    if (isRead_) {
        belowFloor_ += static_cast<std::size_t>(
            std::count(lowered_.values, lowered_.values + count_, std::uint8_t{1}));
    }
}

template <typename Number>
const BasicGradientBlock<Number>& BlockAnalysis<Number>::gradients() {
    if (!isRead_) {
        reader_.read(first_, count_, t_);
        if (isScaled_) {
            onVectorUnit<ScaleKernel>(&t_, count_, &inverse_);
        }
        if (options_.noiseFloor > 0.0 || options_.notANumber != GradientOptions::NotANumber::keep) {
            computeFormula<SquaredNorm>(t_, count_, squaredNorm_);
        }
        std::fill_n(lowered_.values, count_, std::uint8_t{0});
        isRead_ = true;
    }
    return t_;
}

// -- Fields without roots ----

// A formula in single precision costs what reading and writing cost: from memory to memory, where
// both are arrays. Returns false if they are not, or more is to be done.
template <typename Number>
template <typename Formula, typename Output, typename... Inputs>
bool BlockAnalysis<Number>::analyzeInPlace(const Output& out, const Inputs&... inputs) const {
    if constexpr (std::is_same_v<Number, float>) {
        return !isScaled_ && !out.empty() && isArray(out) && (isArray(inputs) && ...) &&
               reader_.useMemory([&](const auto& memory) {
                   compute<InGroups<Formula>>(count_, elementsOf(out).after(first_),
                                              memory.after(first_),
                                              tripletsOf(inputs).after(first_)...);
               });
    } else {
        return false;
    }
}

template <typename Number>
template <typename Formula>
void BlockAnalysis<Number>::analyzeSimple(const Scalars& out, int power) {
    if (!out.empty()) {
        computeFormula<Formula>(gradients(), count_, values_);
        write(out, power);
    }
}

template <typename Number>
void BlockAnalysis<Number>::analyzeSimpleFields() {
    if (!analyzeInPlace<InvariantQ>(out_.invariantQ)) {
        analyzeSimple<InvariantQ>(out_.invariantQ, 2);
    }
    if (!analyzeInPlace<Divergence>(out_.divergence)) {
        analyzeSimple<Divergence>(out_.divergence, 1);
    }
    analyzeSimple<QCriterion>(out_.qCriterion, 2);
    analyzeSimple<VorticityMagnitude>(out_.vorticityMagnitude, 1);
    analyzeSimple<StrainMagnitude>(out_.strainMagnitude, 1);
    if (!out_.vorticity.empty() && !analyzeInPlace<Vorticity>(out_.vorticity)) {
        computeFormula<Vorticity>(gradients(), count_, triples_);
        write(out_.vorticity, 1);
    }
    if (!out_.helicity.empty() && !analyzeInPlace<Helicity>(out_.helicity, *velocity_)) {
        readColumns(*velocity_, first_, count_, triples_.x, triples_.y, triples_.z);
        computeFormula<Helicity>(gradients(), count_, values_, triples_);
        write(out_.helicity, 1);
    }
}

template <typename Number>
void BlockAnalysis<Number>::analyzeDiscriminant() {
    if (!out_.discriminant.empty()) {
        computeDiscriminant(gradients(), count_, values_);
        setBelowFloor(values_, [](double value, double limit) {
            return std::fabs(value) < limit * limit * limit;
        });
        write(out_.discriminant, 6);
    }
}

template <typename Number>
void BlockAnalysis<Number>::analyzeLambda2() {
    if (!out_.lambda2.empty()) {
        computeLambda2(gradients(), count_, values_);
        setBelowFloor(values_, [](double value, double limit) { return std::fabs(value) < limit; });
        write(out_.lambda2, 2);
    }
}

template <typename Number>
void BlockAnalysis<Number>::analyzeSwirl() {
    computeSwirl(gradients(), count_, swirl_);
    if (options_.notANumber == GradientOptions::NotANumber::zeroNegligible) {
        zeroNegligibleSwirl();
    }
    setBelowFloor(swirl_.strength,
                  [](double value, double limit) { return value * value < limit; });
    if (takesEigenvector_ || takesNormal_) {
        analyzeSwirling();
    }
    if (!out_.swirlStrength.empty()) {
        values_ = swirl_.strength;
        write(out_.swirlStrength, 1);
    }
    if (!out_.realEigenvalue.empty()) {
        values_ = swirl_.eigenvalue;
        write(out_.realEigenvalue, 1);
    }
}

// Where the radicand of the swirl strength is rounded to below 0, the form of it in which nothing
// cancels says how large it is.
template <typename Number>
void BlockAnalysis<Number>::zeroNegligibleSwirl() {
    for (std::size_t k = 0; k < count_; ++k) {
        Number& strength = swirl_.strength[k];
        if (std::isnan(strength)) {
            const double exact = doubleSwirlOf(characteristicCubic<double>(t_.at(k))).strength;
            if (exact <= kNegligible * std::sqrt(squaredNorm_[k])) {
                strength = 0;
                ++madeZero_;
            }
        }
    }
}

// -- Where it swirls ----

template <typename Number>
void BlockAnalysis<Number>::analyzeSwirling() {
    gatherSwirling();
    if (takesEigenvector_) {
        computeFormula<RealEigenvector>(swirlingT_, swirlingCount_, eigenvectors_,
                                        swirlingSwirl_.eigenvalue);
    }
    if (takesNormal_) {
        computeFormula<SwirlNormal>(swirlingT_, swirlingCount_, normals_, swirlingSwirl_.eigenvalue,
                                    swirlingSwirl_.strength);
    }
    const auto strength = [this](std::size_t i) { return swirlingSwirl_.strength[i]; };
    writeSwirling(out_.realEigenvector,
                  [&](std::size_t i) { return scaled(eigenvectors_[i], strength(i)); });
    writeSwirling(out_.swirlNormal,
                  [&](std::size_t i) { return scaled(normals_[i], strength(i)); });
    writeSwirling(out_.realEigenHelicity,
                  [&](std::size_t i) { return Helicity::at(swirlingT_.at(i), eigenvectors_[i]); });
    writeSwirling(out_.normalEigenHelicity,
                  [&](std::size_t i) { return Helicity::at(swirlingT_.at(i), normals_[i]); });
    writeSwirling(out_.swirlStretchRate, [&](std::size_t i) {
        return stretchRate(eigenvectors_[i], normals_[i], strength(i));
    });
}

template <typename Number>
void BlockAnalysis<Number>::gatherSwirling() {
    swirlingCount_ = 0;
    for (std::size_t k = 0; k < count_; ++k) {
        if (swirl_.strength[k] > 0) {
            swirling_[swirlingCount_] = static_cast<std::uint32_t>(k);
            swirlingT_.set(swirlingCount_, t_.at(k));
            swirlingSwirl_.strength[swirlingCount_] = swirl_.strength[k];
            swirlingSwirl_.eigenvalue[swirlingCount_] = swirl_.eigenvalue[k];
            ++swirlingCount_;
        }
    }
}

template <typename Number>
template <typename Value>
void BlockAnalysis<Number>::writeSwirling(const Scalars& out, const Value& value) {
    if (!out.empty()) {
        std::fill_n(values_.values, count_, Number(0));
        for (std::size_t i = 0; i < swirlingCount_; ++i) {
            values_[swirling_[i]] = value(i);
        }
        write(out, 1);
    }
}

template <typename Number>
template <typename Value>
void BlockAnalysis<Number>::writeSwirling(const Triplets& out, const Value& value) {
    if (!out.empty()) {
        for (std::size_t k = 0; k < count_; ++k) {
            triples_.set(k, {0, 0, 0});
        }
        for (std::size_t i = 0; i < swirlingCount_; ++i) {
            triples_.set(swirling_[i], value(i));
        }
        write(out, 1);
    }
}

// -- What is done to results ----

template <typename Number>
template <typename IsBelow>
void BlockAnalysis<Number>::setBelowFloor(Column<Number>& values, const IsBelow& isBelow) {
    if (options_.noiseFloor > 0.0) {
        for (std::size_t k = 0; k < count_; ++k) {
            const auto value = static_cast<double>(values[k]);
            if (value != 0.0 && isBelow(value, options_.noiseFloor * squaredNorm_[k])) {
                values[k] = 0;
                lowered_[k] = 1;
            }
        }
    }
}

// One factor after the other, so that what overflows or underflows is the result alone.
template <typename Number>
void BlockAnalysis<Number>::scaleBack(Column<Number>& values, int power) const {
    if (isScaled_) {
        for (int p = 0; p < power; ++p) {
            for (std::size_t k = 0; k < count_; ++k) {
                values[k] *= inverse_[k];
            }
        }
    }
}

template <typename Number>
void BlockAnalysis<Number>::write(const Scalars& out, int power) {
    scaleBack(values_, power);
    writeColumn(values_, out, first_, count_);
}

template <typename Number>
void BlockAnalysis<Number>::write(const Triplets& out, int power) {
    scaleBack(triples_.x, power);
    scaleBack(triples_.y, power);
    scaleBack(triples_.z, power);
    writeColumn(triples_.x, out.x(), first_, count_);
    writeColumn(triples_.y, out.y(), first_, count_);
    writeColumn(triples_.z, out.z(), first_, count_);
}

// -- The field ----

template <typename Number>
GradientReport analyze(const TensorView<const Number>& gradients,
                       const TripletView<const Number>* velocity, const GradientFields<Number>& out,
                       const GradientOptions& options) {
    checkArguments(gradients, velocity, out, options);
    const std::size_t n = gradients.size();
    BlockAnalysis<Number> block(gradients, velocity, out, options);
    std::size_t first = 0;
    while (first < n) {
        const std::size_t count = std::min(kBlock, n - first);
        block.analyze(first, count);
        first += count;
        if (first % kPointsPerCall == 0 && first < n && options.progress &&
            !options.progress(static_cast<double>(first) / static_cast<double>(n))) {
            return {first, block.belowFloor(), block.madeZero()};
        }
    }
    if (options.progress) {
        options.progress(1.0);
    }
    return {n, block.belowFloor(), block.madeZero()};
}

} // namespace

GradientReport analyzeGradients(const TensorView<const float>& gradients,
                                const GradientFields<float>& out, const GradientOptions& options) {
    return analyze<float>(gradients, nullptr, out, options);
}

GradientReport analyzeGradients(const TensorView<const double>& gradients,
                                const GradientFields<double>& out, const GradientOptions& options) {
    return analyze<double>(gradients, nullptr, out, options);
}

GradientReport analyzeGradients(const TensorView<const float>& gradients,
                                const TripletView<const float>& velocity,
                                const GradientFields<float>& out, const GradientOptions& options) {
    return analyze<float>(gradients, &velocity, out, options);
}

GradientReport analyzeGradients(const TensorView<const double>& gradients,
                                const TripletView<const double>& velocity,
                                const GradientFields<double>& out, const GradientOptions& options) {
    return analyze<double>(gradients, &velocity, out, options);
}

} // namespace qel
