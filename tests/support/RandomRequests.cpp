#include "support/RandomRequests.h"

#include "support/SpecialValues.h"

#include <algorithm>
#include <bit>
#include <cstdio>

namespace z3d::test {

namespace {

struct Interval {
    int first;
    int last;
};

// 1-based voxels of an axis with `side` voxels.
Interval RandomInterval(RandomSource& random, CropKind kind, int side) {
    const int a = random.Between(1, side);
    const int b = random.Between(1, side);
    switch (kind) {
    case CropKind::Full:
        break;
    case CropKind::Inside:
        return {std::min(a, b), std::max(a, b)};
    case CropKind::Reversed:
        return {std::max(a, b), std::min(a, b)};
    case CropKind::Outside:
        return random.Chance(2) ? Interval{side + a, side + a + b} : Interval{-a - b, -a + 1};
    case CropKind::PartlyOutside:
        return random.Chance(2) ? Interval{a, side + b} : Interval{1 - b, a};
    case CropKind::OneVoxel:
        return {a, a};
    case CropKind::Extreme:
        return random.Chance(2) ? Interval{-32768, 32767}
                                : Interval{32767, random.Chance(2) ? 32767 : -32768};
    }
    return {1, side};
}

float AsFloat(int value) { return static_cast<float>(value); }

} // namespace

Crop FullCrop(const reference::Volume& volume) {
    return {1, static_cast<std::int16_t>(volume.width), 1, static_cast<std::int16_t>(volume.height),
            1, static_cast<std::int16_t>(volume.depth)};
}

Crop RandomCrop(RandomSource& random, CropKind kind, const reference::Volume& volume) {
    const Interval x = RandomInterval(random, kind, volume.width);
    const Interval y = RandomInterval(random, kind, volume.height);
    const Interval z = RandomInterval(random, kind, volume.depth);
    return {static_cast<std::int16_t>(x.first), static_cast<std::int16_t>(x.last),
            static_cast<std::int16_t>(y.first), static_cast<std::int16_t>(y.last),
            static_cast<std::int16_t>(z.first), static_cast<std::int16_t>(z.last)};
}

Window RandomWindow(RandomSource& random, WindowKind kind, int largestValue) {
    const int a = random.Between(0, largestValue);
    const int b = random.Between(0, largestValue);
    const float largest = AsFloat(largestValue);
    switch (kind) {
    case WindowKind::Full:
        break;
    case WindowKind::TopQuarter:
        return {largest, AsFloat(largestValue - largestValue / 4)};
    case WindowKind::BottomQuarter:
        return {AsFloat(largestValue / 4), 0.0f};
    case WindowKind::Narrow:
        return {AsFloat(a + random.Between(1, 6)), AsFloat(a)};
    case WindowKind::EqualBounds:
        return {AsFloat(a), AsFloat(a)};
    case WindowKind::SingleValue:
        return {AsFloat(a + 1), AsFloat(a - 1)};
    case WindowKind::Reversed:
        return {AsFloat(std::min(a, b)), AsFloat(std::max(a, b) + 1)};
    case WindowKind::Fractional:
        return {AsFloat(std::max(a, b)) + 0.5f, AsFloat(std::min(a, b)) - 0.25f};
    case WindowKind::NotANumber:
        return random.Chance(3) ? Window{kNaN, kNaN}
                                : (random.Chance(2) ? Window{kNaN, AsFloat(a)} : Window{AsFloat(a), kNaN});
    case WindowKind::Infinite:
        return random.Chance(3)
                   ? Window{-kInfinity, kInfinity}
                   : (random.Chance(2) ? Window{kInfinity, -kInfinity} : Window{kInfinity, AsFloat(a)});
    case WindowKind::NegativeLow:
        return {AsFloat(a), -1.0f};
    case WindowKind::ChannelSum:
        return {765.0f, 0.0f};
    }
    return {largest, 0.0f};
}

std::uint32_t RandomExtra(RandomSource& random) {
    static constexpr std::array<float, 15> kExtras = {0.0f,  -0.0f,          kNaN,  1.0f,      0.99999994f,
                                                      0.5f,  0.95f,          -1.0f, -0.25f,    1.5f,
                                                      10.0f, 1.4012985e-45f, 0.1f,  kInfinity, -kInfinity};
    const int choice = random.Below(24);
    if (choice < 15) return std::bit_cast<std::uint32_t>(kExtras[static_cast<std::size_t>(choice)]);
    return std::bit_cast<std::uint32_t>(static_cast<float>(random.Unit()));
}

void CropAxis(reference::Request& request, int axis, int first, int last) {
    (axis == 0 ? request.x0 : axis == 1 ? request.y0 : request.z0) = static_cast<std::int16_t>(first);
    (axis == 0 ? request.x1 : axis == 1 ? request.y1 : request.z1) = static_cast<std::int16_t>(last);
}

void CropTo(reference::Request& request, const Crop& crop) {
    request.x0 = crop.x0;
    request.x1 = crop.x1;
    request.y0 = crop.y0;
    request.y1 = crop.y1;
    request.z0 = crop.z0;
    request.z1 = crop.z1;
}

reference::Request RandomRequest(RandomSource& random, const reference::Volume& volume, int mode) {
    const int largestValue = volume.bytesPerVoxel == 3 ? 765 : 255;
    const auto rotationKind = static_cast<RotationKind>(random.Below(kRotationKinds));
    const auto cropKind = random.Chance(3) ? static_cast<CropKind>(random.Below(kCropKinds)) : CropKind::Full;
    const auto windowKind =
        random.Chance(2) ? WindowKind::Full : static_cast<WindowKind>(random.Below(kWindowKinds));

    reference::Request request = PlainRequest(volume, mode, RandomRotation(random, rotationKind));
    const Crop crop = RandomCrop(random, cropKind, volume);
    CropTo(request, crop);
    const Window window = RandomWindow(random, windowKind, largestValue);
    request.high = window.high;
    request.low = window.low;
    request.extraBits = RandomExtra(random);
    return request;
}

reference::Request PlainRequest(const reference::Volume& volume, int mode, const Rotation& rotation) {
    const Crop crop = FullCrop(volume);
    const float largest = volume.bytesPerVoxel == 3 ? 765.0f : 255.0f;
    return {rotation, static_cast<std::int16_t>(mode),
            crop.x0,  crop.x1,
            crop.y0,  crop.y1,
            crop.z0,  crop.z1,
            largest,  0.0f,
            0};
}

std::string Describe(const reference::Request& request) {
    const auto withBits = [](float value) {
        std::array<char, 64> text = {};
        std::snprintf(text.data(), text.size(), "%.9g (0x%08lX)", static_cast<double>(value),
                      static_cast<unsigned long>(std::bit_cast<std::uint32_t>(value)));
        return std::string(text.data());
    };
    std::string description = "mode " + std::to_string(request.mode) + ", crop x "
                              + std::to_string(request.x0) + ".." + std::to_string(request.x1) + " y "
                              + std::to_string(request.y0) + ".." + std::to_string(request.y1) + " z "
                              + std::to_string(request.z0) + ".." + std::to_string(request.z1) + ", low "
                              + withBits(request.low) + ", high " + withBits(request.high) + ", extra "
                              + withBits(std::bit_cast<float>(request.extraBits)) + ", rotation";
    for (const float element : request.rotation) {
        description += ' ';
        description += withBits(element);
    }
    return description;
}

} // namespace z3d::test
