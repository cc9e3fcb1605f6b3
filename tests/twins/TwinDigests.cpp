// A host that knows the library by its header alone and prints a line per request: a fixed series of random ones, the same
// in every build. What all builds of the library have to give alike, they print alike.
#include "Zentra3DRendering.h"

#include "support/Digest.h"
#include "support/ProceduralVolumes.h"
#include "support/RandomRequests.h"
#include "support/RenderModes.h"

#include <array>
#include <bit>
#include <cstdio>
#include <fstream>
#include <string>
#include <vector>

// How a projection is released, on every system.
extern "C" void* Z3D_CALL GlobalHandle(const void* address);
extern "C" int Z3D_CALL GlobalUnlock(void* block);
extern "C" void* Z3D_CALL GlobalFree(void* block);

namespace {

using namespace z3d;
using namespace z3d::test;

void Print(const char* what, int number, const Digest& digest) {
    const auto value = static_cast<unsigned long long>(digest.Value());
    std::printf("%-24s %4d  %016llx\n", what, number, value);
}

// --- Projections

Volume3D* HostVolumeOf(const reference::Volume& plain) {
    Volume3D* volume =
        GlobalAlloc3D(static_cast<unsigned>(plain.width), static_cast<unsigned>(plain.height),
                      static_cast<unsigned>(plain.depth), static_cast<unsigned>(plain.bytesPerVoxel));
    unsigned char*** slices = GlobalLock3D(volume);
    std::size_t next = 0;
    for (int z = 0; z < plain.depth; ++z) {
        for (int y = 0; y < plain.height; ++y) {
            for (int byte = 0; byte < plain.width * plain.bytesPerVoxel; ++byte)
                slices[z][y][byte] = plain.voxels[next++];
        }
    }
    GlobalUnlock3D(volume);
    return volume;
}

Digest DigestOfProjection(Volume3D* volume, const reference::Request& request) {
    unsigned short size[2] = {};
    float* pixels =
        GetRotProjection(volume, request.rotation.data(), request.mode, request.x0, request.x1, request.y0,
                         request.y1, request.z0, request.z1, request.high, request.low,
                         std::bit_cast<float>(request.extraBits), &size[0], &size[1], 0);
    Digest digest;
    digest.Add(size[0]);
    digest.Add(size[1]);
    if (pixels == nullptr) return digest;
    for (std::size_t index = 0; index < std::size_t{size[0]} * size[1] * 3; ++index)
        digest.Add(pixels[index]);
    void* const block = GlobalHandle(pixels);
    GlobalUnlock(block);
    GlobalFree(block);
    return digest;
}

void PrintProjections(int bytesPerVoxel) {
    constexpr int kRequestsPerMode = 60;
    for (const RenderMode mode : kRenderModes) {
        RandomSource random(static_cast<std::uint32_t>(5000 + 10 * int{mode} + bytesPerVoxel));
        const std::string what =
            (bytesPerVoxel == 1 ? "grey, mode " : "colour, mode ") + std::to_string(int{mode});
        for (int number = 0; number < kRequestsPerMode; ++number) {
            const reference::Volume plain = RandomVolume(random, RandomSize(random, 40, bytesPerVoxel));
            Volume3D* volume = HostVolumeOf(plain);
            const reference::Request request = RandomRequest(random, plain, mode);
            Print(what.c_str(), number, DigestOfProjection(volume, request));
            GlobalFree3D(volume);
        }
    }
}

// --- Volumes from files

constexpr const char* kChannelFiles[] = {"red.raw", "green.raw", "blue.raw"};

// Bytes, or floats around those of bytes; now and then fewer than the volume has.
void WriteChannel(RandomSource& random, const char* name, int samples, bool areFloats) {
    std::ofstream file(name, std::ios::binary);
    const int written = random.Chance(5) ? random.Below(samples + 1) : samples;
    for (int index = 0; index < written; ++index) {
        const auto byte = static_cast<std::uint8_t>(random.Bits() >> 24);
        const auto value = static_cast<float>(random.Within(-40, 300));
        if (areFloats)
            file.write(reinterpret_cast<const char*>(&value), sizeof value);
        else
            file.put(static_cast<char>(byte));
    }
}

int Z3D_CALL NoteProgress(std::size_t user, int code, unsigned int value) {
    auto& digest = *std::bit_cast<Digest*>(user);
    digest.Add(static_cast<std::uint32_t>(code));
    digest.Add(static_cast<std::uint32_t>(value));
    return ProgressGoOn;
}

void AddVolume(Digest& digest, Volume3D* volume) {
    if (volume == nullptr) return;
    unsigned char*** slices = GlobalLock3D(volume);
    for (const unsigned short side : {volume->width, volume->height, volume->depth})
        digest.Add(side);
    const std::size_t rowBytes = std::size_t{volume->width} * volume->slices[0]->bytesPerPixel;
    for (int z = 0; z < volume->depth; ++z) {
        for (int y = 0; y < volume->height; ++y) {
            for (std::size_t byte = 0; byte < rowBytes; ++byte)
                digest.Add(slices[z][y][byte]);
        }
    }
    Free3DData(volume);
}

void PrintLoads() {
    RandomSource random(6000);
    for (int number = 0; number < 200; ++number) {
        const VolumeSize size = RandomSize(random, 30, 1);
        const bool areFloats = random.Chance(2);
        for (const char* name : kChannelFiles)
            WriteChannel(random, name, size.width * size.height * size.depth, areFloats);
        // One file three times is grey.
        const bool isGrey = random.Chance(4);
        const char* green = isGrey ? kChannelFiles[0] : random.Chance(4) ? nullptr : kChannelFiles[1];
        const char* blue = isGrey ? kChannelFiles[0] : random.Chance(4) ? nullptr : kChannelFiles[2];
        const auto maxDiagonal = static_cast<short>(random.Chance(3) ? 32767 : random.Between(1, 60));
        std::array<float, 4> ranges = {};
        Digest digest;
        Volume3D* volume =
            GetRGBImage(kChannelFiles[0], green, blue, static_cast<short>(size.width),
                        static_cast<short>(size.height), static_cast<short>(size.depth), 0, 0, 0,
                        areFloats ? 0 : 1, maxDiagonal, &ranges[0], &ranges[1], &ranges[2], &ranges[3],
                        std::bit_cast<std::size_t>(&digest), NoteProgress, random.Chance(6) ? 1 : 0);
        AddVolume(digest, volume);
        for (const float range : ranges)
            digest.Add(range);
        Print("files", number, digest);
    }
    for (const char* name : kChannelFiles)
        std::remove(name);
}

// --- Rotations and scalars

float RandomAngle(RandomSource& random) {
    // Right angles, where the angles of a matrix are not unique, as often as any.
    if (random.Chance(3)) return static_cast<float>(90 * random.Between(-4, 4));
    return static_cast<float>(random.Within(-400, 400));
}

AxisOrder RandomOrder(RandomSource& random) {
    const auto axis = [&random] { return static_cast<short>(random.Below(3)); };
    return {{axis(), axis(), axis()}};
}

template <class Numbers>
void AddAll(Digest& digest, const Numbers& numbers) {
    for (const auto number : numbers)
        digest.Add(number);
}

// Angles of a matrix by all six functions, and the matrices that three of them make.
void AddAngles(Digest& digest, const std::array<double, 9>& matrix, float third) {
    for (const auto extract : {GetAngleXYZ, GetAngleZXY, GetAngleYZX}) {
        std::array<float, 3> angles = {};
        extract(matrix.data(), &angles[0], &angles[1], &angles[2]);
        AddAll(digest, angles);
    }
    int column = 2;
    for (const auto extract : {GetAngleXY, GetAngleZX, GetAngleYZ}) {
        const auto row = [&](int index) { return matrix[static_cast<std::size_t>(3 * index + column)]; };
        std::array<double, 9> rebuilt = {};
        std::array<float, 2> angles = {};
        extract(rebuilt.data(), row(0), row(1), row(2), &angles[0], &angles[1], third);
        AddAll(digest, angles);
        AddAll(digest, rebuilt);
        --column;
    }
}

void PrintRotations() {
    RandomSource random(7000);
    for (int number = 0; number < 300; ++number) {
        std::array<float, 3> angles = {RandomAngle(random), RandomAngle(random), RandomAngle(random)};
        const AxisOrder order = RandomOrder(random);
        const AxisOrder other = RandomOrder(random);
        std::array<double, 9> matrix = {};
        CreateRotateMatrix(matrix.data(), &order, angles[0], angles[1], angles[2]);
        Digest digest;
        AddAll(digest, matrix);
        AddAngles(digest, matrix, RandomAngle(random));
        ChangeOrder(&order, &other, &angles[0], &angles[1], &angles[2]);
        AddAll(digest, angles);
        Print("rotation", number, digest);
    }
}

void PrintScalars() {
    RandomSource random(8000);
    std::array<unsigned char, 256> curve;
    for (unsigned char& entry : curve)
        entry = static_cast<unsigned char>(random.Below(256));
    for (int number = 0; number < 100; ++number) {
        Digest digest;
        for (int call = 0; call < 50; ++call) {
            digest.Add(static_cast<std::uint32_t>(
                AdjustGamma(curve.data(), static_cast<float>(random.Within(-10, 270)))));
            const int shift = random.Below(31);
            const auto any = [&] { return static_cast<int>(random.Bits()) >> shift; };
            const int value = any();
            const int newScale = any();
            const int oldScale = any();
            const auto roundUp = static_cast<short>(random.Bits());
            digest.Add(static_cast<std::uint16_t>(SubvolumeConvert(value, newScale, oldScale, roundUp)));
        }
        Print("scalars", number, digest);
    }
}

} // namespace

int main() {
    PrintProjections(1);
    PrintProjections(3);
    PrintLoads();
    PrintRotations();
    PrintScalars();
    return 0;
}
