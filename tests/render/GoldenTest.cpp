// Pictures that stay as they are: requests written out bit by bit, with the digest of what they show. They
// hold the plain form to its own past, and every instruction set in every build to the same figures.
//
// To add a row, append it to GoldenRows.inc with a size and a digest of 0 and let the plain form write the
// file anew, from the root of the repository:
//     ZENTRA_GOLDEN_ROWS=tests/render/GoldenRows.inc build/native/bin/test_render
//         --gtest_also_run_disabled_tests --gtest_filter=GoldenRows.DISABLED_AreWrittenAnew
// A row that changes without a change of the rules is an error.
#include "reference/ReferenceRenderer.h"
#include "support/GoldenRows.h"
#include "support/InstructionSets.h"
#include "support/ProductRenderer.h"
#include "support/RandomRequests.h"

#include <gtest/gtest.h>

#include <bit>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <string>
#include <tuple>

namespace {

using namespace z3d;
using namespace z3d::test;

// Line for line; `row` counts from 1, as editors do.
void ExpectTheRows(reference::Projection (*render)(const reference::Volume&, const reference::Request&)) {
    int number = 0;
    for (const GoldenRow& row : AllRows()) {
        const reference::Request request = RequestOf(row);
        const reference::Projection projection = render(VolumeOf(row), request);
        ++number;
        EXPECT_TRUE(projection.rendered && projection.width == row.width && projection.height == row.height
                    && DigestOf(projection) == row.digest)
            << "row " << number << ", " << Describe(request);
    }
}

TEST(GoldenRows, AreWhatThePlainFormShows) { ExpectTheRows(&reference::Render); }

class GoldenRowsOn : public OnInstructionSet {};

TEST_P(GoldenRowsOn, AreWhatTheProductShows) { ExpectTheRows(&RenderProduct); }

INSTANTIATE_TEST_SUITE_P(AllInstructionSets, GoldenRowsOn, ::testing::ValuesIn(render::kInstructionSets),
                         [](const auto& set) { return NameOf(set.param); });

// Sixteen kernels: seven modes and the layered surface, grey and in colour.
TEST(GoldenRows, ReachEveryKernel) {
    std::map<std::tuple<int, bool, bool>, int> rows;
    for (const GoldenRow& row : AllRows()) {
        const float extra = std::bit_cast<float>(row.extra);
        const bool isLayered = row.mode == RenderModeSurface && (extra < 0 || extra > 0);
        ++rows[{row.mode, isLayered, row.size.bytesPerVoxel == 3}];
    }

    EXPECT_EQ(rows.size(), 16u);
    for (const auto& [kernel, count] : rows) {
        EXPECT_GE(count, 4) << "mode " << std::get<0>(kernel);
    }
}

std::string Text(const GoldenRow& row, const reference::Projection& projection) {
    static constexpr const char* kKinds[] = {"Noise", "Sparse", "Blob", "Ramp", "Step", "Checkerboard"};
    char text[400];
    const auto& r = row.rotation;
    const auto u = [](std::uint32_t bits) { return static_cast<unsigned int>(bits); };
    std::snprintf(text, sizeof text,
                  "{%d, %s, {%d, %d, %d, %d}, %u,"
                  " {0x%08X, 0x%08X, 0x%08X, 0x%08X, 0x%08X, 0x%08X, 0x%08X, 0x%08X, 0x%08X},"
                  " {%d, %d, %d, %d, %d, %d}, 0x%08X, 0x%08X, 0x%08X, %d, %d, 0x%016llX},\n",
                  row.mode, kKinds[static_cast<int>(row.kind)], row.size.width, row.size.height,
                  row.size.depth, row.size.bytesPerVoxel, u(row.detail), u(r[0]), u(r[1]), u(r[2]), u(r[3]),
                  u(r[4]), u(r[5]), u(r[6]), u(r[7]), u(r[8]), row.crop.x0, row.crop.x1, row.crop.y0,
                  row.crop.y1, row.crop.z0, row.crop.z1, u(row.high), u(row.low), u(row.extra),
                  projection.width & 0xFFFF, projection.height & 0xFFFF,
                  static_cast<unsigned long long>(DigestOf(projection)));
    return text;
}

TEST(GoldenRows, DISABLED_AreWrittenAnew) {
    const char* path = std::getenv("ZENTRA_GOLDEN_ROWS");
    ASSERT_NE(path, nullptr) << "ZENTRA_GOLDEN_ROWS names the file";
    std::FILE* file = std::fopen(path, "w");
    ASSERT_NE(file, nullptr) << path;

    std::fputs("// number of the mode, volume, {width, height, depth, bytes per voxel}, detail, rotation, "
               "crop, high, low,\n"
               "// extra, width and height of the picture, digest\n",
               file);
    for (const GoldenRow& row : AllRows()) {
        std::fputs(Text(row, reference::Render(VolumeOf(row), RequestOf(row))).c_str(), file);
    }
    std::fclose(file);
}

} // namespace
