#include "reference/PlainRotation.h"

#include "geometry/Trigonometry.h"

#include <cmath>
#include <cstddef>
#include <limits>

namespace z3d::reference {

Matrix ElementaryRotation(int axis, float degrees) {
    const double radians = static_cast<double>(degrees) * 0.017453292519943278;
    const double s = geometry::SineAndCosine(radians).sine;
    const double c = geometry::SineAndCosine(radians).cosine;
    if (axis == 0) return {1, 0, 0, 0, c, -s, 0, s, c};
    if (axis == 1) return {c, 0, -s, 0, 1, 0, s, 0, c};
    return {c, -s, 0, s, c, 0, 0, 0, 1};
}

Matrix Product(const Matrix& left, const Matrix& right) {
    Matrix product{};
    for (std::size_t i = 0; i < 9; ++i) {
        const std::size_t row = i / 3;
        const std::size_t column = i % 3;
        product[i] = 0.0 + left[3 * row] * right[column];
        product[i] = product[i] + left[3 * row + 1] * right[3 + column];
        product[i] = product[i] + left[3 * row + 2] * right[6 + column];
    }
    return product;
}

double LargestDifference(const Matrix& a, const Matrix& b) {
    double largest = 0.0;
    for (std::size_t i = 0; i < 9; ++i) {
        const double difference = std::fabs(a[i] - b[i]);
        if (std::isnan(difference)) return std::numeric_limits<double>::quiet_NaN();
        if (difference > largest) largest = difference;
    }
    return largest;
}

} // namespace z3d::reference
