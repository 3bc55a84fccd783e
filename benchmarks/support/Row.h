#ifndef QEL_BENCHMARKS_SUPPORT_ROW_H
#define QEL_BENCHMARKS_SUPPORT_ROW_H

// One row of the benchmarks: the library, the plain loop and the peers at one work on one input.
// They are measured in turns, so that what else the machine does falls on all of them alike.

#include <chrono>
#include <cstddef>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace qel_benchmark {

inline constexpr const char* kLibrary = "library";
// A readable scalar loop of the same operations in the same order, as a user would write it.
inline constexpr const char* kPlain = "plain loop";

// Makes the compiler believe that the value is used and that memory has changed.
template <typename T>
inline void keep(const T& value) {
    asm volatile("" : : "r,m"(value) : "memory");
}
inline void keepMemory() {
    asm volatile("" : : : "memory");
}

// How long and how often is measured.
struct Plan {
    double batchSeconds = 5e-4;  // calls are timed together until they take this long
    double budgetSeconds = 0.04; // for the batches of one contender, of which there is at least one
    double maxCallSeconds = 0.7; // a call that is expected to take longer is not made
    int rounds = 7;              // the most batches of one contender
    bool libraryAlone = false;
};

// Seconds of many calls.
class Contender {
public:
    Contender() = default;
    Contender(const Contender&) = delete;
    Contender& operator=(const Contender&) = delete;
    virtual ~Contender() = default;
    virtual double seconds(std::size_t calls) = 0;
};

inline double secondsSince(std::chrono::steady_clock::time_point start) {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

template <typename Call>
class RepeatedCall : public Contender {
public:
    explicit RepeatedCall(Call call) : call_(std::move(call)) {}

    double seconds(std::size_t calls) override {
        const auto start = std::chrono::steady_clock::now();
        for (std::size_t i = 0; i < calls; ++i) {
            call_();
            keepMemory();
        }
        return secondsSince(start);
    }

private:
    Call call_;
};

// A call that changes its object: each gets a copy, made outside the time taken.
template <typename Object, typename Call>
class CallOnCopies : public Contender {
public:
    CallOnCopies(const Object& original, std::size_t bytes, Call call)
        : original_(original),
          copiesAtOnce_(bytes < kBytesAtOnce ? kBytesAtOnce / bytes : 1),
          call_(std::move(call)) {}

    double seconds(std::size_t calls) override {
        double sum = 0.0;
        for (std::size_t done = 0; done < calls; done += copiesAtOnce_) {
            const std::size_t count = std::min(copiesAtOnce_, calls - done);
            copies_.resize(std::max(count, copies_.size()), original_);
            std::fill(copies_.begin(), copies_.end(), original_);
            const auto start = std::chrono::steady_clock::now();
            for (std::size_t i = 0; i < count; ++i) {
                call_(copies_[i]);
                keepMemory();
            }
            sum += secondsSince(start);
        }
        return sum;
    }

private:
    static constexpr std::size_t kBytesAtOnce = std::size_t{1} << 17; // stays in the caches

    const Object& original_;
    std::size_t copiesAtOnce_;
    Call call_;
    std::vector<Object> copies_;
};

// What calls have cost at smaller sizes, to predict which would take too long.
class CostHistory {
public:
    void add(const std::string& contender, std::size_t n, double seconds);
    // Continues the power law of the last two sizes; 0 where nothing is known.
    double expected(const std::string& contender, std::size_t n) const;

private:
    struct Cost {
        std::size_t n;
        double seconds;
    };
    std::map<std::string, std::vector<Cost>> costs_;
};

class Row {
public:
    // items: what the time of a call is divided by in reports. costs holds those of one work on
    // one shape.
    Row(const Plan& plan, CostHistory& costs, std::size_t n) : plan_(plan), costs_(costs), n_(n) {}

    void setItems(std::size_t items) { items_ = items; }
    std::size_t n() const { return n_; }
    std::size_t items() const { return items_; }

    // False for a contender that is not asked for, or whose call would take too long, or so many
    // of them that preparing it takes.
    bool wants(const std::string& who, int calls = 1);

    template <typename Call>
    void add(const std::string& who, Call call) {
        if (wants(who)) {
            entries_.push_back({who, std::make_unique<RepeatedCall<Call>>(std::move(call)), {}, 1});
        }
    }

    // call(object) on copies of an object of so many bytes, which must live until measure().
    template <typename Object, typename Call>
    void addOnCopies(const std::string& who, const Object& original, std::size_t bytes, Call call) {
        if (wants(who)) {
            entries_.push_back(
                {who,
                 std::make_unique<CallOnCopies<Object, Call>>(original, bytes + 1, std::move(call)),
                 {},
                 1});
        }
    }

    // Measures all that were added, in turns.
    void measure();

    // Whether the plain loop ran beside the library, so that results can be compared.
    bool canCompare() const;
    // Says that the two have not left the same bits.
    void expectSame(bool same) { differs_ = differs_ || (canCompare() && !same); }

    bool isMeasured() const { return !medians_.empty(); }
    // As one line of JSON, without the braces.
    std::string json() const;

private:
    struct Entry {
        std::string who;
        std::unique_ptr<Contender> contender;
        std::vector<double> seconds; // of a call
        std::size_t calls;           // in a batch
    };
    void calibrate(Entry& entry) const;
    int roundsOf(const Entry& entry) const;
    static double secondsOfCall(const Entry& entry);

    const Plan& plan_;
    CostHistory& costs_;
    std::size_t n_;
    std::size_t items_ = 1;
    std::vector<Entry> entries_;
    std::vector<std::pair<std::string, double>> medians_;
    std::vector<std::string> tooSlow_;
    bool differs_ = false;
};

} // namespace qel_benchmark

#endif
