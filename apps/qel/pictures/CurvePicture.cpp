// The picture of curves, before and after the operations.
#include "pictures/Pictures.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

#include <vtkAxis.h>
#include <vtkChartLegend.h>
#include <vtkDoubleArray.h>
#include <vtkMath.h>
#include <vtkPlotLine.h>
#include <vtkStringArray.h>
#include <vtkTable.h>
#include <vtkTextProperty.h>

#include "console/Messages.h"
#include "console/Text.h"
#include "curves/Axes.h"
#include "pictures/BoxView.h"
#include "pictures/Picture.h"
#include "writing/StagedOutput.h"

namespace program {
namespace {

// The plot in the picture, in pixels; as far from the top as from the bottom, since VTK's clipping
// in SVG counts from the wrong one.
constexpr float kLeast = 110.0F; // left of it
constexpr float kRight = 40.0F;
constexpr float kBottom = 85.0F;
constexpr float kHeight = kPictureHeight - 2.0F * kBottom;
constexpr float kBoxMargin = 20.0F; // more on all sides for the labels of a box
constexpr double kLetter = 9.5;     // width in the labels along the axes

constexpr double kMargin = 1.1;            // of the plot to the curves in it
constexpr double kMinRelativeSize = 1e-12; // of the plot to the numbers along its axes
constexpr double kLeastStep = 1e-307;      // of ticks
constexpr double kFlat = 1e-3;             // least extent of a curve in space to the largest
constexpr std::size_t kMaxMarked = 1000;   // more points are drawn as lines only
constexpr int kTopRight = 2;               // where the axes that count pixels meet
constexpr std::size_t kMaxNamed = 20;      // curves in the legend
constexpr std::size_t kMaxInside = 4;      // entries of a legend in the plot; more stand beside it
constexpr float kEntry = 24.0F;            // height of one
constexpr std::size_t kMaxName = 32;       // letters in the legend

using Colour = std::array<unsigned char, 3>;
constexpr Colour kGrey{0xa0, 0xa8, 0xb4};
// Told apart by most who see few colours (after Okabe and Ito), the first for a curve alone.
constexpr std::array<Colour, 8> kColours{{{0xc8, 0x28, 0x1e},
                                          {0x00, 0x72, 0xb2},
                                          {0x00, 0x9e, 0x73},
                                          {0xe6, 0x9f, 0x00},
                                          {0xcc, 0x79, 0xa7},
                                          {0x56, 0xb4, 0xe9},
                                          {0x22, 0x22, 0x22},
                                          {0x8c, 0x6d, 0x31}}};

// Curves drawn alike, across and up, under one entry of the legend.
struct Series {
    std::string label;
    Colour colour;
    bool isBefore;
    std::vector<Points> lines;

