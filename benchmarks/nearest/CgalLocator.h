#ifndef QEL_BENCHMARKS_NEAREST_CGALLOCATOR_H
#define QEL_BENCHMARKS_NEAREST_CGALLOCATOR_H

// CGAL's kd-tree, with the two members of the structures in Locators.h.

#if defined(QEL_BENCHMARK_HAS_CGAL)

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include <CGAL/Orthogonal_k_neighbor_search.h>
#include <CGAL/Search_traits_2.h>
#include <CGAL/Search_traits_adapter.h>
#include <CGAL/Simple_cartesian.h>

#include "nearest/Locators.h"

namespace qel_benchmark {

class CgalLocator {
public:
    using Kernel = CGAL::Simple_cartesian<float>;
    using Value = std::pair<Kernel::Point_2, std::uint32_t>;
    using Input = std::vector<Value>;
    static Input prepare(const Points& points) {
        Input input;
        for (const Point& p : points) {
            input.emplace_back(Kernel::Point_2(p.x, p.y), static_cast<std::uint32_t>(input.size()));
        }
        return input;
    }

    explicit CgalLocator(const Input& input) : tree_(input.begin(), input.end()) { tree_.build(); }
    std::size_t nearest(const Point& q) {
        const Search search(tree_, Kernel::Point_2(q.x, q.y), 1);
        return search.begin()->first.second;
    }

private:
    using Traits = CGAL::Search_traits_adapter<Value, CGAL::First_of_pair_property_map<Value>,
                                               CGAL::Search_traits_2<Kernel>>;
    using Search = CGAL::Orthogonal_k_neighbor_search<
        Traits, CGAL::Distance_adapter<Value, CGAL::First_of_pair_property_map<Value>,
                                       CGAL::Euclidean_distance<CGAL::Search_traits_2<Kernel>>>>;

    Search::Tree tree_;
};

} // namespace qel_benchmark

#endif
#endif
