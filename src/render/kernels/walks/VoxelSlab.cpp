#include "render/kernels/walks/VoxelSlab.h"

namespace z3d::render::Z3D_ISA {
namespace {

constexpr int kColumns = 16;                  // bytes of a row that are transposed together
constexpr int kParts = Z3D_VECTOR_BYTES / 16; // of a vector, each of which takes eight rows
constexpr int kRows = 8 * kParts;             // that are transposed together
constexpr std::size_t kLine = 64;             // bytes that the cache takes together
static_assert(VoxelSlab::kMostLanes % kRows == 0);
constexpr bool kCanFold = kRows > VoxelSlab::kMostLanes / 2;

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

// Sixteen bytes of row `row` of each part. In a folded vector the upper half has the rows of the lower one, but the
// next sixteen columns.
template <bool kIsFolded>
Z3D_INLINE Wide LoadRows(const std::uint8_t* const* rows, int row, std::size_t column) {
    const auto part = [&](int number) {
        const std::uint8_t* from = kIsFolded && number >= kParts / 2
                                       ? rows[8 * (number - kParts / 2) + row] + column + kColumns
                                       : rows[8 * number + row] + column;
        return _mm_loadu_si128(reinterpret_cast<const __m128i*>(from));
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

// Two columns, of whose rows each part holds eight: first those of the one, then those of the other. `lanes` bytes lie
// from column to column.
template <bool kIsFolded>
Z3D_INLINE void StoreColumns(Wide columns, std::uint8_t* to, [[maybe_unused]] std::size_t lanes) {
#if Z3D_VECTOR_BYTES == 64
    const __m512i order = _mm512_set_epi64(7, 5, 3, 1, 6, 4, 2, 0);
    const __m512i sorted = _mm512_permutexvar_epi64(order, reinterpret_cast<__m512i>(columns));
    const __m256i one = _mm512_castsi512_si256(sorted);
    const __m256i other = _mm512_extracti64x4_epi64(sorted, 1);
    if constexpr (kIsFolded) {
        _mm_storeu_si128(reinterpret_cast<__m128i*>(to), _mm256_castsi256_si128(one));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(to + lanes), _mm256_castsi256_si128(other));
        to += kColumns * lanes;
        _mm_storeu_si128(reinterpret_cast<__m128i*>(to), _mm256_extracti128_si256(one, 1));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(to + lanes), _mm256_extracti128_si256(other, 1));
    } else {
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(to), one);
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(to + lanes), other);
    }
#elif Z3D_VECTOR_BYTES == 32
    const __m256i sorted = _mm256_permute4x64_epi64(reinterpret_cast<__m256i>(columns), 0xD8);
    _mm_storeu_si128(reinterpret_cast<__m128i*>(to), _mm256_castsi256_si128(sorted));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(to + lanes), _mm256_extracti128_si256(sorted, 1));
#else
    const __m128 both = _mm_castsi128_ps(reinterpret_cast<__m128i>(columns));
    _mm_storel_pi(reinterpret_cast<__m64*>(to), both);
    _mm_storeh_pi(reinterpret_cast<__m64*>(to + lanes), both);
#endif
}

// Sixteen bytes of kRows rows each become sixteen columns; folded, 32 bytes of half as many rows become 32 columns.
// Interleaving vectors i and i + 4 moves bit 2 of the row number behind the bits of the column number; after three
// times, vector i holds columns 2i and 2i + 1. Eight vectors are all that 32-bit code has.
template <bool kIsFolded>
Z3D_INLINE void Transpose(const std::uint8_t* const* rows, std::size_t column, std::uint8_t* to,
                          std::size_t lanes) {
    // Vector i: row i of each part.
    Wide a[8];
#pragma GCC unroll 8
    for (int row = 0; row < 8; ++row)
        a[row] = LoadRows<kIsFolded>(rows, row, column);

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
        StoreColumns<kIsFolded>(a[pair], to + 2 * static_cast<std::size_t>(pair) * lanes, lanes);
}

