// Two builds of the DLL against each other, in turn in one process, as a host calls them. Before a row is timed, the
// results of both are compared bit for bit: a fast wrong answer is worth nothing.
#include "BenchInput.h"
#include "BenchRows.h"
#include "ChannelFiles.h"
#include "LoadedDll.h"
#include "PageFaults.h"
#include "PairedTimer.h"

#include <windows.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <exception>
#include <functional>
#include <map>
#include <new>
#include <string>
#include <vector>

namespace {

using namespace z3d;
using bench::ChannelFiles;
using bench::LoadedDll;
using bench::LoadRow;
using bench::Options;
using bench::Row;
using bench::VolumeRows;

constexpr bench::Usage kUsage = {
    "Usage: bench_compare_dlls OLD.dll NEW.dll [--head FILE] [--only TEXT] [--seconds S] [--loads]\n"
    "  --head     8-bit head of 181 x 217 x 181 voxels without a header (scripts/demo makes "
    "build/demo/ch2.raw);\n"
    "             without it a smooth phantom of that size\n"
    "  --only     rows whose name contains the text, or is what follows a =\n"
    "  --seconds  time for each row, 0.6 unless given\n"
    "  --loads    instead of projections: loading three channel files made of the head\n"
    "Prints milliseconds, how many times faster the new one is, and page faults of a call. Ends with 1 when "
    "a result\n"
    "differs.\n",
    0.6, true};

// What a call left behind: the sizes and numbers that it stored, and its pixels or voxels.
struct Outcome {
    std::vector<float> numbers;
    std::vector<std::uint8_t> bytes;

    bool Is(const Outcome& other) const {
        return numbers.size() == other.numbers.size() && bytes == other.bytes
               && std::memcmp(numbers.data(), other.numbers.data(), numbers.size() * sizeof(float)) == 0;
    }
};

// A call of one DLL. It gives its outcome where one is asked for.
using Call = std::function<void(const LoadedDll&, Outcome*)>;

class Comparison {
public:
    Comparison(const LoadedDll& older, const LoadedDll& newer, const Options& options)
        : older_(older), newer_(newer), options_(options) {
        std::printf("%-44s %9s %9s %7s   %s\n", "", "ms old", "ms new", "faster", "faults old, new");
    }

    bool Wants(const std::string& name) const { return options_.Wants(name); }

    void Measure(const std::string& group, const std::string& name, const Call& call) {
        Outcome expected;
        Outcome actual;
        call(older_, &expected);
        call(newer_, &actual);
        const bool same = expected.Is(actual);
        const std::vector<double> seconds = bench::TimeInTurn(
            {[&] { call(older_, nullptr); }, [&] { call(newer_, nullptr); }}, options_.seconds);
        const double ratio = seconds[0] / seconds[1];
        std::printf("%-44s %9.3f %9.3f %6.2fx %9u %6u%s\n", name.c_str(), seconds[0] * 1e3, seconds[1] * 1e3,
                    ratio, bench::PageFaultsOf([&] { call(older_, nullptr); }),
                    bench::PageFaultsOf([&] { call(newer_, nullptr); }), same ? "" : "   DIFFERS");
        std::fflush(stdout);
        ratios_[group].push_back(ratio);
        ratios_["all rows"].push_back(ratio);
        differences_ += same ? 0 : 1;
    }

