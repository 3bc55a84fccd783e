// The picture of the vortices in a flow.
#include "VortexPicture.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <numeric>
#include <vector>

#include <vtkColorTransferFunction.h>
#include <vtkDataSetAttributes.h>
#include <vtkLookupTable.h>
#include <vtkNew.h>
#include <vtkSmartPointer.h>

#include "Console.h"
#include "Display.h"
#include "Picture.h"
#include "Text.h"
#include "VortexScene.h"

namespace program {
namespace {

using vtkQELVortex::Field;
using vtkQELVortex::FieldInfo;

constexpr int kBands = 21;            // of filled contours; odd, so that one band is about zero
constexpr double kVortexShare = 0.5;  // of all rotation, lies inside the surface
constexpr double kColourShare = 0.98; // of all values, lies within the colours

bool vorticalBelowZero(Field field) {
    return field == vtkQELVortex::Lambda2;
}

std::string number(double value) {
    return formatted("%.4g", value + 0.0); // no minus before a zero
}

std::string nameWithUnit(Field field) {
    return vtkQELVortex::info(field).array + std::string(" [") + vtkQELVortex::info(field).unit +
           "]";
}

// -- Colours ----

vtkSmartPointer<vtkLookupTable> tableOf(vtkColorTransferFunction* colours, int count) {
    auto table = vtkSmartPointer<vtkLookupTable>::New();
    table->SetNumberOfTableValues(count);
    for (int i = 0; i < count; ++i) {
        double rgb[3];
        colours->GetColor(i / (count - 1.0), rgb);
        table->SetTableValue(i, rgb[0], rgb[1], rgb[2]);
    }
    return table;
}

// Dark to light, through hues of even steps in lightness.
vtkSmartPointer<vtkLookupTable> sequentialColours() {
    vtkNew<vtkColorTransferFunction> colours;
    colours->SetColorSpaceToLab();
    colours->AddRGBPoint(0.00, 0.24, 0.06, 0.36);
    colours->AddRGBPoint(0.35, 0.16, 0.36, 0.62);
    colours->AddRGBPoint(0.65, 0.16, 0.66, 0.50);
    colours->AddRGBPoint(1.00, 0.98, 0.88, 0.22);
    return tableOf(colours, 256);
}

// Blue below zero, red above.
vtkSmartPointer<vtkLookupTable> divergingColours() {
    vtkNew<vtkColorTransferFunction> colours;
    colours->SetColorSpaceToDiverging();
    colours->AddRGBPoint(0.0, 0.16, 0.29, 0.72);
    colours->AddRGBPoint(1.0, 0.71, 0.08, 0.15);
    return tableOf(colours, kBands);
}

// -- Flows ----

struct Scene {
    std::vector<vtkSmartPointer<vtkDataSet>> pieces; // with the fields
    std::vector<Leaf> analysed;
    std::vector<Leaf> others; // walls and the like
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
        scene.dimension = std::max(scene.dimension, cellDimension(leaf.data));
        scene.pieces.push_back(drawable(leaf.data, association, names));
    }
    return scene;
}

// The value beyond which a share of all rotation lies. The measure is a rate, the square root of
// the field, so that neither much faint noise nor a few extremes at a wall decide.
double suitableValue(const std::vector<double>& sorted, Field field) {
    std::vector<double> rates;
    for (const double value : sorted) {
        const double strength = vorticalBelowZero(field) ? -value : value;
        if (strength > 0.0) {
            rates.push_back(std::sqrt(strength));
        }
    }
    std::sort(rates.begin(), rates.end(), std::greater<>());
    double wanted = kVortexShare * std::accumulate(rates.begin(), rates.end(), 0.0);
    double last = 0.0;
    for (const double rate : rates) {
        last = rate;
        wanted -= rate;
        if (wanted <= 0.0) {
            break;
        }
    }
    return vorticalBelowZero(field) ? -last * last : last * last;
}

void drawSpace(const Scene& scene, const PictureChoice& choice, const double bounds[6],
               const std::filesystem::path& target) {
    const std::string field = vtkQELVortex::info(choice.field).array;
    const std::string colour = vtkQELVortex::info(choice.colour).array;
    const double value = choice.value.has_value()
                             ? *choice.value
                             : suitableValue(sortedSample(scene.pieces, field), choice.field);
    std::vector<vtkSmartPointer<vtkDataSet>> surfaces;
    vtkIdType points = 0;
    for (const auto& piece : scene.pieces) {
        surfaces.emplace_back(isoSurface(piece, field, value));
        points += surfaces.back()->GetNumberOfPoints();
    }
    if (points == 0) {
        warn("the picture shows no vortices: there is no surface " + field + " = " + number(value));
    }
    auto colours = sequentialColours();
    const std::vector<double> sample = sortedSample(surfaces, colour);
    const double most = quantile(sample, kColourShare);
    // Differences of a few per cent are not to look like great ones.
    const double least = std::min(quantile(sample, 1.0 - kColourShare), 0.5 * most);
    colours->SetTableRange(least, most > least ? most : least + 1.0);

    Picture picture(bounds);
    for (const auto& surface : surfaces) {
        picture.addColoured(vtkPolyData::SafeDownCast(surface), colour, colours, true);
    }
    for (const Leaf& leaf : scene.analysed) {
        picture.addLines(outlineOf(leaf.data));
    }
    for (const Leaf& leaf : scene.others) {
        picture.addWall(surfaceOf(leaf.data));
    }
    picture.addColourBar(colours, nameWithUnit(choice.colour));
    picture.addTitle("Iso-surface " + field + " = " + number(value) + " " +
                     vtkQELVortex::info(choice.field).unit + ", coloured by " + colour);
    picture.drawSpace(target);
}

void drawPlane(const Scene& scene, const PictureChoice& choice, const double bounds[6],
               const std::filesystem::path& target) {
    const std::string field = vtkQELVortex::info(choice.field).array;
    const std::vector<double> values = sortedSample(scene.pieces, field);
    const double most = std::max(std::abs(quantile(values, kColourShare)),
                                 std::abs(quantile(values, 1.0 - kColourShare)));
    auto colours = divergingColours();
    colours->SetTableRange(most > 0.0 ? -most : -1.0, most > 0.0 ? most : 1.0);

    Picture picture(bounds);
    for (const auto& piece : scene.pieces) {
        picture.addColoured(surfaceOf(piece), field, colours, false);
    }
    for (const Leaf& leaf : scene.analysed) {
        picture.addLines(outlineOf(leaf.data));
    }
    for (const Leaf& leaf : scene.others) {
        picture.addLines(surfaceOf(leaf.data));
    }
    picture.addColourBar(colours, nameWithUnit(choice.field));
    picture.addTitle("Contours of " + field + ", " + vtkQELVortex::info(choice.field).formula);
    picture.drawPlane(target);
}

} // namespace

PictureChoice parsePictureChoice(const std::string& text) {
    PictureChoice choice;
    if (text.empty()) {
        return choice;
    }
    const std::size_t equals = text.find('=');
    const FieldInfo* info = vtkQELVortex::findField(text.substr(0, equals));
    if (info == nullptr || info->components != 1) {
        throw UserError("\"" + text.substr(0, equals) + "\" is no scalar field to draw");
    }
    choice.field = info->field;
    if (equals != std::string::npos) {
        choice.value = asNumber(text.substr(equals + 1));
        if (!choice.value.has_value() || !std::isfinite(*choice.value)) {
            throw UserError("\"" + text.substr(equals + 1) + "\" is no value of an iso-surface");
        }
    }
    return choice;
}

void drawVortices(vtkDataObject* flow, int association, const PictureChoice& choice,
                  const std::filesystem::path& target) {
    const Scene scene = sceneOf(flow, association, choice);
    if (scene.pieces.empty()) {
        throw UserError("there is nothing to draw");
    }
    double bounds[6];
    boundsOf(scene.analysed, bounds);
    const Display display;
    if (scene.dimension == 3) {
        drawSpace(scene, choice, bounds, target);
    } else {
        drawPlane(scene, choice, bounds, target);
    }
}

} // namespace program
