// ns per sample of every kernel on every instruction set, and the ratio to the plain form in the same run.
//
// Usage: bench_render [--head FILE] [--only TEXT] [--seconds S]
//   --head   8-bit head of 181 x 217 x 181 voxels without a header (scripts/demo makes build/demo/ch2.raw);
//            without it a smooth phantom of that size
//   --only   rows whose name contains the text
#include "PairedTimer.h"

#include "frame/Volume3D.h"
#include "geometry/RotationMatrix.h"
#include "platform/GlobalMemory.h"
#include "reference/ReferenceRay.h"
#include "reference/ReferenceRenderer.h"
#include "render/InstructionSet.h"
#include "render/RotProjection.h"
#include "support/ProceduralVolumes.h"
#include "support/RandomRequests.h"

#include <bit>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <string>

namespace {

using namespace z3d;
using namespace z3d::test;
using bench::TimeInTurn;

struct Options {
    std::string head;
    std::string only;
    double seconds = 0.6;
};

class HostVolume {
public:
    explicit HostVolume(const reference::Volume& plain)
        : volume_(frame::GlobalAlloc3D(
            static_cast<std::uint32_t>(plain.width), static_cast<std::uint32_t>(plain.height),
            static_cast<std::uint32_t>(plain.depth), static_cast<std::uint32_t>(plain.bytesPerVoxel))) {
        std::uint8_t*** slices = frame::GlobalLock3D(volume_);
        const std::size_t bytes = plain.voxels.size() / static_cast<std::size_t>(plain.depth);
        for (std::size_t z = 0; z < volume_->depth; ++z) {
            std::memcpy(slices[z][0], plain.voxels.data() + z * bytes, bytes);
        }
        frame::GlobalUnlock3D(volume_);
    }
    ~HostVolume() { frame::GlobalFree3D(volume_); }
    HostVolume(const HostVolume&) = delete;
    HostVolume& operator=(const HostVolume&) = delete;
    ::Volume3D* Get() const { return volume_; }

private:
    ::Volume3D* volume_;
};

float* RenderProduct(::Volume3D* volume, const reference::Request& request) {
    const render::CropBox crop = {request.x0 - 1, request.x1 - 1, request.y0 - 1,
                                  request.y1 - 1, request.z0 - 1, request.z1 - 1};
    std::uint16_t width = 0;
    std::uint16_t height = 0;
    return render::GetRotProjection(volume, request.rotation.data(), request.mode, crop,
                                    {request.high, request.low, std::bit_cast<float>(request.extraBits)},
                                    &width, &height, 0);
}

void FreeProjection(float* pixels) {
    const platform::BlockHandle block = platform::BlockFromAddress(pixels);
    platform::BlockUnlock(block);
    platform::BlockFree(block);
}

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

void Measure(const reference::Volume& volume, const HostVolume& host, const std::string& volumeName,
             const Row& row, const Options& options) {
    const std::string name = volumeName + ": " + row.name;
    if (name.find(options.only) == std::string::npos) return;
    reference::Request request = PlainRequest(volume, row.mode, RotationOf(row.x, row.y, row.z));
    request.low = row.low;
    request.high = row.high;
    request.extraBits = std::bit_cast<std::uint32_t>(row.extra);

    const reference::Projection expected = reference::Render(volume, request);
    std::vector<std::function<void()>> candidates = {[&] { (void)reference::Render(volume, request); }};
    for (const render::InstructionSet set : render::kInstructionSets) {
        if (set > render::BestInstructionSet()) continue;
        candidates.push_back([&, set] {
            render::ForceInstructionSet(set);
            FreeProjection(RenderProduct(host.Get(), request));
        });
        // A fast wrong answer is worth nothing.
        render::ForceInstructionSet(set);
        float* pixels = RenderProduct(host.Get(), request);
        if (std::memcmp(pixels, expected.pixels.data(), expected.pixels.size() * sizeof(float)) != 0) {
            std::printf("%-46s DIFFERS from the plain form\n", name.c_str());
        }
        FreeProjection(pixels);
    }
    const std::vector<double> seconds = TimeInTurn(candidates, options.seconds);
    const double samples = CountSamples(volume, request);
    std::printf("%-46s %6.2f", name.c_str(), seconds[0] / samples * 1e9);
    for (std::size_t index = 1; index < seconds.size(); ++index) {
        std::printf("  %6.3f %5.1fx", seconds[index] / samples * 1e9, seconds[0] / seconds[index]);
    }
    std::printf("\n");
    std::fflush(stdout);
}

reference::Volume LoadHead(const std::string& file) {
    reference::Volume head = BlobVolume({181, 217, 181}, 1);
    std::ifstream stream(file, std::ios::binary);
    if (stream) {
        stream.read(reinterpret_cast<char*>(head.voxels.data()),
                    static_cast<std::streamsize>(head.voxels.size()));
    } else {
        std::printf("no head given: a smooth phantom of its size instead\n");
    }
    return head;
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
    Options options;
    for (int index = 1; index + 1 < argc; index += 2) {
        const std::string key = argv[index];
        if (key == "--head") options.head = argv[index + 1];
        if (key == "--only") options.only = argv[index + 1];
        if (key == "--seconds") options.seconds = std::stod(argv[index + 1]);
    }

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
    const std::vector<Row> cubeRows = {
        {"max", 0, 30, 40, 50, 0, 765, 0},          {"max identity", 0, 0, 0, 0, 0, 765, 0},
        {"max 90 about x", 0, 90, 0, 0, 0, 765, 0}, {"max 90 about y", 0, 0, 90, 0, 0, 765, 0},
        {"max 90 about z", 0, 0, 0, 90, 0, 765, 0}, {"max 5 about x", 0, 5, 0, 0, 0, 765, 0},
    };

    std::printf("ns per sample: plain form | SSE2, AVX2, AVX-512 where the processor has them, each with its "
                "ratio\n");
    const auto run = [&](const reference::Volume& volume, const std::string& name,
                         const std::vector<Row>& rows) {
        const HostVolume host(volume);
        for (const Row& row : rows)
            Measure(volume, host, name, row, options);
    };
    const reference::Volume head = LoadHead(options.head);
    MeasureSweep(head, "head", options);
    run(head, "head", greyRows);
    run(ColourOf(head), "head RGB", colourRows);
    run(BlobVolume({256, 256, 256}, 2), "smooth 256", cubeRows);
    run(ColourOf(BlobVolume({256, 256, 256}, 2)), "smooth 256 RGB", cubeRows);
    run(NoiseVolume({256, 256, 256}, 3), "noise 256", cubeRows);
    run(BlobVolume({32, 32, 32}, 4), "smooth 32", cubeRows);
    run(BlobVolume({64, 64, 64}, 5), "smooth 64", cubeRows);
    return 0;
}
