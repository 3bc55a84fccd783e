// Distance of 1e6 cells from a wall, with the s of each one's foot along the wall.
#include <cmath>
#include <iostream>
#include <vector>

#include <qel/CurveLocator.h>

int main() {
    std::vector<qel::TripletBase<double>> wall, cells; // a bump, and a grid above it
    for (int i = 0; i <= 1000; ++i) {
        wall.emplace_back(i / 1000.0, 0.1 * std::sin(std::acos(-1.0) * i / 1000.0), 0.0);
    }
    for (int i = 0; i < 1000000; ++i) {
        cells.emplace_back((i % 1000) / 999.0, 0.1 + (i / 1000) / 1998.0, 0.0);
    }
    std::vector<double> distance(cells.size()), s(cells.size());
    qel::CurveLocations out;
    out.distance = distance;
    out.s = s;
    qel::CurveLocator(wall).locate(cells, out);
    std::cout << "cell 500250: distance " << std::round(distance[500250] * 1e4) / 1e4
              << ", foot at s = " << std::round(s[500250] * 1e4) / 1e4 << "\n";
}
