// Rotations put together in doubles and rounded once. Angles come from quotients, never from sines of the C
// library, so that the same turn has the same bits on every platform.
#pragma once

#include <array>
#include <cstddef>

namespace z3d::test {

using Rotation = std::array<float, 9>;
using DoubleMatrix = std::array<double, 9>;

inline constexpr DoubleMatrix kNoTurn = {1, 0, 0, 0, 1, 0, 0, 0, 1};

struct Angle {
    double cosine;
    double sine;
};

// From the tangent of half the angle: exact quotients instead of sines.
constexpr Angle FromHalfTangent(double t) { return {(1.0 - t * t) / (1.0 + t * t), 2.0 * t / (1.0 + t * t)}; }

// About that many degrees: too few by 3e-5 of the angle at 1 degree, by a hundredth of it at 20.
constexpr Angle SmallAngle(double degrees) { return FromHalfTangent(degrees * 0.008726646259971648); }

// Quarter turns, with exact zeros.
constexpr Angle Quarters(int turns) {
    constexpr std::array<double, 4> kCosines = {1, 0, -1, 0};
    return {kCosines[static_cast<std::size_t>(turns & 3)],
            kCosines[static_cast<std::size_t>((turns + 3) & 3)]};
}

constexpr DoubleMatrix AboutAxis(int axis, const Angle& angle) {
    const double c = angle.cosine;
    const double s = angle.sine;
    if (axis == 0) return {1, 0, 0, 0, c, -s, 0, s, c};
    if (axis == 1) return {c, 0, s, 0, 1, 0, -s, 0, c};
    return {c, -s, 0, s, c, 0, 0, 0, 1};
}

constexpr DoubleMatrix Product(const DoubleMatrix& a, const DoubleMatrix& b) {
    DoubleMatrix product = {};
    for (std::size_t r = 0; r < 3; ++r) {
        for (std::size_t c = 0; c < 3; ++c) {
            product[3 * r + c] = a[3 * r] * b[c] + a[3 * r + 1] * b[3 + c] + a[3 * r + 2] * b[6 + c];
        }
    }
    return product;
}

constexpr Rotation Rounded(const DoubleMatrix& matrix) {
    Rotation rotation = {};
    for (std::size_t i = 0; i < 9; ++i) {
        rotation[i] = static_cast<float>(matrix[i]);
    }
    return rotation;
}

// Quarter turns as hosts compute them: with exact zeros, in double precision, and in single precision.
inline constexpr std::array<double, 3> kCosinesOf90 = {0, 6.123233995736766e-17, -4.371138828673793e-8};

constexpr Angle HostQuarters(int turns, double cosineOf90) {
    const Angle exact = Quarters(turns);
    const double small = cosineOf90 * ((turns & 3) == 3 ? 3 : (turns & 3));
    return {exact.cosine == 0 ? small : exact.cosine, exact.sine == 0 ? small : exact.sine};
}

// An angle about one axis and quarter turns about the two others, in either order.
constexpr Rotation Turntable(int axis, const Angle& angle, int quarters, double cosineOf90,
                             bool isFirstInnermost) {
    std::array<DoubleMatrix, 3> turns = {};
    for (int other = 0; other < 3; ++other) {
        const Angle quarter = HostQuarters(other < 2 ? quarters : quarters / 4, cosineOf90);
        turns[static_cast<std::size_t>(other)] = AboutAxis(other, other == axis ? angle : quarter);
    }
    return Rounded(isFirstInnermost ? Product(Product(turns[2], turns[1]), turns[0])
                                    : Product(Product(turns[0], turns[1]), turns[2]));
}

// A view whose rays run along a volume axis, forwards or backwards.
constexpr DoubleMatrix LookingAlong(int axis, bool isBackwards) {
    if (axis == 0) return AboutAxis(1, Quarters(isBackwards ? 1 : 3));
    if (axis == 1) return AboutAxis(0, Quarters(isBackwards ? 3 : 1));
    return AboutAxis(0, Quarters(isBackwards ? 2 : 0));
}

} // namespace z3d::test