    // The exit code of the program.
    int Finish() const {
        for (const auto& [group, ratios] : ratios_) {
            double logarithms = 0;
            double smallest = ratios[0];
            for (const double ratio : ratios) {
                logarithms += std::log(ratio);
                smallest = std::min(smallest, ratio);
            }
            std::printf("%-44s %19s %6.2fx   least %.2fx\n", ("geometric mean, " + group).c_str(), "",
                        std::exp(logarithms / static_cast<double>(ratios.size())), smallest);
        }
        if (ratios_.empty())
            std::fprintf(stderr, "no row has a name with \"%s\" in it\n", options_.only.c_str());
        if (differences_ > 0) std::fprintf(stderr, "%d rows differ\n", differences_);
        return ratios_.empty() || differences_ > 0 ? 1 : 0;
    }

private:
    const LoadedDll& older_;
    const LoadedDll& newer_;
    const Options& options_;
    std::map<std::string, std::vector<double>> ratios_;
    int differences_ = 0;
};

// --- Projections

void FreePixels(float* pixels) {
    const HGLOBAL block = GlobalHandle(pixels);
    GlobalUnlock(block);
    GlobalFree(block);
}

Call ProjectionOf(::Volume3D* volume, const reference::Request& request) {
    return [volume, request](const LoadedDll& dll, Outcome* outcome) {
        unsigned short width = 0;
        unsigned short height = 0;
        float extra = 0;
        std::memcpy(&extra, &request.extraBits, sizeof extra);
        float* const pixels = dll.GetRotProjection(volume, request.rotation.data(), request.mode, request.x0,
                                                   request.x1, request.y0, request.y1, request.z0, request.z1,
                                                   request.high, request.low, extra, &width, &height, 0);
        if (outcome != nullptr) {
            outcome->numbers = {static_cast<float>(width), static_cast<float>(height)};
            const auto* const bytes = reinterpret_cast<const std::uint8_t*>(pixels);
            if (pixels != nullptr) outcome->bytes.assign(bytes, bytes + 12u * width * height);
        }
        if (pixels != nullptr) FreePixels(pixels);
    };
}

reference::Request RequestOf(const reference::Volume& volume, const Row& row, const LoadedDll& dll) {
    const AxisOrder order = {{0, 1, 2}};
    double matrix[9];
    dll.CreateRotateMatrix(matrix, &order, row.x, row.y, row.z);
    return bench::RequestOf(volume, row, bench::RotationOf(matrix));
}

// One volume for both: what a volume costs depends on where in memory it is.
::Volume3D* HostVolumeOf(const reference::Volume& plain, const LoadedDll& dll) {
    ::Volume3D* const volume =
        dll.GlobalAlloc3D(static_cast<unsigned>(plain.width), static_cast<unsigned>(plain.height),
                          static_cast<unsigned>(plain.depth), static_cast<unsigned>(plain.bytesPerVoxel));
    unsigned char*** const slices = dll.GlobalLock3D(volume);
    if (slices == nullptr) throw std::bad_alloc();
    const std::size_t sliceBytes = plain.voxels.size() / static_cast<std::size_t>(plain.depth);
    for (std::size_t z = 0; z < volume->depth; ++z)
        std::memcpy(slices[z][0], plain.voxels.data() + z * sliceBytes, sliceBytes);
    dll.GlobalUnlock3D(volume);
    return volume;
}

void CompareProjections(const VolumeRows& all, const LoadedDll& dll, Comparison& comparison) {
    ::Volume3D* volume = nullptr;
    reference::Volume plain = {};
    for (const Row& row : all.rows) {
        if (!comparison.Wants(all.NameOf(row))) continue;
        if (volume == nullptr) {
            plain = all.make();
            volume = HostVolumeOf(plain, dll);
        }
        comparison.Measure(all.volume, all.NameOf(row), ProjectionOf(volume, RequestOf(plain, row, dll)));
    }
    dll.GlobalFree3D(volume);
}

// --- Loading

std::vector<std::uint8_t> VoxelsOf(::Volume3D* volume, const LoadedDll& dll) {
    unsigned char*** const slices = dll.GlobalLock3D(volume);
    std::vector<std::uint8_t> voxels;
    for (std::size_t z = 0; slices != nullptr && z < volume->depth; ++z) {
        const std::size_t bytes = std::size_t{3} * volume->width * volume->height;
        voxels.insert(voxels.end(), slices[z][0], slices[z][0] + bytes);
    }
    return voxels;
}

Call LoadingOf(const ChannelFiles& files, const reference::Volume& head, const LoadRow& row) {
    return [&files, &head, row](const LoadedDll& dll, Outcome* outcome) {
        float ranges[4] = {};
        ::Volume3D* const volume = dll.GetRGBImage(
            files[0], files[1], files[2], static_cast<short>(head.width), static_cast<short>(head.height),
            static_cast<short>(head.depth), 0, 0, 0, row.is8bit, row.maxDiagonal, &ranges[0], &ranges[1],
            &ranges[2], &ranges[3], 0, nullptr, 0);
        if (outcome != nullptr && volume != nullptr) {
            outcome->numbers.assign(ranges, ranges + 4);
            for (const unsigned size : {volume->width, volume->height, volume->depth})
                outcome->numbers.push_back(static_cast<float>(size));
            outcome->bytes = VoxelsOf(volume, dll);
        }
        dll.GlobalFree3D(volume);
    };
}

void CompareLoads(const reference::Volume& head, Comparison& comparison) {
    for (const LoadRow& row : bench::LoadRows()) {
        if (!comparison.Wants(row.name)) continue;
        const ChannelFiles files(head, row.is8bit);
        comparison.Measure("loading", row.name, LoadingOf(files, head, row));
    }
}

int Compare(const Options& options, const std::string (&dlls)[2]) {
    const reference::Volume head = bench::LoadHead(options.head);
    const LoadedDll older(dlls[0], "old");
    const LoadedDll newer(dlls[1], "new");
    Comparison comparison(older, newer, options);
    if (options.loads) {
        CompareLoads(head, comparison);
    } else {
        for (const VolumeRows& rows : bench::AllRows(head))
            CompareProjections(rows, older, comparison);
    }
    return comparison.Finish();
}

} // namespace

int main(int argc, char** argv) {
    std::string dlls[2];
    const Options options = bench::ReadOptions(argc, argv, kUsage, dlls);
    try {
        return Compare(options, dlls);
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "%s\n", failure.what());
        return 1;
    }
}
