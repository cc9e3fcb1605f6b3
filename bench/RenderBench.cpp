// ns per sample of every kernel on every instruction set, and the ratio to the plain form in the same run. At the
// end, how much more a sample costs in a volume of eight times the voxels.
//
// Usage: bench_render [--head FILE] [--only TEXT] [--seconds S]
//   --head   8-bit head of 181 x 217 x 181 voxels without a header (scripts/demo makes build/demo/ch2.raw);
//            without it a smooth phantom of that size
//   --only   rows whose name contains the text
#include "BenchInput.h"
#include "PairedTimer.h"

#include "frame/Volume3D.h"
#include "geometry/RotationMatrix.h"
#include "reference/ReferenceRay.h"
#include "reference/ReferenceRenderer.h"
#include "render/InstructionSet.h"
#include "support/HostVolume.h"
#include "support/ProceduralVolumes.h"
#include "support/ProductRenderer.h"
#include "support/RandomRequests.h"

#include <bit>
#include <cstdio>
#include <cstring>
#include <map>
#include <string>

namespace {

using namespace z3d;
using namespace z3d::test;
using bench::Options;
using bench::TimeInTurn;

Rotation RotationOf(float x, float y, float z) {
    const std::int16_t order[3] = {0, 1, 2};
    double matrix[9];
    geometry::CreateRotateMatrix(matrix, order, x, y, z);
    Rotation rotation;
    for (std::size_t index = 0; index < 9; ++index)
        rotation[index] = static_cast<float>(matrix[index]);
    return rotation;
}

// Samples that the plain form takes inside the crop box, early ends left aside.
double CountSamples(const reference::Volume& volume, const reference::Request& request) {
    const auto frame = reference::BuildFrame(volume, request);
    double samples = 0;
    for (int j = 0; j < frame->outputSize[1]; ++j) {
        for (int i = 0; i < frame->outputSize[0]; ++i) {
            const auto ray = reference::TraceRay(*frame, i, j);
            if (ray) samples += static_cast<double>(ray->lastDepth - ray->firstDepth + 1);
        }
    }
    return samples;
}

struct Row {
    std::string name;
    int mode;
    float x, y, z; // degrees
    float low, high;
    float extra;
};

// ns per sample of each instruction set, by volume and row.
using Figures = std::map<std::string, std::vector<double>>;

std::string NameOf(const std::string& volume, const Row& row) { return volume + ": " + row.name; }

void Measure(const reference::Volume& volume, const HostVolume& host, const std::string& name, const Row& row,
             const Options& options, Figures& figures) {
    reference::Request request = PlainRequest(volume, row.mode, RotationOf(row.x, row.y, row.z));
    request.low = row.low;
    request.high = row.high;
    request.extraBits = std::bit_cast<std::uint32_t>(row.extra);
    std::uint16_t width = 0;
    std::uint16_t height = 0;

    const reference::Projection expected = reference::Render(volume, request);
    std::vector<std::function<void()>> candidates = {[&] { (void)reference::Render(volume, request); }};
    for (const render::InstructionSet set : render::kInstructionSets) {
        if (set > render::BestInstructionSet()) continue;
        candidates.push_back([&, set] {
            render::ForceInstructionSet(set);
            FreeProjection(RenderPixels(host.Get(), request, width, height));
        });
        // A fast wrong answer is worth nothing.
        render::ForceInstructionSet(set);
        float* pixels = RenderPixels(host.Get(), request, width, height);
        if (std::memcmp(pixels, expected.pixels.data(), expected.pixels.size() * sizeof(float)) != 0) {
            std::printf("%-46s DIFFERS from the plain form\n", name.c_str());
        }
        FreeProjection(pixels);
    }
    const std::vector<double> seconds = TimeInTurn(candidates, options.seconds);
    const double samples = CountSamples(volume, request);
    std::printf("%-46s %6.2f", name.c_str(), seconds[0] / samples * 1e9);
    for (std::size_t index = 1; index < seconds.size(); ++index) {
        figures[name].push_back(seconds[index] / samples * 1e9);
        std::printf("  %6.3f %5.1fx", figures[name].back(), seconds[0] / seconds[index]);
    }
    std::printf("\n");
    std::fflush(stdout);
}

// A volume is made where one of its rows is wanted.
template <class Make>
void MeasureRows(const std::string& volumeName, const std::vector<Row>& rows, const Options& options,
                 Figures& figures, Make make) {
    std::vector<Row> wanted;
    for (const Row& row : rows) {
        if (options.Wants(NameOf(volumeName, row))) wanted.push_back(row);
    }
    if (wanted.empty()) return;
    const reference::Volume volume = make();
    const HostVolume host(volume);
    for (const Row& row : wanted)
        Measure(volume, host, NameOf(volumeName, row), row, options, figures);
}

// Per instruction set, the rows of one volume divided by the same rows of another one.
void PrintGrowth(const Figures& figures, const std::string& large, const std::string& small,
                 const std::vector<Row>& rows) {
    for (const Row& row : rows) {
        const auto over = figures.find(NameOf(large, row));
        const auto under = figures.find(NameOf(small, row));
        if (over == figures.end() || under == figures.end()) continue;
        std::printf("%-46s       ", (large + " / " + small + ": " + row.name).c_str());
        for (std::size_t index = 0; index < over->second.size(); ++index)
            std::printf("  %6.2f       ", over->second[index] / under->second[index]);
        std::printf("\n");
    }
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

void MeasureSweep(const reference::Volume& volume, const std::string& name, const Options& options) {
    // The physical floor of a maximum: every byte read once, in order.
    const HostVolume host(volume);
    unsigned largest = 0;
    const double seconds = TimeInTurn({[&] {
                                          std::uint8_t*** slices = frame::GlobalLock3D(host.Get());
                                          const std::size_t bytes =
                                              std::size_t{host.Get()->width} * host.Get()->height;
                                          std::uint8_t part = 0;
                                          for (std::size_t z = 0; z < host.Get()->depth; ++z) {
                                              for (std::size_t i = 0; i < bytes; ++i) {
                                                  part = slices[z][0][i] > part ? slices[z][0][i] : part;
                                              }
                                          }
                                          largest += part;
                                          frame::GlobalUnlock3D(host.Get());
                                      }},
                                      options.seconds)[0];
    std::printf("%-46s %6.3f ns per voxel (checksum %u)\n", (name + ": one pass over all bytes").c_str(),
                seconds / static_cast<double>(volume.voxels.size()) * 1e9, largest & 255u);
}

} // namespace

int main(int argc, char** argv) {
    const Options options = bench::ReadOptions(argc, argv, 0.6);

    const std::vector<Row> greyRows = {
        {"max", 0, 30, 40, 50, 0, 255, 0},
        {"max top quarter", 0, 30, 40, 50, 192, 255, 0},
        {"max 90 about y", 0, 0, 90, 0, 0, 255, 0},
        {"max identity", 0, 0, 0, 0, 0, 255, 0},
        {"max 90 about x", 0, 90, 0, 0, 0, 255, 0},
        {"max 90 about z", 0, 0, 0, 90, 0, 255, 0},
        {"max 5 about x", 0, 5, 0, 0, 0, 255, 0},
        {"min", 1, 30, 40, 50, 0, 255, 0},
        {"min bottom quarter", 1, 30, 40, 50, 0, 63, 0},
        {"min 90 about y", 1, 0, 90, 0, 0, 255, 0},
        {"min identity", 1, 0, 0, 0, 0, 255, 0},
        {"sum", 2, 30, 40, 50, 0, 255, 0},
        {"sum narrow", 2, 30, 40, 50, 100, 120, 0},
        {"sum identity", 2, 0, 0, 0, 0, 255, 0},
        {"surface", 3, 30, 40, 50, 80, 255, 0},
        {"layers", 3, 30, 40, 50, 80, 255, 0.5f},
        {"blend", 4, 30, 40, 50, 0, 255, 0.9f},
        {"blend high window", 4, 30, 40, 50, 150, 255, 0.9f},
        {"contrast", 5, 30, 40, 50, -1, 256, 0},
        {"first hit", 6, 30, 40, 50, 0, 255, 0},
        {"first hit narrow", 6, 30, 40, 50, 100, 120, 0},
    };
    const std::vector<Row> colourRows = {
        {"max", 0, 30, 40, 50, 0, 765, 0},          {"max identity", 0, 0, 0, 0, 0, 765, 0},
        {"max 90 about x", 0, 90, 0, 0, 0, 765, 0}, {"max 90 about y", 0, 0, 90, 0, 0, 765, 0},
        {"max 90 about z", 0, 0, 0, 90, 0, 765, 0}, {"max 5 about x", 0, 5, 0, 0, 0, 765, 0},
        {"min", 1, 30, 40, 50, 0, 765, 0},          {"sum", 2, 30, 40, 50, 0, 765, 0},
        {"surface", 3, 30, 40, 50, 240, 766, 0},    {"layers", 3, 30, 40, 50, 240, 766, 0.5f},
        {"blend", 4, 30, 40, 50, 0, 765, 0.9f},     {"contrast", 5, 30, 40, 50, -1, 766, 0},
        {"first hit", 6, 30, 40, 50, 300, 765, 0},
    };
    // Without the small turn: as many rows as the plain form has time for in a large volume.
    const std::vector<Row> largeRows = {
        {"max", 0, 30, 40, 50, 0, 765, 0},          {"max identity", 0, 0, 0, 0, 0, 765, 0},
        {"max 90 about x", 0, 90, 0, 0, 0, 765, 0}, {"max 90 about y", 0, 0, 90, 0, 0, 765, 0},
        {"max 90 about z", 0, 0, 0, 90, 0, 765, 0},
    };
    std::vector<Row> cubeRows = largeRows;
    cubeRows.push_back({"max 5 about x", 0, 5, 0, 0, 0, 765, 0});
    // Nothing to skip anywhere.
    std::vector<Row> noiseRows = cubeRows;
    noiseRows.insert(noiseRows.end(), {{"sum", 2, 30, 40, 50, 0, 255, 0},
                                       {"blend", 4, 30, 40, 50, 0, 255, 0.9f},
                                       {"surface", 3, 30, 40, 50, 80, 255, 0},
                                       {"layers", 3, 30, 40, 50, 80, 255, 0.5f},
                                       {"contrast", 5, 30, 40, 50, -1, 256, 0},
                                       {"first hit", 6, 30, 40, 50, 100, 120, 0}});

    std::printf("ns per sample: plain form | SSE2, AVX2, AVX-512 where the processor has them, each with its "
                "ratio\n");
    Figures figures;
    const auto run = [&](const std::string& name, const std::vector<Row>& rows, const auto& make) {
        MeasureRows(name, rows, options, figures, make);
    };
    const reference::Volume head = bench::LoadHead(options.head);
    MeasureSweep(head, "head", options);
    run("head", greyRows, [&] { return head; });
    run("head RGB", colourRows, [&] { return ColourOf(head); });
    run("smooth 256", cubeRows, [] { return BlobVolume({256, 256, 256}, 2); });
    run("smooth 256 RGB", cubeRows, [] { return ColourOf(BlobVolume({256, 256, 256}, 2)); });
    run("noise 256", noiseRows, [] { return NoiseVolume({256, 256, 256}, 3); });
    run("smooth 32", cubeRows, [] { return BlobVolume({32, 32, 32}, 4); });
    run("smooth 64", cubeRows, [] { return BlobVolume({64, 64, 64}, 5); });
    run("smooth 512", largeRows, [] { return BlobVolume({512, 512, 512}, 2); });
    PrintGrowth(figures, "smooth 512", "smooth 256", largeRows);
    return 0;
}
