#include "primitives/Resize.h"

#include "platform/Heap.h"
#include "primitives/ResizeAxis.h"
#include "primitives/ResizePasses.h"

#include <algorithm>
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
class Columns {
public:
    explicit Columns(std::size_t padded) : count_(padded), left_(padded), weights_(padded) {
        if (blendGroups_ != nullptr) groups_ = HeapArray<Group>(padded / Group::kColumns);
    }

    explicit operator bool() const { return left_ && weights_ && (blendGroups_ == nullptr || groups_); }

    void Fill(const Axis& axis) {
        AxisWalk walk(axis);
        for (std::size_t x = 0; x < count_; ++x) {
            const AxisSample column = walk.NextPair();
            left_[x] = column.lower;
            weights_[x] = Passes::WeightOfColumn(column.fraction);
        }
        if (!FormGroups(axis.sourceLength)) blendGroups_ = nullptr;
    }

    void Blend(const std::uint8_t* row, typename Passes::Intermediate* to) const {
        if (blendGroups_ != nullptr) {
            blendGroups_(row, groups_.Get(), weights_.Get(), to, count_);
        } else {
            Passes::Horizontal(row, left_.Get(), weights_.Get(), to, count_);
        }
    }

private:
    using Group = typename Passes::ColumnGroup;

    // False when the processor cannot, or when the pairs of some group lie too far apart.
    bool FormGroups(std::int32_t rowLength) {
        if (blendGroups_ == nullptr || rowLength < Group::kLoaded) return false;
        for (std::size_t x = 0; x < count_; x += Group::kColumns) {
            // Nothing beyond the row is read: at its end the load moves to the left.
            const std::int32_t first = std::min(left_[x], rowLength - Group::kLoaded);
            std::uint8_t offsets[Group::kColumns];
            for (std::size_t column = 0; column < Group::kColumns; ++column) {
                const std::int32_t offset = left_[x + column] - first;
                if (offset < 0 || offset + 1 >= Group::kLoaded) return false;
                offsets[column] = static_cast<std::uint8_t>(offset);
            }
            groups_[x / Group::kColumns] = Passes::GroupOf(first, offsets);
        }
        return true;
    }

    std::size_t count_;
    HeapArray<std::int32_t> left_;
    HeapArray<typename Passes::ColumnWeight> weights_;
    HeapArray<Group> groups_;
    decltype(Passes::HorizontalGroups()) blendGroups_ = Passes::HorizontalGroups(); // null: one by one
};

// A source row after its horizontal pass.
template <class Passes>
struct BlendedRow {
    std::int32_t row = -1; // none yet
    HeapArray<typename Passes::Intermediate> values;

    explicit BlendedRow(std::size_t padded) : values(padded) {}

    void Hold(std::int32_t wanted, const Job& job, const Columns<Passes>& columns) {
        if (row == wanted) return;
        columns.Blend(RowAt(job.source, job.sourceStep, wanted), values.Get());
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
    if (!columns || !upper.values || !lower.values) return StatusMemoryError;
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
