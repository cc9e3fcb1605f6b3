#include "Picture.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace z3d::tools {

namespace {

class Scale {
public:
    explicit Scale(Interval range) : low_(range.low) {
        const double span = double{range.high} - low_;
        factor_ = span > 0 ? 255 / span : 0;
    }

    // The comparison also sends NaN to 0.
    uint8_t operator()(float value) const {
        const double level = (value - low_) * factor_;
        return level > 0 ? static_cast<uint8_t>(std::min(level + 0.5, 255.0)) : uint8_t{0};
    }

private:
    double low_;
    double factor_;
};

} // namespace

Interval ContributionRange(const Projection& projection) {
    Interval range = {std::numeric_limits<float>::infinity(), -std::numeric_limits<float>::infinity()};
    const float* const pixels = projection.pixels.get();
    for (size_t i = 0; i < projection.FloatCount(); ++i) {
        if (IsSentinel(pixels[i]) || !std::isfinite(pixels[i])) continue;
        range.low = std::min(range.low, pixels[i]);
        range.high = std::max(range.high, pixels[i]);
    }
    return range.low <= range.high ? range : Interval{0, 1};
}

namespace {

Picture EmptyPicture(const Projection& projection, int channels) {
    Picture picture = {projection.width, projection.height, channels, {}};
    picture.bytes.resize(projection.FloatCount() / 3 * static_cast<size_t>(channels));
    return picture;
}

// The three floats of a pixel are the same: the first stands for all.
Picture ColouredGrey(const Projection& projection, const Display& display) {
    Picture picture = EmptyPicture(projection, 3);
    const std::array<Colour, 256>& colours = ColoursOf(display.palette);
    const Scale scale(display.range);
    const float* pixel = projection.pixels.get();
    uint8_t* out = picture.bytes.data();
    for (size_t i = 0; i < projection.FloatCount() / 3; ++i, pixel += 3, out += 3) {
        const Colour& colour = IsSentinel(*pixel) ? display.background : colours[scale(*pixel)];
        out[0] = colour.red;
        out[1] = colour.green;
        out[2] = colour.blue;
    }
    return picture;
}

} // namespace

Picture MakePicture(const Projection& projection, const Display& display) {
    const uint8_t empty[] = {display.background.red, display.background.green, display.background.blue};
    const bool greyBackground = empty[0] == empty[1] && empty[1] == empty[2];
    if (!display.colour && (!greyBackground || display.palette != Palette::Grey))
        return ColouredGrey(projection, display);

    Picture picture = EmptyPicture(projection, display.colour ? 3 : 1);
    const auto channels = static_cast<size_t>(picture.channels);
    const Scale scale(display.range);
    const float* pixel = projection.pixels.get();
    uint8_t* out = picture.bytes.data();
    for (size_t i = 0; i < projection.FloatCount() / 3; ++i, pixel += 3, out += channels)
        for (size_t c = 0; c < channels; ++c)
            out[c] = IsSentinel(pixel[c]) ? empty[c] : scale(pixel[c]);
    return picture;
}

} // namespace z3d::tools
