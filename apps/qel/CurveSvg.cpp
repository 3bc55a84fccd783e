// Plots of curves as SVG.
#include "CurveSvg.h"

#include <cmath>
#include <sstream>

#include "Rendering.h"
#include "Text.h"

namespace program {
namespace {

constexpr double kLeft = 110.0; // of the plot in the picture
constexpr double kTop = 70.0;
constexpr double kRight = kPictureWidth - 40.0;
constexpr double kBottom = kPictureHeight - 100.0;
constexpr double kTicks = 8.0; // wanted on an axis, about

std::string pixel(double value) {
    return formatted("%.2f", value);
}

std::string escaped(const std::string& text) {
    std::string result;
    for (const char c : text) {
        switch (c) {
        case '&':
            result += "&amp;";
            break;
        case '<':
            result += "&lt;";
            break;
        default:
            result += c;
        }
    }
    return result;
}

// 1, 2 or 5 times a power of ten.
double tickStep(double range) {
    const double raw = range / kTicks;
    const double decade = std::pow(10.0, std::floor(std::log10(raw)));
    const double factor = raw / decade;
    return decade * (factor < 1.5 ? 1.0 : factor < 3.5 ? 2.0 : factor < 7.5 ? 5.0 : 10.0);
}

class Svg {
public:
    explicit Svg(const PlotFrame& frame) : frame_(frame) {
        out_ << "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" << kPictureWidth
             << "\" height=\"" << kPictureHeight << "\" font-family=\"sans-serif\">\n"
             << "<rect width=\"100%\" height=\"100%\" fill=\"white\"/>\n";
    }

    void addText(double x, double y, int size, const char* anchor, const std::string& text) {
        out_ << "<text x=\"" << pixel(x) << "\" y=\"" << pixel(y) << "\" font-size=\"" << size
             << "\" text-anchor=\"" << anchor << "\" fill=\"#222\">" << escaped(text)
             << "</text>\n";
    }

    void addAxes() {
        for (const std::size_t axis : {std::size_t{0}, std::size_t{1}}) {
            const double step = tickStep(frame_.high[axis] - frame_.low[axis]);
            const double first = std::ceil(frame_.low[axis] / step);
            const double last = std::floor(frame_.high[axis] / step);
            for (int i = 0; i <= static_cast<int>(last - first); ++i) {
                addTick(axis, (first + i) * step + 0.0); // no minus before a zero
            }
        }
        out_ << "<rect x=\"" << kLeft << "\" y=\"" << kTop << "\" width=\"" << kRight - kLeft
             << "\" height=\"" << kBottom - kTop << "\" fill=\"none\" stroke=\"#666\"/>\n";
        addText(0.5 * (kLeft + kRight), kBottom + 65.0, 22, "middle", kAxisNames[frame_.axes[0]]);
        addText(30.0, 0.5 * (kTop + kBottom), 22, "middle", kAxisNames[frame_.axes[1]]);
    }

    void addCurve(const NamedCurve& curve, const SvgLayer& layer) {
        out_ << "<polyline fill=\"none\" stroke-linejoin=\"round\" stroke=\"" << layer.colour
             << "\" stroke-width=\"" << layer.width << "\" points=\"";
        for (const Point& p : curve.curve.getCurve()) {
            out_ << pixel(place(0, p)) << "," << pixel(place(1, p)) << " ";
        }
        out_ << "\"/>\n";
        if (!layer.marked || curve.curve.getSize() > kMarkedPoints) {
            return;
        }
        for (const Point& p : curve.curve.getCurve()) {
            out_ << "<circle cx=\"" << pixel(place(0, p)) << "\" cy=\"" << pixel(place(1, p))
                 << "\" r=\"3.5\" fill=\"" << layer.colour << "\"/>\n";
        }
    }

    void addLegend(std::size_t row, const SvgLayer& layer) {
        const double y = kTop + 30.0 + 30.0 * static_cast<double>(row);
        out_ << "<path d=\"M" << pixel(kRight - 280.0) << "," << pixel(y - 6.0)
             << " h40\" stroke=\"" << layer.colour << "\" stroke-width=\"" << layer.width
             << "\"/>\n";
        addText(kRight - 230.0, y, 18, "start", layer.label);
    }

    std::string finished() { return out_.str() + "</svg>\n"; }

private:
    // Pixels of a value along an axis of the plot; y grows downwards in SVG.
    double place(std::size_t axis, double value) const {
        const double share = (value - frame_.low[axis]) / (frame_.high[axis] - frame_.low[axis]);
        return axis == 0 ? kLeft + share * (kRight - kLeft) : kBottom - share * (kBottom - kTop);
    }
    double place(std::size_t axis, const Point& p) const {
        return place(axis, p.getRef(static_cast<int>(frame_.axes[axis])));
    }

    void addTick(std::size_t axis, double value) {
        const double at = place(axis, value);
        const std::string label = formatted("%.6g", value);
        if (axis == 0) {
            addRule(at, kTop, at, kBottom);
            addText(at, kBottom + 28.0, 16, "middle", label);
        } else {
            addRule(kLeft, at, kRight, at);
            addText(kLeft - 10.0, at + 5.0, 16, "end", label);
        }
    }

    void addRule(double x1, double y1, double x2, double y2) {
        out_ << "<path d=\"M" << pixel(x1) << "," << pixel(y1) << " L" << pixel(x2) << ","
             << pixel(y2) << "\" stroke=\"#e4e4e4\"/>\n";
    }

    PlotFrame frame_;
    std::ostringstream out_;
};

} // namespace

std::string svgOf(const PlotFrame& frame, const std::string& title,
                  const std::vector<SvgLayer>& layers) {
    Svg svg(frame);
    svg.addText(0.5 * (kLeft + kRight), 45.0, 24, "middle", title);
    svg.addAxes();
    std::size_t row = 0;
    for (const SvgLayer& layer : layers) {
        for (const NamedCurve& curve : *layer.curves) {
            svg.addCurve(curve, layer);
        }
        svg.addLegend(row++, layer);
    }
    return svg.finished();
}

} // namespace program
