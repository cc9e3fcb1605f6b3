#include "exports/ExportedVolume.h"
#include "exports/ImageCall.h"
#include "exports/Library.h"
#include "exports/Scenarios.h"

#include "support/TemporaryFile.h"

#include <gtest/gtest.h>

#include <limits>

namespace z3d::test {
namespace {

// Written once; numbers that raise flags wherever they are touched among them.
const TemporaryFile& ByteFile() {
    static const TemporaryFile file(std::vector<std::uint8_t>{9, 80, 7, 255, 6, 5, 4, 0, 130, 3, 2, 1});
    return file;
}

const TemporaryFile& FloatFile() {
    static const TemporaryFile file(std::vector<float>{0.1f, -3, FloatLimits::denorm_min(), 1e30f, 7, 0.3f,
                                                       200, 1e-30f, -0.0f, 5, 77, 12});
    return file;
}

const TemporaryFile& HardFile() {
    static const TemporaryFile file(std::vector<float>{FloatLimits::signaling_NaN(), -FloatLimits::infinity(),
                                                       FloatLimits::max(), 1, -FloatLimits::max(),
                                                       FloatLimits::quiet_NaN()});
    return file;
}

void Load(ForeignHost& host, Findings& findings, ImageCall call, std::uint32_t maxDiagonal) {
    CallbackLog log;
    call.width = 3;
    call.height = 2;
    call.depth = 2;
    call.maxDiagonal = maxDiagonal;
    call.log = &log;
    auto* volume = std::bit_cast<Volume3D*>(host.CallWithSlots("GetRGBImage", call.Slots()));
    ASSERT_NE(volume, nullptr);
    const std::vector<unsigned char> bytes = BytesOf(volume);
    findings.AddBytes(bytes.data(), bytes.size());
    findings.Add(call.outMax);
    findings.Add(call.outMin);
    findings.Add(call.rangeMax);
    findings.Add(call.rangeMin);
    findings.AddBytes(log.calls.data(), log.calls.size() * sizeof log.calls[0]);
    host.Call("Free3DData", volume);
}

// A diagonal of 4.12: as stored, then 2 x 1 x 1.
void LoadFiles(ForeignHost& host, Findings& findings) {
    const char* bytes = ByteFile().Name();
    const char* floats = FloatFile().Name();
    for (const std::uint32_t maxDiagonal : {9u, 3u}) {
        Load(host, findings, {.red = bytes, .green = bytes, .blue = bytes}, maxDiagonal);
        Load(host, findings, {.red = bytes, .blue = floats}, maxDiagonal);
        Load(host, findings, {.red = floats, .green = floats, .blue = floats, .is8bit = 0}, maxDiagonal);
    }
}

void LoadHardNumbers(ForeignHost& host, Findings& findings) {
    const char* hard = HardFile().Name();
    const char* floats = FloatFile().Name();
    for (const std::uint32_t maxDiagonal : {9u, 3u}) {
        Load(host, findings, {.red = hard, .green = hard, .blue = hard, .is8bit = 0}, maxDiagonal);
        Load(host, findings, {.red = hard, .green = floats, .is8bit = 0}, maxDiagonal);
    }
}

void SetTitles(ForeignHost& host, Findings& findings) {
    const char* first = host.CallForPointer<const char>("SetRenderMsgTitle", "a title");
    findings.AddBytes(first, 8);
    const char* second = host.CallForPointer<const char>("SetRenderMsgTitle", first + 2);
    findings.AddBytes(second, 6);
    findings.Add(host.CallForPointer<const char>("SetRenderMsgTitle", nullptr) == second);
}

const Scenario kPipelineScenarios[] = {
    {"images from files", {"GetRGBImage"}, LoadFiles},
    {"images with hard numbers", {"GetRGBImage"}, LoadHardNumbers},
    {"titles", {"SetRenderMsgTitle"}, SetTitles},
};

} // namespace

std::span<const Scenario> PipelineScenarios() { return kPipelineScenarios; }

} // namespace z3d::test