    std::size_t size() const {
        std::size_t points = 0;
        for (const Points& line : lines) {
            points += line.size();
        }
        return points;
    }
};

// Across (0) or up (1), and what is shown of it.
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

// One unit is as long on both axes.
Plane planeOf(const vtkBoundingBox& box, double left, double right) {
    Plane plane{Range{0, left, kPictureWidth - left - right}, Range{1, kBottom, kHeight}};
    double size = 0.0;    // in units for each pixel
    double largest = 0.0; // number along the axes
    for (const Range& range : plane) {
        size = std::max(size, box.GetLength(range.axis) / range.pixels);
        largest = std::max({largest, std::abs(box.GetBound(2 * range.axis)),
                            std::abs(box.GetBound(2 * range.axis + 1))});
    }
    const double width = plane[0].pixels;
    const double least = kMinRelativeSize * largest / width;
    const double unit = kMargin * std::max(size > 0.0 ? size : 1.0 / width, least);
    refuseIf(!std::isfinite(unit * width), "the curves are too large to draw");
    for (Range& range : plane) {
        const double centre =
            0.5 * box.GetBound(2 * range.axis) + 0.5 * box.GetBound(2 * range.axis + 1);
        range.low = centre - 0.5 * unit * range.pixels;
        range.high = centre + 0.5 * unit * range.pixels;
    }
    return plane;
}

// -- What is drawn ----

template <typename Flatten>
Points flattened(const NamedCurve& curve, const Flatten& flatten) {
    Points points;
    std::transform(curve.curve.getCurve().begin(), curve.curve.getCurve().end(),
                   std::back_inserter(points), flatten);
    return points;
}

template <typename Flatten>
Series together(const Curves& curves, const std::string& name, Colour colour,
                const Flatten& flatten) {
    Series series{"", colour, false, {}};
    for (const NamedCurve& curve : curves) {
        series.lines.push_back(flattened(curve, flatten));
    }
    series.label = joined(name, ": ", series.size(), " points");
    return series;
}

Colour colourOf(std::size_t i, std::size_t count) {
    if (count <= kColours.size()) {
        return kColours[i];
    }
    double rgb[3]; // from blue to red, in their order
    const double place = static_cast<double>(i) / static_cast<double>(count - 1);
    vtkMath::HSVToRGB(2.0 / 3.0 * (1.0 - place), 1.0, 0.85, &rgb[0], &rgb[1], &rgb[2]);
    const auto byte = [](double part) { return static_cast<unsigned char>(255.0 * part); };
    return {byte(rgb[0]), byte(rgb[1]), byte(rgb[2])};
}

// Up to kMaxNamed curves are told apart.
template <typename Flatten>
std::vector<Series> seriesOf(const Curves& before, const Curves& after, const Flatten& flatten) {
    std::vector<Series> all;
    if (!before.empty()) {
        all.push_back(together(before, "before", kGrey, flatten));
        all.back().isBefore = true;
    }
    if (after.size() > kMaxNamed) {
        all.push_back(together(after, joined(after.size(), " curves"), kColours[0], flatten));
        return all;
    }
    for (std::size_t i = 0; i < after.size(); ++i) {
        const std::string& name = after[i].name;
        const bool isAfter = after.size() == 1 && !before.empty();
        all.push_back(together({after[i]},
                               isAfter                   ? "after"
                               : name.size() <= kMaxName ? name
                                                         : name.substr(0, kMaxName) + "...",
                               colourOf(i, after.size()), flatten));
    }
    return all;
}

void addSeries(vtkChartXY* chart, const Plane& plane, const Series& series) {
    const std::array<vtkNew<vtkDoubleArray>, 2> columns;
    for (const Points& line : series.lines) {
        for (std::size_t i = 0; i < 2; ++i) {
            for (const Point& p : line) {
                columns[i]->InsertNextValue(plane[i].pixelOf(p));
            }
            columns[i]->InsertNextValue(std::numeric_limits<double>::quiet_NaN()); // a gap
        }
    }
    vtkNew<vtkTable> table;
    columns[0]->SetName("across");
    columns[1]->SetName("up");
    table->AddColumn(columns[0]);
    table->AddColumn(columns[1]);
    auto* plot = vtkPlotLine::SafeDownCast(chart->AddPlot(vtkChart::LINE));
    plot->SetInputData(table, 0, 1);
    chart->SetPlotCorner(plot, kTopRight);
    plot->SetColor(series.colour[0], series.colour[1], series.colour[2], 255);
    plot->SetWidth(series.isBefore ? 4.0F : 2.0F);
    plot->SetMarkerStyle(series.isBefore || series.size() > kMaxMarked ? vtkPlotPoints::NONE
                                                                       : vtkPlotPoints::CIRCLE);
    plot->SetMarkerSize(7.0F);
    plot->SetLabel(series.label);
}

// -- Axes ----

struct Ticks {
    std::vector<double> places;
    Words labels;
};

// Steps of 1, 2 or 5 times a power of ten.
Ticks ticksOf(const Range& range, double step) {
    Ticks ticks;
    const double first = std::ceil(range.low / step);
    for (int i = 0; (first + i) * step <= range.high; ++i) {
        ticks.places.push_back((first + i) * step + 0.0); // no -0
        const double ratio = std::max(std::abs(range.low), std::abs(range.high)) / step;
        const int digits = std::clamp(static_cast<int>(std::ceil(std::log10(ratio))) + 1, 1, 15);
        ticks.labels.push_back(formatted("%.*g", digits, ticks.places.back()));
    }
    return ticks;
}

std::size_t longest(const Words& labels) {
    std::size_t letters = 0;
    for (const std::string& label : labels) {
        letters = std::max(letters, label.size());
    }
    return letters;
}

// As many ticks as have room: labels stand side by side across, above each other up.
Ticks ticksOf(const Range& range) {
    const double extent = range.high - range.low;
    const double power = std::pow(10.0, std::floor(std::log10(extent)) - 2.0) + kLeastStep;
    Ticks ticks;
    for (double step = power;; step *= 10.0) {
        for (const double factor : {1.0, 2.0, 5.0}) {
            const double room = range.pixels * (step * factor / extent);
            if (room < 40.0) {
                continue; // before thousands of labels are made
            }
            ticks = ticksOf(range, step * factor);
            const double letters = static_cast<double>(longest(ticks.labels) + 2);
            if (range.axis == 1 || letters * kLetter <= room || ticks.places.size() <= 2) {
                return ticks;
            }
        }
    }
}

void setAxis(vtkAxis* axis, const Range& range, const std::string& name) {
    const Ticks ticks = ticksOf(range);
    vtkNew<vtkDoubleArray> places;
    vtkNew<vtkStringArray> labels;
    for (std::size_t i = 0; i < ticks.places.size(); ++i) {
        places->InsertNextValue(ticks.places[i]);
        labels->InsertNextValue(ticks.labels[i]);
    }
    axis->SetBehavior(vtkAxis::FIXED);
    axis->SetRange(range.low, range.high);
    axis->SetCustomTickPositions(places, labels);
    axis->SetTitle(name);
    axis->GetTitleProperties()->SetFontSize(22);
    axis->GetLabelProperties()->SetFontSize(16);
}

void hide(vtkAxis* axis) {
    axis->SetVisible(false);
    axis->SetGridVisible(false);
}

// The chart computes in single precision, so that it is given pixels, on axes that are not shown.
void countPixels(vtkAxis* axis, const Range& range) {
    axis->SetBehavior(vtkAxis::FIXED);
    axis->SetRange(range.firstPixel, range.firstPixel + range.pixels);
    hide(axis);
}

// -- The picture ----

std::string titleOf(const Curves& curves) {
    return curves.size() == 1 ? curves[0].name : joined(curves.size(), " curves");
}

// Right of the plot, with room for a long legend.
double rightOf(const std::vector<Series>& all) {
    Words labels;
    for (const Series& series : all) {
        labels.push_back(series.label);
    }
    return all.size() <= kMaxInside ? kRight
                                    : kRight + kLetter * static_cast<double>(longest(labels) + 4);
}

void placeLegend(vtkChartXY* chart, const Plane& plane, std::size_t entries) {
    chart->SetShowLegend(true);
    vtkChartLegend* legend = chart->GetLegend();
    legend->SetLabelSize(18);
    if (entries > kMaxInside) {
        legend->SetHorizontalAlignment(vtkChartLegend::CUSTOM);
        legend->SetVerticalAlignment(vtkChartLegend::CUSTOM);
        legend->SetPoint(static_cast<float>(plane[0].firstPixel + plane[0].pixels) + 15.0F,
                         kBottom + kHeight - kEntry * static_cast<float>(entries) - 6.0F);
    }
}

void draw(const Plane& plane, const std::vector<Series>& all, const Words& axes,
          const std::string& title, vtkAbstractContextItem* behind, const fs::path& target) {
    vtkNew<vtkChartXY> chart;
    chart->SetAutoAxes(false); // which would hide those that no plot belongs to
    chart->SetLayoutStrategy(vtkChart::AXES_TO_RECT);
    chart->SetSize(vtkRectf(static_cast<float>(plane[0].firstPixel), kBottom,
                            static_cast<float>(plane[0].pixels), kHeight));
    if (axes.empty()) {
        hide(chart->GetAxis(vtkAxis::BOTTOM));
        hide(chart->GetAxis(vtkAxis::LEFT));
    } else {
        setAxis(chart->GetAxis(vtkAxis::BOTTOM), plane[0], axes[0]);
        setAxis(chart->GetAxis(vtkAxis::LEFT), plane[1], axes[1]);
    }
    countPixels(chart->GetAxis(vtkAxis::TOP), plane[0]);
    countPixels(chart->GetAxis(vtkAxis::RIGHT), plane[1]);
    chart->SetTitle(title);
    chart->GetTitleProperties()->SetFontSize(24);
    placeLegend(chart, plane, all.size());
    std::string legend;
    for (const Series& series : all) {
        addSeries(chart, plane, series);
        legend += (legend.empty() ? "" : ", ") + series.label;
    }
    Picture picture;
    if (behind != nullptr) {
        picture.addBehindChart(behind);
    }
    picture.addChart(chart);
    target.extension() == ".svg" ? picture.drawSvg(target, legend) : picture.drawPng(target);
}

// In the plane of the two longest extents.
void drawPlane(const Curves& before, const Curves& after, const vtkBoundingBox& box,
               const fs::path& target) {
    std::array<int, 3> order{0, 1, 2};
    std::stable_sort(order.begin(), order.end(),
                     [&](int a, int b) { return box.GetLength(a) > box.GetLength(b); });
    const int across = std::min(order[0], order[1]);
    const int up = std::max(order[0], order[1]);
    const auto flatten = [&](const Point& p) { return Point(p.getRef(across), p.getRef(up), 0.0); };
    const vtkBoundingBox flat(box.GetBound(2 * across), box.GetBound(2 * across + 1),
                              box.GetBound(2 * up), box.GetBound(2 * up + 1), 0.0, 0.0);
    const auto all = seriesOf(before, after, flatten);
    const double right = rightOf(all);
    const std::size_t letters = longest(ticksOf(planeOf(flat, kLeast, right)[1]).labels);
    const double left = std::max<double>(kLeast, 60.0 + kLetter * static_cast<double>(letters));
    const Words names = splitAt(',', coordinateNames(after[0]));
    draw(planeOf(flat, left, right), all,
         {names[static_cast<std::size_t>(across)], names[static_cast<std::size_t>(up)]},
         titleOf(after), nullptr, target);
}

void drawSpace(const Curves& before, const Curves& after, const vtkBoundingBox& box,
               const fs::path& target) {
    const BoxView view(box);
    vtkBoundingBox flat;
    for (int corner = 0; corner < 8; ++corner) {
        const Point p = view.project(view.corner(corner & 1, corner >> 1 & 1, corner >> 2 & 1));
        flat.AddPoint(p.x, p.y, 0.0);
    }
    const auto all = seriesOf(before, after, [&](const Point& p) { return view.project(p); });
    const double right = rightOf(all);
    Plane plane = planeOf(flat, kLeast, right);
    for (Range& range : plane) { // room for the labels
        const double more = (range.high - range.low) * kBoxMargin / range.pixels;
        range.low -= more;
        range.high += more * (range.pixels / kHeight);
    }
    plane = planeOf(vtkBoundingBox(plane[0].low, plane[0].high, plane[1].low, plane[1].high, 0, 0),
                    kLeast, right);
    vtkNew<BoxItem> item;
    showBox(
        item, box, view,
        [&](const Point& p) {
            return std::array{plane[0].pixelOf(p), plane[1].pixelOf(p)};
        },
        splitAt(',', coordinateNames(after[0])));
    draw(plane, all, {}, titleOf(after), item, target);
}

} // namespace

void checkCurvePicture(const fs::path& target) {
    refuseIf(target.extension() != ".png" && target.extension() != ".svg", "the picture ",
             target.string(), " has to end in .png or .svg");
    checkWritable(target);
}

void drawCurves(const Curves& before, const Curves& after, const fs::path& target) {
    const vtkBoundingBox box = boundsOf(before, after);
    double extents[3];
    box.GetLengths(extents);
    const auto [least, most] = std::minmax_element(extents, extents + 3);
    (*least > kFlat * *most ? drawSpace : drawPlane)(before, after, box, target);
}

} // namespace program
