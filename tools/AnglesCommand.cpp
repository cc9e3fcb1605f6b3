// zentra angles: the angles of a rotation, from its matrix or from angles in another order.
#include <array>
#include <cmath>
#include <memory>
#include <optional>

#include "Commands.h"
#include "Console.h"
#include "Failure.h"
#include "Options.h"
#include "Projection.h"
#include "Text.h"

namespace z3d::tools {

namespace {

constexpr char kAnglesHelp[] = R"(
  The matrix of an order such as zxy is R(z) * R(x) * R(y) and acts on columns; angles are always given and
  printed about x, y and z, in degrees, whatever the order. A positive angle about x turns y towards z, one
  about z turns x towards y, and one about y turns z towards -x. Angles can be found for the orders xyz, zxy
  and yzx, and without --to for all three; --from takes any order. Where two axes coincide (a middle angle of
  90 or -90) the first angle is 0.

Examples
  zentra angles --matrix 0,-1,0,1,0,0,0,0,1 --order zxy
  zentra angles 30,40,50
  zentra angles --from xyz --to zxy 30,40,50
)";

constexpr AxisOrder kXyz = {{0, 1, 2}};

struct AnglesOptions {
    std::optional<Rotation> matrix;
    std::optional<AxisOrder> order;
    std::optional<AxisOrder> from;
    std::optional<AxisOrder> to;
    std::optional<std::array<float, 3>> angles;
};

Rotation ParseMatrix(std::string_view text) {
    const std::vector<std::string_view> pieces = Split(text, ',');
    if (pieces.size() != 9)
        throw BadArgument("'" + std::string(text) + "' is not of the form m00,m01,m02,m10,...,m22");
    Rotation matrix = {};
    for (size_t i = 0; i < 9; ++i)
        matrix[i] = ParseFiniteDouble(pieces[i]);
    return matrix;
}

// The orders that the library finds angles for: each goes round the axes x, y, z.
AxisOrder ParseFoundOrder(std::string_view text) {
    const AxisOrder order = ParseOrder(text);
    if ((order.axis[0] + 1) % 3 != order.axis[1])
        throw BadArgument("angles cannot be found for the order '" + std::string(text)
                          + "', only for xyz, zxy and yzx");
    return order;
}

// Elements may have been rounded to two digits.
bool IsRotation(const Rotation& m) {
    constexpr double kTolerance = 0.02;
    const auto product = [&m](size_t a, size_t b) {
        return m[3 * a] * m[3 * b] + m[3 * a + 1] * m[3 * b + 1] + m[3 * a + 2] * m[3 * b + 2];
    };
    for (size_t a = 0; a < 3; ++a)
        for (size_t b = 0; b <= a; ++b)
            if (std::abs(product(a, b) - (a == b ? 1 : 0)) > kTolerance) return false;
    // A mirror image has the same products.
    const double determinant = m[0] * (m[4] * m[8] - m[5] * m[7]) - m[1] * (m[3] * m[8] - m[5] * m[6])
                               + m[2] * (m[3] * m[7] - m[4] * m[6]);
    return determinant > 0;
}

std::array<float, 3> AnglesOf(const Rotation& matrix, const AxisOrder& order) {
    constexpr decltype(&GetAngleXYZ) kByFirstAxis[] = {GetAngleXYZ, GetAngleYZX, GetAngleZXY};
    std::array<float, 3> angles = {};
    kByFirstAxis[order.axis[0]](matrix.data(), &angles[0], &angles[1], &angles[2]);
    return angles;
}

void PrintAngles(const char* name, const Rotation& matrix, const AxisOrder& order) {
    const auto [x, y, z] = AnglesOf(matrix, order);
    if (std::isnan(x) || std::isnan(y) || std::isnan(z))
        throw BadArgument("--matrix: an element beyond 1 belongs to no rotation");
    PrintOut(Format("%s%.9g,%.9g,%.9g\n", name, double{x}, double{y}, double{z}));
}

void RunAngles(const AnglesOptions& options) {
    if (options.matrix.has_value() == options.angles.has_value())
        throw BadArgument("either --matrix or ANGLES is wanted");
    if (options.matrix && (options.from || options.to))
        throw BadArgument("--from and --to belong to ANGLES; a matrix takes --order");
    if (options.angles && options.order)
        throw BadArgument("--order belongs to --matrix; ANGLES take --from and --to");
    if (options.matrix && !IsRotation(*options.matrix)) throw BadArgument("--matrix: this is no rotation");

    const Rotation matrix =
        options.matrix ? *options.matrix : MakeRotation(options.from.value_or(kXyz), *options.angles);
    if (options.matrix || options.to) {
        PrintAngles("", matrix, options.matrix ? options.order.value_or(kXyz) : *options.to);
        return;
    }
    PrintAngles("xyz ", matrix, kXyz);
    PrintAngles("zxy ", matrix, AxisOrder{{2, 0, 1}});
    PrintAngles("yzx ", matrix, AxisOrder{{1, 2, 0}});
}

} // namespace

void AddAnglesCommand(CLI::App& program) {
    CLI::App& command =
        *program.add_subcommand("angles", "find the angles of a rotation matrix, or of angles "
                                          "in another order");
    const auto options = std::make_shared<AnglesOptions>();
    AddParsed(command, "--matrix", options->matrix, ParseMatrix, "M00,M01,...,M22",
              "nine elements of a rotation, row by row");
    AddParsed(command, "--order", options->order, ParseFoundOrder, "xyz|zxy|yzx",
              "order of the angles of the matrix, leftmost factor first (default xyz)");
    AddParsed(command, "ANGLES", options->angles, ParseAngles, "", "degrees about x, y and z, e.g. 30,40,50");
    AddParsed(command, "--from", options->from, ParseOrder, "xyz", "order of the given angles (default xyz)");
    AddParsed(command, "--to", options->to, ParseFoundOrder, "xyz|zxy|yzx", "order of the printed angles");
    command.footer(kAnglesHelp);
    command.callback([options] { RunAngles(*options); });
}

} // namespace z3d::tools
