// A flow and a blade section from closed formulas.
#include "DemoFlow.h"

#include <cmath>

#include <vtkDoubleArray.h>
#include <vtkNew.h>
#include <vtkPointData.h>

#include "Console.h"

namespace program {
namespace {

constexpr vtkIdType kPointsBetweenLooks = 10000;
constexpr double kPi = 3.14159265358979323846;

// -- Flow ----

struct Vortex {
    double x;
    double y;
    double circulation;
    double bend;  // the axis sways by this
    double taper; // the circulation varies by this share
};

constexpr double kStrain = 0.2; // stretching dw/dz along the vortices
constexpr double kViscosity = 0.012;
constexpr double kShearSpeed = 1.0; // half the difference across the layer
constexpr double kShearWidth = 0.25;
constexpr double kShearPlace = -2.0; // y of its middle
constexpr Vortex kVortices[] = {{-1.0, 0.6, 6.0, 0.35, 0.3}, {1.1, 0.9, -4.0, 0.2, -0.4}};

// In each plane of z a Burgers vortex (1948), whose swirl is G / (2 pi r) (1 - exp(-a r^2 / (4
// nu))). Place and circulation may vary with z: the divergence stays zero.
void addVortex(const Vortex& vortex, const Point& p, Point& u) {
    const double dx = p.x - vortex.x - vortex.bend * std::sin(0.5 * kPi * p.z);
    const double dy = p.y - vortex.y - vortex.bend * std::cos(0.5 * kPi * p.z);
    const double r2 = dx * dx + dy * dy;
    const double k = kStrain / (4.0 * kViscosity);
    // -expm1 keeps its digits near the axis, where the quotient tends to k.
    const double quotient = r2 > 0.0 ? -std::expm1(-k * r2) / r2 : k;
    const double circulation = vortex.circulation * (1.0 + 0.5 * vortex.taper * p.z);
    const double rate = circulation / (2.0 * kPi) * quotient;
    u.x -= rate * dy;
    u.y += rate * dx;
}

Point velocityAt(const Point& p) {
    Point u(-0.5 * kStrain * p.x, -0.5 * kStrain * p.y, kStrain * p.z);
    u.x += kShearSpeed * std::tanh((p.y - kShearPlace) / kShearWidth);
    for (const Vortex& vortex : kVortices) {
        addVortex(vortex, p, u);
    }
    return u;
}

// -- Section ----

constexpr double kThickness = 0.12;
constexpr double kCamber = 0.02;
constexpr double kCamberPlace = 0.4;

double halfThickness(double x) {
    return 5.0 * kThickness *
           (0.2969 * std::sqrt(x) +
            x * (-0.1260 + x * (-0.3516 + x * (0.2843 - 0.1036 * x)))); // closed trailing edge
}

double camberLine(double x) {
    const double p = kCamberPlace;
    return x < p ? kCamber / (p * p) * (2.0 * p * x - x * x)
                 : kCamber / ((1.0 - p) * (1.0 - p)) * (1.0 - 2.0 * p + 2.0 * p * x - x * x);
}

double camberSlope(double x) {
    const double p = kCamberPlace;
    return x < p ? 2.0 * kCamber / (p * p) * (p - x)
                 : 2.0 * kCamber / ((1.0 - p) * (1.0 - p)) * (p - x);
}

Point sectionPoint(double x, double side) {
    const double slope = std::atan(camberSlope(x));
    const double t = side * halfThickness(x);
    return {x - t * std::sin(slope), camberLine(x) + t * std::cos(slope), 0.0};
}

} // namespace

vtkSmartPointer<vtkImageData> demoFlow(int size) {
    auto flow = vtkSmartPointer<vtkImageData>::New();
    const int across = 2 * size / 3;
    flow->SetDimensions(size, size, across);
    flow->SetOrigin(-3.0, -3.0, -2.0);
    flow->SetSpacing(6.0 / (size - 1), 6.0 / (size - 1), 4.0 / (across - 1));
    vtkNew<vtkDoubleArray> velocity;
    velocity->SetName("velocity");
    velocity->SetNumberOfComponents(3);
    velocity->SetNumberOfTuples(flow->GetNumberOfPoints());
    for (vtkIdType i = 0; i < flow->GetNumberOfPoints(); ++i) {
        if (i % kPointsBetweenLooks == 0) {
            throwIfInterrupted();
        }
        double p[3];
        flow->GetPoint(i, p);
        const Point u = velocityAt({p[0], p[1], p[2]});
        velocity->SetTuple3(i, u.x, u.y, u.z);
    }
    flow->GetPointData()->AddArray(velocity);
    return flow;
}

Points demoSection(int count) {
    Points points;
    for (int i = 0; i < count; ++i) {
        points.push_back(sectionPoint(0.5 * (1.0 + std::cos(kPi * i / (count - 1))), 1.0));
    }
    for (int i = 1; i < count; ++i) {
        points.push_back(sectionPoint(0.5 * (1.0 - std::cos(kPi * i / (count - 1))), -1.0));
    }
    return points;
}

} // namespace program
