#include "primitives/Planes.h"

#include "primitives/Interleave.h"
#include "primitives/Lanes.h"
#include "primitives/Region.h"

#include <cstddef>
#include <cstring>

namespace z3d::primitives {
namespace {

struct Bytes {
    static constexpr std::size_t kSampleBytes = 1;
    [[gnu::always_inline]] static void Interleave(const Triple& t, std::uint8_t* to) {
        StoreInterleaved8(t, to);
    }
};

struct Floats {
    static constexpr std::size_t kSampleBytes = 4;
    [[gnu::always_inline]] static void Interleave(const Triple& t, std::uint8_t* to) {
        StoreInterleaved32(t, to);
    }
};

template <class Sample>
void InterleaveRow(const std::uint8_t* a, const std::uint8_t* b, const std::uint8_t* c, std::uint8_t* to,
                   std::size_t bytesPerPlane) {
    std::size_t done = 0;
    for (; bytesPerPlane - done >= 16; done += 16, to += 48)
        Sample::Interleave({LoadBytes(a + done), LoadBytes(b + done), LoadBytes(c + done)}, to);
    const std::size_t rest = bytesPerPlane - done;
    if (rest == 0) return;

    // The row's end goes through scratch, so that no byte beyond the row is touched.
    std::uint8_t in[3][16] = {};
    std::uint8_t out[48];
    std::memcpy(in[0], a + done, rest);
    std::memcpy(in[1], b + done, rest);
    std::memcpy(in[2], c + done, rest);
    Sample::Interleave({LoadBytes(in[0]), LoadBytes(in[1]), LoadBytes(in[2])}, out);
    std::memcpy(to, out, 3 * rest);
}

template <class Sample>
Status CopyPlanes(const void* const (&planes)[3], std::int32_t sourceStep, void* destination,
                  std::int32_t destinationStep, std::int32_t width, std::int32_t height) {
    const Status status = CheckRegion(width, height, sourceStep, destinationStep,
                                      3 * static_cast<std::uint32_t>(Sample::kSampleBytes));
    if (status != StatusNoError) return status;

    // Rows that follow each other without a gap are one long row.
    std::size_t planeBytes = static_cast<std::size_t>(width) * Sample::kSampleBytes;
    const std::uint64_t allBytes =
        static_cast<std::uint64_t>(planeBytes) * static_cast<std::uint64_t>(height);
    if (static_cast<std::size_t>(sourceStep) == planeBytes
        && static_cast<std::size_t>(destinationStep) == 3 * planeBytes && allBytes <= UINT32_MAX) {
        planeBytes = static_cast<std::size_t>(allBytes);
        height = 1;
    }
    for (std::int32_t y = 0; y < height; ++y)
        InterleaveRow<Sample>(RowAt(planes[0], sourceStep, y), RowAt(planes[1], sourceStep, y),
                              RowAt(planes[2], sourceStep, y), RowAt(destination, destinationStep, y),
                              planeBytes);
    return StatusNoError;
}

template <class T>
bool AnyNull(const T* const* planes, const T* destination) {
    return planes == nullptr || destination == nullptr || planes[0] == nullptr || planes[1] == nullptr
           || planes[2] == nullptr;
}

} // namespace

Status CopyPlanes8uP3C3(const std::uint8_t* const* planes, std::int32_t sourceStep, std::uint8_t* destination,
                        std::int32_t destinationStep, std::int32_t width, std::int32_t height) {
    if (AnyNull(planes, destination)) return StatusNullPointer;
    return CopyPlanes<Bytes>({planes[0], planes[1], planes[2]}, sourceStep, destination, destinationStep,
                             width, height);
}

Status CopyPlanes32fP3C3(const float* const* planes, std::int32_t sourceStep, float* destination,
                         std::int32_t destinationStep, std::int32_t width, std::int32_t height) {
    if (AnyNull(planes, destination)) return StatusNullPointer;
    return CopyPlanes<Floats>({planes[0], planes[1], planes[2]}, sourceStep, destination, destinationStep,
                              width, height);
}

} // namespace z3d::primitives
