// The picture of curves before and after the operations.
#include "pictures/Pictures.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

#include <vtkAxis.h>
#include <vtkChartLegend.h>
#include <vtkDoubleArray.h>
#include <vtkPlotLine.h>
#include <vtkTable.h>
#include <vtkTextProperty.h>

#include "console/Messages.h"
#include "pictures/Picture.h"
#include "writing/StagedOutput.h"

namespace program {
namespace {

// The plot in the picture, in pixels; as far from the top as from the bottom, since VTK's clipping
// in SVG counts from the wrong one.
constexpr float kLeft = 110.0F;
constexpr float kBottom = 85.0F;
constexpr float kWidth = kPictureWidth - kLeft - 40.0F;
constexpr float kHeight = kPictureHeight - 2.0F * kBottom;

constexpr double kMargin = 1.1;            // of the plot to the curves in it
constexpr double kMinRelativeSize = 1e-12; // of the plot to the numbers along its axes
constexpr vtkIdType kMaxMarked = 1000;     // more points are drawn as lines only
constexpr int kTopRight = 2;               // where the axes that count pixels meet

// One of the coordinates x, y and z, and what is shown of it.
struct Range {
    int axis;
    double firstPixel;
    double pixels;
    double low = 0.0;
    double high = 0.0;

    double pixelOf(const Point& p) const {
        return firstPixel + pixels * ((p.getRef(axis) - low) / (high - low));
    }
};
using Plane = std::array<Range, 2>;

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
    Plane plane{Range{std::min(order[0], order[1]), kLeft, kWidth},
                Range{std::max(order[0], order[1]), kBottom, kHeight}};
    double size = 0.0;    // in units for each pixel
    double largest = 0.0; // number along the axes
    for (const Range& range : plane) {
        size = std::max(size, box.GetLength(range.axis) / range.pixels);
        largest = std::max({largest, std::abs(box.GetBound(2 * range.axis)),
                            std::abs(box.GetBound(2 * range.axis + 1))});
    }
    const double least = kMinRelativeSize * largest / kWidth;
    const double unit = kMargin * std::max(size > 0.0 ? size : 1.0 / kWidth, least);
    refuseIf(!std::isfinite(unit * kWidth), "the curves are too large to draw");
    for (Range& range : plane) {
        const double centre =
            0.5 * box.GetBound(2 * range.axis) + 0.5 * box.GetBound(2 * range.axis + 1);
        range.low = centre - 0.5 * unit * range.pixels;
        range.high = centre + 0.5 * unit * range.pixels;
    }
    return plane;
}

// Adds curves drawn alike, under one entry of the legend, which is returned.
std::string addCurves(vtkChartXY* chart, const Plane& plane, const Curves& curves,
                      const std::string& label, const std::array<unsigned char, 3>& colour) {
    const std::array<vtkNew<vtkDoubleArray>, 2> columns;
    vtkIdType points = 0;
    for (const NamedCurve& curve : curves) {
        for (std::size_t i = 0; i < 2; ++i) {
            for (const Point& p : curve.curve.getCurve()) {
                columns[i]->InsertNextValue(plane[i].pixelOf(p));
            }
            columns[i]->InsertNextValue(std::numeric_limits<double>::quiet_NaN()); // a gap
        }
        points += static_cast<vtkIdType>(curve.curve.getSize());
    }
    vtkNew<vtkTable> table;
    columns[0]->SetName("across");
    columns[1]->SetName("up");
    table->AddColumn(columns[0]);
    table->AddColumn(columns[1]);
    auto* plot = vtkPlotLine::SafeDownCast(chart->AddPlot(vtkChart::LINE));
    plot->SetInputData(table, 0, 1);
    chart->SetPlotCorner(plot, kTopRight);
    plot->SetColor(colour[0], colour[1], colour[2], 255);
    const bool before = label == "before";
    plot->SetWidth(before ? 4.0F : 2.0F);
    plot->SetMarkerStyle(before || points > kMaxMarked ? vtkPlotPoints::NONE
                                                       : vtkPlotPoints::CIRCLE);
    plot->SetMarkerSize(7.0F);
    plot->SetLabel(joined(label, ": ", points, " points"));
    return plot->GetLabel();
}

void setAxis(vtkAxis* axis, const Range& range) {
    axis->SetBehavior(vtkAxis::FIXED);
    axis->SetRange(range.low, range.high);
    axis->SetTitle(std::string(1, "xyz"[range.axis]));
    axis->GetTitleProperties()->SetFontSize(22);
    axis->GetLabelProperties()->SetFontSize(16);
}

// The chart computes in single precision, so that it is given pixels, on axes that are not shown.
void countPixels(vtkAxis* axis, float first, float pixels) {
    axis->SetBehavior(vtkAxis::FIXED);
    axis->SetRange(first, first + pixels);
    axis->SetVisible(false);
    axis->SetGridVisible(false);
}

} // namespace

void checkCurvePicture(const fs::path& target) {
    refuseIf(target.extension() != ".png" && target.extension() != ".svg", "the picture ",
             target.string(), " has to end in .png or .svg");
    checkWritable(target);
}

void drawCurves(const Curves& before, const Curves& after, const fs::path& target) {
    const Plane plane = planeOf(boundsOf(before, after));
    vtkNew<vtkChartXY> chart;
    chart->SetAutoAxes(false); // which would hide those that no plot belongs to
    chart->SetLayoutStrategy(vtkChart::AXES_TO_RECT);
    chart->SetSize(vtkRectf(kLeft, kBottom, kWidth, kHeight));
    setAxis(chart->GetAxis(vtkAxis::BOTTOM), plane[0]);
    setAxis(chart->GetAxis(vtkAxis::LEFT), plane[1]);
    countPixels(chart->GetAxis(vtkAxis::TOP), kLeft, kWidth);
    countPixels(chart->GetAxis(vtkAxis::RIGHT), kBottom, kHeight);
    chart->SetTitle(before.size() == 1 ? before[0].name : joined(before.size(), " curves"));
    chart->GetTitleProperties()->SetFontSize(24);
    chart->SetShowLegend(true);
    chart->GetLegend()->SetLabelSize(18);
    std::string legend = addCurves(chart, plane, before, "before", {0x78, 0x82, 0x96});
    legend += ", " + addCurves(chart, plane, after, "after", {0xc8, 0x28, 0x1e});
    Picture picture;
    picture.addChart(chart);
    target.extension() == ".svg" ? picture.drawSvg(target, legend) : picture.drawPng(target);
}

} // namespace program
