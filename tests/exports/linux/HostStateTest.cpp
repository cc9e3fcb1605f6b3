// The floating-point state of a host: it changes no result, and is put back exactly.
#include "exports/ExportedVolume.h"
#include "exports/Library.h"
#include "exports/Picture.h"

#include <gtest/gtest.h>

#include <cstring>

namespace {

using namespace z3d::test;

struct HostState {
    std::uint16_t x87Control;
    std::uint32_t mxcsr;

    bool operator==(const HostState&) const = default;
};

constexpr HostState kOrdinary = {0x037F, 0x1F80};
// Everything unmasked; 24 and 53 bits; round down, up, to zero; denormals flushed and taken as zero; flags raised.
constexpr HostState kStates[] = {{0x0340, 0x0000}, {0x007F, 0x3F80}, {0x067F, 0x5F80}, {0x0A7F, 0x7F80},
                                 {0x0F40, 0x9FC0}, {0x037F, 0x803F}, {0x1372, 0x1FBF}};

HostState Current() {
    HostState state;
    asm volatile("fnstcw %0\n\tstmxcsr %1" : "=m"(state.x87Control), "=m"(state.mxcsr) : : "memory");
    return state;
}

void Enter(const HostState& state) {
    asm volatile("fnclex\n\tfldcw %0\n\tldmxcsr %1" : : "m"(state.x87Control), "m"(state.mxcsr) : "memory");
}

struct Results {
    double matrix[9];
    float angles[3];
    unsigned short size[2];
    std::vector<float> floats;

    bool operator==(const Results& other) const {
        return std::memcmp(this, &other, offsetof(Results, floats)) == 0 && floats == other.floats;
    }
};

// Calls in the given state, and gives what the host finds after each call.
Results CallIn(const HostState& state, Volume3D* volume, short mode, std::vector<HostState>& after) {
    Results results;
    std::memset(static_cast<void*>(&results), 0, offsetof(Results, floats));
    const Library& library = TheLibrary();
    const AxisOrder order = {{2, 0, 1}};
    HostState found[3];
    Enter(state);
    library.CreateRotateMatrix(results.matrix, &order, 33.3f, -71.7f, 123.4f);
    found[0] = Current();
    library.GetAngleZXY(results.matrix, &results.angles[0], &results.angles[1], &results.angles[2]);
    found[1] = Current();
    float* pixels = library.GetRotProjection(volume, kOblique, mode, 1, 13, 1, 11, 1, 9, 220, 20, 0.3f,
                                             &results.size[0], &results.size[1], 0);
    found[2] = Current();
    Enter(kOrdinary);
    after.assign(found, found + 3);
    results.floats.assign(pixels, pixels + 3 * results.size[0] * results.size[1]);
    EXPECT_TRUE(ReleaseProjection(pixels));
    return results;
}

TEST(HostState, ChangesNoResultAndIsLeftAsItWas) {
    const ExportedVolume volume(13, 11, 9, 1);
    for (short mode = RenderModeMaximum; mode <= RenderModeFirstHit; ++mode) {
        std::vector<HostState> after;
        const Results expected = CallIn(kOrdinary, volume.Get(), mode, after);
        for (const HostState& state : kStates) {
            EXPECT_TRUE(CallIn(state, volume.Get(), mode, after) == expected) << state.mxcsr;
            for (const HostState& found : after)
                EXPECT_TRUE(found == state) << std::hex << state.mxcsr << " " << state.x87Control;
        }
    }
}

} // namespace
