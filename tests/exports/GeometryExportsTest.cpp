// Rotations, grey levels and coordinates through the DLL: argument slots, conventions, nulls. That no result
// depends on the condition of the host is tested by the scenarios.
#include "exports/ForeignHost.h"
#include "exports/Library.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <cstring>
#include <limits>
#include <vector>

namespace {

using namespace z3d::test;

using Matrix = std::array<double, 9>;
using Angles = std::array<float, 3>; // X, Y, Z

constexpr AxisOrder kXYZ = {{0, 1, 2}};
constexpr AxisOrder kZXY = {{2, 0, 1}};
constexpr AxisOrder kYZX = {{1, 2, 0}};

// Of a direction (1, 2, 2) / 3: the arc sine of 2/3, and the arc tangent of 1/2.
constexpr float kRise = 41.8103148957786f;
constexpr float kTurn = 26.5650511770780f;

constexpr float kUntouched = -777.0f;

Matrix Rotate(const AxisOrder& order, float x, float y, float z) {
    Matrix matrix;
    TheLibrary().CreateRotateMatrix(matrix.data(), &order, x, y, z);
    return matrix;
}

template <class Extract>
Angles AnglesOf(Extract extract, const Matrix& matrix) {
    Angles angles = {kUntouched, kUntouched, kUntouched};
    extract(matrix.data(), &angles[0], &angles[1], &angles[2]);
    return angles;
}

bool SameBytes(const Matrix& a, const Matrix& b) { return std::memcmp(a.data(), b.data(), sizeof a) == 0; }

struct TwoAngles {
    Matrix rebuilt;
    float first;
    float second;
};

// Passes a column's elements as raw slots, from its row 0 on.
TwoAngles CallWithDoubles(const char* name, const std::array<double, 3>& column, float thirdAngle) {
    TwoAngles result = {};
    ForeignHost(kPlainHost)
        .Call(name, &result.rebuilt, column[0], column[1], column[2], &result.first, &result.second,
              thirdAngle);
    return result;
}

TEST(GeometryExports, BuildTheMatrixOfAnOrderToTheBit) {
    const Matrix matrix = Rotate(kXYZ, 30, 40, 50);

    const std::array<std::uint64_t, 9> bits = {0x3FDF838B8C811C26, 0xBFE2C7434FC16E70, 0xBFE491B7523C1618,
                                               0x3FDD3CA316879080, 0x3FE9B121540ACC06, 0xBFD8836FA2CF5037,
                                               0x3FE7B4FC7F960A66, 0xBFBAE3EE8152A210, 0x3FE53AAFE363110E};
    EXPECT_EQ((std::bit_cast<std::array<std::uint64_t, 9>>(matrix)), bits);
}

// Y turns Z towards -X, unlike the other two axes: the sign of the first element tells.
TEST(GeometryExports, GetAngleXYTakesDoublesByValue) {
    const TwoAngles result = CallWithDoubles("GetAngleXY", {-2.0 / 3, -1.0 / 3, 2.0 / 3}, 50);

    EXPECT_EQ(result.first, kTurn) << "X";
    EXPECT_EQ(result.second, kRise) << "Y";
    EXPECT_TRUE(SameBytes(result.rebuilt, Rotate(kXYZ, kTurn, kRise, 50)));
}

TEST(GeometryExports, GetAngleZXTakesDoublesByValue) {
    const TwoAngles result = CallWithDoubles("GetAngleZX", {-1.0 / 3, 2.0 / 3, 2.0 / 3}, -20.5f);

    EXPECT_EQ(result.first, kRise) << "X";
    EXPECT_EQ(result.second, kTurn) << "Z";
    EXPECT_TRUE(SameBytes(result.rebuilt, Rotate(kZXY, kRise, -20.5f, kTurn)));
}

TEST(GeometryExports, GetAngleYZTakesDoublesByValue) {
    const TwoAngles result = CallWithDoubles("GetAngleYZ", {2.0 / 3, 2.0 / 3, 1.0 / 3}, 170);

    EXPECT_EQ(result.first, kTurn) << "Y";
    EXPECT_EQ(result.second, kRise) << "Z";
    EXPECT_TRUE(SameBytes(result.rebuilt, Rotate(kYZX, 170, kTurn, kRise)));
}

TEST(GeometryExports, TwoAngleFunctionsWriteIntoTheMatrixTheyReadFrom) {
    Matrix m = Rotate(kXYZ, 30, 40, 50);
    float x = 0;
    float y = 0;

    TheLibrary().GetAngleXY(m.data(), m[2], m[5], m[8], &x, &y, 60);

    EXPECT_TRUE(SameBytes(m, Rotate(kXYZ, 30, 40, 60)));
}

TEST(GeometryExports, GiveBackTheAnglesOfEachCyclicOrder) {
    const Angles angles = {30, 45, -60};
    const auto built = [&](const AxisOrder& order) { return Rotate(order, angles[0], angles[1], angles[2]); };

    EXPECT_EQ(AnglesOf(TheLibrary().GetAngleXYZ, built(kXYZ)), angles);
    EXPECT_EQ(AnglesOf(TheLibrary().GetAngleZXY, built(kZXY)), angles);
    EXPECT_EQ(AnglesOf(TheLibrary().GetAngleYZX, built(kYZX)), angles);
}

TEST(GeometryExports, GiveThreeZerosForTheIdentity) {
    const Matrix identity = {1, 0, 0, 0, 1, 0, 0, 0, 1};

    EXPECT_EQ(AnglesOf(TheLibrary().GetAngleXYZ, identity), (Angles{0, 0, 0}));
    EXPECT_EQ(AnglesOf(TheLibrary().GetAngleZXY, identity), (Angles{0, 0, 0}));
    EXPECT_EQ(AnglesOf(TheLibrary().GetAngleYZX, identity), (Angles{0, 0, 0}));
}

TEST(GeometryExports, PutTheWholeTurnIntoTheLastAngleAtThePole) {
    EXPECT_EQ(AnglesOf(TheLibrary().GetAngleXYZ, Rotate(kXYZ, 0, 90, 30)), (Angles{0, 90, 30}));
    EXPECT_EQ(AnglesOf(TheLibrary().GetAngleXYZ, Rotate(kXYZ, 0, -90, 30)), (Angles{0, -90, 30}));
    EXPECT_EQ(AnglesOf(TheLibrary().GetAngleZXY, Rotate(kZXY, 90, 30, 0)), (Angles{90, 30, 0}));
    EXPECT_EQ(AnglesOf(TheLibrary().GetAngleZXY, Rotate(kZXY, -90, 30, 0)), (Angles{-90, 30, 0}));
    EXPECT_EQ(AnglesOf(TheLibrary().GetAngleYZX, Rotate(kYZX, 30, 0, 90)), (Angles{30, 0, 90}));
    EXPECT_EQ(AnglesOf(TheLibrary().GetAngleYZX, Rotate(kYZX, 30, 0, -90)), (Angles{30, 0, -90}));
}

// X and Z turn about the same axis there: against each other at 90, together at -90.
TEST(GeometryExports, CannotTellTheOuterAnglesApartAtThePole) {
    EXPECT_EQ(AnglesOf(TheLibrary().GetAngleXYZ, Rotate(kXYZ, 20, 90, 30)), (Angles{0, 90, 10}));
    EXPECT_EQ(AnglesOf(TheLibrary().GetAngleXYZ, Rotate(kXYZ, 20, -90, 30)), (Angles{0, -90, 50}));
}

TEST(GeometryExports, GiveAHalfTurnAsPlus180) {
    const Matrix aboutX = {1, 0, 0, 0, -1, 0, 0, 0, -1};
    const Matrix aboutY = {-1, 0, 0, 0, 1, 0, 0, 0, -1};
    const Matrix aboutZ = {-1, 0, 0, 0, -1, 0, 0, 0, 1};

    EXPECT_EQ(AnglesOf(TheLibrary().GetAngleXYZ, aboutX), (Angles{180, 0, 0}));
    EXPECT_EQ(AnglesOf(TheLibrary().GetAngleXYZ, aboutZ), (Angles{0, 0, 180}));
    EXPECT_EQ(AnglesOf(TheLibrary().GetAngleZXY, aboutZ), (Angles{0, 0, 180}));
    EXPECT_EQ(AnglesOf(TheLibrary().GetAngleZXY, aboutY), (Angles{0, 180, 0}));
    EXPECT_EQ(AnglesOf(TheLibrary().GetAngleYZX, aboutY), (Angles{0, 180, 0}));
    EXPECT_EQ(AnglesOf(TheLibrary().GetAngleYZX, aboutX), (Angles{180, 0, 0}));
}

// Only a column that no rotation has: its length of 1000 lets an angle come nearer to -180 than floats can tell.
TEST(GeometryExports, GiveMinus180ForColumnsOfNoRotationOnly) {
    Matrix matrix;
    float x = 0;
    float y = 0;

    TheLibrary().GetAngleXY(matrix.data(), 0, 0.000011, -1000, &x, &y, 0);

    EXPECT_EQ(x, -180.0f);
}

TEST(GeometryExports, SnapAnglesBelowAThousandthOfADegreeToZero) {
    EXPECT_EQ(AnglesOf(TheLibrary().GetAngleXYZ, Rotate(kXYZ, 0.0009f, -0.0009f, 0.0009f)),
              (Angles{0, 0, 0}));
    EXPECT_EQ(AnglesOf(TheLibrary().GetAngleXYZ, Rotate(kXYZ, 0, 0.0011f, 0)), (Angles{0, 0.0011f, 0}));
}

// R(X, 90) * R(Z, 90) is R(Z, 90) * R(Y, 90).
TEST(GeometryExports, ChangeOrderConvertsToTheOrderThatEndsInTheWantedAxis) {
    for (const AxisOrder& to : {kZXY, AxisOrder{{0, 2, 1}}, AxisOrder{{77, -5, 1}}}) {
        Angles angles = {90, 0, 90};

        TheLibrary().ChangeOrder(&kXYZ, &to, &angles[0], &angles[1], &angles[2]);

        EXPECT_EQ(angles, (Angles{0, 90, 90}));
    }
}

TEST(GeometryExports, ChangeOrderReadsTheWholeSourceOrder) {
    const AxisOrder from = {{1, 0, 2}};
    Angles angles = {30, 40, 50};

    TheLibrary().ChangeOrder(&from, &kYZX, &angles[0], &angles[1], &angles[2]);

    EXPECT_EQ(angles, AnglesOf(TheLibrary().GetAngleYZX, Rotate(from, 30, 40, 50)));
    EXPECT_NE(angles, AnglesOf(TheLibrary().GetAngleYZX, Rotate(kXYZ, 30, 40, 50)));
}

TEST(GeometryExports, ChangeOrderLeavesAnglesAloneForTheSameOrNoLastAxis) {
    for (const AxisOrder& to : {AxisOrder{{1, 0, 2}}, AxisOrder{{0, 1, 3}}, AxisOrder{{0, 1, -1}}}) {
        Angles angles = {721, 90, -0.0001f};

        TheLibrary().ChangeOrder(&kXYZ, &to, &angles[0], &angles[1], &angles[2]);

        EXPECT_EQ(angles, (Angles{721, 90, -0.0001f}));
    }
}

// The whole register: 0 to 255 and nothing above.
TEST(GeometryExports, AdjustGammaInterpolatesAndDropsTheFraction) {
    std::vector<unsigned char> table(256, 7);
    table[10] = 100;
    table[11] = 104;
    table[20] = 0;
    table[21] = 1;
    table[255] = 255;
    ForeignHost host(kPlainHost);

    EXPECT_EQ(host.Call("AdjustGamma", table.data(), 10.25f), 101u);
    EXPECT_EQ(host.Call("AdjustGamma", table.data(), 20.9f), 0u);
    EXPECT_EQ(host.Call("AdjustGamma", table.data(), 11.0f), 104u);
    EXPECT_EQ(host.Call("AdjustGamma", table.data(), 254.5f), 131u);
}

TEST(GeometryExports, AdjustGammaHoldsLevelsToTheTable) {
    std::vector<unsigned char> table(256, 7);
    table[0] = 3;
    table[255] = 255;
    ForeignHost host(kPlainHost);
    using Float = std::numeric_limits<float>;

    for (const float level : {0.0f, -0.0f, -3.0f, -Float::infinity(), Float::quiet_NaN()})
        EXPECT_EQ(host.Call("AdjustGamma", table.data(), level), 3u) << level;
    for (const float level : {255.0f, 255.5f, 300.0f, Float::max(), Float::infinity()})
        EXPECT_EQ(host.Call("AdjustGamma", table.data(), level), 255u) << level;
}

TEST(GeometryExports, SubvolumeConvertRoundsDownOrUpAndHoldsToTheScale) {
    EXPECT_EQ(TheLibrary().SubvolumeConvert(5, 100, 300, 0), 1);
    EXPECT_EQ(TheLibrary().SubvolumeConvert(5, 100, 300, 1), 2);
    EXPECT_EQ(TheLibrary().SubvolumeConvert(5, 100, 300, -1), 1);
    EXPECT_EQ(TheLibrary().SubvolumeConvert(0, 100, 300, 0), 1);
    EXPECT_EQ(TheLibrary().SubvolumeConvert(400, 100, 300, 1), 100);
    EXPECT_EQ(TheLibrary().SubvolumeConvert(150, 100, 300, 1), 50);
    EXPECT_EQ(TheLibrary().SubvolumeConvert(7, 100, 0, 1), 1);
}

TEST(GeometryExports, SubvolumeConvertWrapsTo16BitsBeforeItsLimits) {
    EXPECT_EQ(TheLibrary().SubvolumeConvert(65546, 100000, 100000, 0), 10);
    EXPECT_EQ(TheLibrary().SubvolumeConvert(40000, 100000, 100000, 0), 1);
    EXPECT_EQ(TheLibrary().SubvolumeConvert(32767, 100000, 100000, 0), 32767);
    EXPECT_EQ(TheLibrary().SubvolumeConvert(-10, -70000, 70000, 0), -4464) << "a scale below 1";
}

// 5/3 tells the directions apart: 1 down, 2 up.
TEST(GeometryExports, UpperHalfOfRoundUpIsIgnored) {
    ForeignHost host(kPlainHost);
    const auto convert = [&host](std::uint32_t roundUp) {
        return static_cast<std::int16_t>(host.Call("SubvolumeConvert", 5, 100, 300, roundUp));
    };

    for (const std::uint32_t down : {0x00010000u, 0x7FFF0000u, 0xABCD0000u, 0x00008000u, 0x7FFFFFFFu})
        EXPECT_EQ(convert(down), 1) << std::hex << down;
    for (const std::uint32_t up : {0x00000001u, 0x00007FFFu, 0x80000001u, 0xFFFF0001u, 0xFFFF7FFFu})
        EXPECT_EQ(convert(up), 2) << std::hex << up;
}

// One null among valid pointers, at each place: nothing is written anywhere.
void ExpectNoEffectOfANullIn(const char* name, const std::vector<Slot>& slots,
                             const std::vector<const void*>& pointers, const std::vector<float>& outputs) {
    for (const void* pointer : pointers) {
        std::vector<Slot> withNull = slots;
        std::replace(withNull.begin(), withNull.end(), std::bit_cast<Slot>(pointer), Slot{0});

        ForeignHost(kPlainHost).CallWithSlots(name, withNull);

        EXPECT_EQ(std::count(outputs.begin(), outputs.end(), kUntouched),
                  static_cast<std::ptrdiff_t>(outputs.size()))
            << name << " without " << pointer;
    }
}

// A matrix counts as 18 floats here.
TEST(GeometryExports, NullsOfTheAngleFunctionsHaveNoEffect) {
    std::vector<float> outputs(21, kUntouched);
    const float* matrix = &outputs[0];
    const float* x = &outputs[18];
    const float* y = &outputs[19];
    const float* z = &outputs[20];
    const Matrix rotation = Rotate(kXYZ, 30, 40, 50);
    const double* source = rotation.data();

    ExpectNoEffectOfANullIn("CreateRotateMatrix", SlotsOf(matrix, &kXYZ, 0.0f, 0.0f, 0.0f), {matrix, &kXYZ},
                            outputs);
    for (const char* name : {"GetAngleXY", "GetAngleZX", "GetAngleYZ"})
        ExpectNoEffectOfANullIn(name, SlotsOf(matrix, 0.0, 0.0, 0.0, x, y, 0.0f), {matrix, x, y}, outputs);
    for (const char* name : {"GetAngleXYZ", "GetAngleZXY", "GetAngleYZX"})
        ExpectNoEffectOfANullIn(name, SlotsOf(source, x, y, z), {source, x, y, z}, outputs);
    ExpectNoEffectOfANullIn("ChangeOrder", SlotsOf(&kXYZ, &kZXY, x, y, z), {&kXYZ, &kZXY, x, y, z}, outputs);
}

TEST(GeometryExports, ANullTableGivesZero) { EXPECT_EQ(TheLibrary().AdjustGamma(nullptr, 10.25f), 0); }

} // namespace
