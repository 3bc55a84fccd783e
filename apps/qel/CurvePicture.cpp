// The picture of curves before and after the operations.
#include "CurvePicture.h"

#include <array>
#include <numeric>
#include <set>

#include <vtkAxis.h>
#include <vtkChartLegend.h>
#include <vtkChartXY.h>
#include <vtkContextScene.h>
#include <vtkContextView.h>
#include <vtkDoubleArray.h>
#include <vtkFloatArray.h>
#include <vtkNew.h>
#include <vtkPen.h>
#include <vtkPlotPoints.h>
#include <vtkRenderWindow.h>
#include <vtkRenderer.h>
#include <vtkTable.h>
#include <vtkTextProperty.h>

#include "Console.h"
#include "CurveSvg.h"
#include "Display.h"
#include "Rendering.h"
#include "StagedOutput.h"

namespace program {
namespace {

// Of the window, what axes, title and borders leave to the plot.
constexpr double kPlotWidth = kPictureWidth - 150.0;
constexpr double kPlotHeight = kPictureHeight - 170.0;

class Chart {
public:
    explicit Chart(const PlotFrame& frame) : axes_(frame.axes) {
        view_->GetRenderWindow()->SetOffScreenRendering(1);
        view_->GetRenderWindow()->SetMultiSamples(0);
        view_->GetRenderWindow()->SetSize(kPictureWidth, kPictureHeight);
        view_->GetRenderer()->SetBackground(1.0, 1.0, 1.0);
        view_->GetScene()->AddItem(chart_);
        setTitle(vtkAxis::BOTTOM, kAxisNames[axes_[0]]);
        setTitle(vtkAxis::LEFT, kAxisNames[axes_[1]]);
        chart_->SetShowLegend(true);
        chart_->GetLegend()->SetLabelSize(18);
        setRange(vtkAxis::BOTTOM, frame.low[0], frame.high[0]);
        setRange(vtkAxis::LEFT, frame.low[1], frame.high[1]);
    }

    void add(const NamedCurve& curve, const std::string& label, bool after) {
        vtkNew<vtkTable> table;
        for (const std::size_t axis : axes_) {
            vtkNew<vtkDoubleArray> column;
            column->SetName(kAxisNames[axis]);
            for (const Point& p : curve.curve.getCurve()) {
                column->InsertNextValue(p.getRef(static_cast<int>(axis)));
            }
            table->AddColumn(column);
        }
        const bool marked = curve.curve.getSize() <= kMarkedPoints;
        auto* plot = vtkPlotPoints::SafeDownCast(chart_->AddPlot(vtkChart::LINE));
        plot->SetInputData(table, 0, 1);
        plot->SetLabel(label);
        if (after) {
            plot->SetColor(200, 40, 30, 255);
            plot->SetWidth(2.0F);
        } else {
            plot->SetColor(120, 130, 150, 255);
            plot->SetWidth(4.0F);
        }
        plot->SetMarkerStyle(marked && after ? vtkPlotPoints::CIRCLE : vtkPlotPoints::NONE);
        plot->SetMarkerSize(6.0F);
        if (!labels_.insert(label).second) {
            plot->SetLegendVisibility(false);
        }
    }

    void setTitle(const std::string& title) {
        chart_->SetTitle(title);
        chart_->GetTitleProperties()->SetFontSize(22);
    }

    void write(const std::filesystem::path& target) {
        view_->Render();
        renderToPng(view_->GetRenderWindow(), target);
    }

private:
    void setTitle(int axis, const std::string& title) {
        chart_->GetAxis(axis)->SetTitle(title);
        chart_->GetAxis(axis)->GetTitleProperties()->SetFontSize(20);
        chart_->GetAxis(axis)->GetLabelProperties()->SetFontSize(16);
    }

    void setRange(int axis, double low, double high) {
        chart_->GetAxis(axis)->SetBehavior(vtkAxis::FIXED);
        chart_->GetAxis(axis)->SetRange(low, high);
    }

    std::array<std::size_t, 2> axes_;
    std::set<std::string> labels_;
    vtkNew<vtkContextView> view_;
    vtkNew<vtkChartXY> chart_;
};

std::size_t pointsOf(const std::vector<NamedCurve>& curves) {
    return std::accumulate(
        curves.begin(), curves.end(), std::size_t{0},
        [](std::size_t sum, const NamedCurve& curve) { return sum + curve.curve.getSize(); });
}

std::string labelOf(const char* when, const std::vector<NamedCurve>& curves) {
    return std::string(when) + ": " + std::to_string(pointsOf(curves)) + " points";
}

} // namespace

void checkCurvePicture(const std::filesystem::path& target) {
    if (target.extension() != ".png" && target.extension() != ".svg") {
        throw UserError("the picture " + target.string() + " has to end in .png or .svg");
    }
    checkWritable(target);
}

void drawCurves(const std::vector<NamedCurve>& before, const std::vector<NamedCurve>& after,
                const std::filesystem::path& target) {
    const PlotFrame frame = frameOf({&before, &after}, kPlotWidth, kPlotHeight);
    const std::string title =
        before.size() == 1 ? before.front().name : std::to_string(before.size()) + " curves";
    if (target.extension() == ".svg") {
        writeText(target, svgOf(frame, title,
                                {{labelOf("before", before), "#788296", 4.0, false, &before},
                                 {labelOf("after", after), "#c8281e", 2.0, true, &after}}));
        return;
    }
    const Display display;
    Chart chart(frame);
    chart.setTitle(title);
    for (const NamedCurve& curve : before) {
        chart.add(curve, labelOf("before", before), false);
    }
    for (const NamedCurve& curve : after) {
        chart.add(curve, labelOf("after", after), true);
    }
    chart.write(target);
}

} // namespace program
