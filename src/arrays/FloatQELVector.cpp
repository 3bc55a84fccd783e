// What the float arrays share: statistics and text.

#include <qel/FloatQELVector.h>

#include <iostream>
#include <sstream>
#include <typeinfo>

#include <qel/FloatQELVectorComponent.h>
#include <qel/FloatQELVectorConcrete.h>

#include "arrays/Statistics.h"

namespace qel {
namespace {

constexpr std::size_t kValuesPerLine = 8;

std::ostream& writeValue(std::ostream& os, float value) {
    return value == kUndefinedFloat ? os << "UNDEF" : os << value;
}

} // namespace

FloatQELVector::FloatQELVector() = default;
FloatQELVector::FloatQELVector(const FloatQELVector&) = default;
FloatQELVector& FloatQELVector::operator=(const FloatQELVector&) = default;
FloatQELVector::~FloatQELVector() = default;

// -- Statistics ----

// Arrays of the library's own kinds lie in memory at their stride; a caller's may do as it likes
// between Begin() and End() and is walked.
void FloatQELVector::updateCache() const {
    // Only reads; the iterators are not const because the interface gives out one kind.
    FloatQELVector& self = const_cast<FloatQELVector&>(*this);
    ValueStatistics s;
    if (typeid(*this) == typeid(FloatQELVectorConcrete) ||
        typeid(*this) == typeid(FloatQELVectorComponent)) {
        s = statisticsOf(self.Begin().operator->(), static_cast<std::size_t>(getStride()), size());
    } else {
        for (Iterator it = self.Begin(); it != self.End(); ++it) {
            s.add(*it);
        }
    }
    min_ = s.min;
    max_ = s.max;
    sum_ = s.sum;
    nValid_ = static_cast<int>(s.count);
    cacheValid_ = true;
}

float FloatQELVector::getMin() const {
    ensureCache();
    return min_;
}

float FloatQELVector::getMax() const {
    ensureCache();
    return max_;
}

float FloatQELVector::getSum() const {
    ensureCache();
    return static_cast<float>(sum_);
}

int FloatQELVector::getNvalid() const {
    ensureCache();
    return nValid_;
}

// -- Text ----

// Through the strided iterators, so that a view's triplet array keeps its statistics.
std::string FloatQELVector::toString(int precision) const {
    std::ostringstream os;
    os << std::scientific;
    if (precision > 0) {
        os.precision(precision);
    }
    const char* separator = "";
    FloatQELVector& self = const_cast<FloatQELVector&>(*this);
    for (Iterator it = self.Begin(); it != self.End(); ++it) {
        os << separator;
        writeValue(os, *it);
        separator = ", ";
    }
    return os.str();
}

void FloatQELVector::write(std::ostream& os, std::size_t from, std::size_t to) const {
    const std::size_t count = size();
    if (to == 0) {
        to = count - 1; // of an empty array, the largest index, which is refused below
    }
    if (to < from) {
        os << to << "<" << from << std::endl;
    } else if (to >= count) {
        os << to << ">= size " << count << std::endl;
    } else {
        os << from << ":";
        for (std::size_t i = from; i <= to; ++i) {
            writeValue(os, (*this)[i]) << ",";
            if ((i + 1) % kValuesPerLine == 0 && i + 1 < to) {
                os << std::endl << i + 1 << ":";
            }
        }
        os << std::endl;
    }
}

void FloatQELVector::write(std::ostream& os) const {
    write(os, 0, size());
}

void FloatQELVector::dbprint(std::size_t from, std::size_t to) const {
    write(std::cout, from, to);
}

void FloatQELVector::dbprint() const {
    write(std::cout);
}

} // namespace qel
