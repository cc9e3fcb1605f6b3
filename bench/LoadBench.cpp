// ns per sample of the image primitives and of the way from channel files to a volume.
//
// Each row has two ratios, how many times faster than the plain form, and how many times slower than the floor, and ends
// in the page faults of a call. The floor of a primitive is a memcpy that moves as many bytes; that of the pipeline is the
// reading of the files and the filling of the result's bytes.
#include "BenchInput.h"
#include "ChannelFiles.h"
#include "PageFaults.h"
#include "PairedTimer.h"

#include "compose/RgbImagePipeline.h"
#include "frame/Volume3D.h"
#include "platform/File.h"
#include "primitives/Convert.h"
#include "primitives/Fill.h"
#include "primitives/Grey.h"
#include "primitives/Planes.h"
#include "primitives/Range.h"
#include "primitives/Resize.h"
#include "primitives/Scale.h"
#include "primitives/Vector.h"
#include "reference/PlainPrimitives.h"

#include <cstdio>
#include <cstring>
#include <string>

namespace {

using namespace z3d;
using bench::ChannelFiles;
using bench::LoadRow;
using bench::Options;
using bench::TimeInTurn;
using primitives::Status;

constexpr bench::Usage kUsage = {
    "Usage: bench_load [--head FILE] [--only TEXT] [--seconds S]\n"
    "  --head     8-bit head of 181 x 217 x 181 voxels without a header (scripts/demo makes "
    "build/demo/ch2.raw);\n"
    "             without it a smooth phantom of that size\n"
    "  --only     rows whose name contains the text, or is what follows a =\n"
    "  --seconds  time for each row, 0.5 unless given; six times that where files are loaded\n",
    0.5};

constexpr std::int32_t kWidth = 512;
constexpr std::int32_t kHeight = 512;
constexpr std::int32_t kPixels = kWidth * kHeight;
constexpr std::size_t kSamples = std::size_t{3} * kPixels;

// One image of three channels in every format. What the primitives write starts as zero.
struct Images {
    std::vector<std::uint8_t> bytes = std::vector<std::uint8_t>(kSamples);
    std::vector<float> floats = std::vector<float>(kSamples);
    std::vector<std::uint8_t> bytesOut = std::vector<std::uint8_t>(kSamples);
    std::vector<float> floatsOut = std::vector<float>(kSamples);

    explicit Images(const reference::Volume& head) {
        for (std::size_t i = 0; i < kSamples; ++i) {
            bytes[i] = head.voxels[(i + head.voxels.size() / 3) % head.voxels.size()];
            floats[i] = static_cast<float>(bytes[i]) * 1.37f - 40.0f;
        }
    }
};

void PrintRow(const std::string& name, double nanoseconds, double plain, double floor, std::uint32_t faults) {
    std::printf("%-44s %8.3f", name.c_str(), nanoseconds);
    if (plain > 0) std::printf(" %8.3f %6.1fx", plain, plain / nanoseconds);
    if (!(plain > 0)) std::printf(" %8s %6s ", "-", "-");
    std::printf(" %8.3f %6.2fx %7u\n", floor, nanoseconds / floor, faults);
    std::fflush(stdout);
}

class PrimitiveBench {
public:
    PrimitiveBench(Images& images, const Options& options) : images_(images), options_(options) {}

    // `samples` per call; `bytes` are read and written by it.
    template <class Product, class Plain>
    void Run(const char* name, std::size_t samples, std::size_t bytes, Product product, Plain plain) {
        if (!options_.Wants(name)) return;
        if (!SameOutput(product, plain)) std::printf("%s DIFFERS from the plain form\n", name);
        std::vector<std::uint8_t> from(bytes / 2, 1);
        std::vector<std::uint8_t> to(bytes / 2);
        const auto copy = [&] { std::memcpy(to.data(), from.data(), from.size()); };
        const std::vector<double> seconds =
            TimeInTurn({[&] { (void)product(); }, [&] { (void)plain(); }, copy}, options_.seconds);
        const double scale = 1e9 / static_cast<double>(samples);
        PrintRow(name, seconds[0] * scale, seconds[1] * scale, seconds[2] * scale,
                 bench::PageFaultsOf([&] { (void)product(); }));
        checksum_ += to[bytes / 4];
    }

private:
    // A fast wrong answer is worth nothing.
    template <class Product, class Plain>
    bool SameOutput(Product product, Plain plain) {
        const Images start = images_;
        const Status status = product();
        const Images after = images_;
        images_.bytesOut = start.bytesOut;
        images_.floatsOut = start.floatsOut;
        return plain() == status && images_.bytesOut == after.bytesOut
               && std::memcmp(images_.floatsOut.data(), after.floatsOut.data(), kSamples * sizeof(float))
                      == 0;
    }

