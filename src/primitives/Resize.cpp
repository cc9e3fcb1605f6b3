#include "primitives/Resize.h"

#include "platform/Heap.h"
#include "primitives/BilinearResize.h"
#include "primitives/ResizeAxis.h"
#include "primitives/ResizePasses.h"

#include <cstddef>
#include <cstring>

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

template <class Passes>
Status ResizeBilinear(const Job& job) {
    BilinearResize<Passes> resize(job.columns, job.rows);
    if (!resize) return StatusMemoryError;
    resize.Run(job.source, job.sourceStep, job.destination, job.destinationStep);
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
