#include "primitives/Resize.h"

#include "platform/Heap.h"
#include "primitives/ResizeAxis.h"
#include "primitives/ResizePasses.h"

#include <cstddef>
#include <cstring>
#include <utility>

namespace z3d::primitives {
namespace {

using platform::HeapArray;

// A checked call: source and destination at their first pixels, steps in bytes.
struct Job {
    const void* source;
    std::int32_t sourceStep;
    void* destination;
    std::int32_t destinationStep;
    Axis columns, rows;
};

Status CheckArguments(const void* source, ImageSize sourceSize, std::int32_t sourceStep, ImageRect rectangle,
                      const void* destination, std::int32_t destinationStep, ImageSize destinationSize,
                      double xFactor, double yFactor, std::int32_t interpolation) {
    if (source == nullptr || destination == nullptr) return StatusNullPointer;
    if (sourceSize.width < 1 || sourceSize.height < 1) return StatusSizeError;
    if (sourceStep < 1 || destinationStep < 1) return StatusStepError;
    if (rectangle.x < 0 || rectangle.y < 0 || rectangle.width < 1 || rectangle.height < 1)
        return StatusSizeError;
    if (destinationSize.width < 1 || destinationSize.height < 1) return StatusSizeError;
    if (rectangle.x >= sourceSize.width || rectangle.y >= sourceSize.height) return StatusNoOverlap;
    if (!(xFactor > 0.0) || !(yFactor > 0.0)) return StatusFactorError;
    if (interpolation != kNearest && interpolation != kBilinear && interpolation != kCubic)
        return StatusInterpolationError;
    return StatusNoError;
}

// The table of columns: for each written column the index of its left pixel and its weight. The padding at
// the end walks on: its pairs lie within the source as all do, and what comes of them is not written.
template <class Passes>
struct Columns {
    std::size_t count;
    HeapArray<std::int32_t> left;
    HeapArray<typename Passes::ColumnWeight> weights;

    explicit Columns(std::size_t padded) : count(padded), left(padded), weights(padded) {}

    void Fill(const Axis& axis) {
        AxisWalk walk(axis);
        for (std::size_t x = 0; x < count; ++x) {
            const AxisSample column = walk.NextPair();
            left[x] = column.lower;
            weights[x] = Passes::WeightOfColumn(column.fraction);
        }
    }
};

// A source row after its horizontal pass.
template <class Passes>
struct BlendedRow {
    std::int32_t row = -1; // none yet
    HeapArray<typename Passes::Intermediate> values;

    explicit BlendedRow(std::size_t padded) : values(padded) {}

    void Hold(std::int32_t wanted, const Job& job, const Columns<Passes>& columns) {
        if (row == wanted) return;
        Passes::Horizontal(RowAt(job.source, job.sourceStep, wanted), columns.left.Get(),
                           columns.weights.Get(), values.Get(), columns.count);
        row = wanted;
    }
};

template <class Passes>
Status ResizeBilinear(const Job& job) {
    // Take all scratch before anything is written.
    const std::size_t width = static_cast<std::size_t>(job.columns.written);
    const std::size_t padded = (width + kPadding - 1) / kPadding * kPadding;
    Columns<Passes> columns(padded);
    BlendedRow<Passes> upper(padded);
    BlendedRow<Passes> lower(padded);
    if (!columns.left || !columns.weights || !upper.values || !lower.values) return StatusMemoryError;
    columns.Fill(job.columns);

    // Blend each destination row from two source rows, the lower one often serving as the next upper one.
    AxisWalk rows(job.rows);
    for (std::int32_t y = 0; y < job.rows.written; ++y) {
        const AxisSample pair = rows.NextPair();
        if (lower.row == pair.lower) std::swap(upper, lower);
        upper.Hold(pair.lower, job, columns);
        lower.Hold(pair.lower + 1, job, columns);
        Passes::Vertical(upper.values.Get(), lower.values.Get(), Passes::WeightOfRow(pair.fraction),
                         RowAt(job.destination, job.destinationStep, y), width);
    }
    return StatusNoError;
}

template <class Sample>
Status ResizeNearest(const Job& job) {
    const std::size_t width = static_cast<std::size_t>(job.columns.written);
    HeapArray<std::int32_t> nearest(width);
    if (!nearest) return StatusMemoryError;
    AxisWalk columns(job.columns);
    for (std::size_t x = 0; x < width; ++x)
        nearest[x] = columns.NextNearest();

    AxisWalk rows(job.rows);
    for (std::int32_t y = 0; y < job.rows.written; ++y) {
        const std::uint8_t* from = RowAt(job.source, job.sourceStep, rows.NextNearest());
        std::uint8_t* to = RowAt(job.destination, job.destinationStep, y);
        for (std::size_t x = 0; x < width; ++x)
            std::memcpy(to + x * sizeof(Sample), from + static_cast<std::size_t>(nearest[x]) * sizeof(Sample),
                        sizeof(Sample));
    }
    return StatusNoError;
}

template <class Passes>
Status Resize(const Job& job, std::int32_t interpolation) {
    const bool isLine = job.columns.sourceLength < 2 || job.rows.sourceLength < 2;
    if (isLine || interpolation == kNearest) return ResizeNearest<typename Passes::Sample>(job);
    return ResizeBilinear<Passes>(job);
}

} // namespace

Status Resize8uC1(const std::uint8_t* source, ImageSize sourceSize, std::int32_t sourceStep,
                  ImageRect rectangle, std::uint8_t* destination, std::int32_t destinationStep,
                  ImageSize destinationSize, double xFactor, double yFactor, std::int32_t interpolation) {
    const Status status = CheckArguments(source, sourceSize, sourceStep, rectangle, destination,
                                         destinationStep, destinationSize, xFactor, yFactor, interpolation);
    if (status != StatusNoError) return status;

    const Job job{
        source,
        sourceStep,
        destination,
        destinationStep,
        Axis::Make(sourceSize.width, rectangle.x, rectangle.width, destinationSize.width, xFactor),
        Axis::Make(sourceSize.height, rectangle.y, rectangle.height, destinationSize.height, yFactor)};
    return Resize<BytePasses>(job, interpolation);
}

Status Resize32fC1(const float* source, ImageSize sourceSize, std::int32_t sourceStep, ImageRect rectangle,
                   float* destination, std::int32_t destinationStep, ImageSize destinationSize,
                   double xFactor, double yFactor, std::int32_t interpolation) {
    const Status status = CheckArguments(source, sourceSize, sourceStep, rectangle, destination,
                                         destinationStep, destinationSize, xFactor, yFactor, interpolation);
    if (status != StatusNoError) return status;

    // Steps of float images count in whole floats.
    const Job job{
        source,
        sourceStep / 4 * 4,
        destination,
        destinationStep / 4 * 4,
        Axis::Make(sourceSize.width, rectangle.x, rectangle.width, destinationSize.width, xFactor),
        Axis::Make(sourceSize.height, rectangle.y, rectangle.height, destinationSize.height, yFactor)};
    return Resize<FloatPasses>(job, interpolation);
}

} // namespace z3d::primitives
