// From angles to a matrix and back, over grids and next to every threshold.
#include "geometry/AngleExtraction.h"

#include "geometry/Bits.h"
#include "geometry/RotationMatrix.h"
#include "reference/PlainRotation.h"
#include "support/Digest.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <random>
#include <vector>

namespace z3d::geometry {
namespace {

using reference::LargestDifference;
using reference::Matrix;
using test::Digest;
using test::SameBits;

using Angles = std::array<float, 3>;
using Extract = void (*)(const double*, float*, float*, float*);

// A cyclic order, and which of the three angles (0 = X, 1 = Y, 2 = Z) is its first, middle and last.
struct Cyclic {
    std::array<std::int16_t, 3> order;
    Extract extract;

    // Angles named by their place in the order, arranged as X, Y, Z.
    Angles Arrange(float first, float middle, float last) const {
        Angles angles{};
        angles[static_cast<std::size_t>(order[0])] = first;
        angles[static_cast<std::size_t>(order[1])] = middle;
        angles[static_cast<std::size_t>(order[2])] = last;
        return angles;
    }
    Matrix Rotate(const Angles& angles) const {
        Matrix matrix;
        CreateRotateMatrix(matrix.data(), order.data(), angles[0], angles[1], angles[2]);
        return matrix;
    }
    Angles AnglesOf(const Matrix& matrix) const {
        Angles angles{};
        extract(matrix.data(), &angles[0], &angles[1], &angles[2]);
        return angles;
    }
};

const Cyclic kOrders[] = {{{0, 1, 2}, GetAngleXYZ}, {{2, 0, 1}, GetAngleZXY}, {{1, 2, 0}, GetAngleYZX}};

// Every multiple of `step` degrees from -limit to limit.
std::vector<float> Multiples(int step, int limit) {
    std::vector<float> angles;
    for (int angle = -limit; angle <= limit; angle += step)
        angles.push_back(static_cast<float>(angle));
    return angles;
}

float Plus180For180(float degrees) { return degrees == -180.0f ? 180.0f : degrees; }

// The doubles inside are accurate enough for the float nearest to each angle to be the one that went in.
TEST(AngleRoundTrip, GivesBackEveryMultipleOf15DegreesToTheBit) {
    for (const Cyclic& cyclic : kOrders) {
        for (const float first : Multiples(15, 180)) {
            for (const float middle : Multiples(15, 75)) {
                for (const float last : Multiples(15, 180)) {
                    const Matrix matrix = cyclic.Rotate(cyclic.Arrange(first, middle, last));

                    const Angles got = cyclic.AnglesOf(matrix);

                    const Angles want = cyclic.Arrange(Plus180For180(first), middle, Plus180For180(last));
                    ASSERT_TRUE(SameBits(got.data(), want.data(), 3))
                        << first << ", " << middle << ", " << last;
                }
            }
        }
    }
}

// Keeps clear of the zones around 0 and the right angles in which angles snap.
float Clear(float degrees) {
    const float offset = std::remainder(degrees, 90.0f);
    return std::fabs(offset) < 0.002f ? degrees + 0.01f : degrees;
}

TEST(AngleRoundTrip, GivesBackRandomAnglesToTheBit) {
    std::mt19937 random(41);
    std::uniform_real_distribution<float> turn(-179.9f, 179.9f);
    std::uniform_real_distribution<float> quarter(-89.7f, 89.7f);
    for (int i = 0; i < 60000; ++i) {
        const Cyclic& cyclic = kOrders[i % 3];
        const Angles want = cyclic.Arrange(Clear(turn(random)), Clear(quarter(random)), Clear(turn(random)));

        const Angles got = cyclic.AnglesOf(cyclic.Rotate(want));

        ASSERT_TRUE(SameBits(got.data(), want.data(), 3)) << "seed 41, index " << i;
    }
}

// Around each multiple of 45 degrees: the neighbouring floats, and both sides of the two snapping distances.
std::vector<float> Neighbourhood() {
    std::vector<float> angles;
    for (const float centre : Multiples(45, 360)) {
        angles.push_back(centre);
        angles.push_back(std::nextafter(centre, 1000.0f));
        angles.push_back(std::nextafter(centre, -1000.0f));
        for (const float distance :
             {0.0005f, 0.00057f, 0.00058f, 0.00099f, 0.00101f, 0.1f, 0.2561f, 0.2563f, 1.0f}) {
            angles.push_back(centre + distance);
            angles.push_back(centre - distance);
        }
    }
    return angles;
}

// Two snaps of at most 0.001 degrees and a zeroed component of 0.00001 move the matrix by less than this.
constexpr double kSnapReach = 6e-5;
// At the pole an angle of up to 0.2563 degrees is dropped as well.
constexpr double kPoleReach = 4.6e-3;

bool AtPole(const Cyclic& cyclic, const Angles& angles) {
    return std::fabs(angles[static_cast<std::size_t>(cyclic.order[1])]) == 90.0f;
}

TEST(AngleRoundTrip, RebuildsTheMatrixNextToEveryThreshold) {
    const std::vector<float> angles = Neighbourhood();
    std::mt19937 random(42);
    for (int i = 0; i < 60000; ++i) {
        const Cyclic& from = kOrders[random() % 3];
        const Cyclic& to = kOrders[random() % 3];
        const auto any = [&] { return angles[random() % angles.size()]; };
        const Matrix matrix = from.Rotate({any(), any(), any()});

        const Angles got = to.AnglesOf(matrix);

        const double reach = AtPole(to, got) ? kPoleReach : kSnapReach;
        ASSERT_LT(LargestDifference(to.Rotate(got), matrix), reach) << "seed 42, index " << i;
        for (const float angle : got)
            ASSERT_TRUE(std::fabs(angle) <= 180.0f && angle != -180.0f);
    }
}

TEST(AngleRoundTrip, RebuildsRandomRotationsInEveryOrder) {
    std::mt19937 random(43);
    std::uniform_real_distribution<float> turn(-720.0f, 720.0f);
    for (int i = 0; i < 60000; ++i) {
        const Matrix matrix = kOrders[i % 3].Rotate({turn(random), turn(random), turn(random)});
        const Cyclic& to = kOrders[random() % 3];

        const Angles got = to.AnglesOf(matrix);

        const double reach = AtPole(to, got) ? kPoleReach : kSnapReach;
        ASSERT_LT(LargestDifference(to.Rotate(got), matrix), reach) << "seed 43, index " << i;
    }
}

// At the pole the first and last angles turn about one axis, so only their sum or difference comes back.
TEST(AngleRoundTrip, KeepsTheTurnAtThePole) {
    for (const Cyclic& cyclic : kOrders) {
        for (const float middle : {90.0f, -90.0f, 270.0f}) {
            for (const float first : Multiples(15, 360)) {
                for (const float last : Multiples(15, 180)) {
                    const Matrix matrix = cyclic.Rotate(cyclic.Arrange(first, middle, last));

                    const Angles got = cyclic.AnglesOf(matrix);

                    ASSERT_TRUE(AtPole(cyclic, got));
                    ASSERT_TRUE(SameBits(got[static_cast<std::size_t>(cyclic.order[0])], 0.0f));
                    ASSERT_LT(LargestDifference(cyclic.Rotate(got), matrix), 5e-7) << first << ", " << last;
                }
            }
        }
    }
}

// No hand can work out this number; it is here so that two builds that differ in one bit cannot both pass.
TEST(AngleRoundTrip, GivesTheSameBitsInEveryBuild) {
    const std::vector<float> angles = Neighbourhood();
    std::mt19937 random(44);
    Digest digest;
    for (int i = 0; i < 30000; ++i) {
        const auto any = [&] { return angles[random() % angles.size()] + static_cast<float>(random() % 8); };
        const Matrix matrix = kOrders[i % 3].Rotate({any(), any(), any()});
        for (const double element : matrix)
            digest.Add(element);
        for (const float angle : kOrders[i / 3 % 3].AnglesOf(matrix))
            digest.Add(angle);
    }
    EXPECT_EQ(digest.Value(), 0xA94386B7D9BC4054u);
}

} // namespace
} // namespace z3d::geometry
