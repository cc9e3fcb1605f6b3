#include "geometry/RotationMatrix.h"

#include "geometry/Trigonometry.h"

namespace z3d::geometry {
namespace {

// Slightly below the true pi/180: angles extracted from a matrix go back through this very value.
constexpr double kRadiansPerDegree = 0.017453292519943278;

SineCosine OfDegrees(float degrees) {
    return SineAndCosine(static_cast<double>(degrees) * kRadiansPerDegree);
}

// Every element is a sum that starts from zero, so no element is a negative zero.
void Multiply(const double* left, const double* right, double* product) {
    for (int row = 0; row < 3; ++row) {
        for (int column = 0; column < 3; ++column) {
            double sum = 0.0;
            for (int k = 0; k < 3; ++k)
                sum += left[row * 3 + k] * right[k * 3 + column];
            product[row * 3 + column] = sum;
        }
    }
}

constexpr int kIdentity = 3;

int FactorIndex(std::int16_t axis) { return axis >= 0 && axis < kIdentity ? axis : kIdentity; }

} // namespace

void CreateRotateMatrix(double* matrix, const std::int16_t* order, float angleX, float angleY, float angleZ) {
    if (matrix == nullptr || order == nullptr) return;

    const SineCosine x = OfDegrees(angleX);
    const SineCosine y = OfDegrees(angleY);
    const SineCosine z = OfDegrees(angleZ);
    // The minus sign of Y stands in row 0, unlike those of X and Z.
    const double factors[4][9] = {
        {1.0, 0.0, 0.0, 0.0, x.cosine, -x.sine, 0.0, x.sine, x.cosine},
        {y.cosine, 0.0, -y.sine, 0.0, 1.0, 0.0, y.sine, 0.0, y.cosine},
        {z.cosine, -z.sine, 0.0, z.sine, z.cosine, 0.0, 0.0, 0.0, 1.0},
        {1.0, 0.0, 0.0, 0.0, 1.0, 0.0, 0.0, 0.0, 1.0},
    };

    double firstTwo[9];
    Multiply(factors[FactorIndex(order[0])], factors[FactorIndex(order[1])], firstTwo);
    Multiply(firstTwo, factors[FactorIndex(order[2])], matrix);
}

} // namespace z3d::geometry
