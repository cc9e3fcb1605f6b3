#include "Panel.h"

#include <commctrl.h>

#include <cmath>

#include "Commands.h"
#include "Failure.h"
#include "Names.h"
#include "PanelControls.h"
#include "Screen.h"
#include "StatusText.h"
#include "Text.h"

namespace z3d::viewer {

using tools::Format;
using tools::Interval;

namespace {

constexpr wchar_t kPanelClass[] = L"ZentraPanel";
constexpr int kSliderSteps = 1000; // of sliders without whole values
constexpr int kExtraSteps = 100;

int Position(HWND slider) { return static_cast<int>(SendMessageW(slider, TBM_GETPOS, 0, 0)); }

// Only what differs is sent: a slider that is dragged must not be disturbed.
void SetSlider(HWND slider, int lowest, int highest, int position) {
    if (SendMessageW(slider, TBM_GETRANGEMIN, 0, 0) != lowest)
        SendMessageW(slider, TBM_SETRANGEMIN, TRUE, lowest);
    if (SendMessageW(slider, TBM_GETRANGEMAX, 0, 0) != highest)
        SendMessageW(slider, TBM_SETRANGEMAX, TRUE, highest);
    if (Position(slider) != position) SendMessageW(slider, TBM_SETPOS, TRUE, position);
}

void Select(HWND list, size_t index) {
    if (SendMessageW(list, CB_GETCURSEL, 0, 0) != static_cast<LRESULT>(index))
        SendMessageW(list, CB_SETCURSEL, index, 0);
}

size_t Selected(HWND list) { return static_cast<size_t>(SendMessageW(list, CB_GETCURSEL, 0, 0)); }

void Tick(HWND button, bool on) {
    const WPARAM wanted = on ? BST_CHECKED : BST_UNCHECKED;
    if (static_cast<WPARAM>(SendMessageW(button, BM_GETCHECK, 0, 0)) != wanted)
        SendMessageW(button, BM_SETCHECK, wanted, 0);
}

bool Ticked(HWND button) { return SendMessageW(button, BM_GETCHECK, 0, 0) == BST_CHECKED; }

void Enable(HWND control, bool on) {
    if ((IsWindowEnabled(control) != 0) != on) EnableWindow(control, on);
}

int StepOf(double value, const Interval& ends) {
    const double part = (value - ends.low) / (double{ends.high} - ends.low);
    return static_cast<int>(std::lround(std::clamp(part, 0.0, 1.0) * kSliderSteps));
}

float ValueOf(int step, const Interval& ends) {
    return static_cast<float>(ends.low + (double{ends.high} - ends.low) * step / kSliderSteps);
}

bool Holds(int id, int first, size_t count) { return id >= first && id < first + static_cast<int>(count); }

} // namespace

Panel::Panel(HWND parent, State& state, std::function<void()> changed)
    : state_(state), changed_(std::move(changed)) {
    RegisterWindowClass(kPanelClass, Procedure, 0, reinterpret_cast<HBRUSH>(COLOR_BTNFACE + 1));
    window_ = CreateWindowExW(WS_EX_CONTROLPARENT, kPanelClass, L"Settings", WS_CHILD | WS_VISIBLE, 0, 0, 0,
                              0, parent, nullptr, GetModuleHandleW(nullptr), this);
    Create();
}

void Panel::Create() {
    for (const ControlPlan& plan : PanelPlan())
        // The frame of a group lies over what it holds.
        CreateWindowExW(plan.style == BS_GROUPBOX ? WS_EX_TRANSPARENT : 0, plan.kind, plan.text,
                        plan.style | WS_CHILD | WS_VISIBLE, 0, 0, 0, 0, window_,
                        reinterpret_cast<HMENU>(static_cast<INT_PTR>(plan.id)), GetModuleHandleW(nullptr),
                        nullptr);
    for (const wchar_t* title : kModeTitles)
        SendMessageW(Control(kModeList), CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(title));
    for (const wchar_t* title : kPaletteTitles)
        SendMessageW(Control(kPaletteList), CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(title));
    for (size_t i = 0; i < 3; ++i)
        SendMessageW(Control(kAngleEdit + static_cast<int>(i)), EM_LIMITTEXT, 15, 0);
}

int Panel::Width() const {
    const bool scrolls = height_ < Scaled(kPanelHeight, dotsPerInch_);
    return Scaled(kPanelWidth, dotsPerInch_) + (scrolls ? GetSystemMetrics(SM_CXVSCROLL) : 0);
}

void Panel::SetResolution(int dotsPerInch) {
    dotsPerInch_ = dotsPerInch;
    const HFONT former = font_;
    font_ = MessageFont(dotsPerInch);
    for (HWND child = GetWindow(window_, GW_CHILD); child != nullptr; child = GetWindow(child, GW_HWNDNEXT))
        SendMessageW(child, WM_SETFONT, reinterpret_cast<WPARAM>(font_), TRUE);
    DeleteObject(former);
    Place();
}

void Panel::SetHeight(int height) {
    height_ = height;
    SCROLLINFO info = {};
    info.cbSize = sizeof info;
    info.fMask = SIF_RANGE | SIF_PAGE;
    info.nMax = Scaled(kPanelHeight, dotsPerInch_) - 1;
    info.nPage = static_cast<UINT>(std::max(height, 1));
    SetScrollInfo(window_, SB_VERT, &info, TRUE);
    ScrollTo(scrolled_);
}

void Panel::Place() {
    HWND child = GetWindow(window_, GW_CHILD);
    for (const ControlPlan& plan : PanelPlan()) {
        const auto scaled = [this](int length) { return Scaled(length, dotsPerInch_); };
        SetWindowPos(child, nullptr, scaled(plan.x), scaled(plan.y) - scrolled_, scaled(plan.width),
                     scaled(plan.height), SWP_NOZORDER | SWP_NOACTIVATE);
        child = GetWindow(child, GW_HWNDNEXT);
    }
}

void Panel::ScrollTo(int position) {
    const int last = std::max(0, Scaled(kPanelHeight, dotsPerInch_) - height_);
    const int wanted = std::clamp(position, 0, last);
    if (wanted != scrolled_)
        ScrollWindowEx(window_, 0, scrolled_ - wanted, nullptr, nullptr, nullptr, nullptr,
                       SW_SCROLLCHILDREN | SW_INVALIDATE | SW_ERASE);
    scrolled_ = wanted;
    SetScrollPos(window_, SB_VERT, wanted, TRUE);
}

void Panel::OnScroll(int request, int position) {
    const int line = Scaled(26, dotsPerInch_);
    const int moves[] = {scrolled_ - line, scrolled_ + line, scrolled_ - height_, scrolled_ + height_};
    if (request >= SB_LINEUP && request <= SB_PAGEDOWN) ScrollTo(moves[request]);
    if (request == SB_THUMBTRACK || request == SB_THUMBPOSITION) ScrollTo(position);
}

LRESULT CALLBACK Panel::Procedure(HWND window, UINT message, WPARAM first, LPARAM second) {
    auto* const self = OwnerOf<Panel>(window, message, second);
    if (self == nullptr) return DefWindowProcW(window, message, first, second);
    self->window_ = window;
    return Guarded([&] { return self->Handle(message, first, second); });
}

LRESULT Panel::Handle(UINT message, WPARAM first, LPARAM second) {
    switch (message) {
    case WM_COMMAND:
        OnCommand(LOWORD(first), HIWORD(first), reinterpret_cast<HWND>(second));
        return 0;
    case WM_HSCROLL:
        OnSlider(reinterpret_cast<HWND>(second));
        return 0;
    case WM_VSCROLL:
        OnScroll(LOWORD(first), HIWORD(first));
        return 0;
    case WM_MOUSEWHEEL:
        ScrollTo(scrolled_ - GET_WHEEL_DELTA_WPARAM(first) * Scaled(60, dotsPerInch_) / WHEEL_DELTA);
        return 0;
    default:
        return DefWindowProcW(window_, message, first, second);
    }
}

void Panel::OnCommand(int id, int code, HWND control) {
    if (Holds(id, kAngleEdit, 3)) {
        if (code == EN_KILLFOCUS) TakeAngles();
        return;
    }
    if (id == kCommandText) return;
    if (id == kModeList || id == kPaletteList) {
        if (code != CBN_SELCHANGE) return;
        Perform(state_, Nth(id == kModeList ? Command::Mode : Command::Palette, Selected(control)), 1);
    } else if (id == kAutomatic) {
        if (Ticked(control))
            state_.view.Settings().range = {tools::RangeKind::OfMode, {}};
        else
            SetRange(state_.view, shown_);
    } else if (id == kWholeVolume) {
        for (size_t side = 0; side < kCropSideCount; ++side)
            SetCropSide(state_.view, side, side % 2 == 0 ? 1 : AxisLength(state_.view, side / 2));
    } else {
        // A button that stands for a command.
        SendMessageW(GetParent(window_), WM_COMMAND, static_cast<WPARAM>(id), 0);
        return;
    }
    changed_();
}

void Panel::OnSlider(HWND slider) {
    const int id = GetDlgCtrlID(slider);
    const int position = Position(slider);
    View& view = state_.view;
    if (id == kExtraSlider) {
        // 0 would leave out all layers but the first, which is another mode.
        const int least = view.Mode().extra == tools::Extra::Attenuation ? 1 : 0;
        view.Settings().extra = static_cast<float>(std::max(position, least)) / kExtraSteps;
    } else if (id == kWindowSlider) {
        SetWindowLow(view, static_cast<float>(position));
    } else if (id == kWindowSlider + 1) {
        SetWindowHigh(view, static_cast<float>(position));
    } else if (Holds(id, kRangeSlider, 2)) {
        const float value = ValueOf(position, rangeEnds_);
        const Interval wanted = id == kRangeSlider ? Interval{value, std::max(value, shown_.high)}
                                                   : Interval{std::min(value, shown_.low), value};
        SetRange(view, wanted);
    } else if (Holds(id, kCropSlider, kCropSideCount)) {
        SetCropSide(view, static_cast<size_t>(id - kCropSlider), position);
    }
    changed_();
}

// Only what was typed: the others are shown rounded, and may have more digits.
void Panel::TakeAngles() {
    Angles angles = state_.view.angles;
    bool typed = false;
    for (size_t i = 0; i < 3; ++i) {
        const HWND edit = Control(kAngleEdit + static_cast<int>(i));
        if (SendMessageW(edit, EM_GETMODIFY, 0, 0) == 0) continue;
        SendMessageW(edit, EM_SETMODIFY, FALSE, 0);
        typed = true;
        try {
            angles[i] = tools::ParseFinite(tools::Trimmed(TextOf(edit)));
        } catch (const tools::BadArgument&) {
            MessageBeep(MB_ICONWARNING);
        }
    }
    if (!typed) return;
    SetAngles(state_.view, angles);
    changed_();
}

void Panel::Show(const Interval& shown) {
    shown_ = shown;
    const View& view = state_.view;
    ShowAngles();
    Tick(Control(static_cast<int>(Command::Spin)), state_.spinning);
    Select(Control(kModeList), view.mode);
    Select(Control(kPaletteList), static_cast<size_t>(view.palette));
    Enable(Control(kPaletteList), !view.Colour());
    ShowExtra();
    ShowWindow();
    ShowRange(shown);
    ShowCrop();
}

void Panel::ShowAngles() {
    for (size_t i = 0; i < 3; ++i) {
        const HWND edit = Control(kAngleEdit + static_cast<int>(i));
        // What is being typed stays.
        if (GetFocus() != edit || SendMessageW(edit, EM_GETMODIFY, 0, 0) == 0)
            SetText(edit, Format("%.1f", double{state_.view.angles[i]}));
    }
}

void Panel::ShowExtra() {
    const tools::Extra extra = state_.view.Mode().extra;
    const bool used = extra != tools::Extra::None;
    const float value = state_.view.Settings().extra;
    SetText(Control(kExtraLabel), extra == tools::Extra::Attenuation ? "Attenuation" : "Transparency");
    SetText(Control(kExtraValue), used ? Format("%.2f", double{value}) : "");
    SetSlider(Control(kExtraSlider), 0, kExtraSteps, static_cast<int>(std::lround(value * kExtraSteps)));
    Enable(Control(kExtraLabel), used);
    Enable(Control(kExtraSlider), used);
}

void Panel::ShowWindow() {
    const Interval& window = state_.view.Settings().window;
    const int top = static_cast<int>(WindowTop(state_.view));
    const float ends[] = {window.low, window.high};
    for (int i = 0; i < 2; ++i) {
        SetSlider(Control(kWindowSlider + i), 0, top, static_cast<int>(std::lround(ends[i])));
        SetText(Control(kWindowValue + i), Format("%g", double{ends[i]}));
    }
}

// From nothing to all that the mode can give; where that has no end, to the most that was shown.
Interval Panel::RangeEnds(const Interval& shown) {
    const tools::Mode& mode = state_.view.Mode();
    Interval ends = state_.view.Colour() ? mode.colourFull : mode.greyFull;
    if (!std::isinf(ends.high)) return ends;
    ends.high = std::max(shown.high, rangeMode_ == state_.view.mode ? rangeEnds_.high : 1.0f);
    return ends;
}

void Panel::ShowRange(const Interval& shown) {
    const tools::RangeChoice& choice = state_.view.Settings().range;
    const bool fixed = choice.kind == tools::RangeKind::Fixed;
    rangeEnds_ = RangeEnds(shown);
    rangeMode_ = state_.view.mode;
    const Interval range = fixed ? choice.fixed : shown;
    const float ends[] = {range.low, range.high};
    for (int i = 0; i < 2; ++i) {
        SetSlider(Control(kRangeSlider + i), 0, kSliderSteps, StepOf(ends[i], rangeEnds_));
        SetText(Control(kRangeValue + i), RangeEndText(ends[i]));
    }
    Tick(Control(kAutomatic), !fixed);
}

void Panel::ShowCrop() {
    for (size_t side = 0; side < kCropSideCount; ++side) {
        const int id = static_cast<int>(side);
        const int bound = CropSide(state_.view, side);
        SetSlider(Control(kCropSlider + id), 1, AxisLength(state_.view, side / 2), bound);
        SetText(Control(kCropValue + id), Format("%d", bound));
    }
    Enable(Control(kWholeVolume), IsCropped(state_.view));
}

// A text of several lines scrolls as it changes, and some systems move the painted lines of the old one. So all of
// it is painted anew.
void Panel::ShowCommand(const std::string& text) {
    const HWND edit = Control(kCommandText);
    if (TextOf(edit) == text) return;
    SendMessageW(edit, WM_SETREDRAW, FALSE, 0);
    SetText(edit, text);
    SendMessageW(edit, WM_SETREDRAW, TRUE, 0);
    InvalidateRect(edit, nullptr, TRUE);
}

} // namespace z3d::viewer
