#include <iostream>
#include <vector>

#include <qel/ParametricCurve.h>

int main() {
    using Point = qel::TripletBase<double>;

    // A polyline of length 17. Its parameter s runs from 0 at the first point to 1 at the last.
    const std::vector<Point> points = {{0, 0, 0}, {3, 4, 0}, {3, 4, 12}};
    const qel::ParametricCurve curve(points, qel::ParametricCurve::dim3D);

    // The place on the curve nearest to a probe, and its s.
    double s = 0.0;
    const Point foot = curve.projectPoint(Point(5, 4, 6), s);
    std::cout << "nearest place " << foot << " at s = " << s << "\n";
    std::cout << "half way along " << curve.getPointAtParameter(0.5) << "\n";

    try {
        curve.getPointAtIndex(3); // there are three points: 0, 1 and 2
    } catch (const qel::Error& error) {
        std::cout << error.getMethodName() << ": " << error.what() << "\n";
    }
}
