#include <qel/IntQELVector.h>

namespace qel {

IntQELVector::IntQELVector() = default;
IntQELVector::IntQELVector(std::size_t n) {
    QELVector<int>::resize(n);
}
IntQELVector::IntQELVector(const IntQELVector&) = default;
IntQELVector& IntQELVector::operator=(const IntQELVector&) = default;
IntQELVector::IntQELVector(IntQELVector&&) noexcept = default;
IntQELVector& IntQELVector::operator=(IntQELVector&&) noexcept = default;
IntQELVector::~IntQELVector() = default;

void IntQELVector::resize(std::size_t n) {
    QELVector<int>::resize(n);
}

void IntQELVector::push_back(int value) {
    QELVector<int>::push_back(value);
}

void IntQELVector::pop_back() {
    QELVector<int>::pop_back();
}

void IntQELVector::clear() {
    QELVector<int>::clear();
}

} // namespace qel
