#include "render/kernels/walks/ColumnView.h"

// Why columns can be looked up. Let c be the axis of the rays, with a step of exactly 1 or -1, a and b the others. The
// elements that would be 0 but for rounded cosines add up to less than kMostStray over the whole view.
//
// On c, entry points, faces, their depths and first samples are multiples of 1/4 that fit single precision. What strays
// is rounded away, except beside 0: a depth is then rounded away with the half depth that is added next, and a first
// sample at almost 0 has voxel 0 and is exact from the next step on. All hits have the samples of the view of right
// angles.
//
// On a and b, rays run parallel to the faces, which they do not hit. A coordinate of at least 2^-16 is the same along
// the whole ray, as kMostStray is less than half the distance of floats there. A smaller one has voxel 0 everywhere,
// and is sure to be inside or outside unless a face lies at 0: such crop boxes are left to other walks.
namespace z3d::render::Z3D_ISA {
namespace {

constexpr double kMostStray = 0x1p-41;
constexpr float kBesideZero = 0x1p-15f;
constexpr std::int32_t kDeepest = 1 << 18;
constexpr double kToNearest = 0.49; // see NearestVoxel

double Size(double value) { return __builtin_fabs(value); }

// The axis with a step of exactly one voxel; z where there is none.
int AxisOf(const ProjectionRenderer& view) {
    for (int axis = 0; axis < 2; ++axis) {
        if (Size(view.Inverse(axis, 2)) == 1) return axis;
    }
    return 2;
}

struct Matrix {
    float elements[9] = {};
};

// Looks along the same axis from the same side, with the others along the picture.
Matrix RightAngled(const ProjectionRenderer& view) {
    const int axis = AxisOf(view);
    Matrix matrix;
    matrix.elements[axis == 0 ? 1 : 0] = 1;
    matrix.elements[3 + (axis == 2 ? 1 : 2)] = 1;
    matrix.elements[6 + axis] = view.Inverse(axis, 2) < 0 ? -1.0f : 1.0f;
    return matrix;
}

} // namespace

ColumnView::ColumnView(const Projection& projection)
    : projection_(projection),
      view_(projection.view),
      axis_(AxisOf(projection.view)),
      across_{axis_ == 0 ? 1 : 0, axis_ == 2 ? 1 : 2},
      columnView_(view_.volume, RightAngled(view_).elements, {}, 0),
      columns_{.view = columnView_,
               .grid = projection.grid,
               .arguments = projection.arguments,
               .pixels = nullptr,
               .skipPolicy = projection.skipPolicy} {}

bool ColumnView::IsAlongAxis() const {
    // Half depths have to be more than 0 to round away what strays.
    if (view_.outputDepth < 2 || view_.outputDepth > kDeepest) return false;
    if (Size(view_.Inverse(axis_, 2)) != 1) return false;
    const double size = static_cast<double>(view_.outputWidth) + view_.outputHeight + 2.0 * view_.outputDepth
                        + 2.0 * (view_.volumeWidth + view_.volumeHeight + view_.volumeDepth);
    double largest = Size(view_.Inverse(axis_, 0)) + Size(view_.Inverse(axis_, 1));
    for (const int axis : across_) {
        largest += Size(view_.Inverse(axis, 2));
        if (Size(view_.CropLow(axis)) < kBesideZero || Size(view_.CropHigh(axis)) < kBesideZero) return false;
    }
    return largest * size < kMostStray && columnView_.outputDepth == view_.outputDepth;
}

bool ColumnView::Prepare() {
    if (!IsAlongAxis()) return false;
    CropColumns();
    const std::uint64_t bytes = std::uint64_t{12} * static_cast<std::uint64_t>(columnView_.outputWidth)
                                * static_cast<std::uint64_t>(columnView_.outputHeight);
    if (bytes > kMostBytes) return false;
    pixels_ = platform::HeapArray<float>(static_cast<std::size_t>(bytes / sizeof(float)));
    columns_.pixels = pixels_.Get();
    return static_cast<bool>(pixels_);
}

// Rays within the crop box may take the columns just outside.
void ColumnView::CropColumns() {
    for (int axis = 0; axis < 3; ++axis) {
        const float more = axis == axis_ ? 0.0f : 1.0f;
        const float half = view_.volumeCentre[axis];
        const float low = view_.CropLow(axis) - more;
        const float high = view_.CropHigh(axis) + more;
        columnView_.cropLow[2 - axis] = low < -half ? -half : low;
        columnView_.cropHigh[2 - axis] = high > half ? half : high;
    }
}

void ColumnView::LookUp(const Rule& rule) const {
    const double depth = FirstDepth(rule);
    Doubles columns;
    for (int lane = 0; lane < kDoubleLanes; ++lane)
        columns[lane] = lane - static_cast<double>(view_.outputHalfSize[0]);
    for (std::int32_t row = 0; row < view_.outputHeight; ++row) {
        FillWithInitial(projection_, rule, row, 0, view_.outputWidth);
        const double py = view_.outputHeight - 1 - row - static_cast<double>(view_.outputHalfSize[1]);
        for (std::int32_t column = 0; column < view_.outputWidth; column += kDoubleLanes) {
            const std::int32_t left = view_.outputWidth - column;
            LookUpPixels(columns + static_cast<double>(column), py, depth, projection_.PixelAt(row, column),
                         left < kDoubleLanes ? left : kDoubleLanes);
        }
    }
}

// The view depth of the first sample of all rays that have any: an index less half the depth, exact.
double ColumnView::FirstDepth(const Rule& rule) const {
    const double half = view_.outputHalfSize[2];
    const double last = view_.outputDepth - 1;
    const double low = view_.CropLow(axis_);
    const double high = view_.CropHigh(axis_);
    const bool isForward = view_.Inverse(axis_, 2) > 0;
    const double start = (isForward ? low : -high) + half;
    const double end = (isForward ? high : -low) + half;
    const double index = rule.shape.backToFront ? (end < last ? end : last) : (start > 0 ? start : 0);
    return static_cast<std::int32_t>(index) - half;
}

// Whether rays lie in the crop box, by their entry points, and which columns they take, by their first samples.
void ColumnView::LookUpPixels(const Doubles& px, double py, double depth, float* pixels,
                              std::int32_t count) const {
    const double reach = static_cast<double>(view_.outputHalfSize[2]) + 1;
    LongMask isInside = ~LongMask{};
    Doubles index[2];
    for (int number = 0; number < 2; ++number) {
        const int axis = across_[number];
        const Doubles x = px * static_cast<double>(view_.Inverse(axis, 0));
        const double y = py * static_cast<double>(view_.Inverse(axis, 1));
        const double step = view_.Inverse(axis, 2);
        const Doubles entry = RoundToSingle(x + y - reach * step);
        isInside &= (entry >= static_cast<double>(view_.CropLow(axis)))
                    & (entry <= static_cast<double>(view_.CropHigh(axis)));
        const Doubles start =
            RoundToSingle(depth * step + x + y + static_cast<double>(view_.volumeCentre[axis]));
        const double last = 2.0 * static_cast<double>(view_.volumeCentre[axis]);
        index[number] = Whole(MinDoubles(MaxDoubles(start + kToNearest, Doubles{}), AllDoubles(last)));
    }
    if (!AnySet(isInside)) return;

    // The image of columns has its first row at the bottom.
    alignas(64) std::int32_t pixel[kDoubleLanes];
    const double bottom = columnView_.outputHeight - 1;
    StoreTruncated(pixel, (bottom - index[1]) * static_cast<double>(columnView_.outputWidth) + index[0]);
    for (int lane = 0; lane < count; ++lane) {
        if (!isInside[lane]) continue;
        const float* from = columns_.pixels + 3 * static_cast<std::ptrdiff_t>(pixel[lane]);
        __builtin_memcpy(pixels + 3 * lane, from, 3 * sizeof(float));
    }
}

} // namespace z3d::render::Z3D_ISA
