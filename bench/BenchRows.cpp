#include "BenchRows.h"

#include "support/ProceduralVolumes.h"

#include <bit>
#include <cstddef>
#include <cstdint>

namespace z3d::bench {
namespace {

// Many hosts show a body upright: turned by -90 about x, then about its own axis.
std::vector<Row> GreyRows() {
    return {
        {"max", RenderModeMaximum, 30, 40, 50, 0, 255, 0},
        {"max top quarter", RenderModeMaximum, 30, 40, 50, 192, 255, 0},
        {"max 90 about y", RenderModeMaximum, 0, 90, 0, 0, 255, 0},
        {"max 30 about y", RenderModeMaximum, 0, 30, 0, 0, 255, 0},
        {"max 5 about y", RenderModeMaximum, 0, 5, 0, 0, 255, 0},
        {"max 180 about y", RenderModeMaximum, 0, 180, 0, 0, 255, 0},
        {"max identity", RenderModeMaximum, 0, 0, 0, 0, 255, 0},
        {"max 90 about x", RenderModeMaximum, 90, 0, 0, 0, 255, 0},
        {"max 5 about x", RenderModeMaximum, 5, 0, 0, 0, 255, 0},
        {"max 90 about z", RenderModeMaximum, 0, 0, 90, 0, 255, 0},
        {"max 30 about z", RenderModeMaximum, 0, 0, 30, 0, 255, 0},
        {"max (-90,0,30)", RenderModeMaximum, -90, 0, 30, 0, 255, 0},
        {"max (-90,0,90)", RenderModeMaximum, -90, 0, 90, 0, 255, 0},
        {"min", RenderModeMinimum, 30, 40, 50, 0, 255, 0},
        {"min bottom quarter", RenderModeMinimum, 30, 40, 50, 0, 63, 0},
        {"min 90 about y", RenderModeMinimum, 0, 90, 0, 0, 255, 0},
        {"min identity", RenderModeMinimum, 0, 0, 0, 0, 255, 0},
        {"sum", RenderModeSum, 30, 40, 50, 0, 255, 0},
        {"sum narrow", RenderModeSum, 30, 40, 50, 100, 120, 0},
        {"sum identity", RenderModeSum, 0, 0, 0, 0, 255, 0},
        {"sum (-90,0,30)", RenderModeSum, -90, 0, 30, 0, 255, 0},
        {"surface", RenderModeSurface, 30, 40, 50, 80, 255, 0},
        {"layers", RenderModeSurface, 30, 40, 50, 80, 255, 0.5f},
        {"blend", RenderModeBlend, 30, 40, 50, 0, 255, 0.9f},
        {"blend high window", RenderModeBlend, 30, 40, 50, 150, 255, 0.9f},
        {"blend (-90,0,30)", RenderModeBlend, -90, 0, 30, 0, 255, 0.9f},
        {"contrast", RenderModeContrast, 30, 40, 50, -1, 256, 0},
        {"first hit", RenderModeFirstHit, 30, 40, 50, 0, 255, 0},
        {"first hit narrow", RenderModeFirstHit, 30, 40, 50, 100, 120, 0},
        {"first hit (-90,0,30)", RenderModeFirstHit, -90, 0, 30, 0, 255, 0},
        {"first hit narrow (-90,0,30)", RenderModeFirstHit, -90, 0, 30, 100, 120, 0},
        {"first hit upper (-90,0,30)", RenderModeFirstHit, -90, 0, 30, 80, 255, 0},
        {"first hit lower (-90,0,30)", RenderModeFirstHit, -90, 0, 30, 0, 80, 0},
    };
}

std::vector<Row> ColourRows() {
    return {
        {"max", RenderModeMaximum, 30, 40, 50, 0, 765, 0},
        {"max identity", RenderModeMaximum, 0, 0, 0, 0, 765, 0},
        {"max 90 about x", RenderModeMaximum, 90, 0, 0, 0, 765, 0},
        {"max 90 about y", RenderModeMaximum, 0, 90, 0, 0, 765, 0},
        {"max 90 about z", RenderModeMaximum, 0, 0, 90, 0, 765, 0},
        {"max 5 about x", RenderModeMaximum, 5, 0, 0, 0, 765, 0},
        {"max (-90,0,30)", RenderModeMaximum, -90, 0, 30, 0, 765, 0},
        {"min", RenderModeMinimum, 30, 40, 50, 0, 765, 0},
        {"sum", RenderModeSum, 30, 40, 50, 0, 765, 0},
        {"surface", RenderModeSurface, 30, 40, 50, 240, 766, 0},
        {"layers", RenderModeSurface, 30, 40, 50, 240, 766, 0.5f},
        {"blend", RenderModeBlend, 30, 40, 50, 0, 765, 0.9f},
        {"contrast", RenderModeContrast, 30, 40, 50, -1, 766, 0},
        {"first hit", RenderModeFirstHit, 30, 40, 50, 300, 765, 0},
        {"first hit (-90,0,30)", RenderModeFirstHit, -90, 0, 30, 300, 765, 0},
        {"first hit low (-90,0,30)", RenderModeFirstHit, -90, 0, 30, 0, 300, 0},
    };
}

// Without the small turn: as many rows as the plain form has time for in a large volume.
std::vector<Row> LargeRows() {
    return {
        {"max", RenderModeMaximum, 30, 40, 50, 0, 765, 0},
        {"max identity", RenderModeMaximum, 0, 0, 0, 0, 765, 0},
        {"max 90 about x", RenderModeMaximum, 90, 0, 0, 0, 765, 0},
        {"max 90 about y", RenderModeMaximum, 0, 90, 0, 0, 765, 0},
        {"max 90 about z", RenderModeMaximum, 0, 0, 90, 0, 765, 0},
    };
}

std::vector<Row> CubeRows() {
    std::vector<Row> rows = LargeRows();
    rows.push_back({"max 5 about x", RenderModeMaximum, 5, 0, 0, 0, 765, 0});
    return rows;
}

// Nothing to skip anywhere.
std::vector<Row> NoiseRows() {
    std::vector<Row> rows = CubeRows();
    rows.insert(rows.end(), {{"sum", RenderModeSum, 30, 40, 50, 0, 255, 0},
                             {"blend", RenderModeBlend, 30, 40, 50, 0, 255, 0.9f},
                             {"surface", RenderModeSurface, 30, 40, 50, 80, 255, 0},
                             {"layers", RenderModeSurface, 30, 40, 50, 80, 255, 0.5f},
                             {"contrast", RenderModeContrast, 30, 40, 50, -1, 256, 0},
                             {"first hit", RenderModeFirstHit, 30, 40, 50, 100, 120, 0}});
    return rows;
}

// Three shifted copies as channels.
reference::Volume ColourOf(const reference::Volume& grey) {
    reference::Volume colour = {grey.width, grey.height, grey.depth, 3, {}};
    colour.voxels.resize(grey.voxels.size() * 3);
    for (std::size_t voxel = 0; voxel < grey.voxels.size(); ++voxel) {
        for (std::size_t channel = 0; channel < 3; ++channel) {
            colour.voxels[3 * voxel + channel] = grey.voxels[(voxel + 5 * channel) % grey.voxels.size()];
        }
    }
    return colour;
}

} // namespace

std::vector<VolumeRows> AllRows(const reference::Volume& head) {
    using test::BlobVolume;
    return {
        {"head", GreyRows(), [&head] { return head; }},
        {"head RGB", ColourRows(), [&head] { return ColourOf(head); }},
        {"smooth 256", CubeRows(),
         [] {
             return BlobVolume({256, 256, 256}, 2);
         }},
        {"smooth 256 RGB", CubeRows(),
         [] {
             return ColourOf(BlobVolume({256, 256, 256}, 2));
         }},
        {"noise 256", NoiseRows(),
         [] {
             return test::NoiseVolume({256, 256, 256}, 3);
         }},
        {"smooth 32", CubeRows(),
         [] {
             return BlobVolume({32, 32, 32}, 4);
         }},
        {"smooth 64", CubeRows(),
         [] {
             return BlobVolume({64, 64, 64}, 5);
         }},
        {"smooth 512", LargeRows(),
         [] {
             return BlobVolume({512, 512, 512}, 2);
         }},
    };
}

reference::Request RequestOf(const reference::Volume& volume, const Row& row,
                             const test::Rotation& rotation) {
    reference::Request request = test::PlainRequest(volume, row.mode, rotation);
    request.low = row.low;
    request.high = row.high;
    request.extraBits = std::bit_cast<std::uint32_t>(row.extra);
    return request;
}

test::Rotation RotationOf(const double (&matrix)[9]) {
    test::Rotation rotation;
    for (std::size_t index = 0; index < 9; ++index)
        rotation[index] = static_cast<float>(matrix[index]);
    return rotation;
}

} // namespace z3d::bench
