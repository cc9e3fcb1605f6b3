#include "render/tables/ViewLines.h"

// Why one ray can speak for a line. T(a,p) is the map's element from picture axis p to volume axis a, s = T(a,2) the
// step on the volume axis, b one of the other two axes.
//
// The volume axis. Rays stray from the whole or half number that belongs to their place by what the other elements of
// row a add, at most kMostStray: a step moves a float by less than 2|s|, or, where |s| is below half the distance of
// floats, not at all. Rounding adds up to 2^-9 (sizes are below 2^16). A coordinate goes to the next voxel at a
// fraction of 0.51, so all samples of a ray have the voxel of its place. Faces of the crop box are multiples of 1/4:
// the ends of rays at an inner place, which is on neither face, are surely between the faces, and so they hit none of
// them. Where rays do not stray at all, both ends are at the place itself: on a face, too, they are between the faces,
// and hit none of them.
//
// The other axes. Every rounded operation is monotone, and so are the entry points on b, the first sample points, all
// later ones and the voxels nearest to them, in the place. Where they are the same at two places, they are the same
// at all places between. With the entry points, the hits on the faces of b and the coordinates on b of the points there
// are the same; their coordinate a grows with the place by nearly 1 each time, so their depth is monotone as well, and
// the first and last depth index of a ray with it. Both being the same at two inner places, they are the same between.
// Rays without samples: the depth along a line varies by less than 1, so where output is more than one sample deep rays
// cannot leave it on one side at one end of a line and on the other side at the other end.
namespace z3d::render {
namespace {

constexpr std::int32_t kDeepest = 1 << 24; // depth indexes that are exact in single precision

double Size(double value) { return __builtin_fabs(value); }

} // namespace

ViewLines::ViewLines(const Projection& projection, const LineRays& rays)
    : view_(projection.view),
      rays_(rays),
      sizes_{projection.grid.width, projection.grid.height, projection.grid.depth} {}

bool ViewLines::FindAxes() {
    if (view_.outputDepth > kDeepest) return false;
    // Rows of voxels lie in memory as lines of x do, and rows of pixels as lines along them.
    for (axis_ = 0; axis_ < 3; ++axis_) {
        for (along_ = 0; along_ < 2; ++along_) {
            if (LiesAlong(axis_, along_)) {
                across_[0] = axis_ == 0 ? 1 : 0;
                across_[1] = axis_ == 2 ? 1 : 2;
                isReversed_ = (view_.Inverse(axis_, along_) < 0) != (along_ == 1);
                return true;
            }
        }
    }
    return false;
}

// Whether rays stray little from their place on the axis, and lines from each other on the other axes.
bool ViewLines::LiesAlong(int axis, int picture) const {
    const double half = view_.volumeCentre[axis] + 1.0;
    const double step = Size(view_.Inverse(axis, 2));
    const double stray = half * Size(Size(view_.Inverse(axis, picture)) - 1)
                         + view_.outputHalfSize[1 - picture] * Size(view_.Inverse(axis, 1 - picture))
                         + 6 * (view_.outputHalfSize[2] + 1.0) * step + half * step;
    if (!(stray < kMostStray)) return false;
    if (view_.outputDepth == 1 && step > 0) return false;
    for (int other = 0; other < 3; ++other) {
        const double drift = view_.outputHalfSize[picture] * Size(view_.Inverse(other, picture));
        if (other != axis && !(drift < kMostStray)) return false;
    }
    return true;
}

bool ViewLines::FindPaths() {
    const std::int32_t lines = along_ == 0 ? view_.outputHeight : view_.outputWidth;
    if (lines > INT32_MAX / kLonePerLine) return false;
    FindLivePlaces();
    mostLone_ = kLonePerLine * lines;
    lines_ = platform::HeapArray<ViewLine>(static_cast<std::size_t>(lines));
    lone_ = platform::HeapArray<LinePixel>(static_cast<std::size_t>(mostLone_));
    if (!lines_ || !lone_) return false;

    for (std::int32_t line = 0; line < lines; ++line)
        lines_[static_cast<std::size_t>(line)] = {};
    firstLine_ = lines;
    if (first_ > last_) return true;
    ChooseEnds();
    const std::int32_t together = kRays / endCount_;
    for (std::int32_t line = 0; line < lines; line += together) {
        if (!FollowLines(line, together < lines - line ? together : lines - line)) return false;
    }
    return true;
}

void ViewLines::FindLivePlaces() {
    const double low = view_.CropLow(axis_);
    const double high = view_.CropHigh(axis_);
    const auto isInside = [&](std::int32_t place) {
        return CentredAt(place) >= low && CentredAt(place) <= high;
    };
    first_ = 0;
    last_ = (along_ == 0 ? view_.outputWidth : view_.outputHeight) - 1;
    while (first_ <= last_ && !isInside(first_))
        ++first_;
    while (first_ <= last_ && !isInside(last_))
        --last_;
    if (first_ > last_) return;
    const std::int32_t voxel = NearestVoxel(CentredAt(first_) + view_.volumeCentre[axis_], sizes_[axis_]);
    shift_ = isReversed_ ? voxel + first_ : voxel - first_;
}

// The first and the last inner place; then those of all, which are others where they are on a face.
void ViewLines::ChooseEnds() {
    const auto isInner = [&](std::int32_t place) {
        return LiesExactly()
               || (CentredAt(place) != view_.CropLow(axis_) && CentredAt(place) != view_.CropHigh(axis_));
    };
    const std::int32_t first = isInner(first_) ? first_ : first_ + 1;
    const std::int32_t last = isInner(last_) ? last_ : last_ - 1;
    const bool hasInner = first <= last;
    ends_[0] = hasInner ? first : first_;
    ends_[1] = hasInner ? last : first_;
    ends_[2] = first_;
    ends_[3] = last_;
    endCount_ = ends_[0] == first_ && ends_[1] == last_ ? 2 : 4;
}

// Whether rays run at their place on the volume axis, without any rounding.
bool ViewLines::LiesExactly() const {
    return Size(view_.Inverse(axis_, along_)) == 1 && view_.Inverse(axis_, 1 - along_) == 0
           && view_.Inverse(axis_, 2) == 0;
}

// Compares the ends of as many lines as can be set up together. False where there are too many rays by themselves.
bool ViewLines::FollowLines(std::int32_t line, std::int32_t count) {
    LinePixel pixels[kRays];
    std::int32_t first[kRays];
    std::int32_t samples[kRays];
    for (std::int32_t number = 0; number < count * endCount_; ++number)
        pixels[number] = {line + number / endCount_, ends_[number % endCount_]};
    Trim(pixels, count * endCount_, first, samples);

    for (std::int32_t next = 0; next < count; ++next) {
        Path paths[4];
        for (std::int32_t end = 0; end < endCount_; ++end) {
            const std::int32_t number = next * endCount_ + end;
            paths[end] = {pixels[number], first[number], samples[number]};
        }
        if (!FollowLine(line + next, paths)) return false;
        if (Line(line + next).samples == 0) continue;
        if (line + next < firstLine_) firstLine_ = line + next;
        lastLine_ = line + next;
    }
    return true;
}

bool ViewLines::FollowLine(std::int32_t line, const Path* paths) {
    // Let the first inner ray speak for those up to the last one.
    const Path& path = paths[0];
    if (!IsUniform(path, paths[1])) return AddLone(line, first_, last_);
    if (path.samples > 0) {
        ViewLine& kept = lines_[static_cast<std::size_t>(line)];
        for (int number = 0; number < 2; ++number)
            kept.start[number] = StartOf(path.pixel, across_[number], path.first, path.samples);
        kept.samples = SamplesToTake(path.samples);
    }

    // Pixels on a face are like them, or alone.
    if (endCount_ == 2) return true;
    if (!AreSame(path, paths[2]) && !AddLone(line, first_, first_)) return false;
    return first_ == last_ || AreSame(path, paths[3]) || AddLone(line, last_, last_);
}

bool ViewLines::IsUniform(const Path& from, const Path& to) const {
    if (!AreSame(from, to)) return false;
    return HaveSameEntries(from.pixel, to.pixel) || HaveSameRanges(from, to);
}

bool ViewLines::HaveSameEntries(const LinePixel& a, const LinePixel& b) const {
    const double reach = static_cast<double>(view_.outputHalfSize[2]) + 1;
    for (const int axis : across_) {
        const double x = view_.Inverse(axis, 0);
        const double y = view_.Inverse(axis, 1);
        const double back = reach * static_cast<double>(view_.Inverse(axis, 2));
        if (static_cast<float>(X(a) * x + Y(a) * y - back) != static_cast<float>(X(b) * x + Y(b) * y - back))
            return false;
    }
    return true;
}

// Ray by ray.
bool ViewLines::HaveSameRanges(const Path& from, const Path& to) const {
    for (std::int32_t place = from.pixel.place; place <= to.pixel.place; place += kRays) {
        LinePixel pixels[kRays];
        for (int ray = 0; ray < kRays; ++ray) {
            const std::int32_t next = place + ray;
            pixels[ray] = {from.pixel.line, next < to.pixel.place ? next : to.pixel.place};
        }
        std::int32_t first[kRays];
        std::int32_t samples[kRays];
        Trim(pixels, kRays, first, samples);
        for (int ray = 0; ray < kRays; ++ray) {
            if (samples[ray] != from.samples) return false;
            if (samples[ray] > 0 && first[ray] != from.first) return false;
        }
    }
    return true;
}

// Whether two rays of a line have the same samples, but for the volume axis.
bool ViewLines::AreSame(const Path& a, const Path& b) const {
    if (a.samples != b.samples) return false;
    if (a.samples == 0 || a.pixel.place == b.pixel.place) return true;
    if (a.first != b.first) return false;
    for (const int axis : across_) {
        if (!VisitSameVoxels(axis, StartOf(a.pixel, axis, a.first, a.samples),
                             StartOf(b.pixel, axis, b.first, b.samples), SamplesToTake(a.samples)))
            return false;
    }
    return true;
}

// Near 0 floats are so close that starts differ by what is lost in the first step.
bool ViewLines::VisitSameVoxels(int axis, float a, float b, std::int32_t samples) const {
    const float step = rays_.backToFront ? -view_.Inverse(axis, 2) : view_.Inverse(axis, 2);
    for (std::int32_t sample = 0; sample < samples && a != b; ++sample) {
        if (NearestVoxel(a, sizes_[axis]) != NearestVoxel(b, sizes_[axis])) return false;
        a += step;
        b += step;
    }
    return true;
}

bool ViewLines::AddLone(std::int32_t line, std::int32_t first, std::int32_t last) {
    if (last - first >= mostLone_ - loneCount_) return false;
    for (std::int32_t place = first; place <= last; ++place)
        lone_[static_cast<std::size_t>(loneCount_++)] = {line, place};
    return true;
}

void ViewLines::Trim(const LinePixel* pixels, int count, std::int32_t* first, std::int32_t* samples) const {
    double x[kRays];
    double y[kRays];
    for (int ray = 0; ray < kRays; ++ray) {
        const LinePixel& pixel = pixels[ray < count ? ray : 0];
        x[ray] = X(pixel);
        y[ray] = Y(pixel);
    }
    rays_.trim(view_, x, y, count, first, samples);
}

float ViewLines::StartOf(const LinePixel& pixel, int axis, std::int32_t first, std::int32_t samples) const {
    const double depth =
        (rays_.backToFront ? first + samples - 1 : first) - static_cast<double>(view_.outputHalfSize[2]);
    return static_cast<float>(depth * view_.Inverse(axis, 2) + X(pixel) * view_.Inverse(axis, 0)
                              + Y(pixel) * view_.Inverse(axis, 1) + view_.volumeCentre[axis]);
}

std::int32_t ViewLines::SamplesToTake(std::int32_t samples) const {
    const std::int32_t more = samples + (samples > 0 ? rays_.samplesPastEnd : 0);
    return more < rays_.sampleLimit ? more : rays_.sampleLimit;
}

} // namespace z3d::render
