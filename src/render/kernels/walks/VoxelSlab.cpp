#include "render/kernels/walks/VoxelSlab.h"

namespace z3d::render::Z3D_ISA {
namespace {

constexpr int kColumns = 16;                  // bytes of a row that are transposed together
constexpr int kParts = Z3D_VECTOR_BYTES / 16; // of a vector, each of which takes eight rows
constexpr int kRows = 8 * kParts;             // that are transposed together
static_assert(VoxelSlab::kLanes % kRows == 0);

// The widest bytes there are. Operations of 256 and 512 bits work on each part of 128 by itself, which is why a part
// has rows of its own.
typedef std::uint8_t Wide __attribute__((vector_size(Z3D_VECTOR_BYTES), may_alias));

Z3D_INLINE Wide LowBytes(Wide a, Wide b) {
#if Z3D_VECTOR_BYTES == 64
    return reinterpret_cast<Wide>(
        _mm512_unpacklo_epi8(reinterpret_cast<__m512i>(a), reinterpret_cast<__m512i>(b)));
#elif Z3D_VECTOR_BYTES == 32
    return reinterpret_cast<Wide>(
        _mm256_unpacklo_epi8(reinterpret_cast<__m256i>(a), reinterpret_cast<__m256i>(b)));
#else
    return reinterpret_cast<Wide>(
        _mm_unpacklo_epi8(reinterpret_cast<__m128i>(a), reinterpret_cast<__m128i>(b)));
#endif
}
Z3D_INLINE Wide HighBytes(Wide a, Wide b) {
#if Z3D_VECTOR_BYTES == 64
    return reinterpret_cast<Wide>(
        _mm512_unpackhi_epi8(reinterpret_cast<__m512i>(a), reinterpret_cast<__m512i>(b)));
#elif Z3D_VECTOR_BYTES == 32
    return reinterpret_cast<Wide>(
        _mm256_unpackhi_epi8(reinterpret_cast<__m256i>(a), reinterpret_cast<__m256i>(b)));
#else
    return reinterpret_cast<Wide>(
        _mm_unpackhi_epi8(reinterpret_cast<__m128i>(a), reinterpret_cast<__m128i>(b)));
#endif
}

// Sixteen bytes of row `row` of each part.
Z3D_INLINE Wide LoadRows(const std::uint8_t* const* rows, int row, std::size_t column) {
    const auto part = [&](int number) {
        return _mm_loadu_si128(reinterpret_cast<const __m128i*>(rows[8 * number + row] + column));
    };
#if Z3D_VECTOR_BYTES == 64
    __m512i wide = _mm512_castsi128_si512(part(0));
    wide = _mm512_inserti32x4(wide, part(1), 1);
    wide = _mm512_inserti32x4(wide, part(2), 2);
    return reinterpret_cast<Wide>(_mm512_inserti32x4(wide, part(3), 3));
#elif Z3D_VECTOR_BYTES == 32
    return reinterpret_cast<Wide>(_mm256_inserti128_si256(_mm256_castsi128_si256(part(0)), part(1), 1));
#else
    return reinterpret_cast<Wide>(part(0));
#endif
}

// Two columns, of whose rows each part holds eight: first those of the one, then those of the other.
Z3D_INLINE void StoreColumns(Wide columns, std::uint8_t* to) {
#if Z3D_VECTOR_BYTES == 64
    const __m512i order = _mm512_set_epi64(7, 5, 3, 1, 6, 4, 2, 0);
    const __m512i sorted = _mm512_permutexvar_epi64(order, reinterpret_cast<__m512i>(columns));
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(to), _mm512_castsi512_si256(sorted));
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(to + VoxelSlab::kLanes),
                        _mm512_extracti64x4_epi64(sorted, 1));
#elif Z3D_VECTOR_BYTES == 32
    const __m256i sorted = _mm256_permute4x64_epi64(reinterpret_cast<__m256i>(columns), 0xD8);
    _mm_storeu_si128(reinterpret_cast<__m128i*>(to), _mm256_castsi256_si128(sorted));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(to + VoxelSlab::kLanes), _mm256_extracti128_si256(sorted, 1));
#else
    const __m128 both = _mm_castsi128_ps(reinterpret_cast<__m128i>(columns));
    _mm_storel_pi(reinterpret_cast<__m64*>(to), both);
    _mm_storeh_pi(reinterpret_cast<__m64*>(to + VoxelSlab::kLanes), both);
#endif
}

