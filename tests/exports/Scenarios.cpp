#include "exports/Scenarios.h"

#include "exports/ExportedVolume.h"
#include "support/RenderModes.h"

#include <gtest/gtest.h>

#include <iterator>
#include <limits>

namespace z3d::test {
namespace {

constexpr int kModeCount = kRenderModeCount;

void MakeAndFreeAnImage(ForeignHost& host, Findings& findings) {
    auto* image = host.CallForPointer<Image2D>("GlobalAlloc2D", 0x10005, 3, 4);
    auto** rows = host.CallForPointer<unsigned char*>("GlobalLock2D", image);
    ASSERT_NE(rows, nullptr);
    findings.Add(rows[2] - rows[0]);
    findings.AddBytes(rows[0], 5 * 3 * 4);
    findings.Add(host.CallForPointer<unsigned char*>("GlobalLock2D", image) == rows);
    findings.Add(host.Call("GlobalUnlock2D", image));
    findings.Add(host.Call("GlobalUnlock2D", image));
    host.Call("GlobalFree2D", image);
}

void MakeAndFreeVolumes(ForeignHost& host, Findings& findings) {
    auto* volume = host.CallForPointer<Volume3D>("GlobalAlloc3D", 4, 3, 2, 3);
    auto*** slices = host.CallForPointer<unsigned char**>("GlobalLock3D", volume);
    ASSERT_NE(slices, nullptr);
    findings.Add(slices[1][2] - slices[1][0]);
    findings.AddBytes(slices[1][0], 4 * 3 * 3);
    findings.Add(host.Call("GlobalUnlock3D", volume));
    findings.Add(host.Call("GlobalUnlock3D", volume));
    host.Call("GlobalFree3D", volume);
    host.Call("Free3DData", host.CallForPointer<Volume3D>("GlobalAlloc3D", 4, 3, 2, 0));
}

void AskForSizes(ForeignHost& host, Findings& findings) {
    const ExportedVolume volume(64, 48, 10, 1);
    for (const float* rotation : {kNotTurned, kOblique}) {
        unsigned short size[2] = {};
        host.Call("GetRotDim", volume.Get(), rotation, 1, 64, 1, 48, 1, 10, &size[0], &size[1], 7);
        findings.Add(size);
    }
}

void Render(ForeignHost& host, Findings& findings, int mode, unsigned int bytesPerVoxel, float high,
            float low, float extra) {
    const ExportedVolume volume(11, 9, 10, bytesPerVoxel);
    for (const float* rotation : {kNotTurned, kOblique}) {
        unsigned short size[2] = {};
        auto* pixels = host.CallForPointer<float>("GetRotProjection", volume.Get(), rotation, mode, 2, 11, 1,
                                                  8, 1, 10, high, low, extra, &size[0], &size[1], 0);
        findings.Add(size);
        if (pixels == nullptr) continue;
        findings.AddBytes(pixels, ProjectionBytes(size[0], size[1]));
        EXPECT_TRUE(ReleaseProjection(pixels));
    }
}

// All modes, and the number before the first and behind the last one. The last argument chooses between two kinds of
// surface, and is the transparency of a blend.
void RenderGrey(ForeignHost& host, Findings& findings) {
    for (int mode = -1; mode <= kModeCount; ++mode) {
        Render(host, findings, mode, 1, 255, 0, 0);
        Render(host, findings, mode, 1, 180.5f, 20, 0.7f);
    }
}

void RenderColour(ForeignHost& host, Findings& findings) {
    for (int mode = -1; mode <= kModeCount; ++mode) {
        Render(host, findings, mode, 3, 765, 0, 0);
        Render(host, findings, mode, 3, 600, 100.25f, 0.7f);
    }
}

// Numbers that raise flags wherever they are touched.
void RenderWithHardNumbers(ForeignHost& host, Findings& findings) {
    for (const RenderMode mode : kRenderModes) {
        for (const float extra :
             {FloatLimits::denorm_min(), FloatLimits::infinity(), FloatLimits::signaling_NaN()}) {
            Render(host, findings, mode, 1, FloatLimits::infinity(), -FloatLimits::infinity(), extra);
            Render(host, findings, mode, 1, FloatLimits::signaling_NaN(), 0, extra);
        }
        Render(host, findings, mode, 1, FloatLimits::max(), FloatLimits::denorm_min(), FloatLimits::max());
    }
}

const Scenario kBufferAndProjectionScenarios[] = {
    {"image", {"GlobalAlloc2D", "GlobalLock2D", "GlobalUnlock2D", "GlobalFree2D"}, MakeAndFreeAnImage},
    {"volume",
     {"GlobalAlloc3D", "GlobalLock3D", "GlobalUnlock3D", "GlobalFree3D", "Free3DData"},
     MakeAndFreeVolumes},
    {"projection size", {"GetRotDim"}, AskForSizes},
    {"grey projections", {"GetRotProjection"}, RenderGrey},
    {"colour projections", {"GetRotProjection"}, RenderColour},
    {"projections with hard numbers", {"GetRotProjection"}, RenderWithHardNumbers},
};

} // namespace

std::vector<Scenario> AllScenarios() {
    std::vector<Scenario> all(std::begin(kBufferAndProjectionScenarios),
                              std::end(kBufferAndProjectionScenarios));
    for (const std::span<const Scenario> more : {GeometryScenarios(), PipelineScenarios()})
        all.insert(all.end(), more.begin(), more.end());
    return all;
}

} // namespace z3d::test
