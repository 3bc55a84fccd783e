// The picture of the vortices in a flow.
#include "pictures/Pictures.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include <vtkCellDataToPointData.h>
#include <vtkContourFilter.h>
#include <vtkDataSetSurfaceFilter.h>
#include <vtkDiscretizableColorTransferFunction.h>
#include <vtkFeatureEdges.h>
#include <vtkFloatArray.h>
#include <vtkPointData.h>
#include <vtkStructuredGridOutlineFilter.h>
#include <vtkThreshold.h>
#include <vtkUnstructuredGrid.h>

#include "console/Messages.h"
#include "console/Text.h"
#include "console/VtkRun.h"
#include "flows/Leaves.h"
#include "pictures/Picture.h"

namespace program {
namespace {

using vtkQELVortex::Field;
using vtkQELVortex::FieldInfo;
using Pieces = std::vector<vtkSmartPointer<vtkDataSet>>;

constexpr int kBands = 21;            // of filled contours; odd, so that one band is about zero
constexpr double kVortexShare = 0.5;  // of all rotation, lies inside the surface
constexpr double kColourShare = 0.98; // of all values, lies within the colours
constexpr double kSharpAngle = 30.0;  // of an edge in the outline, degrees
constexpr double kMaxDefined = 1e38;  // every defined value is below this
constexpr vtkIdType kSampleSize = 200000;

std::string number(double value) {
    return formatted("%.4g", value + 0.0); // no minus before a zero
}

std::string nameWithUnit(const FieldInfo& field) {
    return joined(field.array, " [", field.unit, "]");
}

// -- Shapes ----

// What a filter makes of a data set.
template <typename Filter>
auto outputOf(Filter* filter, vtkDataSet* data, const std::string& what) {
    filter->SetInputData(data);
    run(filter, what);
    return vtk::MakeSmartPointer(filter->GetOutput());
}

vtkSmartPointer<vtkPolyData> surfaceOf(vtkDataSet* data) {
    return outputOf(vtkNew<vtkDataSetSurfaceFilter>().Get(), data, "surface");
}

// The edges of a block if the data are curvilinear, otherwise the open and the sharp edges.
vtkSmartPointer<vtkPolyData> outlineOf(vtkDataSet* data) {
    if (data->IsA("vtkStructuredGrid") != 0) {
        return outputOf(vtkNew<vtkStructuredGridOutlineFilter>().Get(), data, "outline");
    }
    vtkNew<vtkFeatureEdges> edges;
    edges->SetFeatureAngle(kSharpAngle);
    edges->ManifoldEdgesOff();
    edges->NonManifoldEdgesOff();
    edges->ColoringOff();
    return outputOf(edges.Get(), surfaceOf(data), "outline");
}

bool hasUndefined(vtkDataArray* array) {
    auto* floats = vtkFloatArray::FastDownCast(array);
    return floats != nullptr && !std::all_of(floats->Begin(), floats->End(), [](float value) {
               return std::abs(value) < kMaxDefined;
           });
}

// A data set with no more than some fields on its points, and without the cells at which one of
// them is undefined.
vtkSmartPointer<vtkDataSet> drawable(vtkDataSet* data, int association,
                                     const std::vector<std::string>& fields) {
    vtkSmartPointer<vtkDataSet> result = vtk::TakeSmartPointer(data->NewInstance());
    result->CopyStructure(data);
    for (const std::string& field : fields) {
        result->GetAttributes(association)
            ->AddArray(data->GetAttributes(association)->GetArray(field.c_str()));
    }
    for (const std::string& field : fields) {
        if (hasUndefined(result->GetAttributes(association)->GetArray(field.c_str()))) {
            vtkNew<vtkThreshold> defined;
            defined->SetInputArrayToProcess(0, 0, 0, association, field.c_str());
            defined->SetThresholdFunction(vtkThreshold::THRESHOLD_BETWEEN);
            defined->SetLowerThreshold(-kMaxDefined);
            defined->SetUpperThreshold(kMaxDefined);
            result = outputOf(defined.Get(), result, "hiding undefined points");
        }
    }
    return association == vtkDataObject::FIELD_ASSOCIATION_POINTS
               ? result
               : outputOf(vtkNew<vtkCellDataToPointData>().Get(), result, "averaging at points");
}

// -- Values ----

// Values at some thousand points of a field, sorted.
std::vector<double> sortedSample(const Pieces& pieces, const std::string& field) {
    vtkIdType total = 0;
    for (const auto& piece : pieces) {
        total += piece->GetNumberOfPoints();
    }
    const vtkIdType stride = total / kSampleSize + 1;
    std::vector<double> values;
    for (const auto& piece : pieces) {
        vtkDataArray* array = piece->GetPointData()->GetArray(field.c_str());
        for (vtkIdType i = 0; array != nullptr && i < array->GetNumberOfTuples(); i += stride) {
            values.push_back(array->GetComponent(i, 0));
        }
    }
    std::sort(values.begin(), values.end());
    return values;
}

// The value below which a share of sorted values lies; 0 for none.
double quantile(const std::vector<double>& sorted, double share) {
    const double last = static_cast<double>(sorted.size()) - 1.0;
    return sorted.empty() ? 0.0 : sorted[static_cast<std::size_t>(share * last)];
}

// The value beyond which a share of all rotation lies. The measure is a rate, the square root of
// the field, so that neither much faint noise nor a few extremes at a wall decide.
double suitableValue(const std::vector<double>& values, Field field) {
    const double sign = field == vtkQELVortex::Lambda2 ? -1.0 : 1.0; // of values in vortices
    std::vector<double> rates;
    for (const double value : values) {
        rates.push_back(std::sqrt(std::max(sign * value, 0.0)));
    }
    std::sort(rates.begin(), rates.end(), std::greater<>());
    double wanted = kVortexShare * std::accumulate(rates.begin(), rates.end(), 0.0);
    double last = 0.0;
    for (auto rate = rates.begin(); rate != rates.end() && wanted > 0.0; ++rate) {
        last = *rate;
        wanted -= last;
    }
    return sign * last * last;
}

// -- Flows ----

struct Scene {
    Pieces pieces; // with the fields
    std::vector<Leaf> analysed;
    std::vector<Leaf> others; // walls and the like
    vtkBoundingBox bounds;    // of what was analysed
    int dimension = 0;
};

Scene sceneOf(vtkDataObject* flow, int association, const PictureChoice& choice) {
    const std::vector<std::string> names{vtkQELVortex::info(choice.field).array,
                                         vtkQELVortex::info(choice.colour).array};
    Scene scene;
    for (const Leaf& leaf : leavesOf(flow)) {
        if (leaf.data->GetAttributes(association)->HasArray(names[0].c_str()) == 0) {
            scene.others.push_back(leaf);
            continue;
        }
        scene.analysed.push_back(leaf);
        scene.bounds.AddBounds(leaf.data->GetBounds());
        scene.dimension = std::max(scene.dimension, cellDimension(leaf.data));
        scene.pieces.push_back(drawable(leaf.data, association, names));
    }
    return scene;
}

void addSurfaces(const Scene& scene, const PictureChoice& choice, Picture& picture) {
    const FieldInfo& field = vtkQELVortex::info(choice.field);
    const std::string colour = vtkQELVortex::info(choice.colour).array;
    const double value = choice.value.has_value()
                             ? *choice.value
                             : suitableValue(sortedSample(scene.pieces, field.array), choice.field);
    Pieces surfaces;
    vtkIdType points = 0;
    for (const auto& piece : scene.pieces) {
        vtkNew<vtkContourFilter> contour;
        contour->SetInputArrayToProcess(0, 0, 0, vtkDataObject::FIELD_ASSOCIATION_POINTS,
                                        field.array);
        contour->SetValue(0, value);
        contour->ComputeScalarsOff();
        surfaces.emplace_back(outputOf(contour.Get(), piece, "iso-surface"));
        points += surfaces.back()->GetNumberOfPoints();
    }
    if (points == 0) {
        warn("the picture shows no vortices: there is no surface ", field.array, " = ",
             number(value));
    }
    const std::vector<double> sample = sortedSample(surfaces, colour);
    const double high = quantile(sample, kColourShare);
    // Differences of a few per cent are not to look like great ones.
    const double low = std::min(quantile(sample, 1.0 - kColourShare), 0.5 * high);
    const double range = high > low ? high - low : 1.0;
    // Dark to light, through hues of even steps in lightness.
    vtkNew<vtkColorTransferFunction> colours;
    colours->SetColorSpaceToLab();
    colours->AddRGBPoint(low, 0.24, 0.06, 0.36);
    colours->AddRGBPoint(low + 0.35 * range, 0.16, 0.36, 0.62);
    colours->AddRGBPoint(low + 0.65 * range, 0.16, 0.66, 0.50);
    colours->AddRGBPoint(low + range, 0.98, 0.88, 0.22);
    for (const auto& surface : surfaces) {
        picture.addColoured(vtkPolyData::SafeDownCast(surface), colour, colours, true);
    }
    for (const Leaf& leaf : scene.others) {
        picture.addWall(surfaceOf(leaf.data));
    }
    picture.addColourBar(colours, nameWithUnit(vtkQELVortex::info(choice.colour)));
    picture.addTitle(joined("Iso-surface ", field.array, " = ", number(value), " ", field.unit,
                            ", coloured by ", colour));
}

void addContours(const Scene& scene, const PictureChoice& choice, Picture& picture) {
    const FieldInfo& field = vtkQELVortex::info(choice.field);
    const std::vector<double> values = sortedSample(scene.pieces, field.array);
    const double most = std::max(std::abs(quantile(values, kColourShare)),
                                 std::abs(quantile(values, 1.0 - kColourShare)));
    const double high = most > 0.0 ? most : 1.0;
    if (choice.value.has_value()) {
        warn("the picture of a plane flow has contours; the value of --iso has no effect");
    }
    vtkNew<vtkDiscretizableColorTransferFunction> colours;
    colours->SetColorSpaceToDiverging();
    colours->AddRGBPoint(-high, 0.16, 0.29, 0.72); // blue below zero
    colours->AddRGBPoint(high, 0.71, 0.08, 0.15);
    colours->DiscretizeOn();
    colours->SetNumberOfValues(kBands);
    colours->Build();
    for (const auto& piece : scene.pieces) {
        picture.addColoured(surfaceOf(piece), field.array, colours, false);
    }
    for (const Leaf& leaf : scene.others) {
        picture.addLines(surfaceOf(leaf.data));
    }
    picture.addColourBar(colours, nameWithUnit(field));
    picture.addTitle(joined("Contours of ", field.array, ", ", field.formula));
}

} // namespace

PictureChoice parsePictureChoice(const std::string& text) {
    PictureChoice choice;
    if (text.empty()) {
        return choice;
    }
    const std::size_t equals = text.find('=');
    const std::string name = text.substr(0, equals);
    const FieldInfo* info = vtkQELVortex::findField(name);
    refuseIf(info == nullptr || info->components != 1, "\"", name, "\" is no scalar field to draw");
    choice.field = info->field;
    if (equals != std::string::npos) {
        const std::string value = text.substr(equals + 1);
        choice.value = asNumber(value);
        refuseIf(!choice.value.has_value() || !std::isfinite(*choice.value), "\"", value,
                 "\" is no value of an iso-surface");
    }
    return choice;
}

void drawVortices(vtkDataObject* flow, int association, const PictureChoice& choice,
                  const fs::path& target) {
    const Scene scene = sceneOf(flow, association, choice);
    refuseIf(scene.pieces.empty(), "there is nothing to draw");
    Picture picture;
    const bool space = scene.dimension == 3;
    space ? addSurfaces(scene, choice, picture) : addContours(scene, choice, picture);
    for (const Leaf& leaf : scene.analysed) {
        picture.addLines(outlineOf(leaf.data)); // over the contours
    }
    space ? picture.viewSpace(scene.bounds) : picture.viewPlane(scene.bounds);
    picture.drawPng(target);
}

} // namespace program
