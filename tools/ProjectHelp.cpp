#include "ProjectHelp.h"

#include <cmath>

#include "Modes.h"
#include "Text.h"
#include "VolumeInput.h"

namespace z3d::tools {

namespace {

std::string ShownInterval(Interval interval) {
    return Format("%g:%g", double{interval.low}, double{interval.high});
}

std::string ShownRange(const Mode& mode) {
    if (mode.greyAuto) return "auto";
    return ShownInterval(mode.greyFull) + (mode.colourAuto ? ", rgb auto" : "");
}

std::string ModeTable() {
    std::string table = Format("%-63s%-12s%-12s%s\n", "Modes", "grey window", "rgb window", "range");
    for (const Mode& mode : Modes())
        table += Format("  %-9s%-52s%-12s%-12s%s\n", mode.name, mode.summary,
                        ShownInterval(mode.greyWindow).c_str(), ShownInterval(mode.colourWindow).c_str(),
                        ShownRange(mode).c_str());
    return table;
}

constexpr char kWindows[] = R"(
  The window of an rgb8 volume tests the sum of the three channels, 0 to 765. Its ends count, except in
  surface, layers and contrast, where a voxel must lie strictly between them. min and first show the empty
  voxels around an object unless --window leaves them out.
)";

constexpr char kConventions[] = R"(
View
  Without a rotation x points right, y up and z away from the viewer. The rotation matrix is the product
  of one rotation about each axis in the order of --order; its rows are the view's right, up and away
  directions in the volume. For volumes whose z points up, as in most medical data, --rotate -90,0,A shows
  the upright object turned by A degrees, -105,0,A the same from a little above, and 0,180,0 from the top.
  Right, up and away are left-handed axes: a scan stored with right-handed ones (x to the patient's right,
  y to the face, z to the crown) is seen as in a mirror.

Range
  auto runs from the least to the greatest value in the picture, full over all that the mode can give
  (for sum and layers: from 0 to the greatest value in the picture). A turntable keeps the range of its
  first picture, and pads all pictures to the size of the largest, made even. .nhdr and .pfm files keep the
  values as they are; pixels without a contribution hold -3.4028235e38 (min: 3.4028235e38; surface and
  layers: 0).

Examples
  zentra project head.nii.gz --mode surface --rotate -90,0,30 -o head.png
  zentra project ct.nrrd --mode surface --window 300:inf --file-units --rotate -90,0,30 -o bone.png
  zentra project slices/*.png --spacing 0.5,0.5,2 --mode max --palette fire -o slices.png
  zentra project head.raw --size 181x217x181 --type uint8 --mode max --rotate -90,0,30 -o head.png
  zentra project head.nhdr --mode blend --transparency 0.8 --rotate -90,0,0 --turntable 72 -o turn.apng
)";

} // namespace

std::string ProjectHelp() { return ModeTable() + kWindows + VolumeInputHelp() + kConventions; }

} // namespace z3d::tools