// Asks for the cache lines that begin within the next 64 bytes of each row.
Z3D_INLINE void Prefetch(const std::uint8_t* const* rows, std::int32_t count, std::size_t column) {
    for (std::int32_t row = 0; row < count; ++row)
        __builtin_prefetch(rows[row] + column);
}

} // namespace

VoxelSlab::VoxelSlab(const VoxelGrid& grid, int axis, std::int32_t voxelBytes, const Extent& extent)
    : grid_(grid),
      axis_(axis),
      voxelBytes_(voxelBytes),
      lanes_(LanesOf(voxelBytes)),
      extent_(extent),
      layerBytesNeeded_(static_cast<std::uint64_t>(grid.width) * static_cast<std::uint64_t>(lanes_)
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
    const std::uint8_t* rows[2][kMostLanes];
    FindRows(first, last, extent_.first[1], rows[extent_.first[1] % 2]);
    for (std::int32_t other = extent_.first[1]; other <= extent_.last[1]; ++other) {
        FindRows(first, last, other < extent_.last[1] ? other + 1 : other, rows[(other + 1) % 2]);
        FillLayer(last - first + 1, other, rows[other % 2], rows[(other + 1) % 2]);
    }
}

// The rows of the lanes; the last one stands for those that are left over.
void VoxelSlab::FindRows(std::int32_t first, std::int32_t last, std::int32_t other,
                         const std::uint8_t* (&rows)[kMostLanes]) const {
    for (std::int32_t lane = 0; lane < lanes_; ++lane) {
        const std::int32_t voxel = first + lane < last ? first + lane : last;
        const std::int32_t y = axis_ == 1 ? voxel : other;
        const std::int32_t z = axis_ == 1 ? other : voxel;
        rows[lane] = grid_.slices[z] + static_cast<std::size_t>(y) * RowBytes();
    }
}

// Transposes the rows of `used` lanes, and prefetches those of the next layer.
void VoxelSlab::FillLayer(std::int32_t used, std::int32_t other, const std::uint8_t* const* rows,
                          const std::uint8_t* const* nextRows) {
    const std::size_t rowBytes = RowBytes();
    std::uint8_t* lanes = memory_.Get() + static_cast<std::size_t>(other - extent_.first[1]) * layerBytes_;
    const bool isFolded = kCanFold && kRows > lanes_;
    const std::size_t columns = isFolded ? 2 * kColumns : kColumns;
    if (rowBytes < columns) return FillShortRows(rows, lanes);

    // Go byte by byte. The last bytes overlap those before them rather than being read beyond the row.
    const auto bytes = static_cast<std::size_t>(voxelBytes_);
    const auto apart = static_cast<std::size_t>(lanes_);
    const std::size_t end = (static_cast<std::size_t>(extent_.last[0]) + 1) * bytes;
    for (std::size_t column = static_cast<std::size_t>(extent_.first[0]) * bytes; column < end;
         column += columns) {
        if (column % kLine < columns) Prefetch(nextRows, used, column);
        const std::size_t from = column + columns <= rowBytes ? column : rowBytes - columns;
        std::uint8_t* to = lanes + from * apart;
        if (isFolded) {
            Transpose<kCanFold>(rows, from, to, apart);
            continue;
        }
        for (std::int32_t lane = 0; lane < used; lane += kRows)
            Transpose<false>(rows + lane, from, to + lane, apart);
    }
}

// Narrow volumes: a row is shorter than what is transposed at once, and nothing may be read behind it.
void VoxelSlab::FillShortRows(const std::uint8_t* const* rows, std::uint8_t* to) const {
    for (std::int32_t column = 0; column < grid_.width * voxelBytes_; ++column) {
        for (std::int32_t lane = 0; lane < lanes_; ++lane)
            *to++ = rows[lane][column];
    }
}

} // namespace z3d::render::Z3D_ISA
