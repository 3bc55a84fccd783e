// Curves in space, seen from aslant.
#include "pictures/BoxView.h"

#include <cmath>

#include <vtkContext2D.h>
#include <vtkObjectFactory.h>
#include <vtkPen.h>
#include <vtkTextProperty.h>

#include "console/Messages.h"
#include "console/Text.h"

namespace program {
namespace {

const Point kViewer(0.55, -1.0, 0.6); // as pictures of flows
constexpr double kShortEdge = 120.0;  // in pixels; its bounds share a label

// The edges that bear labels, on the outline of the box: where they begin and end, and where the
// labels stand beside them, in pixels.
struct LabelledEdge {
    std::array<int, 3> begin;
    std::array<int, 3> end;
    float dx;
    float dy;
    int justification;
};
const std::array<LabelledEdge, 3> kLabelledEdges{
    {{{0, 0, 0}, {1, 0, 0}, -6.0F, -26.0F, VTK_TEXT_RIGHT},
     {{1, 0, 0}, {1, 1, 0}, 14.0F, -14.0F, VTK_TEXT_LEFT},
     {{0, 0, 0}, {0, 0, 1}, -14.0F, 0.0F, VTK_TEXT_RIGHT}}};

using Pixel = std::array<double, 2>;

void addLine(BoxItem* item, const Pixel& a, const Pixel& b) {
    item->lines.push_back({{static_cast<float>(a[0]), static_cast<float>(a[1]),
                            static_cast<float>(b[0]), static_cast<float>(b[1])}});
}

void addLabel(BoxItem* item, const LabelledEdge& edge, const Pixel& place,
              const std::string& text) {
    item->labels.push_back({static_cast<float>(place[0]) + edge.dx,
                            static_cast<float>(place[1]) + edge.dy, edge.justification, text});
}

// Of the lower bound, the name and the upper bound.
void addLabels(BoxItem* item, const LabelledEdge& edge, const Pixel& a, const Pixel& b,
               const std::array<std::string, 3>& texts) {
    const Pixel middle{0.5 * (a[0] + b[0]), 0.5 * (a[1] + b[1])};
    if (std::hypot(b[0] - a[0], b[1] - a[1]) < kShortEdge) {
        addLabel(item, edge, middle, joined(texts[1], ": ", texts[0], " to ", texts[2]));
        return;
    }
    addLabel(item, edge, a, texts[0]);
    addLabel(item, edge, middle, texts[1]);
    addLabel(item, edge, b, texts[2]);
}

std::string numberText(double value) {
    return formatted("%.6g", value);
}

} // namespace

BoxView::BoxView(const vtkBoundingBox& box) : box_(box) {
    const Point forwards = kViewer / -kViewer.length();
    const Point right = forwards.cross({0.0, 0.0, 1.0});
    right_ = right / right.length();
    up_ = right_.cross(forwards);
    double centre[3];
    box.GetCenter(centre);
    centre_ = {centre[0], centre[1], centre[2]};
}

Point BoxView::project(const Point& p) const {
    const Point fromCentre = p - centre_;
    return {fromCentre.dot(right_), fromCentre.dot(up_), 0.0};
}

Point BoxView::corner(int x, int y, int z) const {
    return {box_.GetBound(x), box_.GetBound(2 + y), box_.GetBound(4 + z)};
}

vtkStandardNewMacro(BoxItem);

bool BoxItem::Paint(vtkContext2D* painter) {
    painter->GetPen()->SetColor(190, 190, 190, 255);
    painter->GetPen()->SetWidth(1.0F);
    for (const Line& line : lines) {
        painter->DrawLine(line.ends[0], line.ends[1], line.ends[2], line.ends[3]);
    }
    for (const Label& label : labels) {
        vtkNew<vtkTextProperty> style;
        style->SetColor(0.1, 0.1, 0.1);
        style->SetFontSize(16);
        style->SetJustification(label.justification);
        painter->ApplyTextProp(style);
        painter->DrawString(label.x, label.y, label.text);
    }
    return true;
}

void showBox(BoxItem* item, const vtkBoundingBox& box, const BoxView& view,
             const std::function<std::array<double, 2>(const Point&)>& pixelsOf,
             const Words& axisNames) {
    const auto pixelsAt = [&](const std::array<int, 3>& corner) {
        return pixelsOf(view.project(view.corner(corner[0], corner[1], corner[2])));
    };
    for (int corner = 0; corner < 8; ++corner) {
        const std::array<int, 3> from{corner & 1, corner >> 1 & 1, corner >> 2 & 1};
        for (std::size_t axis = 0; axis < 3; ++axis) {
            std::array<int, 3> to = from;
            to[axis] = 1;
            if (from[axis] == 0) {
                addLine(item, pixelsAt(from), pixelsAt(to));
            }
        }
    }
    for (std::size_t axis = 0; axis < 3; ++axis) {
        const LabelledEdge& edge = kLabelledEdges[axis];
        const int bound = 2 * static_cast<int>(axis);
        addLabels(item, edge, pixelsAt(edge.begin), pixelsAt(edge.end),
                  {numberText(box.GetBound(bound)), axisNames[axis],
                   numberText(box.GetBound(bound + 1))});
    }
}

} // namespace program
