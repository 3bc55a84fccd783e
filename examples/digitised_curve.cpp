// A digitised curve with pressures: drops what matters less than 1e-3, and resamples at even s.
#include <iostream>
#include <vector>

#include <qel/CurveResampling.h>
#include <qel/CurveSimplification.h>

int main() {
    std::vector<qel::TripletBase<double>> points, kept, even(5);
    std::vector<double> pressure, s = {0.0, 0.25, 0.5, 0.75, 1.0}, result(5);
    for (int i = 0; i <= 2000; ++i) {
        const double x = i / 1000.0, noise = 1e-4 * (i * 7919 % 13 - 6) / 6.0;
        points.emplace_back(x, x * (2 - x) + noise, 0.0);
    }
    for (const std::size_t i : qel::simplifyToError(points, 1e-3)) {
        kept.push_back(points[i]);
        pressure.push_back(2 - points[i].x);
    }
    qel::resampleCurve(kept, s, {pressure.data(), kept.size(), 1}, even, {result.data(), 5, 1});
    std::cout.precision(3);
    for (std::size_t k = 0; k < 5; ++k) {
        std::cout << std::fixed << "x = " << even[k].x << "  pressure = " << result[k] << "\n";
    }
}
