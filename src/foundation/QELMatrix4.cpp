// The 4x4 matrix of homogeneous transformations.

#include <qel/QELMatrix4.h>

#include <ostream>

#include "foundation/MessageTokens.h"

namespace qel {
namespace {

constexpr int kSize = 4;

void checkIndex(int index, const char* methodName) {
    if (index < 0 || index >= kSize) {
        SystemMsg message("Index (%1) out of range %2");
        throw data::invalid("QELMatrix4", methodName, message % index % "0..3", argumentError);
    }
}

float timesPoint(const float* row, const TripletBase<float>& p) {
    return p.x * row[0] + p.y * row[1] + p.z * row[2] + row[3];
}

using Rows = float[kSize][kSize];

inline void addProduct(Rows& sums, const Rows& a, const Rows& b) {
    for (int i = 0; i < kSize; ++i) {
        for (int j = 0; j < kSize; ++j) {
            for (int k = 0; k < kSize; ++k) {
                sums[i][j] += a[i][k] * b[k][j];
            }
        }
    }
}

} // namespace

// -- Building ----

QELMatrix4::QELMatrix4(const QELMatrix3base<float>& a) {
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j) {
            values_[i][j] = a[i][j];
        }
    }
    values_[3][3] = 1.0f;
}

void QELMatrix4::setZero() {
    *this = QELMatrix4();
}

void QELMatrix4::setIdentity() {
    setZero();
    for (int i = 0; i < kSize; ++i) {
        values_[i][i] = 1.0f;
    }
}

void QELMatrix4::setTranslationMatrix(const TripletBase<float>& t) {
    setIdentity();
    values_[0][3] = t.x;
    values_[1][3] = t.y;
    values_[2][3] = t.z;
}

// -- Elements ----

float* QELMatrix4::operator[](int row) {
    checkIndex(row, "operator[]");
    return values_[row];
}

const float* QELMatrix4::operator[](int row) const {
    checkIndex(row, "operator[]");
    return values_[row];
}

// -- Homogeneous weight ----

bool QELMatrix4::isHomogeneous() const {
    return values_[3][3] == 1.0f;
}

QELMatrix4& QELMatrix4::homogenize() {
    if (isHomogeneous()) {
        return *this;
    }
    const double weight = values_[3][3];
    for (auto& row : values_) {
        for (float& element : row) {
            element = static_cast<float>(element / weight);
        }
    }
    values_[3][3] = 1.0f;
    return *this;
}

// -- Products ----

void QELMatrix4::multVec(TripletBase<float>& out, const TripletBase<float>& in) const {
    const float weight = timesPoint(values_[3], in);
    out =
        TripletBase<float>(timesPoint(values_[0], in) / weight, timesPoint(values_[1], in) / weight,
                           timesPoint(values_[2], in) / weight);
}

void QELMatrix4::multMat(QELMatrix4& result, const QELMatrix4& b) const {
    if (&result == &b) {
        throw internal::error("QELMatrix4", "multMat", "Tried to write result to argument.",
                              argumentError);
    }
    // Before this matrix is read, on purpose (QELMatrix4, ProductIntoItselfIsZero).
    result.setZero();
    if (&result == this) {
        addProduct(result.values_, values_, b.values_);
        return;
    }
    QELMatrix4 product; // whose elements are not read as they change
    addProduct(product.values_, values_, b.values_);
    result = product;
}

TripletBase<float> operator*(const QELMatrix4& m, const TripletBase<float>& p) {
    QELMatrix4 homogeneous = m;
    TripletBase<float> transformed;
    homogeneous.homogenize().multVec(transformed, p);
    return transformed;
}

QELMatrix4 operator*(const QELMatrix4& a, const QELMatrix4& b) {
    QELMatrix4 product;
    a.multMat(product, b);
    return product;
}

// -- Minors ----

QELMatrix3base<float> QELMatrix4::subMatrix(int row, int col) const {
    checkIndex(row, "subMatrix");
    checkIndex(col, "subMatrix");
    QELMatrix3base<float> rest;
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j) {
            rest[i][j] = values_[(row + 1 + i) % kSize][(col + 1 + j) % kSize];
        }
    }
    return rest;
}

float QELMatrix4::determinant() const {
    const auto term = [this](int j) {
        return static_cast<double>(values_[0][j]) * subMatrix(0, j).determinant();
    };
    return static_cast<float>(((term(0) - term(1)) + term(2)) - term(3));
}

// -- Text ----

std::ostream& operator<<(std::ostream& os, const QELMatrix4& m) {
    os << "(";
    for (int i = 0; i < kSize; ++i) {
        const float* const row = m[i];
        os << (i == 0 ? "(" : ", (") << row[0] << ", " << row[1] << ", " << row[2] << ", " << row[3]
           << ")";
    }
    return os << ")";
}

} // namespace qel