    Images& images_;
    const Options& options_;
    unsigned checksum_ = 0;
};

// The same call of the product and of the plain form.
#define Z3D_PAIR(name, ...)                                                                                  \
    [&] { return primitives::name(__VA_ARGS__); }, [&] { return reference::name(__VA_ARGS__); }

void MeasurePrimitives(Images& images, const Options& options) {
    PrimitiveBench bench(images, options);
    const std::uint8_t* bytes = images.bytes.data();
    const float* floats = images.floats.data();
    std::uint8_t* bytesOut = images.bytesOut.data();
    float* floatsOut = images.floatsOut.data();
    const std::uint8_t* bytePlanes[3] = {bytes, bytes + kPixels, bytes + 2 * kPixels};
    const float* floatPlanes[3] = {floats, floats + kPixels, floats + 2 * kPixels};
    constexpr std::size_t pixels = kPixels;
    constexpr std::int32_t samples = kSamples;
    const primitives::ImageSize size = {kWidth, kHeight};
    const primitives::ImageRect all = {0, 0, kWidth, kHeight};
    std::uint8_t low = 0;
    std::uint8_t high = 0;
    float extreme = 0;

    bench.Run("Set8uC1", pixels, pixels, Z3D_PAIR(Set8uC1, 7, bytesOut, kWidth, kWidth, kHeight));
    bench.Run("VecCopy32f", kSamples, kSamples * 8, Z3D_PAIR(VecCopy32f, floats, floatsOut, samples));
    bench.Run("CopyPlanes8uP3C3", kSamples, kSamples * 2,
              Z3D_PAIR(CopyPlanes8uP3C3, bytePlanes, kWidth, bytesOut, 3 * kWidth, kWidth, kHeight));
    bench.Run("CopyPlanes32fP3C3", kSamples, kSamples * 8,
              Z3D_PAIR(CopyPlanes32fP3C3, floatPlanes, 4 * kWidth, floatsOut, 12 * kWidth, kWidth, kHeight));
    bench.Run("Resize8uC1 bilinear x 0.75", pixels * 9 / 16, pixels * 25 / 16,
              Z3D_PAIR(Resize8uC1, bytes, size, kWidth, all, bytesOut, kWidth, size, 0.75, 0.75, 2));
    bench.Run("Resize8uC1 nearest x 0.75", pixels * 9 / 16, pixels * 25 / 16,
              Z3D_PAIR(Resize8uC1, bytes, size, kWidth, all, bytesOut, kWidth, size, 0.75, 0.75, 1));
    bench.Run(
        "Resize32fC1 bilinear x 0.75", pixels * 9 / 16, pixels * 25 / 4,
        Z3D_PAIR(Resize32fC1, floats, size, 4 * kWidth, all, floatsOut, 4 * kWidth, size, 0.75, 0.75, 2));
    bench.Run("VecMulC32fInPlace", kSamples, kSamples * 8,
              Z3D_PAIR(VecMulC32fInPlace, 1.0000001f, floatsOut, samples));
    bench.Run("VecAddC32fInPlace", kSamples, kSamples * 8,
              Z3D_PAIR(VecAddC32fInPlace, 0.25f, floatsOut, samples));
    bench.Run("VecConvert32f8uSfs half to even", kSamples, kSamples * 5,
              Z3D_PAIR(VecConvert32f8uSfs, floats, bytesOut, samples, 1, 0));
    bench.Run("Convert32f8uC3 toward zero", kSamples, kSamples * 5,
              Z3D_PAIR(Convert32f8uC3, floats, 12 * kWidth, bytesOut, 3 * kWidth, kWidth, kHeight, 0));
    bench.Run(
        "Scale8u32fC3", kSamples, kSamples * 5,
        Z3D_PAIR(Scale8u32fC3, bytes, 3 * kWidth, floatsOut, 12 * kWidth, kWidth, kHeight, -1.5f, 250.0f));
    bench.Run(
        "Scale32f8uC3", kSamples, kSamples * 5,
        Z3D_PAIR(Scale32f8uC3, floats, 12 * kWidth, bytesOut, 3 * kWidth, kWidth, kHeight, -1.5f, 250.0f));
    bench.Run("ColorToGray8uC3C1", pixels, pixels * 4,
              Z3D_PAIR(ColorToGray8uC3C1, bytes, 3 * kWidth, bytesOut, kWidth, kWidth, kHeight, nullptr));
    bench.Run("MinMax8uC1", pixels, pixels,
              Z3D_PAIR(MinMax8uC1, bytes, kWidth, kWidth, kHeight, &low, &high));
    bench.Run("VecMax32f", kSamples, kSamples * 4, Z3D_PAIR(VecMax32f, floats, samples, &extreme));
    bench.Run("VecMin32f", kSamples, kSamples * 4, Z3D_PAIR(VecMin32f, floats, samples, &extreme));
}

::Volume3D* Load(const ChannelFiles& files, const reference::Volume& head, const LoadRow& row) {
    const frame::Host silent = {nullptr, nullptr, [](void*, const char*) {}};
    return compose::GetRGBImage({files[0], files[1], files[2], static_cast<std::int16_t>(head.width),
                                 static_cast<std::int16_t>(head.height),
                                 static_cast<std::int16_t>(head.depth), row.is8bit, row.maxDiagonal, false,
                                 nullptr, nullptr, nullptr, nullptr},
                                silent);
}

// Reads all samples, slice by slice, and fills a volume of the result's size.
void ReadAndFill(const ChannelFiles& files, const reference::Volume& head, const LoadRow& row,
                 const ::Volume3D& result) {
    const std::size_t samples = head.voxels.size() / static_cast<std::size_t>(head.depth);
    std::vector<std::uint8_t> slice(samples * (row.is8bit ? 1 : 4));
    for (std::size_t channel = 0; channel < 3; ++channel) {
        platform::File file(files[channel]);
        for (int z = 0; z < head.depth; ++z)
            (void)file.Read(slice.data(), slice.size());
    }
    ::Volume3D* filled = frame::GlobalAlloc3D(result.width, result.height, result.depth, 3);
    std::uint8_t*** rows = frame::GlobalLock3D(filled);
    for (std::size_t z = 0; z < filled->depth; ++z)
        std::memset(rows[z][0], slice[0], std::size_t{3} * filled->width * filled->height);
    frame::GlobalFree3D(filled);
}

void MeasurePipeline(const reference::Volume& head, const Options& options) {
    for (const LoadRow& row : bench::LoadRows()) {
        if (!options.Wants(row.name)) continue;
        const ChannelFiles files(head, row.is8bit);
        ::Volume3D* result = Load(files, head, row);
        const auto load = [&] { frame::GlobalFree3D(Load(files, head, row)); };
        const std::vector<double> seconds =
            TimeInTurn({load, [&] { ReadAndFill(files, head, row, *result); }}, options.seconds * 6);
        frame::GlobalFree3D(result);
        const double scale = 1e9 / (3.0 * static_cast<double>(head.voxels.size()));
        PrintRow(row.name, seconds[0] * scale, 0, seconds[1] * scale, bench::PageFaultsOf(load));
    }
}

} // namespace

int main(int argc, char** argv) {
    const Options options = bench::ReadOptions(argc, argv, kUsage);
    const reference::Volume head = bench::LoadHead(options.head);
    std::printf("%-44s %8s %8s %7s %8s %7s %7s\n", "ns per sample", "product", "plain", "ratio", "floor",
                "ratio", "faults");
    Images images(head);
    MeasurePrimitives(images, options);
    MeasurePipeline(head, options);
    return 0;
}
