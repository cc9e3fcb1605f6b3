// Views in which a volume axis lies along a picture axis, such as turntables: the pixels of a line along it are voxels
// side by side, and their rays take the same path on the two other axes. One ray is followed per line, and speaks for
// all of it. Pixels of which that is not certain are rays by themselves.
#pragma once

#include "platform/Heap.h"
#include "render/Projection.h"
#include "render/Traversal.h"

namespace z3d::render {

// A pixel of a line.
struct LinePixel {
    std::int32_t line;
    std::int32_t place; // along the line
};

// The exact rays of pixels, given by their picture coordinates: depth index of the first sample and number of samples,
// without those past the end. Both have room for kRays.
using TrimPixels = void (*)(const ProjectionRenderer& view, const double* x, const double* y, int count,
                            std::int32_t* first, std::int32_t* samples);

// How rays are followed.
struct LineRays {
    TrimPixels trim;
    bool backToFront;
    std::int32_t samplesPastEnd;
    std::int32_t sampleLimit;
};

struct ViewLine {
    float start[2];       // of its rays, on the two other axes
    std::int32_t samples; // 0 where no ray has any
};

// Lines are numbered as rows and columns of the image are: from its top left corner.
class ViewLines {
public:
    ViewLines(const Projection& projection, const LineRays& rays);

    // Chooses the picture axis and the volume axis. False where no two lie along each other.
    bool FindAxes();
    // Follows the rays. False where memory is short, or too many pixels are rays by themselves.
    bool FindPaths();

    int Along() const { return along_; } // the picture axis: 0 for rows, 1 for columns of pixels
    int Axis() const { return axis_; }   // the volume axis
    int Across(int number) const { return across_[number]; } // the other two, in their order
    bool IsReversed() const { return isReversed_; }          // voxels run against pixels
    std::int32_t First() const { return first_; } // places of a line whose rays can lie in the crop box
    std::int32_t Last() const { return last_; }
    std::int32_t FirstLine() const { return firstLine_; } // lines between which all with samples lie
    std::int32_t LastLine() const { return lastLine_; }
    const ViewLine& Line(std::int32_t line) const { return lines_[static_cast<std::size_t>(line)]; }
    std::int32_t LoneCount() const { return loneCount_; }
    const LinePixel& Lone(std::int32_t number) const { return lone_[static_cast<std::size_t>(number)]; }

    // The voxel of a place between the first and the last, on the volume axis; and the place of a voxel.
    std::int32_t VoxelAt(std::int32_t place) const { return isReversed_ ? shift_ - place : shift_ + place; }
    std::int32_t PlaceOf(std::int32_t voxel) const { return isReversed_ ? shift_ - voxel : voxel - shift_; }

    std::int32_t Row(const LinePixel& pixel) const { return along_ == 0 ? pixel.line : pixel.place; }
    std::int32_t Column(const LinePixel& pixel) const { return along_ == 0 ? pixel.place : pixel.line; }

    // The exact rays of up to 16 pixels: samples without those past the end, and depth index of the first.
    void Trim(const LinePixel* pixels, int count, std::int32_t* first, std::int32_t* samples) const;
    // Where such a ray has its first sample on an axis.
    float StartOf(const LinePixel& pixel, int axis, std::int32_t first, std::int32_t samples) const;
    std::int32_t SamplesToTake(std::int32_t samples) const;

private:
    static constexpr std::int32_t kLonePerLine = 8; // at most, on average
    static constexpr double kMostStray = 1.0 / 256;

    struct Path {
        LinePixel pixel;
        std::int32_t first;
        std::int32_t samples;
    };

    bool LiesAlong(int axis, int picture) const;
    bool LiesExactly() const;
    void FindLivePlaces();
    void ChooseEnds();
    bool FollowLines(std::int32_t line, std::int32_t count);
    bool FollowLine(std::int32_t line, const Path* paths);
    bool IsUniform(const Path& from, const Path& to) const;
    bool HaveSameEntries(const LinePixel& a, const LinePixel& b) const;
    bool HaveSameRanges(const Path& from, const Path& to) const;
    bool AreSame(const Path& a, const Path& b) const;
    bool VisitSameVoxels(int axis, float a, float b, std::int32_t samples) const;
    bool AddLone(std::int32_t line, std::int32_t first, std::int32_t last);

    // The picture coordinates of a pixel, where y grows upward.
    double X(const LinePixel& pixel) const {
        return Column(pixel) - static_cast<double>(view_.outputHalfSize[0]);
    }
    double Y(const LinePixel& pixel) const {
        return static_cast<double>(view_.outputHalfSize[1]) - Row(pixel);
    }
    // Where a place lies on the volume axis, from the volume's centre; exact but for what rays stray.
    double CentredAt(std::int32_t place) const {
        const double from = place - static_cast<double>(view_.outputHalfSize[along_]);
        return isReversed_ ? -from : from;
    }

    const ProjectionRenderer& view_;
    const LineRays rays_;
    const std::int32_t sizes_[3];
    int along_ = 0;
    int axis_ = 0;
    int across_[2] = {1, 2};
    bool isReversed_ = false;
    std::int32_t shift_ = 0;
    std::int32_t first_ = 0;
    std::int32_t last_ = -1;
    std::int32_t ends_[4] = {}; // places by which lines are judged: see ChooseEnds
    std::int32_t endCount_ = 0;
    std::int32_t firstLine_ = 0;
    std::int32_t lastLine_ = -1;
    std::int32_t loneCount_ = 0;
    std::int32_t mostLone_ = 0;
    platform::HeapArray<ViewLine> lines_;
    platform::HeapArray<LinePixel> lone_;
};

} // namespace z3d::render
