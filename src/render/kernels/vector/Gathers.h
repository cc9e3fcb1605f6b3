// Gathers: sixteen loads by one instruction, for processors that are quick at them (see InstructionSet).
#pragma once

#include "render/kernels/vector/Vector.h"
#include "render/voxels/VoxelGrid.h"

#if Z3D_VECTOR_BYTES == 64

namespace z3d::render::Z3D_ISA {

// Every lane, as a mask that the compiler cannot see through. Gathers merge into their destination: with a mask that it
// knows to be full it would leave out clearing that register, and each gather would wait for the last use of it.
Z3D_INLINE __mmask16 EveryLane() {
    __mmask16 all = 0xFFFF;
    asm("" : "+k"(all));
    return all;
}

// The four bytes from `from` + each of `offsets`, which count as signed.
Z3D_INLINE Uints GatherWords(const std::uint8_t* from, Uints offsets) {
    return reinterpret_cast<Uints>(_mm512_mask_i32gather_epi32(_mm512_setzero_si512(), EveryLane(),
                                                               reinterpret_cast<__m512i>(offsets), from, 1));
}

// The lowest byte of each word. In a register: the form of the instruction that writes to memory takes ten times as
// long.
Z3D_INLINE Bytes LowestBytes(Uints words) {
    __m128i bytes = _mm512_cvtepi32_epi8(reinterpret_cast<__m512i>(words));
    asm("" : "+x"(bytes));
    return ToBytes(bytes);
}

// The four bytes `offset` bytes into each slice, by addresses of 64 bits: twice as many loads.
[[gnu::noinline]] inline Uints GatherFarApart(const std::uint8_t* const* slices, const std::uint32_t* z,
                                              const Uints& offset) {
    const __m512i index = _mm512_loadu_si512(z);
    const auto offsets = reinterpret_cast<__m512i>(offset);
    const auto lanes = static_cast<__mmask8>(EveryLane());
    __m256i words[2];
    for (int half = 0; half < 2; ++half) {
        const __m256i at = half == 0 ? _mm512_castsi512_si256(index) : _mm512_extracti64x4_epi64(index, 1);
        const __m256i bytes =
            half == 0 ? _mm512_castsi512_si256(offsets) : _mm512_extracti64x4_epi64(offsets, 1);
        const __m512i first = _mm512_mask_i32gather_epi64(_mm512_setzero_si512(), lanes, at, slices, 8);
        const __m512i address = _mm512_add_epi64(first, _mm512_cvtepu32_epi64(bytes));
        words[half] = _mm512_mask_i64gather_epi32(_mm256_setzero_si256(), lanes, address, nullptr, 1);
    }
    return reinterpret_cast<Uints>(_mm512_inserti64x4(_mm512_castsi256_si512(words[0]), words[1], 1));
}

// In 32 bits addresses are offsets from 0.
Z3D_INLINE const std::uint32_t* OffsetsOf(const VoxelGrid& grid) {
    if constexpr (sizeof(void*) == 4) return reinterpret_cast<const std::uint32_t*>(grid.slices);
    return grid.gathered.offsets;
}
Z3D_INLINE const std::uint8_t* OriginOf(const VoxelGrid& grid) {
    return reinterpret_cast<const std::uint8_t*>(sizeof(void*) == 4 ? 0 : grid.gathered.origin);
}
Z3D_INLINE bool HasOffsets(const VoxelGrid& grid) {
    return sizeof(void*) == 4 || grid.gathered.offsets != nullptr;
}

// The four bytes `offset` bytes into each slice.
Z3D_INLINE Uints GatherFromSlices(const VoxelGrid& grid, const std::uint32_t* z, Uints offset) {
    if (!HasOffsets(grid)) return GatherFarApart(grid.slices, z, offset);
    const __m512i first = _mm512_mask_i32gather_epi32(_mm512_setzero_si512(), EveryLane(),
                                                      _mm512_loadu_si512(z), OffsetsOf(grid), 4);
    return GatherWords(OriginOf(grid), reinterpret_cast<Uints>(first) + offset);
}

// Where the slices of a stretch are. Those of neighbouring rays are neighbours: two registers hold the offsets of 32,
// which takes half of the loads off a gather. The slice of index z is at z % 32.
class SlicesAtHand {
public:
    // For samples from those of `first` to those of `last`, of rays that go one way.
    Z3D_INLINE SlicesAtHand(const VoxelGrid& grid, const std::uint32_t* first, const std::uint32_t* last) {
        if (!HasOffsets(grid)) return;
        const __m512i z = _mm512_loadu_si512(first);
        const __m512i end = _mm512_loadu_si512(last);
        const std::uint32_t low = _mm512_reduce_min_epu32(_mm512_min_epu32(z, end)) & ~(kHeld - 1);
        const std::uint32_t high = _mm512_reduce_max_epu32(_mm512_max_epu32(z, end));
        areNear_ = high - low < 2 * kHeld;
        const bool isEven = low % (2 * kHeld) == 0;
        const auto depth = static_cast<std::uint32_t>(grid.depth);
        offset_[0] = Load(OffsetsOf(grid), depth, isEven ? low : low + kHeld);
        offset_[1] = Load(OffsetsOf(grid), depth, isEven ? low + kHeld : low);
    }

    // False where they have to be looked up.
    Z3D_INLINE bool AreNear() const { return areNear_; }

    // The four bytes `offset` bytes into each slice.
    Z3D_INLINE Uints Gather(const VoxelGrid& grid, const std::uint32_t* z, Uints offset) const {
        const __m512i first = _mm512_permutex2var_epi32(offset_[0], _mm512_loadu_si512(z), offset_[1]);
        return GatherWords(OriginOf(grid), reinterpret_cast<Uints>(first) + offset);
    }

private:
    static constexpr std::uint32_t kHeld = 16;

    // Sixteen offsets; 0 for slices that do not exist.
    Z3D_INLINE static __m512i Load(const std::uint32_t* offsets, std::uint32_t depth, std::uint32_t from) {
        const std::uint32_t there = from < depth ? depth - from : 0;
        const auto exist = static_cast<__mmask16>(there < kHeld ? (1u << there) - 1 : 0xFFFF);
        return _mm512_maskz_loadu_epi32(exist, there > 0 ? offsets + from : offsets);
    }

    bool areNear_ = false;
    __m512i offset_[2] = {};
};

} // namespace z3d::render::Z3D_ISA

#endif
