// Which array of a flow solution is taken for the velocity.
#include "flows/VelocityFinder.h"

#include <vtkCellData.h>
#include <vtkIntArray.h>

#include <gtest/gtest.h>

#include "Flows.h"
#include "console/Messages.h"

namespace {

using program::Leaf;
using program::Velocity;
using Image = vtkSmartPointer<vtkImageData>;

constexpr int kPoints = vtkDataObject::FIELD_ASSOCIATION_POINTS;
constexpr int kCells = vtkDataObject::FIELD_ASSOCIATION_CELLS;

// A block of eight points and one cell, without arrays.
Image block() {
    auto image = Image::New();
    image->SetDimensions(2, 2, 2);
    return image;
}

template <typename Array = vtkFloatArray>
void addArray(vtkDataSet* data, int association, const char* name, int components,
              double value = 1.0) {
    vtkNew<Array> array;
    array->SetName(name);
    array->SetNumberOfComponents(components);
    array->SetNumberOfTuples(data->GetNumberOfElements(association));
    array->Fill(value);
    data->GetAttributes(association)->AddArray(array);
}

Velocity find(const Image& image, const std::string& wanted = "") {
    return program::findVelocity({Leaf{image, ""}}, wanted);
}

std::string refusalOf(const Image& image, const std::string& wanted = "") {
    try {
        find(image, wanted);
    } catch (const program::UserError& error) {
        return error.what();
    }
    return "none";
}

TEST(VelocityFinder, UsualNamesAreTakenInAnyCase) {
    for (const char* name : {"velocity", "Velocity", "VELOCITIES", "vel", "U", "v", "UMean"}) {
        SCOPED_TRACE(name);
        const Image image = block();
        addArray(image, kPoints, "force", 3);
        addArray(image, kPoints, name, 3);
        EXPECT_EQ(find(image).name, name);
        EXPECT_EQ(find(image).origin, std::string("point array ") + name);
        EXPECT_EQ(find(image).density, "");
    }
}

TEST(VelocityFinder, AUsualNameOfAScalarIsNoVelocity) {
    const Image image = block();
    addArray(image, kPoints, "u", 1);
    addArray(image, kPoints, "wind", 3);
    EXPECT_EQ(find(image).name, "wind");
}

TEST(VelocityFinder, TheFirstOfTheUsualNamesWins) {
    const Image image = block();
    addArray(image, kPoints, "U", 3);
    addArray(image, kPoints, "velocity", 3);
    EXPECT_EQ(find(image).name, "velocity");
}

TEST(VelocityFinder, PointsComeBeforeCells) {
    const Image image = block();
    addArray(image, kCells, "velocity", 3);
    EXPECT_EQ(find(image).association, kCells);
    EXPECT_EQ(find(image).origin, "cell array velocity");
    addArray(image, kPoints, "U", 2);
    EXPECT_EQ(find(image).association, kPoints);
    EXPECT_EQ(find(image).name, "U");
}

TEST(VelocityFinder, MomentumIsDividedByDensity) {
    const Image image = block();
    addArray(image, kPoints, "Momentum", 3, 6.0);
    addArray(image, kPoints, "force", 3);
    EXPECT_NE(refusalOf(image).find("no velocity is found"), std::string::npos);
    addArray(image, kPoints, "rho", 1, 4.0);
    const Velocity velocity = find(image);
    EXPECT_EQ(velocity.origin, "point array Momentum divided by rho");
    const auto array = program::velocityOf(image, velocity);
    EXPECT_EQ(array->GetDataType(), VTK_FLOAT);
    ASSERT_EQ(array->GetNumberOfTuples(), 8);
    EXPECT_EQ(array->GetComponent(7, 2), 1.5);
}

TEST(VelocityFinder, MomentumInWholeNumbersKeepsItsFractions) {
    const Image image = block();
    addArray<vtkIntArray>(image, kPoints, "momentum", 3, 3.0);
    addArray<vtkIntArray>(image, kPoints, "density", 1, 2.0);
    const auto array = program::velocityOf(image, find(image));
    EXPECT_EQ(array->GetDataType(), VTK_DOUBLE);
    EXPECT_EQ(array->GetComponent(0, 0), 1.5);
}

TEST(VelocityFinder, TheOnlyVectorIsTakenWhateverItsName) {
    const Image image = block();
    addArray(image, kPoints, "pressure", 1);
    addArray(image, kCells, "wind", 3);
    EXPECT_EQ(find(image).name, "wind");
    addArray(image, kCells, "force", 3);
    EXPECT_EQ(refusalOf(image), "no velocity is found; name one with --velocity: the arrays are "
                                "pressure (point, 1 component), wind (cell, 3 components), "
                                "force (cell, 3 components)");
}

TEST(VelocityFinder, ANamedArrayIsTaken) {
    const Image image = block();
    addArray(image, kPoints, "velocity", 3);
    addArray(image, kCells, "wind", 2);
    addArray(image, kPoints, "p", 1);
    EXPECT_EQ(find(image, "wind").association, kCells);
    EXPECT_EQ(refusalOf(image, "p").rfind("the array p has not two or three components; ", 0), 0U);
    EXPECT_EQ(refusalOf(image, "Wind").rfind("there is no array Wind; the arrays are ", 0), 0U);
}

TEST(VelocityFinder, ArraysOfAllBlocksCount) {
    const Image first = block();
    const Image second = block();
    addArray(second, kPoints, "velocity", 3);
    const Velocity velocity =
        program::findVelocity({Leaf{first, "first"}, Leaf{second, "second"}}, "");
    EXPECT_EQ(program::velocityOf(first, velocity), nullptr);
    EXPECT_EQ(program::velocityOf(second, velocity), second->GetPointData()->GetArray("velocity"));
}

TEST(VelocityFinder, ABlockWithoutTheDensityHasNoVelocity) {
    const Image first = block();
    const Image second = block();
    addArray(first, kPoints, "momentum", 3);
    addArray(second, kPoints, "momentum", 3);
    addArray(second, kPoints, "density", 1);
    const Velocity velocity = program::findVelocity({Leaf{first, ""}, Leaf{second, ""}}, "");
    EXPECT_EQ(program::velocityOf(first, velocity), nullptr);
    EXPECT_NE(program::velocityOf(second, velocity), nullptr);
}

TEST(VelocityFinder, SaysSoWhereThereAreNoArrays) {
    EXPECT_EQ(refusalOf(block()),
              "no velocity is found; name one with --velocity: there are no arrays");
}

} // namespace
