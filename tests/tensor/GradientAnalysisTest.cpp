// The analysis of views: the bits of TensorEigenizer from any layout, progress, and what is
// refused.

#include <qel/GradientAnalysis.h>

#include <cmath>
#include <cstddef>
#include <cstring>
#include <limits>
#include <random>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "support/AllocationLimit.h"
#include "support/Bits.h"
#include "support/Errors.h"
#include "support/VectorUnits.h"
#include "tensor/AllFields.h"
#include "tensor/Fields.h"
#include "tensor/ReferenceFormulas.h"

namespace {

using namespace qel_test;
using qel::analyzeGradients;
using qel::GradientFields;
using qel::GradientOptions;
using qel::GradientReport;
using qel::ScalarView;
using qel::TensorView;
using qel::TripletView;

// -- Bits ----

// What TensorEigenizer gives, and for the three fields that it does not have, the definitions.
AllFields<float> expectedOf(const std::vector<Tensor>& tensors, const Velocities& velocities) {
    const Field field(tensors);
    const qel::TensorEigenizer t = field.eigenizer();
    const std::size_t n = tensors.size();
    AllFields<float> all(n);
    qel::FloatQELVectorConcrete q, divergence, discriminant, lambda2, swirl, eigenvalue, stretch,
        alongEigenvector, alongNormal, helicity;
    qel::TripletQELVector velocity(velocities), vorticity, eigenvector, normal;
    t.getInvariantQ(q);
    t.getDivergence(divergence);
    t.getDiscrim(discriminant);
    t.get2ndEValSymmTT(lambda2);
    t.getSwirlStrength(swirl, eigenvalue);
    t.getSwirlStretchRate(swirl, eigenvalue, stretch);
    t.getRealEigenHelicity(swirl, eigenvalue, alongEigenvector);
    t.getNormEigenHelicity(swirl, eigenvalue, alongNormal);
    t.getHelicity(velocity, helicity);
    t.getVorticity(vorticity);
    t.getEVecReal(swirl, eigenvalue, eigenvector);
    t.getSwirlNormal(swirl, eigenvalue, normal);
    std::vector<float> qCriterion, spin, strain;
    for (const Tensor& tensor : tensors) {
        const auto T = [&](int i, int j) {
            return static_cast<double>(reference::at(tensor, i, j));
        };
        qCriterion.push_back(
            static_cast<float>(-0.5 * (T(1, 1) * T(1, 1) + T(2, 2) * T(2, 2) + T(3, 3) * T(3, 3)) -
                               (T(1, 2) * T(2, 1) + T(1, 3) * T(3, 1) + T(2, 3) * T(3, 2))));
        const double x = T(3, 2) - T(2, 3), y = T(1, 3) - T(3, 1), z = T(2, 1) - T(1, 2);
        spin.push_back(static_cast<float>(std::sqrt(x * x + y * y + z * z)));
        const double yz = T(2, 3) + T(3, 2), xz = T(1, 3) + T(3, 1), xy = T(1, 2) + T(2, 1);
        strain.push_back(static_cast<float>(
            std::sqrt(2 * (T(1, 1) * T(1, 1) + T(2, 2) * T(2, 2) + T(3, 3) * T(3, 3)) +
                      (yz * yz + xz * xz + xy * xy))));
    }
    all.numbers = {valuesOf(q),
                   qCriterion,
                   valuesOf(divergence),
                   valuesOf(discriminant),
                   valuesOf(lambda2),
                   valuesOf(swirl),
                   valuesOf(eigenvalue),
                   spin,
                   strain,
                   valuesOf(stretch),
                   valuesOf(alongEigenvector),
                   valuesOf(alongNormal),
                   valuesOf(helicity)};
    all.triples = {vorticity.getInternals(), eigenvector.getInternals(), normal.getInternals()};
    return all;
}

AllFields<float> analyzed(const TensorView<const float>& view, const Velocities& velocities) {
    AllFields<float> all(view.size());
    const GradientReport report = analyzeGradients(view, velocities, all.views(true));
    EXPECT_EQ(report.analyzed, view.size());
    EXPECT_EQ(report.belowFloor, 0U);
    EXPECT_EQ(report.madeZero, 0U);
    return all;
}

TEST(GradientAnalysis, FloatGradientsGiveTheBitsOfTheEigenizerOnEveryUnit) {
    for (const std::size_t n : {std::size_t{0}, std::size_t{1}, std::size_t{7}, std::size_t{16},
                                std::size_t{255}, std::size_t{256}, std::size_t{5003}}) {
        const std::vector<Tensor> tensors = mixedTensors(n, 11);
        const Velocities velocities = velocitiesOf(n);
        const AllFields<float> expected = expectedOf(tensors, velocities);
        onEveryVectorUnit(
            [&] { expectSameFields(analyzed(viewOf(tensors), velocities), expected); });
    }
}

TEST(GradientAnalysis, EveryLayoutGivesTheSameBits) {
    const std::size_t n = 777;
    const std::vector<Tensor> tensors = mixedTensors(n, 12);
    const Velocities velocities = velocitiesOf(n);
    const AllFields<float> expected = analyzed(viewOf(tensors), velocities);

    const Field rows(tensors);
    const auto row = [](const qel::TripletQELVector& r) { return TripletView<const float>(r); };
    std::vector<std::vector<float>> columns(9, std::vector<float>(n));
    std::vector<std::array<float, 11>> cells(n); // a record with other numbers around
    std::vector<char> bytes(n * sizeof(Tensor) + 1);
    std::vector<Tensor> transposed(n), reversed(tensors.rbegin(), tensors.rend());
    for (std::size_t k = 0; k < n; ++k) {
        for (std::size_t i = 0; i < 9; ++i) {
            columns[i][k] = tensors[k][i];
            cells[k][i + 1] = tensors[k][i];
            transposed[k][3 * (i % 3) + i / 3] = tensors[k][i];
        }
        std::memcpy(&bytes[1 + k * sizeof(Tensor)], &tensors[k], sizeof(Tensor));
    }
    const auto columnRow = [&](std::size_t i) {
        return TripletView<const float>(columns[i], columns[i + 1], columns[i + 2]);
    };
    constexpr std::ptrdiff_t kTensor = sizeof(Tensor);
    const TensorView<const float> views[] = {
        {row(rows.row1), row(rows.row2), row(rows.row3)},
        {columnRow(0), columnRow(3), columnRow(6)},
        {&cells[0][1], n, sizeof cells[0]},
        {reinterpret_cast<const float*>(&bytes[1]), n},
        TensorView<const float>(transposed[0].data(), n).transposed(),
        {reversed[n - 1].data(), n, -kTensor},
    };
    onEveryVectorUnit([&] {
        for (std::size_t i = 0; i < std::size(views); ++i) {
            SCOPED_TRACE(i);
            expectSameFields(analyzed(views[i], velocities), expected);
        }
    });
}

TEST(GradientAnalysis, RowsAtUnalignedAddressesAreRead) {
    const std::size_t n = 100;
    const std::vector<Tensor> tensors = mixedTensors(n, 13);
    std::vector<char> bytes(3 * (n * sizeof(Triplet) + 1));
    char* starts[3] = {&bytes[1], &bytes[2 + n * sizeof(Triplet)],
                       &bytes[3 + 2 * n * sizeof(Triplet)]};
    for (std::size_t k = 0; k < n; ++k) {
        for (std::size_t i = 0; i < 3; ++i) {
            std::memcpy(starts[i] + k * sizeof(Triplet), &tensors[k][3 * i], sizeof(Triplet));
        }
    }
    const auto row = [&](std::size_t i) {
        return TripletView<const float>(reinterpret_cast<const float*>(starts[i]), n);
    };
    const Velocities velocities = velocitiesOf(n);
    expectSameFields(analyzed({row(0), row(1), row(2)}, velocities),
                     analyzed(viewOf(tensors), velocities));
}

TEST(GradientAnalysis, OutputsMayLieAnywhere) {
    const std::size_t n = 300;
    const std::vector<Tensor> tensors = mixedTensors(n, 14);
    const Velocities velocities = velocitiesOf(n);
    const AllFields<float> expected = analyzed(viewOf(tensors), velocities);
    std::vector<std::array<float, 4>> records(n, {-1, -1, -1, -1});
    std::vector<char> bytes(n * sizeof(float) + 1);
    GradientFields<float> out;
    out.lambda2 =
        ScalarView<float>(&records[n - 1][0], n, -static_cast<std::ptrdiff_t>(sizeof records[0]));
    out.vorticity = TripletView<float>(&records[0][1], n, sizeof records[0]);
    out.swirlStrength = ScalarView<float>(reinterpret_cast<float*>(&bytes[1]), n);
    analyzeGradients(viewOf(tensors), out);
    for (std::size_t k = 0; k < n; ++k) {
        EXPECT_TRUE(sameBits(records[n - 1 - k][0], expected.numbers[4][k]));
        EXPECT_TRUE(sameBits(out.vorticity[k], expected.triples[0][k]));
        EXPECT_TRUE(sameBits(out.swirlStrength[k], expected.numbers[5][k]));
    }
}

template <typename T, typename View>
void expectPartsEqualTheWhole(const View& view,
                              const std::vector<qel::TripletBase<T>>& velocities) {
    const std::size_t n = view.size();
    AllFields<T> whole(n), parts(n);
    analyzeGradients(view, velocities, whole.views(true));
    const TripletView<const T> velocity = velocities;
    for (std::size_t first = 0, size = 1; first < n; first += size, size = size * 2 + 1) {
        const std::size_t count = std::min(size, n - first);
        GradientFields<T> out = parts.views(true);
        for (ScalarView<T>* field : AllFields<T>::scalarsOf(out)) {
            *field = field->part(first, count);
        }
        for (TripletView<T>* field : AllFields<T>::tripletsOf(out)) {
            *field = field->part(first, count);
        }
        analyzeGradients(view.part(first, count), velocity.part(first, count), out);
    }
    expectSameFields(parts, whole);
}

TEST(GradientAnalysis, AFieldInPartsGivesTheSameBits) {
    const std::vector<Tensor> tensors = mixedTensors(1500, 15);
    const auto wide = doublesOf(tensors);
    const Velocities velocities = velocitiesOf(1500);
    std::vector<qel::TripletBase<double>> wideVelocities;
    for (const Triplet& v : velocities) {
        wideVelocities.emplace_back(v);
    }
    expectPartsEqualTheWhole(viewOf(tensors), velocities);
    expectPartsEqualTheWhole(viewOf(wide), wideVelocities);
}

TEST(GradientAnalysis, EachFieldByItselfHasTheBitsItHasAmongAll) {
    const std::vector<Tensor> tensors = mixedTensors(600, 16);
    const Velocities velocities = velocitiesOf(600);
    const AllFields<float> expected = analyzed(viewOf(tensors), velocities);
    AllFields<float> alone(600);
    const auto analyzeOnly = [&](auto keep) {
        GradientFields<float> all = alone.views(true);
        GradientFields<float> out;
        keep(all, out);
        analyzeGradients(viewOf(tensors), velocities, out);
    };
    for (std::size_t i = 0; i < AllFields<float>::kNumbers; ++i) {
        analyzeOnly([i](auto& all, auto& out) {
            *AllFields<float>::scalarsOf(out)[i] = *AllFields<float>::scalarsOf(all)[i];
        });
    }
    for (std::size_t i = 0; i < AllFields<float>::kTriples; ++i) {
        analyzeOnly([i](auto& all, auto& out) {
            *AllFields<float>::tripletsOf(out)[i] = *AllFields<float>::tripletsOf(all)[i];
        });
    }
    expectSameFields(alone, expected);
}

// -- Progress ----

TEST(GradientAnalysis, ProgressStopsTheCallAndSaysWhatIsWritten) {
    const std::vector<Tensor> tensors = mixedTensors(20000, 20);
    std::vector<float> q(20000, -7.0f);
    GradientFields<float> out;
    out.divergence = q;
    std::vector<double> fractions;
    GradientOptions options;
    options.progress = [&](double fraction) {
        fractions.push_back(fraction);
        return fractions.size() < 3;
    };
    const GradientReport report = analyzeGradients(viewOf(tensors), out, options);
    ASSERT_GT(report.analyzed, 0U);
    ASSERT_LT(report.analyzed, 20000U);
    EXPECT_EQ(fractions.back(), static_cast<double>(report.analyzed) / 20000.0);
    EXPECT_TRUE(
        sameBits(q[report.analyzed - 1], reference::divergence(tensors[report.analyzed - 1])));
    EXPECT_EQ(q[report.analyzed], -7.0f);
    fractions.clear();
    options.progress = [&](double fraction) {
        fractions.push_back(fraction);
        return true;
    };
    EXPECT_EQ(analyzeGradients(viewOf(tensors), out, options).analyzed, 20000U);
    EXPECT_EQ(fractions.back(), 1.0);
    EXPECT_TRUE(std::is_sorted(fractions.begin(), fractions.end()));
}

// -- Arguments ----

class GradientArguments : public ::testing::Test {
protected:
    template <typename Call>
    void expectRefused(const Call& call, const std::string& reason) {
        const AllFields<float> before = fields_;
        EXPECT_THAT(call, throwsInvalid("GradientAnalysis", "analyzeGradients", reason));
        expectSameFields(fields_, before);
    }