// Sixteen bytes of kRows rows each become sixteen columns, kLanes bytes apart. Interleaving vectors i and i + 4 moves
// bit 2 of the row number behind the bits of the column number; after three times, vector i holds columns 2i and
// 2i + 1. Eight vectors are all that 32-bit code has.
Z3D_INLINE void Transpose(const std::uint8_t* const* rows, std::size_t column, std::uint8_t* to) {
    // Vector i: row i of each part.
    Wide a[8];
#pragma GCC unroll 8
    for (int row = 0; row < 8; ++row)
        a[row] = LoadRows(rows, row, column);

        // Unrolled: vectors stay in registers only where their numbers are constants.
#pragma GCC unroll 3
    for (int time = 0; time < 3; ++time) {
        Wide b[8];
#pragma GCC unroll 4
        for (int row = 0; row < 4; ++row) {
            b[2 * row] = LowBytes(a[row], a[row + 4]);
            b[2 * row + 1] = HighBytes(a[row], a[row + 4]);
        }
#pragma GCC unroll 8
        for (int row = 0; row < 8; ++row)
            a[row] = b[row];
    }
#pragma GCC unroll 8
    for (int pair = 0; pair < 8; ++pair)
        StoreColumns(a[pair], to + 2 * pair * VoxelSlab::kLanes);
}

} // namespace

VoxelSlab::VoxelSlab(const VoxelGrid& grid, int axis, std::int32_t voxelBytes, const Extent& extent)
    : grid_(grid),
      axis_(axis),
      voxelBytes_(voxelBytes),
      extent_(extent),
      layerBytesNeeded_(static_cast<std::uint64_t>(grid.width) * kLanes
                        * static_cast<std::uint64_t>(voxelBytes)),
      layerBytes_(static_cast<std::size_t>(layerBytesNeeded_)) {}

bool VoxelSlab::Allocate() {
    const std::int32_t count = extent_.last[1] - extent_.first[1] + 1;
    const auto layers = static_cast<std::uint64_t>(count);
    // More would not stay in any cache.
    if (layerBytesNeeded_ > kMostBytes || layers * layerBytesNeeded_ > kMostBytes) return false;
    memory_ = platform::HeapArray<std::uint8_t>(static_cast<std::size_t>(layers * layerBytesNeeded_));
    return static_cast<bool>(memory_);
}

void VoxelSlab::Fill(std::int32_t first, std::int32_t last) {
    for (std::int32_t other = extent_.first[1]; other <= extent_.last[1]; ++other)
        FillLayer(first, last, other);
}

void VoxelSlab::FillLayer(std::int32_t first, std::int32_t last, std::int32_t other) {
    // Find the rows of the lanes; the last one stands for those that are left over.
    const std::size_t rowBytes =
        static_cast<std::size_t>(grid_.width) * static_cast<std::size_t>(voxelBytes_);
    const std::uint8_t* rows[kLanes];
    for (std::int32_t lane = 0; lane < kLanes; ++lane) {
        const std::int32_t voxel = first + lane < last ? first + lane : last;
        const std::int32_t y = axis_ == 1 ? voxel : other;
        const std::int32_t z = axis_ == 1 ? other : voxel;
        rows[lane] = grid_.slices[z] + static_cast<std::size_t>(y) * rowBytes;
    }
    std::uint8_t* lanes = memory_.Get() + static_cast<std::size_t>(other - extent_.first[1]) * layerBytes_;
    if (rowBytes < kColumns) return FillShortRows(rows, lanes);

    // Transpose them, byte by byte. The last bytes overlap those before them rather than being read beyond the row.
    const std::int32_t used = last - first + 1;
    const auto bytes = static_cast<std::size_t>(voxelBytes_);
    const std::size_t end = (static_cast<std::size_t>(extent_.last[0]) + 1) * bytes;
    for (std::size_t column = static_cast<std::size_t>(extent_.first[0]) * bytes; column < end;
         column += kColumns) {
        const std::size_t from = column + kColumns <= rowBytes ? column : rowBytes - kColumns;
        for (std::int32_t lane = 0; lane < used; lane += kRows)
            Transpose(rows + lane, from, lanes + from * kLanes + lane);
    }
}

// Narrow volumes: a row is shorter than what is transposed at once, and nothing may be read behind it.
void VoxelSlab::FillShortRows(const std::uint8_t* const* rows, std::uint8_t* to) const {
    for (std::int32_t column = 0; column < grid_.width * voxelBytes_; ++column) {
        for (std::int32_t lane = 0; lane < kLanes; ++lane)
            *to++ = rows[lane][column];
    }
}

} // namespace z3d::render::Z3D_ISA
