// The contrast score of every grey voxel, computed once, row by row: what a projection of scores then samples.
// A voxel's score depends on its indexes alone. 0 stands for voxels outside the window as well: neither counts.
#pragma once

#include "platform/Heap.h"
#include "render/Projection.h"
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

    // Computes all scores; false when memory is short, and then there are none.
    bool Make();

    // `depth` addresses of the scores of a slice, row after row.
    Z3D_INLINE const std::uint16_t* const* Slices() const { return sliceScores_; }

private:
    static constexpr int kDirections = 4; // right, left, up, down, in the output

    struct Direction {
        const std::int32_t* index[3]; // of the neighbour, by axis and index of the voxel
        std::int32_t shift;           // along x, where it is the same for a run of columns
        std::int32_t first, last;     // that run
    };

    std::size_t LongestAxis() const;
    bool Allocate();
    void FindNeighbours();
    void FindRun(Direction& direction) const;
    void ScoreRow(std::int32_t y, std::int32_t z);
    std::uint16_t ScoreOne(const std::uint8_t* row, const std::uint8_t* const* neighbour,
                           std::int32_t x) const;
    void ScoreSixteen(const std::uint8_t* row, const std::uint8_t* const* neighbour, std::int32_t x,
                      std::uint16_t* to) const;

    const ProjectionRenderer& view_;
    const VoxelGrid& grid_;
    const GreyWindow window_;
    platform::HeapArray<std::uint16_t*> slices_;
    platform::HeapArray<std::uint16_t> scores_;
    platform::HeapArray<std::int32_t> neighbours_;
    const std::uint16_t* const* sliceScores_ = nullptr;
    Direction direction_[kDirections];
};

} // namespace z3d::render
