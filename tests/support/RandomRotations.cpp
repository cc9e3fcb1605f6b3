#include "support/RandomRequests.h"
#include "support/Turns.h"

#include <cmath>
#include <limits>

namespace z3d::test {

namespace {

Rotation ExactQuarterTurn(RandomSource& random) {
    static constexpr std::array<std::array<std::size_t, 3>, 6> kOrders = {
        {{0, 1, 2}, {0, 2, 1}, {1, 0, 2}, {1, 2, 0}, {2, 0, 1}, {2, 1, 0}}};
    const auto& order = kOrders[static_cast<std::size_t>(random.Below(6))];
    Rotation rotation = {};
    for (std::size_t row = 0; row < 3; ++row) {
        rotation[3 * row + order[row]] = random.Chance(2) ? 1.0f : -1.0f;
    }
    return rotation;
}

Rotation RoundedQuarterTurn(RandomSource& random) {
    // The cosine of half of pi as a double, as a float, and of half of 3.14159265358979.
    static constexpr std::array<double, 3> kCosines = {6.123233995736766e-17, -4.371139000186241e-08,
                                                       1.6155445744325867e-15};
    const Angle quarter = {kCosines[static_cast<std::size_t>(random.Below(3))], 1.0};
    DoubleMatrix rotation = kNoTurn;
    for (int axis = 0; axis < 3; ++axis) {
        for (int turns = random.Below(4); turns > 0; --turns) {
            rotation = Product(AboutAxis(axis, quarter), rotation);
        }
    }
    return Rounded(rotation);
}

Rotation EighthTurn(RandomSource& random) {
    const double half = std::sqrt(0.5);
    const Angle first = {half, random.Chance(2) ? half : -half};
    const int axis = random.Below(3);
    DoubleMatrix rotation = AboutAxis(axis, first);
    if (random.Chance(2)) {
        const Angle second = {half, random.Chance(2) ? half : -half};
        rotation = Product(AboutAxis((axis + 1) % 3, second), rotation);
    }
    return Rounded(rotation);
}

Rotation TinyAngle(RandomSource& random) {
    static constexpr std::array<double, 4> kScales = {1e-7, 1e-6, 1e-5, 1e-4};
    DoubleMatrix rotation = kNoTurn;
    for (int axis = 0; axis < 3; ++axis) {
        const double scale = kScales[static_cast<std::size_t>(random.Below(4))];
        const double size = scale * random.Within(1.0, 10.0);
        const double angle = random.Chance(2) ? size : -size;
        rotation = Product(AboutAxis(axis, FromHalfTangent(angle / 2.0)), rotation);
    }
    return Rounded(rotation);
}

Rotation OneAxis(RandomSource& random) {
    const int axis = random.Below(3);
    if (random.Chance(2)) return Rounded(AboutAxis(axis, FromHalfTangent(random.Within(-2.0, 2.0))));
    // A quotient of small integers gives elements such as 3/5 and 4/5, whose rays meet many ties.
    const double dividend = random.Between(-8, 8);
    const double divisor = random.Between(1, 8);
    return Rounded(AboutAxis(axis, FromHalfTangent(dividend / divisor)));
}

DoubleMatrix UniformRotation(RandomSource& random) {
    // A direction in four dimensions, uniform because points outside the unit ball are thrown again.
    std::array<double, 4> q = {};
    double squares = 0.0;
    while (squares > 1.0 || squares < 0.01) {
        squares = 0.0;
        for (double& component : q) {
            component = random.Within(-1.0, 1.0);
            squares += component * component;
        }
    }
    const double length = std::sqrt(squares);
    const double w = q[0] / length;
    const double x = q[1] / length;
    const double y = q[2] / length;
    const double z = q[3] / length;
    return {1.0 - 2.0 * (y * y + z * z), 2.0 * (x * y - w * z),       2.0 * (x * z + w * y),
            2.0 * (x * y + w * z),       1.0 - 2.0 * (x * x + z * z), 2.0 * (y * z - w * x),
            2.0 * (x * z - w * y),       2.0 * (y * z + w * x),       1.0 - 2.0 * (x * x + y * y)};
}

Rotation NearOrthonormal(RandomSource& random) {
    static constexpr std::array<double, 4> kErrors = {1e-7, 1e-5, 1e-3, 1e-2};
    const double error = kErrors[static_cast<std::size_t>(random.Below(4))];
    DoubleMatrix rotation = UniformRotation(random);
    for (double& element : rotation) {
        element += random.Within(-error, error);
    }
    return Rounded(rotation);
}

Rotation Sheared(RandomSource& random) {
    DoubleMatrix shape = {};
    for (std::size_t i = 0; i < 9; ++i) {
        const bool diagonal = i % 4 == 0;
        shape[i] = diagonal ? random.Within(0.3, 1.8) : random.Within(-0.4, 0.4);
    }
    return Rounded(random.Chance(3) ? shape : Product(shape, UniformRotation(random)));
}

Rotation Degenerate(RandomSource& random) {
    Rotation rotation = Rounded(UniformRotation(random));
    const int what = random.Below(7);
    for (std::size_t i = 0; i < 9; ++i) {
        const auto row = static_cast<int>(i / 3);
        const auto column = static_cast<int>(i % 3);
        if (what == row || what == 3 + column || what == 6) rotation[i] = 0.0f;
    }
    return rotation;
}

} // namespace

Rotation RandomRotation(RandomSource& random, RotationKind kind) {
    switch (kind) {
    case RotationKind::Identity:
        break;
    case RotationKind::ExactQuarterTurn:
        return ExactQuarterTurn(random);
    case RotationKind::RoundedQuarterTurn:
        return RoundedQuarterTurn(random);
    case RotationKind::EighthTurn:
        return EighthTurn(random);
    case RotationKind::TinyAngle:
        return TinyAngle(random);
    case RotationKind::OneAxis:
        return OneAxis(random);
    case RotationKind::Uniform:
        return Rounded(UniformRotation(random));
    case RotationKind::NearOrthonormal:
        return NearOrthonormal(random);
    case RotationKind::Sheared:
        return Sheared(random);
    case RotationKind::Degenerate:
        return Degenerate(random);
    }
    return kIdentity;
}

Rotation UnusableRotation(RandomSource& random) {
    static constexpr std::array<float, 6> kElements = {std::numeric_limits<float>::quiet_NaN(),
                                                       std::numeric_limits<float>::infinity(),
                                                       -std::numeric_limits<float>::infinity(),
                                                       4294967296.0f,
                                                       -1e20f,
                                                       std::numeric_limits<float>::max()};
    Rotation rotation = Rounded(UniformRotation(random));
    const auto where = static_cast<std::size_t>(random.Below(9));
    rotation[where] = kElements[static_cast<std::size_t>(random.Below(6))];
    return rotation;
}

} // namespace z3d::test
