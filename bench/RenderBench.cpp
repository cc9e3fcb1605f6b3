// ns per sample of every kernel on every instruction set, the ratio to the plain form in the same run, and the page faults
// of a call. At the end, how much more a sample costs in a volume of eight times the voxels.
#include "BenchInput.h"
#include "BenchRows.h"
#include "PageFaults.h"
#include "PairedTimer.h"

#include "frame/Volume3D.h"
#include "geometry/RotationMatrix.h"
#include "reference/ReferenceRay.h"
#include "reference/ReferenceRenderer.h"
#include "render/InstructionSet.h"
#include "support/HostVolume.h"
#include "support/ProductRenderer.h"

#include <cstdio>
#include <cstring>
#include <map>
#include <string>

namespace {

using namespace z3d;
using namespace z3d::test;
using bench::Options;
using bench::Row;
using bench::TimeInTurn;
using bench::VolumeRows;

constexpr bench::Usage kUsage = {"Usage: bench_render [--head FILE] [--only TEXT] [--seconds S]\n"
                                 "  --head     8-bit head of 181 x 217 x 181 voxels without a header "
                                 "(scripts/demo makes build/demo/ch2.raw);\n"
                                 "             without it a smooth phantom of that size\n"
                                 "  --only     rows whose name contains the text, or is what follows a =\n"
                                 "  --seconds  time for each row, 0.6 unless given\n",
                                 0.6};

reference::Request RequestOf(const reference::Volume& volume, const Row& row) {
    const std::int16_t order[3] = {0, 1, 2};
    double matrix[9];
    geometry::CreateRotateMatrix(matrix, order, row.x, row.y, row.z);
    return bench::RequestOf(volume, row, bench::RotationOf(matrix));
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

// ns per sample of each instruction set, by volume and row.
using Figures = std::map<std::string, std::vector<double>>;

void Measure(const reference::Volume& volume, const HostVolume& host, const std::string& name, const Row& row,
             const Options& options, Figures& figures) {
    const reference::Request request = RequestOf(volume, row);
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
        if (pixels == nullptr
            || std::memcmp(pixels, expected.pixels.data(), expected.pixels.size() * sizeof(float)) != 0) {
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
    std::printf("  %6u\n", bench::PageFaultsOf(candidates.back()));
    std::fflush(stdout);
}

void MeasureRows(const VolumeRows& all, const Options& options, Figures& figures) {
    std::vector<Row> wanted;
    for (const Row& row : all.rows) {
        if (options.Wants(all.NameOf(row))) wanted.push_back(row);
    }
    if (wanted.empty()) return;
    const reference::Volume volume = all.make();
    const HostVolume host(volume);
    for (const Row& row : wanted)
        Measure(volume, host, all.NameOf(row), row, options, figures);
}

// Per instruction set, the rows of one volume divided by the rows of the same names of another one.
void PrintGrowth(const Figures& figures, const std::string& large, const std::string& small) {
    for (const auto& [name, over] : figures) {
        if (!name.starts_with(large + ": ")) continue;
        const std::string row = name.substr(large.size());
        const auto under = figures.find(small + row);
        if (under == figures.end()) continue;
        std::printf("%-46s       ", (large + " / " + small + row).c_str());
        for (std::size_t index = 0; index < over.size(); ++index)
            std::printf("  %6.2f       ", over[index] / under->second[index]);
        std::printf("\n");
    }
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
    const Options options = bench::ReadOptions(argc, argv, kUsage);
    const reference::Volume head = bench::LoadHead(options.head);
    std::printf("ns per sample: plain form | SSE2, AVX2, AVX-512, AVX-512 with gathers where the processor "
                "has them, each with its ratio | page faults of a call\n");
    MeasureSweep(head, "head", options);
    Figures figures;
    for (const VolumeRows& rows : bench::AllRows(head))
        MeasureRows(rows, options, figures);
    PrintGrowth(figures, "smooth 512", "smooth 256");
    if (!figures.empty()) return 0;
    std::fprintf(stderr, "no row has a name with \"%s\" in it\n", options.only.c_str());
    return 1;
}
