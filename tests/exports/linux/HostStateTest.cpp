// The floating-point state of a host: it changes no result, and is put back exactly.
#include "exports/ExportedVolume.h"
#include "exports/Library.h"
#include "exports/Picture.h"
#include "support/RenderModes.h"

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
    for (const RenderMode mode : kRenderModes) {
        std::vector<HostState> after;
        const Results expected = CallIn(kOrdinary, volume.Get(), mode, after);
        for (const HostState& state : kStates) {
            EXPECT_TRUE(CallIn(state, volume.Get(), mode, after) == expected) << state.mxcsr;
            for (const HostState& found : after)
                EXPECT_TRUE(found == state) << std::hex << state.mxcsr << " " << state.x87Control;
        }
    }
}

// As FXSAVE64 writes it, up to the SSE registers, which are no caller's here.
struct alignas(16) FullState {
    unsigned char bytes[512];
    static constexpr std::size_t kWithoutSse = 160;
};

// Seven numbers, one of them of a division by zero: its flag is up, the exception masked.
void OccupyEverything() {
    asm volatile(
        "fninit\n\tfldz\n\tfld1\n\tfdiv %%st(1), %%st\n\tfldpi\n\tfldl2e\n\tfldl2t\n\tfldlg2\n\tfldln2"
        :
        :
        : "memory");
}

TEST(HostState, IsLeftAsItWasWithNumbersInTheRegistersAndAddressesInFull) {
    const ExportedVolume volume(13, 11, 9, 1);
    const Library& library = TheLibrary();
    const AxisOrder order = {{2, 0, 1}};
    double matrix[9];
    unsigned short width = 0;
    unsigned short height = 0;
    FullState before;
    FullState after[2];
    const std::uint32_t raised = 0x1FBF;

    OccupyEverything();
    asm volatile("ldmxcsr %1\n\tfxsave64 %0" : "=m"(before) : "m"(raised) : "memory");
    library.CreateRotateMatrix(matrix, &order, 33.3f, -71.7f, 123.4f);
    asm volatile("fxsave64 %0" : "=m"(after[0]) : : "memory");
    float* pixels = library.GetRotProjection(volume.Get(), kOblique, RenderModeMaximum, 1, 13, 1, 11, 1, 9,
                                             220, 20, 0.3f, &width, &height, 0);
    asm volatile("fxsave64 %0\n\tfninit" : "=m"(after[1]) : : "memory");
    Enter(kOrdinary);

    for (const FullState& state : after)
        EXPECT_EQ(std::memcmp(state.bytes, before.bytes, FullState::kWithoutSse), 0);
    EXPECT_EQ(before.bytes[2] & 0x04, 0x04) << "a division by zero";
    EXPECT_EQ(before.bytes[4], 0xFE) << "seven registers in use";
    EXPECT_TRUE(ReleaseProjection(pixels));
}

} // namespace
