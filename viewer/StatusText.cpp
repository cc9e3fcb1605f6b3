#include "StatusText.h"

#include <cmath>

#include "Text.h"

namespace z3d::viewer {

using tools::Format;

std::string TitleText(const std::string& sourceName) { return sourceName + " - Zentra view"; }

std::string VolumeText(const std::string& name, const View& view) {
    return Format("%s: %d x %d x %d %s voxels", name.c_str(), view.size.width, view.size.height,
                  view.size.depth, view.Colour() ? "colour" : "grey");
}

std::string SizeText(const Frame& frame) {
    return Format("%d x %d pixels", frame.picture.width, frame.picture.height);
}

std::string TimeText(const Frame& frame) { return Format("%.1f ms", frame.projection->seconds * 1000); }

std::string SpeedText(double picturesPerSecond) {
    return picturesPerSecond > 0 ? Format("%.0f pictures/s", picturesPerSecond) : "";
}

std::string PointerText(const Frame& frame, int column, int row) {
    const std::string value = ValueAt(frame, column, row);
    return value.empty() ? "" : Format("(%d, %d): %s", column, row, value.c_str());
}

std::string RangeEndText(double value) { return Format(std::fabs(value) < 1000 ? "%.4g" : "%.0f", value); }

const char* KeysText() {
    return "Mouse\n"
           "Left drag:  turns the volume like a ball\n"
           "Shift + left drag:  turns it about the middle of the screen\n"
           "Right drag:  to the right: softer contrast; down: brighter\n"
           "Shift + right drag:  the same for the window of voxels that count\n"
           "Middle drag:  moves the picture\n"
           "Wheel:  scales the picture\n"
           "Double click:  resets the view\n"
           "\n"
           "Keys\n"
           "F, B, L, R, T, U:  front, back, left, right, top, bottom (under)\n"
           "Arrows:  turn by 5 degrees\n"
           "1 to 8:  the modes\n"
           "S:  spin\n"
           "P:  next palette\n"
           "+, -, Z:  larger, smaller, fit the window\n"
           "0:  reset\n"
           "Esc:  cancels loading\n"
           "Ctrl+O, Ctrl+S:  open a file, save the picture\n"
           "Ctrl+Shift+S:  save the values\n"
           "Ctrl+C, Ctrl+Shift+C:  copy the picture, the command line";
}

} // namespace z3d::viewer
