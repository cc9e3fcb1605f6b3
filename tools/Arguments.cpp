#include "Arguments.h"

#include <charconv>
#include <cmath>
#include <string>

#include "Failure.h"
#include "Text.h"

namespace z3d::tools {

namespace {

std::string Quoted(std::string_view text) { return "'" + std::string(text) + "'"; }

template <class Number>
bool Parse(std::string_view text, Number& number) {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size();
}

// Exactly so many pieces, or a failure that shows the wanted form.
std::vector<std::string_view> Pieces(std::string_view text, char separator, size_t count, const char* form) {
    std::vector<std::string_view> pieces = Split(text, separator);
    if (pieces.size() != count) throw BadArgument(Quoted(text) + " is not of the form " + form);
    return pieces;
}

constexpr files::SampleType kStoredTypes[] = {
    files::SampleType::Uint8,  files::SampleType::Rgb8,    files::SampleType::Int16,
    files::SampleType::Uint16, files::SampleType::Float32, files::SampleType::Int8,
    files::SampleType::Int32,  files::SampleType::Uint32,  files::SampleType::Float64};

struct Bounds {
    short first, last;
};

Bounds ParseBounds(std::string_view text) {
    const auto ends = Pieces(text, ':', 2, "first:last");
    const Bounds bounds = {static_cast<short>(ParseAxisLength(ends[0])),
                           static_cast<short>(ParseAxisLength(ends[1]))};
    if (bounds.first > bounds.last) throw BadArgument(Quoted(text) + " ends before it begins");
    return bounds;
}

} // namespace

float ParseFloat(std::string_view text) {
    float number = 0;
    if (!Parse(text, number) || std::isnan(number)) throw BadArgument(Quoted(text) + " is not a number");
    return number;
}

float ParseFinite(std::string_view text) {
    const float number = ParseFloat(text);
    if (!std::isfinite(number)) throw BadArgument(Quoted(text) + " is not a finite number");
    return number;
}

double ParseFiniteDouble(std::string_view text) {
    double number = 0;
    if (!Parse(text, number) || !std::isfinite(number))
        throw BadArgument(Quoted(text) + " is not a finite number");
    return number;
}

int ParseWhole(std::string_view text, int lowest, int highest) {
    int number = 0;
    if (!Parse(text, number) || number < lowest || number > highest)
        throw BadArgument(Quoted(text) + Format(" is not a whole number from %d to %d", lowest, highest));
    return number;
}

int ParseAxisLength(std::string_view text) { return ParseWhole(text, 1, kLongestAxis); }

uint64_t ParseByteCount(std::string_view text) {
    uint64_t number = 0;
    // Above 2^62 the sum with the voxels' bytes could wrap.
    if (!Parse(text, number) || number >> 62 != 0)
        throw BadArgument(Quoted(text) + " is not a number of bytes");
    return number;
}

VolumeSize ParseSize(std::string_view text) {
    const std::string lower = LowerCase(text);
    const auto axes = Pieces(lower, 'x', 3, "181x217x181 (width x height x depth)");
    return {ParseAxisLength(axes[0]), ParseAxisLength(axes[1]), ParseAxisLength(axes[2])};
}

VoxelType ParseVoxelType(std::string_view text) {
    const std::string lower = LowerCase(text);
    if (lower == "uint8") return VoxelType::Grey8;
    if (lower == "rgb8") return VoxelType::Rgb8;
    throw BadArgument(Quoted(text) + " is neither uint8 nor rgb8");
}

files::SampleType ParseStoredType(std::string_view text) {
    const std::string lower = LowerCase(text);
    for (const files::SampleType type : kStoredTypes)
        if (lower == files::NameOf(type)) return type;
    throw BadArgument(Quoted(text) + " is none of the types " + StoredTypeNames(", "));
}

std::string StoredTypeNames(const char* separator) {
    std::string names;
    for (const files::SampleType type : kStoredTypes)
        names += (names.empty() ? "" : separator) + std::string(files::NameOf(type));
    return names;
}

files::Spacing ParseSpacing(std::string_view text) {
    const auto pieces = Pieces(text, ',', 3, "1,1,2.5 (distance of voxels along x, y and z)");
    const auto distance = [&](size_t i) {
        const double number = ParseFiniteDouble(pieces[i]);
        if (number <= 0) throw BadArgument(Quoted(pieces[i]) + " is not a distance above 0");
        return number;
    };
    return {distance(0), distance(1), distance(2)};
}

std::array<float, 3> ParseAngles(std::string_view text) {
    const auto pieces = Pieces(text, ',', 3, "30,40,50 (degrees about x, y and z)");
    std::array<float, 3> angles = {};
    for (size_t i = 0; i < 3; ++i)
        angles[i] = ParseFinite(pieces[i]);
    return angles;
}

short ParseAxis(std::string_view text) {
    const std::string lower = LowerCase(text);
    if (lower.size() == 1 && lower[0] >= 'x' && lower[0] <= 'z') return static_cast<short>(lower[0] - 'x');
    throw BadArgument(Quoted(text) + " is none of the axes x, y, z");
}

AxisOrder ParseOrder(std::string_view text) {
    AxisOrder order = {};
    unsigned seen = 0;
    for (size_t i = 0; i < 3 && text.size() == 3; ++i) {
        order.axis[i] = ParseAxis(text.substr(i, 1));
        seen |= 1u << order.axis[i];
    }
    if (seen != 7) throw BadArgument(Quoted(text) + " does not name each of the axes x, y, z once");
    return order;
}

CropBox ParseCrop(std::string_view text) {
    const auto pieces = Pieces(text, ',', 3, "x0:x1,y0:y1,z0:z1");
    const Bounds x = ParseBounds(pieces[0]);
    const Bounds y = ParseBounds(pieces[1]);
    const Bounds z = ParseBounds(pieces[2]);
    return {x.first, x.last, y.first, y.last, z.first, z.last};
}

Interval ParseInterval(std::string_view text) {
    const auto ends = Pieces(text, ':', 2, "low:high");
    const Interval interval = {ParseFloat(ends[0]), ParseFloat(ends[1])};
    if (interval.low > interval.high) throw BadArgument(Quoted(text) + " has its low end above its high end");
    return interval;
}

Colour ParseColour(std::string_view text) {
    const auto pieces = Pieces(text, ',', 3, "r,g,b");
    const auto channel = [&](size_t i) { return static_cast<uint8_t>(ParseWhole(pieces[i], 0, 255)); };
    return {channel(0), channel(1), channel(2)};
}

} // namespace z3d::tools
