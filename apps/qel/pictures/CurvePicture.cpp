// The picture of curves before and after the operations.
//
// Drawn by the commands of vtkContext2D in pixels, y upwards, into a window or into SVG.
#include "pictures/CurvePicture.h"

#include <algorithm>
#include <array>
#include <cmath>

#include <vtkAxis.h>
#include <vtkBoundingBox.h>
#include <vtkBrush.h>
#include <vtkContext2D.h>
#include <vtkContextActor.h>
#include <vtkContextItem.h>
#include <vtkContextScene.h>
#include <vtkNew.h>
#include <vtkObjectFactory.h>
#include <vtkPen.h>
#include <vtkPlotGrid.h>
#include <vtkRenderWindow.h>
#include <vtkRenderer.h>
#include <vtkSVGContextDevice2D.h>
#include <vtkTextProperty.h>
#include <vtkXMLDataElement.h>

#include "console/Messages.h"
#include "console/Text.h"
#include "pictures/Rendering.h"
#include "writing/StagedOutput.h"

namespace program {
namespace {

// The plot in the picture.
constexpr float kLeft = 110.0F;
constexpr float kRight = kPictureWidth - 40.0F;
constexpr float kBottom = 100.0F;
constexpr float kTop = kPictureHeight - 70.0F;

constexpr double kMargin = 1.1;            // of the plot to the curves in it
constexpr double kMinRelativeSize = 1e-12; // of the plot to the numbers along its axes
constexpr std::size_t kMaxMarked = 400;    // curves of more points are drawn as lines only
constexpr float kDotRadius = 3.5F;

// One of the coordinates x, y and z, and what the pixels along it show.
struct Axis {
    int index;
    double firstPixel;
    double lastPixel;
    double low = 0.0;
    double high = 0.0;

    double pixels() const { return lastPixel - firstPixel; }
    float pixelOf(const Point& p) const {
        const double share = (p.getRef(index) - low) / (high - low);
        return static_cast<float>(firstPixel + share * pixels());
    }
};

using Plane = std::array<Axis, 2>;

vtkBoundingBox boundsOf(const Curves& before, const Curves& after) {
    vtkBoundingBox box;
    for (const Curves* curves : {&before, &after}) {
        for (const NamedCurve& curve : *curves) {
            for (const Point& p : curve.curve.getCurve()) {
                box.AddPoint(p.x, p.y, p.z);
            }
        }
    }
    return box;
}

// The plane of the two longest extents, with one unit as long on both axes.
Plane planeOf(const vtkBoundingBox& box) {
    std::array<int, 3> order{0, 1, 2};
    std::stable_sort(order.begin(), order.end(),
                     [&](int a, int b) { return box.GetLength(a) > box.GetLength(b); });
    Plane plane{Axis{std::min(order[0], order[1]), kLeft, kRight},
                Axis{std::max(order[0], order[1]), kBottom, kTop}};
    double size = 0.0;    // in units for each pixel
    double largest = 0.0; // number along the axes
    for (const Axis& axis : plane) {
        size = std::max(size, box.GetLength(axis.index) / axis.pixels());
        for (const int bound : {2 * axis.index, 2 * axis.index + 1}) {
            largest = std::max(largest, std::abs(box.GetBound(bound)));
        }
    }
    const double width = plane[0].pixels();
    const double least = kMinRelativeSize * largest / width;
    const double unit = kMargin * std::max(size > 0.0 ? size : 1.0 / width, least);
    refuseIf(!std::isfinite(unit * width), "the curves are too large to draw");
    for (Axis& axis : plane) {
        const double centre =
            0.5 * box.GetBound(2 * axis.index) + 0.5 * box.GetBound(2 * axis.index + 1);
        axis.low = centre - 0.5 * unit * axis.pixels();
        axis.high = centre + 0.5 * unit * axis.pixels();
    }
    return plane;
}

// Curves drawn alike, under one entry of the legend.
struct Layer {
    const Curves* curves;
    std::string label;
    vtkColor4ub colour;
    double width;
    bool marked; // points are, where a curve has few

    std::string legend() const {
        std::size_t points = 0;
        for (const NamedCurve& curve : *curves) {
            points += curve.curve.getSize();
        }
        return joined(label, ": ", points, " points");
    }
};

class CurvePlot : public vtkContextItem {
public:
    static CurvePlot* New();
    vtkTypeMacro(CurvePlot, vtkContextItem)

    bool Paint(vtkContext2D* painter) override {
        paintFrame(painter);
        paintText(painter, 0.5 * (kLeft + kRight), kTop + 25.0, 24, VTK_TEXT_CENTERED, title);
        float row = kTop;
        for (const Layer& layer : layers) {
            row -= 30.0F;
            for (const NamedCurve& curve : *layer.curves) {
                paintCurve(painter, curve.curve.getCurve(), layer);
            }
            paintLine(painter, {kRight - 280.0F, row + 6.0F, kRight - 240.0F, row + 6.0F},
                      layer.colour, layer.width);
            paintText(painter, kRight - 230.0, row, 18, VTK_TEXT_LEFT, layer.legend());
        }
        return true;
    }

    std::string title;
    Plane plane{};
    std::vector<Layer> layers;

private:
    // Through x0, y0, x1, y1 and so on.
    static void paintLine(vtkContext2D* painter, std::vector<float> xy, const vtkColor4ub& colour,
                          double width) {
        painter->GetPen()->SetLineType(vtkPen::SOLID_LINE);
        painter->GetPen()->SetColor(colour);
        painter->GetPen()->SetWidth(static_cast<float>(width));
        painter->DrawPoly(xy.data(), static_cast<int>(xy.size() / 2));
    }

