// The switch between a host's floating-point environment and the library's own, bit for bit.
#include "platform/FloatingPoint.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <iomanip>
#include <ostream>

namespace {

using namespace z3d::platform;

// As FNSAVE writes it on both 32-bit and 64-bit systems.
struct X87Image {
    std::uint32_t control, status, tags, pointers[4];
    unsigned char registers[80];
};
static_assert(sizeof(X87Image) == 108);

struct Environment {
    std::uint16_t control, status, tags;
    std::uint32_t mxcsr;
    bool operator==(const Environment&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Environment& environment) {
    return out << std::hex << "control " << environment.control << ", status " << environment.status
               << ", tags " << environment.tags << ", mxcsr " << environment.mxcsr << std::dec;
}

const Environment kLibrary = {0x037F, 0, 0xFFFF, 0x1F80};

const Environment kHosts[] = {
    kLibrary,
    {0x027F, 0x0000, 0xFFFF, 0x9FC0}, // 53 bits; flush to zero
    {0x007F, 0x0000, 0xFFFF, 0x7F80}, // 24 bits; truncate
    {0x1372, 0x0000, 0xFFFF, 0x0000}, // unmasked exceptions in both units
    {0x0B7F, 0x003F, 0xFFFF, 0x1FBF}, // round up; every flag raised
    {0x077F, 0x4720, 0xFFFF, 0x3F80}, // round down; condition codes
    {0x037F, 0x3000, 0x0FFF, 0x1F80}, // two numbers on the stack
    {0x037F, 0x0000, 0x0000, 0x1F80}, // all registers in use
};

// An exception that is pending and unmasked: the processor then sets the summary bits 7 and 15 itself.
const Environment kPending = {0x1372, 0x8084, 0xFFFF, 0x003F};

// The registers hold eight different numbers.
[[gnu::noinline]] void Set(const Environment& environment) {
    X87Image image = {environment.control, environment.status, environment.tags, {}, {}};
    for (std::size_t index = 0; index < 8; ++index) {
        const auto number = static_cast<long double>(index + 1) / 3;
        std::memcpy(image.registers + 10 * index, &number, 10);
    }
    asm volatile("fninit\n\tfrstor %0\n\tldmxcsr %1" : : "m"(image), "m"(environment.mxcsr));
}

struct Reading {
    Environment environment;
    unsigned char registers[80];
};

// Leaves the environment that tests run in.
[[gnu::noinline]] Reading ReadAndReset() {
    const std::uint32_t mxcsrOfTests = 0x1F80;
    X87Image image;
    std::uint32_t mxcsr;
    asm volatile("fnsave %0\n\tstmxcsr %1\n\tldmxcsr %2" : "=m"(image), "=m"(mxcsr) : "m"(mxcsrOfTests));
    Reading reading = {{static_cast<std::uint16_t>(image.control), static_cast<std::uint16_t>(image.status),
                        static_cast<std::uint16_t>(image.tags), mxcsr},
                       {}};
    std::memcpy(reading.registers, image.registers, 80);
    return reading;
}

// Arithmetic that raises flags in both units, and whose result shows precision, rounding and denormals.
struct Results {
    double third;
    float tiny;
    bool operator==(const Results&) const = default;
};

[[gnu::noinline]] Results Work() {
    volatile long double one = 1;
    volatile float least = 1.5e-45f;
    volatile float zero = 0;
    volatile float infinite = 1 / zero;
    static_cast<void>(infinite);
    const long double third = one / 3;
    return {static_cast<double>((third - static_cast<double>(third)) * 1e18L), least * 3};
}

TEST(FloatingPoint, TheLibrarysOwnIsTheSameForEveryHost) {
    for (const Environment& host : kHosts) {
        FloatingPointState saved;
        Set(host);
        EnterLibraryFloatingPoint(saved);
        const Reading inside = ReadAndReset();

        EXPECT_EQ(inside.environment, kLibrary) << "host: " << host;
    }
}

TEST(FloatingPoint, AHostsIsRestoredExactly) {
    for (const Environment& host : kHosts) {
        Set(host);
        const Reading before = ReadAndReset();
        FloatingPointState saved;
        Set(host);
        EnterLibraryFloatingPoint(saved);
        Work();
        RestoreFloatingPoint(saved);
        const Reading after = ReadAndReset();

        EXPECT_EQ(after.environment, before.environment);
        EXPECT_EQ(std::memcmp(after.registers, before.registers, 80), 0) << "host: " << host;
    }
}

TEST(FloatingPoint, APendingExceptionNeitherFiresNorGetsLost) {
    Set(kPending);
    const Reading before = ReadAndReset();
    FloatingPointState saved;
    Set(kPending);
    EnterLibraryFloatingPoint(saved);
    Work();
    RestoreFloatingPoint(saved);
    const Reading after = ReadAndReset();

    EXPECT_EQ(before.environment, kPending);
    EXPECT_EQ(after.environment, kPending);
}

TEST(FloatingPoint, ArithmeticInsideDoesNotDependOnTheHost) {
    const Results expected = Work();
    ReadAndReset();
    for (const Environment& host : kHosts) {
        FloatingPointState saved;
        Set(host);
        EnterLibraryFloatingPoint(saved);
        const Results results = Work();
        RestoreFloatingPoint(saved);
        ReadAndReset();

        EXPECT_EQ(results, expected) << "host: " << host;
    }
}

// The test above can fail: without the switch some hosts get other results.
TEST(FloatingPoint, ArithmeticOutsideDoes) {
    const Results expected = Work();
    ReadAndReset();
    for (const Environment& host : {kHosts[1], kHosts[2]}) {
        Set(host);
        const Results results = Work();
        ReadAndReset();

        EXPECT_NE(results, expected) << "host: " << host;
    }
}

// As around a callback: out to the host, which changes its own environment, and in again.
TEST(FloatingPoint, SwitchesNest) {
    FloatingPointState saved;
    FloatingPointState savedAgain;
    Set(kHosts[1]);
    EnterLibraryFloatingPoint(saved);
    RestoreFloatingPoint(saved);
    const Environment inHost = ReadAndReset().environment;
    Set(kHosts[5]);
    EnterLibraryFloatingPoint(savedAgain);
    RestoreFloatingPoint(savedAgain);
    const Environment changedByHost = ReadAndReset().environment;

    EXPECT_EQ(inHost, kHosts[1]);
    EXPECT_EQ(changedByHost, kHosts[5]);
}

#ifdef __x86_64__

// As FXSAVE64 writes it: the only form that has the addresses of code and data in full.
struct alignas(16) FullImage {
    std::uint16_t control, status;
    std::uint8_t tags, reserved;
    std::uint16_t operation;
    std::uint64_t code, data;
    std::uint32_t mxcsr, mxcsrMask;
    std::uint8_t registers[128], sse[352];
};
static_assert(sizeof(FullImage) == 512);
constexpr std::size_t kBytesWithoutSse = offsetof(FullImage, sse); // calls may change the SSE registers

struct FullImages {
    FullImage before, after, inside;
};

[[gnu::noinline]] FullImages EnterAndRestore(const Environment& host, std::uint8_t tagsInUse) {
    FullImages images = {};
    FullImage image = {};
    asm volatile("fxsave64 %0" : "=m"(image));
    image.control = host.control;
    image.status = host.status;
    image.tags = tagsInUse;
    image.operation = 0x0123;
    image.code = 0x00007123456789AB;
    image.data = 0x00007EDCBA987654;
    image.mxcsr = host.mxcsr;
    for (std::size_t index = 0; index < 8; ++index) {
        const auto number = static_cast<long double>(index + 1) / 3;
        std::memcpy(image.registers + 16 * index, &number, 10);
    }
    asm volatile("fxrstor64 %1\n\tfxsave64 %0"
                 : "=m"(images.before)
                 : "m"(image)
                 : "memory", "xmm0", "xmm1", "xmm2", "xmm3", "xmm4", "xmm5", "xmm6", "xmm7", "xmm8", "xmm9",
                   "xmm10", "xmm11", "xmm12", "xmm13", "xmm14", "xmm15");
    FloatingPointState saved;
    EnterLibraryFloatingPoint(saved);
    asm volatile("fxsave64 %0" : "=m"(images.inside));
    Work();
    RestoreFloatingPoint(saved);
    asm volatile("fxsave64 %0" : "=m"(images.after));
    ReadAndReset();
    return images;
}

TEST(FloatingPoint, AHostsAddressesOfCodeAndDataAreRestoredInFull) {
    for (const Environment& host : {kHosts[0], kHosts[1], kHosts[4], kHosts[6], kHosts[7], kPending}) {
        for (const int tagsInUse : {0x00, 0xC0, 0xFF}) {
            const FullImages images = EnterAndRestore(host, static_cast<std::uint8_t>(tagsInUse));

            EXPECT_EQ(std::memcmp(&images.before, &images.after, kBytesWithoutSse), 0) << "host: " << host;
            EXPECT_EQ(images.before.tags, tagsInUse);
            EXPECT_EQ(images.before.mxcsr, host.mxcsr);
            EXPECT_EQ(images.inside.control, kLibrary.control);
            EXPECT_EQ(images.inside.status, kLibrary.status);
            EXPECT_EQ(images.inside.tags, 0) << "no register in use";
            EXPECT_EQ(images.inside.mxcsr, kLibrary.mxcsr);
            // Some processors keep the addresses only while an exception is pending.
            if (host == kPending) {
                EXPECT_EQ(images.before.code, 0x00007123456789ABu);
            }
        }
    }
}

#endif

} // namespace