    const std::vector<Tensor> tensors_ = mixedTensors(10, 21);
    AllFields<float> fields_{10};
    GradientFields<float> out_ = fields_.views(false);
};

TEST_F(GradientArguments, AnOutputOfAnotherSizeIsRefused) {
    out_.swirlNormal = out_.swirlNormal.part(0, 9);
    expectRefused([&] { analyzeGradients(viewOf(tensors_), out_); },
                  "The output swirlNormal has 9 elements where 10 are needed.");
}

TEST_F(GradientArguments, OutputsThatShareMemoryAreRefused) {
    out_.lambda2 = out_.invariantQ;
    expectRefused([&] { analyzeGradients(viewOf(tensors_), out_); },
                  "The output lambda2 shares memory with the output invariantQ.");
    out_.lambda2 = ScalarView<float>(out_.discriminant.data(), 10, 0);
    expectRefused([&] { analyzeGradients(viewOf(tensors_), out_); },
                  "The elements of the output lambda2 share memory.");
}

TEST_F(GradientArguments, AnOutputInTheGradientsIsRefused) {
    std::vector<Tensor> own = tensors_;
    out_.divergence = ScalarView<float>(&own[0][4], 10, sizeof(Tensor));
    expectRefused([&] { analyzeGradients(viewOf(own), out_); },
                  "The output divergence shares memory with an input.");
    EXPECT_EQ(std::memcmp(own.data(), tensors_.data(), 10 * sizeof(Tensor)), 0);
}

TEST_F(GradientArguments, HelicityNeedsAVelocityForEachGradient) {
    out_ = fields_.views(true);
    expectRefused([&] { analyzeGradients(viewOf(tensors_), out_); },
                  "The helicity needs the velocity.");
    expectRefused([&] { analyzeGradients(viewOf(tensors_), velocitiesOf(9), out_); },
                  "There are 9 velocities for 10 gradients.");
    Velocities own = velocitiesOf(10);
    out_.vorticity = own;
    expectRefused([&] { analyzeGradients(viewOf(tensors_), own, out_); },
                  "The output vorticity shares memory with an input.");
}

TEST_F(GradientArguments, ANoiseFloorThatIsNegativeOrNoNumberIsRefused) {
    GradientOptions options;
    for (const double floor : {-1e-30, std::nan("")}) {
        options.noiseFloor = floor;
        expectRefused([&] { analyzeGradients(viewOf(tensors_), out_, options); },
                      "The noise floor is negative or no number.");
    }
}

// -- Memory and threads ----

TEST(GradientAnalysis, NothingIsAllocated) {
    const std::vector<Tensor> tensors = mixedTensors(1000, 22);
    const auto wide = doublesOf(tensors);
    const Velocities velocities = velocitiesOf(1000);
    AllFields<float> fields(1000);
    AllFields<double> wideFields(1000);
    const GradientFields<float> out = fields.views(true);
    const GradientFields<double> wideOut = wideFields.views(false);
    GradientOptions options;
    options.noiseFloor = 1e-6;
    options.notANumber = GradientOptions::NotANumber::zeroNegligible;
    const AllocationLimit limit(0);
    EXPECT_EQ(analyzeGradients(viewOf(tensors), velocities, out, options).analyzed, 1000U);
    EXPECT_EQ(analyzeGradients(viewOf(wide), wideOut, options).analyzed, 1000U);
}

TEST(Concurrency, ThreadsAnalyseOneField) {
    const std::size_t n = 4000;
    const std::vector<Tensor> tensors = mixedTensors(n, 23);
    AllFields<float> alone(n), together(n);
    analyzeGradients(viewOf(tensors), alone.views(false));
    const TensorView<const float> view = viewOf(tensors);
    std::vector<std::thread> threads;
    for (std::size_t part = 0; part < 4; ++part) {
        threads.emplace_back([&, part] {
            GradientFields<float> out = together.views(false);
            for (ScalarView<float>* field : AllFields<float>::scalarsOf(out)) {
                *field = field->empty() ? *field : field->part(part * 1000, 1000);
            }
            for (TripletView<float>* field : AllFields<float>::tripletsOf(out)) {
                *field = field->part(part * 1000, 1000);
            }
            analyzeGradients(view.part(part * 1000, 1000), out);
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    expectSameFields(together, alone);
}

} // namespace
