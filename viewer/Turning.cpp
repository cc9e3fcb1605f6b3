#include "Turning.h"

#include <cmath>
#include <numbers>

namespace z3d::viewer {

using tools::Rotation;

namespace {

constexpr AxisOrder kOrder = {{0, 1, 2}};

Rotation Product(const Rotation& a, const Rotation& b) {
    Rotation product = {};
    for (size_t row = 0; row < 3; ++row)
        for (size_t column = 0; column < 3; ++column)
            for (size_t k = 0; k < 3; ++k)
                product[row * 3 + column] += a[row * 3 + k] * b[k * 3 + column];
    return product;
}

double Dot(const double* a, const double* b) { return a[0] * b[0] + a[1] * b[1] + a[2] * b[2]; }

void Scale(double* row, double factor) {
    for (int i = 0; i < 3; ++i)
        row[i] *= factor;
}

} // namespace

Rotation RotationOf(const Angles& angles) { return tools::MakeRotation(kOrder, angles); }

Angles AnglesOf(const Rotation& rotation) {
    Angles angles = {};
    GetAngleXYZ(rotation.data(), &angles[0], &angles[1], &angles[2]);
    return angles;
}

// A turn in the plane of the drag's direction u and the depth axis e, which points away from the viewer. What
// faces the viewer lies at -e and moves towards u: u -> u cos + e sin, e -> e cos - u sin.
Rotation DragBall(const Rotation& start, double right, double up, double radius) {
    const double length = std::hypot(right, up);
    if (!(length > 0)) return start;
    const double x = right / length;
    const double y = up / length;
    const double sine = std::sin(length / radius);
    const double rest = std::cos(length / radius) - 1;
    const Rotation turn = {1 + rest * x * x, rest * x * y, -sine * x, rest * x * y, 1 + rest * y * y,
                           -sine * y,        sine * x,     sine * y,  1 + rest};
    return Straightened(Product(turn, start));
}

Rotation Roll(const Rotation& start, double degrees) {
    const double angle = degrees * std::numbers::pi / 180;
    const double c = std::cos(angle);
    const double s = std::sin(angle);
    return Straightened(Product({c, -s, 0, s, c, 0, 0, 0, 1}, start));
}

// A turn leaves the rows' handedness as it is: the last row follows from the two others up to its sign, which is
// the one it has.
Rotation Straightened(const Rotation& rotation) {
    Rotation straight = rotation;
    for (int row = 0; row < 3; ++row) {
        double* const current = straight.data() + 3 * row;
        for (int earlier = 0; earlier < row; ++earlier) {
            const double* const other = straight.data() + 3 * earlier;
            const double shared = Dot(current, other);
            for (int i = 0; i < 3; ++i)
                current[i] -= shared * other[i];
        }
        Scale(current, 1 / std::sqrt(Dot(current, current)));
    }
    return straight;
}

} // namespace z3d::viewer
