#include "support/Row.h"

#include <algorithm>
#include <cmath>
#include <sstream>

namespace qel_benchmark {
namespace {

double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    const std::size_t middle = values.size() / 2;
    return values.size() % 2 == 1 ? values[middle] : 0.5 * (values[middle - 1] + values[middle]);
}

} // namespace

void CostHistory::add(const std::string& contender, std::size_t n, double seconds) {
    costs_[contender].push_back({n, seconds});
}

double CostHistory::expected(const std::string& contender, std::size_t n) const {
    const auto found = costs_.find(contender);
    if (found == costs_.end()) {
        return 0.0;
    }
    const std::vector<Cost>& costs = found->second;
    const Cost& last = costs.back();
    double exponent = 1.0;
    if (costs.size() > 1) {
        const Cost& before = costs[costs.size() - 2];
        exponent = std::log(last.seconds / before.seconds) /
                   std::log(static_cast<double>(last.n) / static_cast<double>(before.n));
    }
    return last.seconds * std::pow(static_cast<double>(n) / static_cast<double>(last.n), exponent);
}

bool Row::wants(const std::string& who, int calls) {
    if (plan_.libraryAlone && who != kLibrary) {
        return false;
    }
    const double expected = costs_.expected(who, n_);
    if (expected > plan_.maxCallSeconds || expected * calls > 3.0 * plan_.maxCallSeconds) {
        costs_.add(who, n_, expected); // so that still larger sizes are left out as well
        tooSlow_.push_back(who);
        return false;
    }
    return true;
}

// Sets the number of calls in a batch. The first call, which may meet cold caches and fresh memory,
// counts only where it takes a batch's time by itself.
void Row::calibrate(Entry& entry) const {
    double seconds = entry.contender->seconds(1);
    if (seconds > 0.5 * plan_.budgetSeconds) {
        entry.seconds.push_back(seconds);
        return;
    }
    while (seconds < 0.5 * plan_.batchSeconds) {
        const double factor = plan_.batchSeconds / std::max(seconds, 1e-9);
        entry.calls = static_cast<std::size_t>(
            std::ceil(static_cast<double>(entry.calls) * std::clamp(factor, 1.5, 20.0)));
        seconds = entry.contender->seconds(entry.calls);
    }
}

// The contender before has left the caches to itself. A first call that is not counted brings the
// input back, where a batch has too few calls for that not to matter.
double Row::secondsOfCall(const Entry& entry) {
    if (entry.calls < 10) {
        entry.contender->seconds(1);
    }
    return entry.contender->seconds(entry.calls) / static_cast<double>(entry.calls);
}

int Row::roundsOf(const Entry& entry) const {
    if (entry.seconds.empty()) {
        return plan_.rounds;
    }
    const double first = entry.seconds.front();
    if (first > 3.0 * plan_.budgetSeconds) {
        return 0; // the first call is what there is
    }
    const double batch = 2.0 * first * static_cast<double>(entry.calls);
    return std::clamp(static_cast<int>(plan_.budgetSeconds / batch), 1, plan_.rounds);
}

void Row::measure() {
    for (Entry& entry : entries_) {
        calibrate(entry);
    }
    for (int round = 0; round < plan_.rounds; ++round) {
        for (Entry& entry : entries_) {
            if (round < roundsOf(entry)) {
                entry.seconds.push_back(secondsOfCall(entry));
            }
        }
    }
    for (Entry& entry : entries_) {
        medians_.emplace_back(entry.who, median(entry.seconds));
        costs_.add(entry.who, n_, medians_.back().second);
        entry.contender.reset();
    }
    entries_.clear();
}

bool Row::canCompare() const {
    int found = 0;
    for (const auto& [who, seconds] : medians_) {
        found += who == kLibrary || who == kPlain ? 1 : 0;
    }
    return found == 2;
}

std::string Row::json() const {
    std::ostringstream os;
    os.precision(6);
    os << "\"items\": " << items_ << ", \"ns\": {";
    const char* separator = "";
    for (const auto& [who, seconds] : medians_) {
        os << separator << '"' << who << "\": " << 1e9 * seconds;
        separator = ", ";
    }
    os << "}, \"too_slow\": [";
    separator = "";
    for (const std::string& who : tooSlow_) {
        os << separator << '"' << who << '"';
        separator = ", ";
    }
    os << "], \"differs\": " << (differs_ ? "true" : "false");
    return os.str();
}

} // namespace qel_benchmark
