// Demonstration: a blade section as a curve. Builds the section from its published formula, shows
// its points, points at parameters, and the projection of probes; then cleans, extends, resamples,
// simplifies, cuts and exports it, and finds where it meets a line.

#include <cmath>
#include <cstddef>
#include <cstdio>
#include <fstream>
#include <iomanip>
#include <iostream>
#include <string>
#include <vector>

#include <qel/LineSegment2D.h>
#include <qel/ParametricCurve.h>

namespace {

using Point = qel::TripletBase<double>;
using qel::ParametricCurve;

constexpr double kPi = 3.14159265358979323846;

// A section of the NACA four-digit family, after Jacobs, Ward and Pinkerton, "The characteristics
// of 78 related airfoil sections from tests in the variable-density wind tunnel", NACA Report 460
// (1933). Lengths are fractions of the chord.
struct Section {
    double camber;         // largest height of the mean line (first digit, in hundredths)
    double camberPosition; // where it has that height (second digit, in tenths)
    double thickness;      // largest thickness (last two digits, in hundredths)
};

// Half the thickness at x, at right angles to the mean line.
double halfThickness(const Section& section, double x) {
    return 5.0 * section.thickness *
           (0.2969 * std::sqrt(x) - 0.1260 * x - 0.3516 * x * x + 0.2843 * x * x * x -
            0.1015 * x * x * x * x);
}

// The point of the upper (side = 1) or lower (side = -1) surface that belongs to x.
Point surfacePoint(const Section& section, double x, double side) {
    const double m = section.camber;
    const double p = section.camberPosition;
    // The mean line is two parabolas that meet at its highest point.
    const double scale = x < p ? m / (p * p) : m / ((1.0 - p) * (1.0 - p));
    const double height = scale * ((x < p ? 0.0 : 1.0 - 2.0 * p) + 2.0 * p * x - x * x);
    const double angle = std::atan(scale * 2.0 * (p - x));
    const double half = side * halfThickness(section, x);
    return {x - half * std::sin(angle), height + half * std::cos(angle), 0.0};
}

// From the trailing edge over the upper surface to the leading edge and back along the lower one,
// with points close together at both edges.
std::vector<Point> sectionPoints(const Section& section, int intervalsPerSide) {
    std::vector<Point> points;
    for (int i = -intervalsPerSide; i <= intervalsPerSide; ++i) {
        const double x = 0.5 * (1.0 - std::cos(kPi * i / intervalsPerSide));
        points.push_back(surfacePoint(section, x, i < 0 ? 1.0 : -1.0));
    }
    return points;
}

void listCurve(const ParametricCurve& curve, std::size_t stride) {
    std::cout << "\npoint      s         x         y\n";
    for (std::size_t i = 0; i < curve.getSize(); i += stride) {
        const Point& p = curve.getCurve()[i];
        std::cout << std::setw(5) << i << std::setw(10) << curve.getSvalues()[i] << std::setw(10)
                  << p.x << std::setw(10) << p.y << "\n";
    }
}

void showPointsAtParameters(const ParametricCurve& curve) {
    std::cout << "\nPoints at parameters\n";
    for (const double s : {0.0, 0.25, 0.5, 0.75, 1.0}) {
        std::cout << "  s = " << s << "  " << curve.getPointAtParameter(s) << "\n";
    }
}

void showProjections(const ParametricCurve& curve) {
    std::cout << "\nProjection of probes\n";
    for (const Point& probe : {Point(0.3, 0.2, 0.0), Point(-0.1, 0.0, 0.0), Point(0.6, 0.0, 0.0)}) {
        double s = 0.0;
        const Point foot = curve.projectPoint(probe, s);
        std::cout << "  " << probe << " -> " << foot << "  s = " << s
                  << "  distance = " << (probe - foot).length() << "\n";
    }
}

void tell(const char* what, const ParametricCurve& curve) {
    std::cout << "  " << what << ": " << curve.getSize() << " points, length " << curve.getLength()
              << "\n";
}

// Points as a measuring machine may deliver them: some twice.
std::vector<Point> withRepeats(const std::vector<Point>& points) {
    std::vector<Point> repeated;
    for (std::size_t i = 0; i < points.size(); ++i) {
        repeated.insert(repeated.end(), i % 10 == 5 ? 2 : 1, points[i]);
    }
    return repeated;
}

// The road of a section from its measured points to a curve for a mesh generator.
ParametricCurve showPreparation(const std::vector<Point>& measured) {
    std::cout << "\nPreparation of measured points\n";
    ParametricCurve curve(measured, ParametricCurve::dim2D);
    tell("as measured ", curve);
    curve.eliminateDoublePoints(2);
    tell("cleaned     ", curve);
    curve.expandCurveBothEnds(0.01); // by a hundredth of its length, beyond the trailing edge
    tell("extended    ", curve);
    curve.tesselateCurvebySdistance(0.005);
    tell("resampled   ", curve);
    std::vector<int> kept;
    curve.optimizeByNormalDistance(40, kept, 1e-4);
    tell("simplified  ", curve);
    return curve;
}

void showPiece(const ParametricCurve& curve) {
    double s = 0.0;
    curve.projectPoint(Point(0.0, 0.0, 0.0), s);
    std::vector<Point> upperSide;
    curve.getCurveBegin(s, upperSide);
    std::cout << "\nThe upper side, cut at the leading edge, s = " << s << ": " << upperSide.size()
              << " points\n";
}

void showCrossing(const ParametricCurve& curve) {
    const qel::LineSegment2D station({0.25f, 0.0f}, {0.25f, 0.2f});
    qel::TripletBase<float> crossing;
    if (curve.intersectWithSegment(station, crossing)) {
        std::cout << "\nAbove a quarter of the chord it meets the line at " << crossing << "\n";
    }
}

void showExport(const ParametricCurve& curve) {
    const std::string path = "naca2412.dat";
    curve.exportToFile(path);
    std::cout << "\nExported, the file begins\n";
    std::ifstream file(path);
    std::string line;
    for (int i = 0; i < 3 && std::getline(file, line); ++i) {
        std::cout << "  " << line << "\n";
    }
    file.close();
    std::remove(path.c_str());
}

// What is wrong with an argument comes back as an exception that names place and reason.
void showRefusal(const Point& point) {
    std::cout << "\nA curve of one point is refused\n";
    try {
        const ParametricCurve curve(std::vector<Point>{point}, ParametricCurve::dim2D);
    } catch (const qel::Error& error) {
        std::cout << "  " << error.getClassName() << "::" << error.getMethodName() << ": "
                  << error.what() << "\n";
    }
}

} // namespace

int main() {
    const Section naca2412 = {0.02, 0.4, 0.12};
    const std::vector<Point> points = sectionPoints(naca2412, 40);
    const ParametricCurve curve(points, ParametricCurve::dim2D);

    std::cout << std::fixed << std::setprecision(5);
    std::cout << "NACA 2412: " << curve.getSize() << " points, length " << curve.getLength()
              << " chords\n";
    listCurve(curve, 8);
    showPointsAtParameters(curve);
    showProjections(curve);
    const ParametricCurve prepared = showPreparation(withRepeats(points));
    showPiece(prepared);
    showCrossing(prepared);
    showExport(prepared);
    showRefusal(curve.getFirstPoint());
}
