// Rotation matrices, angles and scalars with numbers of any bits: the plain form's bits, and an end.
#include "Fuzzing.h"

#include "geometry/AngleExtraction.h"
#include "geometry/GammaLookup.h"
#include "geometry/RotationMatrix.h"
#include "geometry/SubvolumeConvert.h"
#include "reference/PlainAngles.h"
#include "reference/PlainRotation.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace {

using namespace z3d;
using namespace z3d::fuzz;
using reference::AxisAngles;
using reference::Matrix;
using Order = std::array<std::int16_t, 3>;

double AnyDouble(FuzzedDataProvider& input) {
    static constexpr double kPlain[] = {0,       1,       -1,       0.5, -0.5, 0.70710678118654757,
                                        0.99999, 1.00001, -0.99999, 1e-5};
    return input.ConsumeBool() ? input.PickValueInArray(kPlain)
                               : std::bit_cast<double>(input.ConsumeIntegral<std::uint64_t>());
}

float AnyAngle(FuzzedDataProvider& input) {
    return input.ConsumeBool() ? static_cast<float>(input.ConsumeIntegral<std::int16_t>()) / 16
                               : AnyFloat(input);
}

Order AnyOrder(FuzzedDataProvider& input) {
    Order order;
    for (std::int16_t& axis : order)
        axis = input.ConsumeIntegralInRange<std::int16_t>(-1, 4);
    return order;
}

void RequireSame(const AxisAngles& got, const AxisAngles& expected) {
    Require(Agree(got.x, expected.x) && Agree(got.y, expected.y) && Agree(got.z, expected.z));
}

void RequireSame(const Matrix& got, const Matrix& expected) {
    for (std::size_t element = 0; element < 9; ++element)
        Require(Agree(got[element], expected[element]));
}

Matrix PlainMatrix(const Order& order, const AxisAngles& angles) {
    const auto factor = [&](std::int16_t axis) {
        if (axis < 0 || axis > 2) return Matrix{1, 0, 0, 0, 1, 0, 0, 0, 1};
        return reference::ElementaryRotation(axis, axis == 0 ? angles.x : axis == 1 ? angles.y : angles.z);
    };
    return reference::Product(reference::Product(factor(order[0]), factor(order[1])), factor(order[2]));
}

AxisAngles PlainAngles(std::int16_t lastAxis, const Matrix& matrix) {
    return lastAxis == 0   ? reference::PlainAngleYZX(matrix)
           : lastAxis == 1 ? reference::PlainAngleZXY(matrix)
                           : reference::PlainAngleXYZ(matrix);
}

void TryMatrix(FuzzedDataProvider& input) {
    const Order order = AnyOrder(input);
    const AxisAngles angles = {AnyAngle(input), AnyAngle(input), AnyAngle(input)};
    Matrix matrix;
    geometry::CreateRotateMatrix(matrix.data(), order.data(), angles.x, angles.y, angles.z);
    RequireSame(matrix, PlainMatrix(order, angles));
}

void TryTwoAngles(FuzzedDataProvider& input) {
    const double a = AnyDouble(input);
    const double b = AnyDouble(input);
    const double c = AnyDouble(input);
    const float third = AnyAngle(input);
    Matrix got;
    Matrix expected;
    AxisAngles angles = {0, 0, third};
    geometry::GetAngleXY(got.data(), a, b, c, &angles.x, &angles.y, third);
    RequireSame(angles, reference::PlainAngleXY(expected, a, b, c, third));
    RequireSame(got, expected);
    angles = {0, third, 0};
    geometry::GetAngleZX(got.data(), a, b, c, &angles.x, &angles.z, third);
    RequireSame(angles, reference::PlainAngleZX(expected, a, b, c, third));
    RequireSame(got, expected);
    angles = {third, 0, 0};
    geometry::GetAngleYZ(got.data(), a, b, c, &angles.y, &angles.z, third);
    RequireSame(angles, reference::PlainAngleYZ(expected, a, b, c, third));
    RequireSame(got, expected);
}

void TryThreeAngles(FuzzedDataProvider& input) {
    Matrix matrix;
    for (double& element : matrix)
        element = AnyDouble(input);
    AxisAngles angles;
    geometry::GetAngleXYZ(matrix.data(), &angles.x, &angles.y, &angles.z);
    RequireSame(angles, PlainAngles(2, matrix));
    geometry::GetAngleZXY(matrix.data(), &angles.x, &angles.y, &angles.z);
    RequireSame(angles, PlainAngles(1, matrix));
    geometry::GetAngleYZX(matrix.data(), &angles.x, &angles.y, &angles.z);
    RequireSame(angles, PlainAngles(0, matrix));
}

void TryOrders(FuzzedDataProvider& input) {
    const Order from = AnyOrder(input);
    const Order to = AnyOrder(input);
    const AxisAngles angles = {AnyAngle(input), AnyAngle(input), AnyAngle(input)};
    AxisAngles got = angles;
    geometry::ChangeOrder(from.data(), to.data(), &got.x, &got.y, &got.z);
    const bool isConverted = from[2] != to[2] && to[2] >= 0 && to[2] <= 2;
    RequireSame(got, isConverted ? PlainAngles(to[2], PlainMatrix(from, angles)) : angles);
}

// Between the two entries that the level lies between, and an entry itself for a whole level.
void TryGamma(FuzzedDataProvider& input) {
    std::array<std::uint8_t, 256> table;
    std::uint8_t value = input.ConsumeIntegral<std::uint8_t>();
    for (std::uint8_t& entry : table)
        entry = input.remaining_bytes() > 8 ? input.ConsumeIntegral<std::uint8_t>() : value++;
    const float level = AnyFloat(input);
    const std::int32_t got = geometry::AdjustGamma(table.data(), level);
    const double held = level > 0 ? std::min(level, 255.0f) : 0;
    const auto [least, most] = std::minmax(table[static_cast<std::size_t>(std::floor(held))],
                                           table[static_cast<std::size_t>(std::ceil(held))]);
    // What is interpolated between equal entries may round to just below them.
    Require(got >= least - 1 && got <= most);
    if (held == std::floor(held)) Require(got == most);
}

void TryScales(FuzzedDataProvider& input) {
    const auto value = input.ConsumeIntegral<std::int32_t>();
    const auto newScale = input.ConsumeIntegral<std::int32_t>();
    const auto oldScale = input.ConsumeIntegral<std::int32_t>();
    const std::int16_t got =
        geometry::SubvolumeConvert(value, newScale, oldScale, input.ConsumeIntegral<std::int16_t>());
    if (newScale >= 1) Require(got >= 1 || got == static_cast<std::int16_t>(newScale));
    if (newScale >= 1 && newScale <= 32767) Require(got <= newScale);
    if (oldScale == 0) Require(got == 1);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzedDataProvider input(data, size);
    using Attempt = void (*)(FuzzedDataProvider&);
    static constexpr Attempt kAttempts[] = {TryMatrix, TryTwoAngles, TryThreeAngles,
                                            TryOrders, TryGamma,     TryScales};
    input.PickValueInArray(kAttempts)(input);
    return 0;
}
