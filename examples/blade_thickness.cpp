// Thickness of a blade section along its chord: a line across it meets the section twice.
#include <cmath>
#include <iostream>
#include <vector>

#include <qel/CurveCrossings.h>

int main() {
    std::vector<qel::TripletBase<double>> section; // along the lower side and back along the upper
    for (int i = 0; i <= 200; ++i) {
        const double angle = 2 * std::acos(-1.0) * i / 200;
        const double x = 0.5 + 0.5 * std::cos(angle);
        section.emplace_back(x, -0.1 * std::sin(angle) + 0.1 * x * (1 - x), 0.0);
    }
    for (const double x : {0.1, 0.25, 0.5, 0.75, 0.9}) {
        const auto crossings = qel::findCrossingsWithLine(section, {x, -1, 0}, {x, 1, 0});
        const double thickness = std::abs(crossings[1].begin.y - crossings[0].begin.y);
        std::cout << "x = " << x << "  thickness = " << std::round(thickness * 1e4) / 1e4
                  << "  at s = " << std::round(crossings[0].sBegin * 1e3) / 1e3 << " and "
                  << std::round(crossings[1].sBegin * 1e3) / 1e3 << "\n";
    }
}
