// The contrast score of every grey voxel, computed once, row by row: what a projection of scores then samples.
// A voxel's score depends on its indexes alone. 0 stands for voxels outside the window as well: neither counts.
//
// Scores go up to 1020, but few of a scan are above 254: as bytes, where 255 stands for all others, they take half the
// memory, and are projected as voxels are.
#pragma once

#include "platform/Heap.h"
#include "render/Projection.h"
#include "render/voxels/SliceOffsets.h"
#include "render/voxels/Windows.h"

#include <cstddef>
#include <cstdint>

namespace z3d::render {

// Volumes of fewer slices are not scored: every voxel in the window counts 1.
constexpr std::int32_t kSmallestScoredDepth = 3;

class ContrastScores {
public:
    // The window must not be empty, and the volume deep enough to be scored.
    ContrastScores(const Projection& projection, const GreyWindow& window);
    ~ContrastScores();
    ContrastScores(const ContrastScores&) = delete;
    ContrastScores& operator=(const ContrastScores&) = delete;

    // Computes all scores, as bytes or in 16 bits. False, and then there are none, when memory is short, or too many
    // scores for bytes are above 254.
    bool MakeBytes() { return Make<std::uint8_t>(); }
    bool MakeWords() { return Make<std::uint16_t>(); }
    bool HasLarge() const { return large_ > 0; } // bytes of 255

    // The volume with scores for voxels. Behind the last one of all there are two bytes more.
    VoxelGrid Grid() const {
        // Gathers count the bytes of a slice of scores in 32 bits.
        const bool isGathered = grid_.isGathered && std::int64_t{grid_.width} * grid_.height <= INT32_MAX;
        return {slices_.Get(), grid_.width, grid_.height, grid_.depth, isGathered, offsets_.Get()};
    }

private:
    static constexpr int kDirections = 4; // right, left, up, down, in the output

    struct Run {
        std::int32_t first, last; // columns
    };
    struct Direction {
        const std::int32_t* index[3]; // of the neighbour, by axis and index of the voxel
        std::int32_t shift;           // along x, where it is the same for a run of columns
        std::int32_t first, last;     // that run
    };

    std::size_t LongestAxis() const;
    template <class Score>
    bool Make();
    bool Allocate(std::size_t scoreBytes);
    void FindNeighbours();
    void FindRun(Direction& direction) const;
    template <class Score>
    void ScoreRow(std::int32_t y, std::int32_t z);
    template <class Score>
    void ScoreSingly(const std::uint8_t* row, const std::uint8_t* const* neighbour, Run run, Score* to);
    std::int32_t ScoreOne(const std::uint8_t* row, const std::uint8_t* const* neighbour,
                          std::int32_t x) const;
    template <class Score>
    void ScoreRun(const std::uint8_t* row, const std::uint8_t* const* neighbour, Run run, Score* to);

    const ProjectionRenderer& view_;
    const VoxelGrid& grid_;
    const GreyWindow window_;
    platform::HeapArray<const std::uint8_t*> slices_;
    SliceOffsets offsets_;
    platform::HeapArray<std::uint8_t> scores_;
    platform::HeapArray<std::int32_t> neighbours_;
    Direction direction_[kDirections];
    std::int64_t large_ = 0; // bytes of 255 so far
};

// The outermost rows and columns of the picture, which hold 0.
void ClearBorder(const Projection& projection);

} // namespace z3d::render
