#include "render/kernels/walks/LoneRays.h"

#include "render/kernels/sampling/SampleStepper.h"

namespace z3d::render::Z3D_ISA {
namespace {

// A packet of any sixteen pixels instead of a square of them. Such rays are few, so their set-up is the exact one and
// nothing is passed over.
class LoneRays {
public:
    LoneRays(const Projection& projection, const Rule& rule, const ViewLines& lines)
        : projection_(projection), rule_(rule), lines_(lines), stepper_(projection, rule.shape) {}

    // The pixels from number `first` on. Where there are fewer than sixteen, the last one is repeated.
    void Render(std::int32_t first) {
        LinePixel pixels[kRays];
        const std::int32_t left = lines_.LoneCount() - first;
        const int count = left < kRays ? left : kRays;
        for (int ray = 0; ray < kRays; ++ray)
            pixels[ray] = lines_.Lone(first + (ray < count ? ray : count - 1));
        Start(pixels);
        Follow();

        // The pixels may lie anywhere, so they are copied one by one.
        float finished[3 * kRays];
        rule_.finish(rule_, states_.own, {finished, kQuadsInARow});
        for (int ray = 0; ray < count; ++ray) {
            float* to = projection_.PixelAt(lines_.Row(pixels[ray]), lines_.Column(pixels[ray]));
            __builtin_memcpy(to, finished + 3 * ray, 3 * sizeof(float));
        }
    }

private:
    void Start(const LinePixel (&pixels)[kRays]) {
        lines_.Trim(pixels, kRays, packet_.start, packet_.count);
        packet_.longest = 0;
        for (int ray = 0; ray < kRays; ++ray) {
            // A mode may take one sample more than the trimmed ray has, or a few of them only; the way to the first one
            // is that of the trimmed ray all the same.
            for (int axis = 0; axis < 3; ++axis) {
                positions_.axis[axis][ray] =
                    lines_.StartOf(pixels[ray], axis, packet_.start[ray], packet_.count[ray]);
            }
            packet_.count[ray] = lines_.SamplesToTake(packet_.count[ray]);
            if (packet_.count[ray] > packet_.longest) packet_.longest = packet_.count[ray];
        }
    }

    void Follow() {
        __builtin_memset(states_.own, 0, static_cast<std::size_t>(rule_.stateBytes));
        states_.settled = Bytes{};
        states_.wasAccepted = Bytes{};
        for (std::int32_t done = 0; done < packet_.longest; done += kSamples) {
            const std::int32_t left = packet_.longest - done;
            const int samples = left < kSamples ? left : kSamples;
            stepper_.NextStretch(positions_, samples, indexes_, rule_.keepsPositions);
            rule_.lookAt(rule_, indexes_, samples, RemainingOf(packet_, done), states_);
        }
    }

    const Projection& projection_;
    const Rule& rule_;
    const ViewLines& lines_;
    const SampleStepper stepper_;
    Packet packet_ = {};
    Positions positions_;
    Indexes indexes_;
    RayStates states_;
};

} // namespace

void RenderLoneRays(const Projection& projection, const Rule& rule, const ViewLines& lines) {
    if (lines.LoneCount() == 0) return;
    LoneRays rays(projection, rule, lines);
    for (std::int32_t first = 0; first < lines.LoneCount(); first += kRays)
        rays.Render(first);
}

} // namespace z3d::render::Z3D_ISA
