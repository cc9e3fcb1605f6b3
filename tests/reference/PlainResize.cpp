#include "reference/PlainPrimitives.h"

#include "reference/PlainSamples.h"

#include <cmath>
#include <vector>

namespace z3d::reference {
namespace {

using namespace primitives;

// One column or row: the pair (origin + i, origin + i + 1) and the fraction between them.
struct Entry {
    std::int64_t lower;
    double fraction;
    bool fullWeight; // of the upper neighbour, at the source's last pixel
    std::int64_t nearest;
};

struct Table {
    std::int64_t written;
    std::vector<Entry> entries;
};

Table MakeTable(std::int32_t sourceLength, std::int32_t origin, std::int32_t rectangleLength,
                std::int32_t destinationLength, double factor) {
    std::int64_t length = rectangleLength;
    if (std::int64_t{origin} + length > sourceLength) length = std::int64_t{sourceLength} - origin;
    const double extent = static_cast<double>(length) * factor;
    const double whole = std::trunc(extent + 0.0000001);
    std::int64_t written = destinationLength;
    if (whole < static_cast<double>(destinationLength)) written = static_cast<std::int64_t>(whole);
    if (written < 1) written = 1;
    const double step = extent > 1.0 ? static_cast<double>(length - 1) / (extent - 1.0) : 0.0;

    Table table{written, {}};
    double p = 0.0;
    for (std::int64_t j = 0; j < written; ++j, p += step) {
        const std::int64_t last = std::int64_t{sourceLength} - 1 - origin;
        Entry entry{};
        std::int64_t i = static_cast<std::int64_t>(p + 0.0000001);
        if (i > last) i = last; // an extent a little short of a whole number ends a little outside
        entry.fullWeight = i == last;
        if (entry.fullWeight) i -= 1;
        entry.lower = origin + i;
        entry.fraction = p - static_cast<double>(i);
        entry.nearest = static_cast<std::int64_t>(p + 0.5);
        if (entry.nearest > length - 1) entry.nearest = length - 1;
        entry.nearest += origin;
        table.entries.push_back(entry);
    }
    return table;
}

std::int32_t Weight(const Entry& entry) {
    return entry.fullWeight ? 16384 : static_cast<std::int32_t>(entry.fraction * 16384 + 0.0000001);
}

std::uint8_t Blend(std::uint8_t a, std::uint8_t b, std::uint8_t c, std::uint8_t d, const Entry& column,
                   const Entry& row) {
    const std::int32_t w1 = Weight(column);
    const std::int32_t w0 = 16384 - w1;
    const std::int32_t upper = (a * w0 + b * w1 + 128) >> 8;
    const std::int32_t lower = (c * w0 + d * w1 + 128) >> 8;
    const std::int32_t wy = Weight(row);
    return static_cast<std::uint8_t>((lower * wy + upper * (16384 - wy) + 524288) >> 20);
}

float Across(float a, float b, const Entry& column) {
    const float f = column.fullWeight ? 1.0f : static_cast<float>(column.fraction);
    return static_cast<float>(double{a} + (double{b} - double{a}) * double{f});
}

float Blend(float a, float b, float c, float d, const Entry& column, const Entry& row) {
    const float upper = Across(a, b, column);
    const float lower = Across(c, d, column);
    const float f = row.fullWeight ? 1.0f : static_cast<float>(row.fraction);
    return static_cast<float>(double{lower} * double{f} + double{upper} * (1.0 - double{f}));
}

template <class T>
Status Resize(const T* source, ImageSize sourceSize, std::int32_t sourceStep, ImageRect rectangle,
              T* destination, std::int32_t destinationStep, ImageSize destinationSize, double xFactor,
              double yFactor, std::int32_t interpolation) {
    if (source == nullptr || destination == nullptr) return StatusNullPointer;
    if (sourceSize.width < 1 || sourceSize.height < 1) return StatusSizeError;
    if (sourceStep < 1 || destinationStep < 1) return StatusStepError;
    if (rectangle.x < 0 || rectangle.y < 0) return StatusSizeError;
    if (rectangle.width < 1 || rectangle.height < 1) return StatusSizeError;
    if (destinationSize.width < 1 || destinationSize.height < 1) return StatusSizeError;
    if (rectangle.x >= sourceSize.width || rectangle.y >= sourceSize.height) return StatusNoOverlap;
    if (xFactor <= 0.0 || std::isnan(xFactor)) return StatusFactorError;
    if (yFactor <= 0.0 || std::isnan(yFactor)) return StatusFactorError;
    if (interpolation != 1 && interpolation != 2 && interpolation != 4) return StatusInterpolationError;

    const auto pixelBytes = static_cast<std::int32_t>(sizeof(T));
    const std::int32_t from = sourceStep / pixelBytes * pixelBytes;
    const std::int32_t to = destinationStep / pixelBytes * pixelBytes;
    const Table columns =
        MakeTable(sourceSize.width, rectangle.x, rectangle.width, destinationSize.width, xFactor);
    const Table rows =
        MakeTable(sourceSize.height, rectangle.y, rectangle.height, destinationSize.height, yFactor);
    const bool isNearest = interpolation == 1 || sourceSize.width < 2 || sourceSize.height < 2;

    for (std::int64_t r = 0; r < rows.written; ++r)
        for (std::int64_t c = 0; c < columns.written; ++c) {
            const Entry& column = columns.entries[static_cast<std::size_t>(c)];
            const Entry& row = rows.entries[static_cast<std::size_t>(r)];
            const auto at = [&](std::int64_t x, std::int64_t y) { return SampleAt(source, from, y, x); };
            const std::int64_t x = column.lower;
            const std::int64_t y = row.lower;
            if (isNearest)
                CopySample(source, from, row.nearest, column.nearest, destination, to, r, c);
            else
                StoreSample(destination, to, r, c,
                            Blend(at(x, y), at(x + 1, y), at(x, y + 1), at(x + 1, y + 1), column, row));
        }
    return StatusNoError;
}

} // namespace

Status Resize8uC1(const std::uint8_t* source, ImageSize sourceSize, std::int32_t sourceStep,
                  ImageRect rectangle, std::uint8_t* destination, std::int32_t destinationStep,
                  ImageSize destinationSize, double xFactor, double yFactor, std::int32_t interpolation) {
    return Resize(source, sourceSize, sourceStep, rectangle, destination, destinationStep, destinationSize,
                  xFactor, yFactor, interpolation);
}

Status Resize32fC1(const float* source, ImageSize sourceSize, std::int32_t sourceStep, ImageRect rectangle,
                   float* destination, std::int32_t destinationStep, ImageSize destinationSize,
                   double xFactor, double yFactor, std::int32_t interpolation) {
    return Resize(source, sourceSize, sourceStep, rectangle, destination, destinationStep, destinationSize,
                  xFactor, yFactor, interpolation);
}

} // namespace z3d::reference