    static void paintText(vtkContext2D* painter, double x, double y, int size, int justification,
                          const std::string& text) {
        vtkNew<vtkTextProperty> style;
        style->SetFontFamilyToArial();
        style->SetFontSize(size);
        style->SetColor(0.13, 0.13, 0.13);
        style->SetJustification(justification);
        painter->ApplyTextProp(style);
        // Letters are sharp on whole pixels. VTK measures from the lowest part that any has.
        const double descent = 0.2 * size;
        painter->DrawString(std::round(static_cast<float>(x)),
                            std::round(static_cast<float>(y - descent)), text.c_str());
    }

    void paintCurve(vtkContext2D* painter, const Points& points, const Layer& layer) const {
        std::vector<float> xy;
        for (const Point& p : points) {
            xy.insert(xy.end(), {plane[0].pixelOf(p), plane[1].pixelOf(p)});
        }
        paintLine(painter, xy, layer.colour, layer.width);
        painter->GetPen()->SetLineType(vtkPen::NO_PEN);
        painter->GetBrush()->SetColor(layer.colour);
        for (std::size_t i = 0; layer.marked && points.size() <= kMaxMarked && i < xy.size();
             i += 2) {
            painter->DrawEllipse(xy[i], xy[i + 1], kDotRadius, kDotRadius);
        }
    }

    void paintFrame(vtkContext2D* painter) const {
        std::array<vtkNew<vtkAxis>, 2> axes;
        for (std::size_t i = 0; i < 2; ++i) {
            axes[i]->SetPosition(i == 0 ? vtkAxis::BOTTOM : vtkAxis::LEFT);
            axes[i]->SetPoint1(kLeft, kBottom);
            axes[i]->SetPoint2(i == 0 ? kRight : kLeft, i == 0 ? kBottom : kTop);
            axes[i]->SetBehavior(vtkAxis::FIXED);
            axes[i]->SetRange(plane[i].low, plane[i].high);
            axes[i]->SetTitle(std::string(1, "xyz"[plane[i].index]));
            axes[i]->GetTitleProperties()->SetFontSize(22);
            axes[i]->GetLabelProperties()->SetFontSize(16);
            axes[i]->Update();
        }
        vtkNew<vtkPlotGrid> grid;
        grid->SetXAxis(axes[0]);
        grid->SetYAxis(axes[1]);
        grid->Paint(painter);
        axes[0]->Paint(painter);
        axes[1]->Paint(painter);
    }
};

vtkStandardNewMacro(CurvePlot);

// Letters become outlines, the same everywhere; a description keeps the words of the legend.
std::string svgOf(CurvePlot* plot, vtkRenderer* renderer) {
    vtkNew<vtkXMLDataElement> definitions;
    definitions->SetName("defs");
    vtkNew<vtkXMLDataElement> drawing;
    drawing->SetName("g");
    drawing->SetAttribute("fill", "none");
    drawing->SetAttribute("stroke-linejoin", "round");
    vtkNew<vtkSVGContextDevice2D> device;
    device->SetSVGContext(drawing, definitions);
    vtkNew<vtkContext2D> painter;
    device->Begin(renderer);
    painter->Begin(device);
    plot->Paint(painter);
    painter->End();
    device->GenerateDefinitions();
    std::ostringstream file;
    file << formatted(R"(<svg xmlns="http://www.w3.org/2000/svg" width="%d" height="%d">)",
                      kPictureWidth, kPictureHeight)
         << "\n<desc>" << plot->layers[0].legend() << ", " << plot->layers[1].legend()
         << "</desc>\n"
         << R"(<rect width="100%" height="100%" fill="white"/>)"
         << "\n";
    definitions->PrintXML(file, vtkIndent());
    drawing->PrintXML(file, vtkIndent());
    return file.str() + "</svg>\n";
}

} // namespace

void checkCurvePicture(const fs::path& target) {
    refuseIf(target.extension() != ".png" && target.extension() != ".svg", "the picture ",
             target.string(), " has to end in .png or .svg");
    checkWritable(target);
}

void drawCurves(const Curves& before, const Curves& after, const fs::path& target) {
    vtkNew<CurvePlot> plot;
    plot->title = before.size() == 1 ? before[0].name : joined(before.size(), " curves");
    plot->plane = planeOf(boundsOf(before, after));
    plot->layers = {{&before, "before", vtkColor4ub(0x78, 0x82, 0x96), 4.0, false},
                    {&after, "after", vtkColor4ub(0xc8, 0x28, 0x1e), 2.0, true}};
    vtkNew<vtkRenderer> renderer;
    vtkNew<vtkRenderWindow> window;
    window->SetSize(kPictureWidth, kPictureHeight);
    window->SetMultiSamples(0); // they blur letters
    window->AddRenderer(renderer);
    if (target.extension() == ".svg") {
        writeText(target, svgOf(plot, renderer));
        return;
    }
    vtkNew<vtkContextActor> actor;
    actor->GetScene()->AddItem(plot);
    renderer->SetBackground(1.0, 1.0, 1.0);
    renderer->AddActor(actor);
    renderToPng(window, target);
}

} // namespace program
