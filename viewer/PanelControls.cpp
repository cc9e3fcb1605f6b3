#include "PanelControls.h"

#include <commctrl.h>

#include "Commands.h"

namespace z3d::viewer {

namespace {

constexpr wchar_t kButton[] = L"BUTTON";
constexpr wchar_t kStatic[] = L"STATIC";

constexpr DWORD kPush = BS_PUSHBUTTON | WS_TABSTOP;
constexpr DWORD kToggle = BS_AUTOCHECKBOX | BS_PUSHLIKE | WS_TABSTOP;
constexpr DWORD kCheck = BS_AUTOCHECKBOX | WS_TABSTOP;
constexpr DWORD kEdit = ES_AUTOHSCROLL | WS_BORDER | WS_TABSTOP;
constexpr DWORD kList = CBS_DROPDOWNLIST | WS_VSCROLL | WS_TABSTOP;
constexpr DWORD kSlider = TBS_HORZ | TBS_NOTICKS | WS_TABSTOP;
constexpr DWORD kText = ES_MULTILINE | ES_READONLY | WS_VSCROLL | WS_BORDER | WS_TABSTOP;

// Buttons that stand for commands have their numbers.
constexpr int kLookFrom = static_cast<int>(Command::LookFrom);
constexpr int kSpin = static_cast<int>(Command::Spin);
constexpr int kReset = static_cast<int>(Command::Reset);
constexpr int kCopyCommand = static_cast<int>(Command::CopyCommand);

constexpr ControlPlan kPlan[] = {
    {0, kButton, L"Look from", BS_GROUPBOX, 6, 4, 288, 82},
    {kLookFrom + 0, kButton, L"Front", kPush, 16, 22, 86, 26},
    {kLookFrom + 1, kButton, L"Back", kPush, 106, 22, 86, 26},
    {kLookFrom + 2, kButton, L"Left", kPush, 196, 22, 86, 26},
    {kLookFrom + 3, kButton, L"Right", kPush, 16, 52, 86, 26},
    {kLookFrom + 4, kButton, L"Top", kPush, 106, 52, 86, 26},
    {kLookFrom + 5, kButton, L"Bottom", kPush, 196, 52, 86, 26},
    {0, kButton, L"Turn (degrees)", BS_GROUPBOX, 6, 88, 288, 80},
    {0, kStatic, L"x", SS_LEFT | SS_NOPREFIX, 18, 110, 12, 18},
    {kAngleEdit + 0, L"EDIT", L"", kEdit, 32, 106, 66, 22},
    {0, kStatic, L"y", SS_LEFT | SS_NOPREFIX, 108, 110, 12, 18},
    {kAngleEdit + 1, L"EDIT", L"", kEdit, 122, 106, 66, 22},
    {0, kStatic, L"z", SS_LEFT | SS_NOPREFIX, 198, 110, 12, 18},
    {kAngleEdit + 2, L"EDIT", L"", kEdit, 212, 106, 66, 22},
    {kSpin, kButton, L"Spin", kToggle, 16, 134, 131, 26},
    {kReset, kButton, L"Reset all", kPush, 151, 134, 131, 26},
    {0, kButton, L"Show", BS_GROUPBOX, 6, 170, 288, 108},
    {0, kStatic, L"Mode", SS_LEFT | SS_NOPREFIX, 16, 192, 60, 18},
    {kModeList, L"COMBOBOX", L"", kList, 84, 187, 198, 240},
    {0, kStatic, L"Palette", SS_LEFT | SS_NOPREFIX, 16, 221, 60, 18},
    {kPaletteList, L"COMBOBOX", L"", kList, 84, 216, 198, 120},
    {kExtraLabel, kStatic, L"Transparency", SS_LEFT | SS_NOPREFIX, 16, 251, 80, 18},
    {kExtraSlider, TRACKBAR_CLASSW, L"", kSlider, 98, 246, 144, 24},
    {kExtraValue, kStatic, L"", SS_LEFT | SS_NOPREFIX, 244, 251, 40, 18},
    {0, kButton, L"Voxels that count", BS_GROUPBOX, 6, 280, 288, 72},
    {0, kStatic, L"from", SS_LEFT | SS_NOPREFIX, 16, 301, 34, 18},
    {kWindowSlider + 0, TRACKBAR_CLASSW, L"", kSlider, 50, 297, 192, 24},
    {kWindowValue + 0, kStatic, L"", SS_LEFT | SS_NOPREFIX, 244, 301, 40, 18},
    {0, kStatic, L"to", SS_LEFT | SS_NOPREFIX, 16, 327, 34, 18},
    {kWindowSlider + 1, TRACKBAR_CLASSW, L"", kSlider, 50, 323, 192, 24},
    {kWindowValue + 1, kStatic, L"", SS_LEFT | SS_NOPREFIX, 244, 327, 40, 18},
    {0, kButton, L"Brightness", BS_GROUPBOX, 6, 354, 288, 96},
    {0, kStatic, L"black", SS_LEFT | SS_NOPREFIX, 16, 375, 34, 18},
    {kRangeSlider + 0, TRACKBAR_CLASSW, L"", kSlider, 50, 371, 192, 24},
    {kRangeValue + 0, kStatic, L"", SS_LEFT | SS_NOPREFIX, 244, 375, 44, 18},
    {0, kStatic, L"white", SS_LEFT | SS_NOPREFIX, 16, 401, 34, 18},
    {kRangeSlider + 1, TRACKBAR_CLASSW, L"", kSlider, 50, 397, 192, 24},
    {kRangeValue + 1, kStatic, L"", SS_LEFT | SS_NOPREFIX, 244, 401, 44, 18},
    {kAutomatic, kButton, L"Automatic", kCheck, 18, 425, 140, 20},
    {0, kButton, L"Crop box", BS_GROUPBOX, 6, 452, 288, 126},
    {0, kStatic, L"x", SS_LEFT | SS_NOPREFIX, 16, 473, 12, 18},
    {kCropValue + 0, kStatic, L"", SS_RIGHT | SS_NOPREFIX, 26, 473, 32, 18},
    {kCropSlider + 0, TRACKBAR_CLASSW, L"", kSlider, 58, 469, 94, 24},
    {kCropSlider + 1, TRACKBAR_CLASSW, L"", kSlider, 152, 469, 94, 24},
    {kCropValue + 1, kStatic, L"", SS_LEFT | SS_NOPREFIX, 248, 473, 36, 18},
    {0, kStatic, L"y", SS_LEFT | SS_NOPREFIX, 16, 499, 12, 18},
    {kCropValue + 2, kStatic, L"", SS_RIGHT | SS_NOPREFIX, 26, 499, 32, 18},
    {kCropSlider + 2, TRACKBAR_CLASSW, L"", kSlider, 58, 495, 94, 24},
    {kCropSlider + 3, TRACKBAR_CLASSW, L"", kSlider, 152, 495, 94, 24},
    {kCropValue + 3, kStatic, L"", SS_LEFT | SS_NOPREFIX, 248, 499, 36, 18},
    {0, kStatic, L"z", SS_LEFT | SS_NOPREFIX, 16, 525, 12, 18},
    {kCropValue + 4, kStatic, L"", SS_RIGHT | SS_NOPREFIX, 26, 525, 32, 18},
    {kCropSlider + 4, TRACKBAR_CLASSW, L"", kSlider, 58, 521, 94, 24},
    {kCropSlider + 5, TRACKBAR_CLASSW, L"", kSlider, 152, 521, 94, 24},
    {kCropValue + 5, kStatic, L"", SS_LEFT | SS_NOPREFIX, 248, 525, 36, 18},
    {kWholeVolume, kButton, L"Whole volume", kPush, 16, 547, 131, 26},
    {0, kButton, L"The same picture from the command line", BS_GROUPBOX, 6, 580, 288, 130},
    {kCommandText, L"EDIT", L"", kText, 16, 598, 266, 76},
    {kCopyCommand, kButton, L"Copy", kPush, 16, 678, 131, 26},
};

} // namespace

std::span<const ControlPlan> PanelPlan() { return kPlan; }

} // namespace z3d::viewer
