#include "CommandText.h"

#include <charconv>

#include "Text.h"

namespace z3d::viewer {

using namespace tools;

namespace {

// The shortest text that is read as the very same float.
std::string Number(float value) {
    char text[32];
    const auto end = std::to_chars(text, text + sizeof text, value).ptr;
    return {text, end};
}

std::string Ends(const Interval& interval) { return Number(interval.low) + ":" + Number(interval.high); }

// Names of Windows files have no quotation marks.
std::string Quoted(const std::string& name) {
    const bool plain = name.find_first_of(" &()[]{}^=;!'+,`~%") == std::string::npos;
    return plain ? name : "\"" + name + "\"";
}

std::string Choices(const View& view) {
    const Mode& mode = view.Mode();
    const ModeSettings& settings = view.Settings();
    std::string text = " --mode " + std::string(mode.name);
    if (mode.extra == Extra::Transparency) text += " --transparency " + Number(settings.extra);
    if (mode.extra == Extra::Attenuation) text += " --attenuation " + Number(settings.extra);
    if (settings.window != (view.Colour() ? mode.colourWindow : mode.greyWindow))
        text += " --window " + Ends(settings.window);
    text +=
        " --rotate " + Number(view.angles[0]) + "," + Number(view.angles[1]) + "," + Number(view.angles[2]);
    if (IsCropped(view))
        text += Format(" --crop %d:%d,%d:%d,%d:%d", view.crop.x0, view.crop.x1, view.crop.y0, view.crop.y1,
                       view.crop.z0, view.crop.z1);
    if (settings.range.kind == RangeKind::Fixed) text += " --range " + Ends(settings.range.fixed);
    if (view.palette != Palette::Grey && !view.Colour())
        text += Format(" --palette %s", kPaletteNames[static_cast<size_t>(view.palette)]);
    return text;
}

} // namespace

std::string CommandText(const View& view, const Source& source) {
    std::string text;
    std::string input;
    for (const std::filesystem::path& path : source.paths)
        input += " " + Quoted(Shown(path));
    if (source.IsPhantom()) {
        input = " head.nhdr";
        text = Format("zentra phantom --size %dx%dx%d -o%s\r\n", view.size.width, view.size.height,
                      view.size.depth, input.c_str());
    }
    if (source.maxDiagonal != 0) input += Format(" --max-diagonal %d", source.maxDiagonal);
    return text + "zentra project" + input + Choices(view) + " -o picture.png";
}

} // namespace z3d::viewer
