#include "Resampler.h"

#include <algorithm>
#include <cmath>

namespace z3d::files {

namespace {

// out[i] += in[i] * weight
void Add(std::vector<float>& out, const std::vector<float>& in, float weight) {
    for (size_t i = 0; i < out.size(); ++i)
        out[i] += in[i] * weight;
}

int Last(const AxisTap& tap) { return tap.first + static_cast<int>(tap.weights.size()) - 1; }

} // namespace

// Both axes have the same ends. A tent over each new voxel, as wide as the wider of both distances.
std::vector<AxisTap> MakeTaps(int oldLength, int newLength) {
    const double step = static_cast<double>(oldLength) / newLength;
    const double reach = std::max(step, 1.0);
    std::vector<AxisTap> taps;
    for (int i = 0; i < newLength; ++i) {
        const double centre = (i + 0.5) * step - 0.5;
        const int first = std::clamp(static_cast<int>(std::ceil(centre - reach)), 0, oldLength - 1);
        const int last = std::clamp(static_cast<int>(std::floor(centre + reach)), first, oldLength - 1);
        AxisTap tap = {first, {}};
        double sum = 0;
        for (int k = first; k <= last; ++k)
            sum += std::max(0.0, 1 - std::abs(k - centre) / reach);
        for (int k = first; k <= last; ++k)
            tap.weights.push_back(static_cast<float>(std::max(0.0, 1 - std::abs(k - centre) / reach) / sum));
        taps.push_back(std::move(tap));
    }
    return taps;
}

Resampler::Resampler(const VolumeSize& from, const VolumeSize& to, unsigned int channels,
                     const SliceSink& sink)
    : from_(from),
      to_(to),
      channels_(channels),
      sink_(sink),
      columns_(MakeTaps(from.width, to.width)),
      rows_(MakeTaps(from.height, to.height)),
      slices_(MakeTaps(from.depth, to.depth)) {}

std::vector<float> Resampler::InPlane(const unsigned char* slice) const {
    const size_t oldRow = static_cast<size_t>(from_.width) * channels_;
    const size_t newRow = static_cast<size_t>(to_.width) * channels_;
    std::vector<float> plane(newRow * static_cast<size_t>(to_.height));
    std::vector<float> row(oldRow);
    float* out = plane.data();
    for (const AxisTap& rowTap : rows_) {
        std::ranges::fill(row, 0.0f);
        const unsigned char* in = slice + static_cast<size_t>(rowTap.first) * oldRow;
        for (const float weight : rowTap.weights) {
            for (size_t i = 0; i < oldRow; ++i)
                row[i] += static_cast<float>(in[i]) * weight;
            in += oldRow;
        }
        for (const AxisTap& tap : columns_)
            for (size_t c = 0; c < channels_; ++c) {
                float sum = 0;
                const float* at = row.data() + static_cast<size_t>(tap.first) * channels_ + c;
                for (const float weight : tap.weights) {
                    sum += *at * weight;
                    at += channels_;
                }
                *out++ = sum;
            }
    }
    return plane;
}

void Resampler::Finish(const AxisTap& tap, unsigned char* out) const {
    std::vector<float> sum(held_.front().size());
    auto plane = held_.begin() + (tap.first - firstHeld_);
    for (const float weight : tap.weights)
        Add(sum, *plane++, weight);
    for (size_t i = 0; i < sum.size(); ++i)
        out[i] = static_cast<unsigned char>(std::clamp(sum[i] + 0.5f, 0.0f, 255.0f));
}

void Resampler::Push(const unsigned char* slice) {
    held_.push_back(InPlane(slice));
    ++pushed_;
    for (; finished_ < slices_.size() && Last(slices_[finished_]) < pushed_; ++finished_)
        Finish(slices_[finished_], sink_(static_cast<int>(finished_)));
    const int needed = finished_ < slices_.size() ? slices_[finished_].first : pushed_;
    while (firstHeld_ < needed && !held_.empty()) {
        held_.pop_front();
        ++firstHeld_;
    }
}

} // namespace z3d::files
