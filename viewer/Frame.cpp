#include "Frame.h"

#include <new>

#include "Failure.h"
#include "Text.h"

namespace z3d::viewer {

using namespace tools;

namespace {

std::shared_ptr<const Projection> Projected(const View& view, const std::shared_ptr<LoadedVolume>& volume,
                                            const Frame* former) {
    const bool still = former != nullptr && former->projection != nullptr && former->volume == volume
                       && SameProjection(former->view, view);
    if (still) return former->projection;
    return std::make_shared<const Projection>(
        Project(*volume->volume, RenderedRotation(view), RequestOf(view)));
}

constexpr uint32_t Packed(uint32_t red, uint32_t green, uint32_t blue) {
    return red << 16 | green << 8 | blue;
}

void FillPixels(Frame& frame) {
    const Picture& picture = frame.picture;
    const size_t count = static_cast<size_t>(picture.width) * static_cast<size_t>(picture.height);
    frame.pixels.resize(count);
    const uint8_t* in = picture.bytes.data();
    if (picture.channels == 1) {
        for (size_t i = 0; i < count; ++i)
            frame.pixels[i] = in[i] * 0x010101u;
        return;
    }
    for (size_t i = 0; i < count; ++i, in += 3)
        frame.pixels[i] = Packed(in[0], in[1], in[2]);
}

void Fill(Frame& frame, const Frame* former) {
    const View& view = frame.view;
    frame.projection = Projected(view, frame.volume, former);
    frame.range = RangeFor(view.Settings().range, view.Mode(), view.Colour(), *frame.projection);
    const Palette palette = view.Colour() ? Palette::Grey : view.palette;
    frame.picture = MakePicture(*frame.projection, {view.Colour(), frame.range, {}, palette});
    FillPixels(frame);
}

bool IsSurface(const View& view) { return view.Mode().number == RenderModeSurface; }

} // namespace

std::unique_ptr<Frame> MakeFrame(const View& view, const std::shared_ptr<LoadedVolume>& volume,
                                 const Frame* former) {
    auto frame = std::make_unique<Frame>();
    frame->view = view;
    frame->volume = volume;
    try {
        Fill(*frame, former);
    } catch (const std::bad_alloc&) {
        frame->failure = "not enough memory for the picture";
    } catch (const std::exception& problem) {
        frame->failure = problem.what();
    }
    return frame;
}

std::string ValueAt(const Frame& frame, int column, int row) {
    const Projection* const projection = frame.projection.get();
    if (projection == nullptr || column < 0 || row < 0 || column >= projection->width
        || row >= projection->height)
        return "";
    const float* const pixel = projection->Row(row) + 3 * static_cast<size_t>(column);
    const bool black = pixel[0] == 0 && pixel[1] == 0 && pixel[2] == 0;
    if (IsSentinel(pixel[0]) || (IsSurface(frame.view) && black)) return "nothing there";
    if (!frame.view.Colour()) return Format("%.4g", double{pixel[0]});
    return Format("%.4g %.4g %.4g", double{pixel[0]}, double{pixel[1]}, double{pixel[2]});
}

} // namespace z3d::viewer
