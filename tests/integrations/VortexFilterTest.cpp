// vtkQELVortexFilter against closed forms, the library called directly and VTK's own fields.
#include <cmath>
#include <cstring>
#include <limits>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <vtkCallbackCommand.h>
#include <vtkCellData.h>
#include <vtkCommand.h>
#include <vtkCompositeDataIterator.h>
#include <vtkDoubleArray.h>
#include <vtkExecutive.h>
#include <vtkFloatArray.h>
#include <vtkGradientFilter.h>
#include <vtkImageData.h>
#include <vtkIntArray.h>
#include <vtkMultiBlockDataSet.h>
#include <vtkNew.h>
#include <vtkPointData.h>
#include <vtkSMPTools.h>
#include <vtkUnsignedCharArray.h>

#include <qel/FloatQELVectorConcrete.h>
#include <qel/TensorEigenizer.h>

#include <vtkQELVortexFilter.h>

#include "Flows.h"

namespace {

using namespace qel_test;

constexpr float kUndefined = std::numeric_limits<float>::max();

// -- Closed forms ----

TEST(VortexFilter, GivesTheFieldsOfRigidRotation) {
    const double rotation[3][3] = {{0, -1, 0}, {1, 0, 0}, {0, 0, 0}};
    Image image = makeImage(6, 5, 4);
    addLinearVelocity(image, rotation);
    auto filter = filterOn(image);
    filter->Update();
    const auto value = [&](const char* name, int component = 0) {
        return field(filter->GetOutput(), name)->GetComponent(57, component);
    };
    EXPECT_NEAR(value("Q"), 1.0, 1e-5);
    EXPECT_NEAR(value("QCriterion"), 1.0, 1e-5);
    EXPECT_NEAR(value("Divergence"), 0.0, 1e-5);
    EXPECT_GT(value("Discriminant"), 0.0);
    EXPECT_NEAR(value("Vorticity", 2), 2.0, 1e-5);
    EXPECT_NEAR(value("Lambda2"), -1.0, 1e-5);
    EXPECT_NEAR(value("SwirlStrength"), 1.0, 1e-5);
    EXPECT_NEAR(value("RealEigenvalue"), 0.0, 1e-5);
    EXPECT_NEAR(value("RealEigenvector", 2), 1.0, 1e-5);
    EXPECT_NEAR(value("SwirlNormal", 2), 1.0, 1e-5);
    EXPECT_NEAR(value("SwirlStretchRate"), 1.0, 1e-5);
    EXPECT_NEAR(value("RealEigenHelicity"), 2.0, 1e-5);
    EXPECT_NEAR(value("NormalEigenHelicity"), 2.0, 1e-5);
}

// With divergence the two definitions of Q part.
TEST(VortexFilter, BothDefinitionsOfQDifferByHalfTheSquareOfTheDivergence) {
    const double expansion[3][3] = {{2, 0, 0}, {0, 3, 0}, {0, 0, -1}};
    Image image = makeImage(4, 4, 4);
    addLinearVelocity(image, expansion);
    auto filter = filterOn(image);
    filter->Update();
    EXPECT_NEAR(field(filter->GetOutput(), "Q")->GetValue(21), 6.0 - 2.0 - 3.0, 1e-4);
    EXPECT_NEAR(field(filter->GetOutput(), "QCriterion")->GetValue(21), -0.5 * (4 + 9 + 1), 1e-4);
}

TEST(VortexFilter, PadsVelocitiesOfTwoComponents) {
    Image image = makeImage(7, 6, 1);
    addRandomArray<vtkDoubleArray>(image, kPoints, "u", 2);
    auto filter = filterOn(image);
    filter->Update();

    Image padded = makeImage(7, 6, 1);
    vtkNew<vtkDoubleArray> u;
    u->SetName("u");
    u->SetNumberOfComponents(3);
    for (vtkIdType i = 0; i < image->GetNumberOfPoints(); ++i) {
        const double* two = image->GetPointData()->GetArray("u")->GetTuple(i);
        u->InsertNextTuple3(two[0], two[1], 0.0);
    }
    padded->GetPointData()->AddArray(u);
    auto reference = filterOn(padded);
    reference->Update();
    expectSameFields(filter->GetOutput(), reference->GetOutput(), kPoints);
}

// -- Against VTK ----

TEST(VortexFilter, AgreesWithTheQCriterionAndVorticityOfVtk) {
    Image image = makeImage(9, 8, 7);
    addRandomArray<vtkFloatArray>(image, kPoints, "u", 3);
    auto filter = filterOn(image);
    filter->Update();
    vtkNew<vtkGradientFilter> reference;
    reference->SetInputData(image);
    reference->SetInputArrayToProcess(0, 0, 0, kPoints, "u");
    reference->ComputeQCriterionOn();
    reference->ComputeVorticityOn();
    reference->ComputeDivergenceOn();
    reference->Update();
    vtkPointData* expected = reference->GetOutput()->GetPointData();
    for (vtkIdType i = 0; i < image->GetNumberOfPoints(); ++i) {
        const double q = expected->GetArray("Q-criterion")->GetComponent(i, 0);
        EXPECT_NEAR(field(filter->GetOutput(), "QCriterion")->GetValue(i), q,
                    1e-4 * std::max(1.0, std::abs(q)));
        EXPECT_NEAR(field(filter->GetOutput(), "Divergence")->GetValue(i),
                    expected->GetArray("Divergence")->GetComponent(i, 0), 1e-4);
        for (int c = 0; c < 3; ++c) {
            EXPECT_NEAR(field(filter->GetOutput(), "Vorticity")->GetComponent(i, c),
                        expected->GetArray("Vorticity")->GetComponent(i, c), 1e-4);
        }
    }
}

// -- Against the library ----

// More points than a block, so that the seams between blocks are seen.
TEST(VortexFilter, EqualsTheLibraryCalledDirectlyBitForBit) {
    Image image = makeImage(25, 20, 19);
    addRandomArray<vtkFloatArray>(image, kPoints, "u", 3);
    addRandomArray<vtkFloatArray>(image, kPoints, "gradient", 9, 5.0);
    auto filter = filterOn(image);
    filter->SetGradientArrayName("gradient");
    filter->Update();

    const auto n = static_cast<std::size_t>(image->GetNumberOfPoints());
    qel::TripletQELVector rows[3];
    qel::TripletQELVector velocity;
    vtkDataArray* gradient = image->GetPointData()->GetArray("gradient");
    for (vtkIdType i = 0; i < image->GetNumberOfPoints(); ++i) {
        const auto at = [&](int c) { return static_cast<float>(gradient->GetComponent(i, c)); };
        for (int row = 0; row < 3; ++row) {
            rows[row].push_back({at(3 * row), at(3 * row + 1), at(3 * row + 2)});
        }
        const double* u = image->GetPointData()->GetArray("u")->GetTuple(i);
        velocity.push_back(
            {static_cast<float>(u[0]), static_cast<float>(u[1]), static_cast<float>(u[2])});
    }
    const qel::TensorEigenizer tensor(n, rows[0], rows[1], rows[2]);
    qel::FloatQELVectorConcrete scalar;
    qel::FloatQELVectorConcrete swirl;
    qel::FloatQELVectorConcrete real;
    qel::TripletQELVector triplet;
    const auto expectBits = [&](const char* name, const float* expected) {
        vtkFloatArray* array = field(filter->GetOutput(), name);
        const std::size_t bytes = static_cast<std::size_t>(array->GetNumberOfValues()) * 4;
        EXPECT_EQ(std::memcmp(array->GetPointer(0), expected, bytes), 0) << name;
    };
    const auto expectScalar = [&](const char* name) {
        expectBits(name, scalar.getInternals().data());
    };
    const auto expectTriplet = [&](const char* name) {
        expectBits(name, &triplet.getInternals().data()->x);
    };
    tensor.getInvariantQ(scalar), expectScalar("Q");
    tensor.getDivergence(scalar), expectScalar("Divergence");
    tensor.getDiscrim(scalar), expectScalar("Discriminant");
    tensor.getVorticity(triplet), expectTriplet("Vorticity");
    tensor.getHelicity(velocity, scalar), expectScalar("Helicity");
    tensor.get2ndEValSymmTT(scalar), expectScalar("Lambda2");
    tensor.getSwirlStrength(swirl, real);
    expectBits("SwirlStrength", swirl.getInternals().data());
    expectBits("RealEigenvalue", real.getInternals().data());
    tensor.getEVecReal(swirl, real, triplet), expectTriplet("RealEigenvector");
    tensor.getSwirlNormal(swirl, real, triplet), expectTriplet("SwirlNormal");
    tensor.getSwirlStretchRate(swirl, real, scalar), expectScalar("SwirlStretchRate");
    tensor.getRealEigenHelicity(swirl, real, scalar), expectScalar("RealEigenHelicity");
    tensor.getNormEigenHelicity(swirl, real, scalar), expectScalar("NormalEigenHelicity");
}

// -- Undefined points ----

TEST(VortexFilter, HiddenAndGhostPointsAreUndefined) {
    Image image = makeImage(5, 5, 5);
    addRandomArray<vtkFloatArray>(image, kPoints, "u", 3);
    vtkNew<vtkUnsignedCharArray> ghosts;
    ghosts->SetName(vtkDataSetAttributes::GhostArrayName());
    ghosts->SetNumberOfTuples(125);
    ghosts->FillValue(0);
    ghosts->SetValue(3, vtkDataSetAttributes::HIDDENPOINT);
    ghosts->SetValue(90, vtkDataSetAttributes::DUPLICATEPOINT);
    image->GetPointData()->AddArray(ghosts);
    auto filter = filterOn(image);
    filter->Update();
    EXPECT_EQ(filter->GetNumberOfHiddenTuples(), 2);
    for (const FieldInfo& info : vtkQELVortex::fields()) {
        vtkFloatArray* array = field(filter->GetOutput(), info.array);
        for (vtkIdType i = 0; i < 125; ++i) {
            EXPECT_EQ(array->GetComponent(i, info.components - 1) == double{kUndefined},
                      i == 3 || i == 90)
                << info.array << " " << i;
        }
    }
}

TEST(VortexFilter, BlankedPointsAreUndefined) {
    Image image = makeImage(4, 4, 4);
    addRandomArray<vtkFloatArray>(image, kPoints, "u", 3);
    vtkNew<vtkIntArray> blanking;
    blanking->SetName("IBlank");
    blanking->SetNumberOfTuples(64);
    blanking->FillValue(1);
    blanking->SetValue(10, 0);
    image->GetPointData()->AddArray(blanking);
    auto filter = filterOn(image);
    filter->Update();
    EXPECT_EQ(field(filter->GetOutput(), "Q")->GetValue(10), kUndefined);
    EXPECT_NE(field(filter->GetOutput(), "Q")->GetValue(11), kUndefined);
}

TEST(VortexFilter, GradientsThatAreNotFiniteAreCountedAndNamed) {
    Image image = makeImage(6, 6, 6);
    addRandomArray<vtkDoubleArray>(image, kPoints, "u", 3);
    image->GetPointData()->GetArray("u")->SetComponent(100, 1, std::nan(""));
    auto filter = filterOn(image);
    Listener warnings(filter, vtkCommand::WarningEvent);
    filter->Update();
    // The differences at the six neighbours reach the point; its own do not.
    EXPECT_EQ(filter->GetNumberOfNonFiniteGradients(), 6);
    EXPECT_NE(warnings.text.find("6 gradients are not finite"), std::string::npos);
    EXPECT_NE(warnings.text.find("points undefined: 64 94 99 101 106 ..."), std::string::npos)
        << warnings.text;
    EXPECT_EQ(field(filter->GetOutput(), "Lambda2")->GetValue(99), kUndefined);
    EXPECT_NE(field(filter->GetOutput(), "Lambda2")->GetValue(100), kUndefined);
}

TEST(VortexFilter, UndefinedPointsAreNaNWhereThatIsAskedFor) {
    Image image = makeImage(6, 6, 6);
    addRandomArray<vtkDoubleArray>(image, kPoints, "u", 3);
    image->AllocatePointGhostArray();
    image->GetPointGhostArray()->SetValue(17, vtkDataSetAttributes::HIDDENPOINT);
    auto filter = filterOn(image);
    filter->UndefinedIsNaNOn();
    filter->Update();
    EXPECT_TRUE(std::isnan(field(filter->GetOutput(), "Q")->GetValue(17)));
    for (int c = 0; c < 3; ++c) {
        EXPECT_TRUE(std::isnan(field(filter->GetOutput(), "Vorticity")->GetComponent(17, c)));
    }
    EXPECT_FALSE(std::isnan(field(filter->GetOutput(), "Q")->GetValue(18)));
}

// -- Threads ----

// Restores VTK's own choice at its end.
class Threads {
public:
    explicit Threads(int count) {
        vtkSMPTools::SetBackend(count == 1 ? "Sequential" : "STDThread");
        vtkSMPTools::Initialize(count);
    }
    ~Threads() {
        vtkSMPTools::Initialize(0);
        vtkSMPTools::SetBackend(before_.c_str());
    }
    Threads(const Threads&) = delete;
    Threads& operator=(const Threads&) = delete;

private:
    std::string before_ = vtkSMPTools::GetBackend();
};

TEST(VortexFilter, GivesTheSameBitsOnAnyNumberOfThreads) {
    Image image = makeImage(31, 30, 29); // more than a few blocks
    addRandomArray<vtkDoubleArray>(image, kPoints, "u", 3);
    vtkDataArray* u = image->GetPointData()->GetArray("u");
    for (vtkIdType i = 100; i < u->GetNumberOfTuples(); i += 5000) {
        u->SetComponent(i, 1, std::numeric_limits<double>::quiet_NaN());
    }
    vtkObject::GlobalWarningDisplayOff();
    const auto run = [&](int threads) {
        const Threads guard(threads);
        auto filter = filterOn(image);
        filter->Update();
        return filter;
    };
    const auto alone = run(1);
    for (const int threads : {2, 3, 8}) {
        SCOPED_TRACE(threads);
        const auto shared = run(threads);
        expectSameFields(alone->GetOutput(), shared->GetOutput(), kPoints);
        EXPECT_EQ(alone->GetNumberOfZeroedSwirls(), shared->GetNumberOfZeroedSwirls());
        EXPECT_EQ(alone->GetNumberOfNonFiniteGradients(), shared->GetNumberOfNonFiniteGradients());
    }
    vtkObject::GlobalWarningDisplayOn();
}

TEST(VortexFilter, NamesTheFirstPointsThatAreNotFiniteOnAnyNumberOfThreads) {
    Image image = makeImage(40, 40, 40);
    addRandomArray<vtkDoubleArray>(image, kPoints, "gradient", 9);
    addRandomArray<vtkDoubleArray>(image, kPoints, "u", 3);
    vtkDataArray* gradient = image->GetPointData()->GetArray("gradient");
    for (vtkIdType i = 7; i < gradient->GetNumberOfTuples(); i += 9000) {
        gradient->SetComponent(i, 4, std::numeric_limits<double>::infinity());
    }
    for (const int threads : {1, 4}) {
        const Threads guard(threads);
        auto filter = filterOn(image);
        filter->SetGradientArrayName("gradient");
        Listener warnings(filter, vtkCommand::WarningEvent);
        filter->Update();
        EXPECT_NE(warnings.text.find("8 gradients are not finite"), std::string::npos);
        EXPECT_NE(warnings.text.find("points undefined: 7 9007 18007 27007 36007 ..."),
                  std::string::npos)
            << warnings.text;
    }
}

// -- Scale ----

void scaleGradients(vtkDataSet* data, int exponent, vtkIdType step) {
    vtkDataArray* gradient = data->GetPointData()->GetArray("gradient");
    for (vtkIdType i = 0; i < gradient->GetNumberOfTuples(); i += step) {
        for (int c = 0; c < 9; ++c) {
            gradient->SetComponent(i, c, std::ldexp(gradient->GetComponent(i, c), exponent));
        }
    }
}

vtkSmartPointer<vtkQELVortexFilter> analysed(vtkImageData* image) {
    auto filter = filterOn(image);
    filter->SetGradientArrayName("gradient");
    filter->Update();
    return filter;
}

// Thresholds on fourth powers of the gradient would make all of this zero. Every second point is
// tiny: each is scaled by itself, whatever the others are.
TEST(VortexFilter, TinyGradientsAreAnalysedScaledPointByPoint) {
    Image image = makeImage(6, 6, 6);
    addRandomArray<vtkDoubleArray>(image, kPoints, "gradient", 9, 1.0);
    addRandomArray<vtkDoubleArray>(image, kPoints, "u", 3);
    const auto reference = analysed(image);
    constexpr int kExponent = -35;
    Image tiny = makeImage(6, 6, 6);
    tiny->DeepCopy(image);
    scaleGradients(tiny, kExponent, 2);
    const auto filter = analysed(tiny);
    for (const FieldInfo& info : vtkQELVortex::fields()) {
        if (info.field == vtkQELVortex::Discriminant) {
            continue; // its sixth power is below the smallest float
        }
        vtkFloatArray* expected = field(reference->GetOutput(), info.array);
        vtkFloatArray* actual = field(filter->GetOutput(), info.array);
        for (vtkIdType i = 0; i < expected->GetNumberOfValues(); ++i) {
            const bool isTiny = i / info.components % 2 == 0;
            const double value =
                std::ldexp(double{expected->GetValue(i)}, isTiny ? kExponent * info.degree : 0);
            EXPECT_NEAR(actual->GetValue(i), value, 1e-6 * std::abs(value)) << info.array << i;
        }
    }
}

TEST(VortexFilter, ADiscriminantBeyondFloatIsInfiniteAndOtherFieldsStand) {
    Image image = makeImage(6, 6, 6);
    addRandomArray<vtkFloatArray>(image, kPoints, "gradient", 9, 1.0);
    addRandomArray<vtkFloatArray>(image, kPoints, "u", 3);
    const auto reference = analysed(image);
    scaleGradients(image, 30, 1);
    const auto filter = analysed(image);
    for (vtkIdType i = 0; i < image->GetNumberOfPoints(); ++i) {
        const float expected = field(reference->GetOutput(), "Discriminant")->GetValue(i);
        const float discriminant = field(filter->GetOutput(), "Discriminant")->GetValue(i);
        EXPECT_FALSE(std::isnan(discriminant));
        EXPECT_EQ(discriminant > 0.0F, expected > 0.0F);
        EXPECT_EQ(field(filter->GetOutput(), "Lambda2")->GetValue(i),
                  std::ldexp(field(reference->GetOutput(), "Lambda2")->GetValue(i), 60));
    }
}

// -- Noise floor ----

// A shear along a wall has no vortex: its eigenvalues are all 0. Rounding moves the elements that
// are 0 in exact arithmetic by a little.
TEST(VortexFilter, TheNoiseFloorLeavesNoVortexInAShear) {
    Image image = makeImage(20, 20, 20);
    addRandomArray<vtkFloatArray>(image, kPoints, "gradient", 9, 1e-5);
    addRandomArray<vtkFloatArray>(image, kPoints, "u", 3);
    vtkDataArray* gradient = image->GetPointData()->GetArray("gradient");
    for (vtkIdType i = 0; i < gradient->GetNumberOfTuples(); ++i) {
        gradient->SetComponent(i, 1, 100.0 + static_cast<double>(i));
    }
    const auto vorticesIn = [&](vtkQELVortexFilter* filter) {
        vtkFloatArray* swirl = field(filter->GetOutput(), "SwirlStrength");
        vtkFloatArray* lambda2 = field(filter->GetOutput(), "Lambda2");
        vtkIdType count = 0;
        for (vtkIdType i = 0; i < swirl->GetNumberOfTuples(); ++i) {
            EXPECT_FALSE(std::isnan(swirl->GetValue(i)));
            count += swirl->GetValue(i) > 0.0F || lambda2->GetValue(i) < 0.0F;
        }
        return count;
    };
    const auto without = analysed(image);
    EXPECT_GT(vorticesIn(without), image->GetNumberOfPoints() / 4);
    EXPECT_EQ(without->GetNumberBelowNoiseFloor(), 0);
    auto with = filterOn(image);
    with->SetGradientArrayName("gradient");
    with->SetNoiseFloor(1e-6);
    with->Update();
    EXPECT_EQ(vorticesIn(with), 0);
    EXPECT_GT(with->GetNumberBelowNoiseFloor(), image->GetNumberOfPoints() / 4);
    EXPECT_LE(with->GetNumberBelowNoiseFloor(), image->GetNumberOfPoints());
}

// -- Pipeline ----

TEST(VortexFilter, ComputesOnlyWhatIsEnabled) {
    Image image = makeImage(4, 4, 4);
    addRandomArray<vtkFloatArray>(image, kPoints, "u", 3);
    auto filter = filterOn(image);
    filter->DisableAllFields();
    filter->SetFieldEnabled(vtkQELVortex::Lambda2, true);
    filter->Update();
    EXPECT_EQ(filter->GetOutput()->GetPointData()->GetNumberOfArrays(), 2);
    EXPECT_EQ(image->GetPointData()->GetNumberOfArrays(), 1);
}

TEST(VortexFilter, TakesTheActiveVectorsAndCellData) {
    Image image = makeImage(5, 4, 3);
    addRandomArray<vtkFloatArray>(image, kCells, "u", 3);
    image->GetCellData()->SetActiveVectors("u");
    vtkNew<vtkQELVortexFilter> filter;
    filter->SetInputData(image);
    filter->Update();
    EXPECT_EQ(field(filter->GetOutput(), "Q", kCells)->GetNumberOfTuples(), 4 * 3 * 2);
}

TEST(VortexFilter, WorksOnEachPieceOfACompositeInput) {
    vtkNew<vtkMultiBlockDataSet> blocks;
    for (unsigned block = 0; block < 3; ++block) {
        Image image = makeImage(4, 5, 3 + static_cast<int>(block));
        addRandomArray<vtkFloatArray>(image, kPoints, "u", 3);
        blocks->SetBlock(block, image);
    }
    auto filter = filterOn(blocks);
    filter->Update();
    auto* output = vtkMultiBlockDataSet::SafeDownCast(filter->GetOutputDataObject(0));
    ASSERT_NE(output, nullptr);
    for (unsigned block = 0; block < 3; ++block) {
        EXPECT_EQ(field(output->GetBlock(block), "Lambda2")->GetNumberOfTuples(),
                  4 * 5 * (3 + static_cast<int>(block)));
    }
}

TEST(VortexFilter, ReportsProgressAndCanBeAborted) {
    Image image = makeImage(4, 4, 20);
    addRandomArray<vtkFloatArray>(image, kPoints, "u", 3);
    auto filter = filterOn(image);
    filter->SetSlabSize(1);
    vtkNew<vtkCallbackCommand> stop;
    stop->SetCallback([](vtkObject* caller, unsigned long, void*, void* share) {
        if (*static_cast<double*>(share) > 0.4) {
            vtkAlgorithm::SafeDownCast(caller)->SetAbortExecute(1);
        }
    });
    Listener progress(filter, vtkCommand::ProgressEvent);
    filter->AddObserver(vtkCommand::ProgressEvent, stop);
    filter->Update();
    EXPECT_GT(progress.count, 5);
    EXPECT_LT(progress.count, 15);
    EXPECT_EQ(filter->GetOutput()->GetPointData()->GetNumberOfArrays(), 1);
}

TEST(VortexFilter, RefusesArraysThatAreNoVelocity) {
    Image image = makeImage(3, 3, 3);
    addRandomArray<vtkFloatArray>(image, kPoints, "p", 1);
    for (const char* name : {"p", "missing"}) {
        auto filter = filterOn(image, kPoints, name);
        Listener errors(filter, vtkCommand::ErrorEvent);
        vtkObject* executive = filter->GetExecutive();
        Listener failures(executive, vtkCommand::ErrorEvent);
        filter->Update();
        EXPECT_GT(errors.count, 0) << name;
    }
}

TEST(VortexFilter, AnEmptyInputGivesAnEmptyOutput) {
    vtkNew<vtkImageData> empty;
    auto filter = filterOn(empty);
    filter->Update();
    EXPECT_EQ(filter->GetOutput()->GetNumberOfPoints(), 0);
}

TEST(VortexFilter, PrintsItsState) {
    vtkNew<vtkQELVortexFilter> filter;
    std::ostringstream text;
    filter->Print(text);
    EXPECT_NE(text.str().find("SlabSize: 1000000"), std::string::npos);
    EXPECT_NE(text.str().find("Lambda2"), std::string::npos);
}

TEST(VortexFields, AreFoundByKeyAndByArrayName) {
    for (const FieldInfo& info : vtkQELVortex::fields()) {
        EXPECT_EQ(vtkQELVortex::findField(info.key), &info);
        EXPECT_EQ(vtkQELVortex::findField(info.array), &info);
        EXPECT_EQ(&vtkQELVortex::fields()[static_cast<std::size_t>(info.field)], &info);
    }
    EXPECT_EQ(vtkQELVortex::findField("nonsense"), nullptr);
}

} // namespace
