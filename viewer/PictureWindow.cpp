#include "PictureWindow.h"

#include <windowsx.h>

#include "Screen.h"
#include "StatusText.h"

namespace z3d::viewer {

namespace {

constexpr wchar_t kPictureClass[] = L"ZentraPicture";

RECT RectOf(const Box& box) { return {box.left, box.top, box.left + box.width, box.top + box.height}; }

// The four strips around a box: nothing is painted twice, so nothing flickers.
void FillAround(HDC context, const RECT& inner, const RECT& outer) {
    const auto black = static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH));
    const RECT strips[] = {{outer.left, outer.top, outer.right, inner.top},
                           {outer.left, inner.bottom, outer.right, outer.bottom},
                           {outer.left, inner.top, inner.left, inner.bottom},
                           {inner.right, inner.top, outer.right, inner.bottom}};
    for (const RECT& strip : strips)
        if (strip.left < strip.right && strip.top < strip.bottom) FillRect(context, &strip, black);
}

BITMAPINFO InfoOf(const tools::Picture& picture) {
    BITMAPINFO info = {};
    info.bmiHeader.biSize = sizeof info.bmiHeader;
    info.bmiHeader.biWidth = picture.width;
    info.bmiHeader.biHeight = -picture.height; // top row first
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    info.bmiHeader.biCompression = BI_RGB;
    return info;
}

} // namespace

PictureWindow::PictureWindow(HWND parent, State& state, std::function<void()> changed)
    : state_(state), changed_(std::move(changed)) {
    RegisterWindowClass(kPictureClass, Procedure, CS_DBLCLKS | CS_HREDRAW | CS_VREDRAW, nullptr);
    window_ = CreateWindowExW(0, kPictureClass, L"Picture", WS_CHILD | WS_VISIBLE | WS_TABSTOP, 0, 0, 0, 0,
                              parent, nullptr, GetModuleHandleW(nullptr), this);
}

void PictureWindow::Show(std::shared_ptr<const Frame> frame) {
    frame_ = std::move(frame);
    Repaint();
    UpdateWindow(window_);
}

Area PictureWindow::ClientArea() const {
    RECT client = {};
    GetClientRect(window_, &client);
    return {client.right, client.bottom};
}

double PictureWindow::Fitting() const {
    const Area area = ClientArea();
    return FittingZoom(state_.view, area.width, area.height);
}

Placement PictureWindow::Place() const {
    const double zoom = state_.zoom == kFitZoom ? Fitting() : state_.zoom;
    return Placed({frame_->picture.width, frame_->picture.height}, ClientArea(), zoom, state_.offset);
}

void PictureWindow::Wheel(double notches) {
    ZoomBy(state_, notches, Fitting());
    changed_();
}

std::string PictureWindow::UnderPointer() const {
    POINT pointer = {};
    if (frame_ == nullptr || GetCursorPos(&pointer) == 0 || WindowFromPoint(pointer) != window_) return "";
    ScreenToClient(window_, &pointer);
    const Placement place = Place();
    return PointerText(*frame_, place.ColumnAt(pointer.x + 0.5), place.RowAt(pointer.y + 0.5));
}

LRESULT CALLBACK PictureWindow::Procedure(HWND window, UINT message, WPARAM first, LPARAM second) {
    auto* const self = OwnerOf<PictureWindow>(window, message, second);
    if (self == nullptr) return DefWindowProcW(window, message, first, second);
    self->window_ = window;
    return Guarded([&] { return self->Handle(message, first, second); });
}

LRESULT PictureWindow::Handle(UINT message, WPARAM first, LPARAM second) {
    if (HandlePointer(message, first, second)) return 0;
    switch (message) {
    case WM_PAINT:
        Paint();
        return 0;
    case WM_ERASEBKGND:
        return 1;
    case WM_GETDLGCODE:
        return DLGC_WANTARROWS;
    default:
        return DefWindowProcW(window_, message, first, second);
    }
}

bool PictureWindow::HandlePointer(UINT message, WPARAM first, LPARAM second) {
    const POINT at = {GET_X_LPARAM(second), GET_Y_LPARAM(second)};
    const bool shift = (first & MK_SHIFT) != 0;
    switch (message) {
    case WM_LBUTTONDOWN:
        Begin(shift ? Drag::Roll : Drag::Turn, at);
        return true;
    case WM_RBUTTONDOWN:
        Begin(shift ? Drag::Window : Drag::Range, at);
        return true;
    case WM_MBUTTONDOWN:
        Begin(Drag::Move, at);
        return true;
    case WM_MOUSEMOVE:
        if (gesture_.drag == Drag::None) return true;
        Apply(gesture_, {double(at.x), double(at.y)}, state_);
        changed_();
        return true;
    case WM_LBUTTONUP:
    case WM_RBUTTONUP:
    case WM_MBUTTONUP:
        End();
        return true;
    case WM_CAPTURECHANGED:
        gesture_.drag = Drag::None;
        return true;
    case WM_LBUTTONDBLCLK:
        End();
        ResetAll(state_);
        changed_();
        return true;
    default:
        return false;
    }
}

void PictureWindow::Begin(Drag drag, POINT at) {
    SetFocus(window_);
    if (frame_ == nullptr || gesture_.drag != Drag::None) return;
    const Area area = ClientArea();
    const Area picture = {frame_->picture.width, frame_->picture.height};
    const Placement place = Place();
    gesture_.drag = drag;
    gesture_.from = {double(at.x), double(at.y)};
    gesture_.centre = {place.left + picture.width * place.zoom / 2,
                       place.top + picture.height * place.zoom / 2};
    gesture_.radius = std::max(50.0, std::min(area.width, area.height) / 2.5);
    gesture_.shown = frame_->range;
    gesture_.start = state_.view;
    gesture_.startOffset = state_.offset;
    SetCapture(window_);
}

void PictureWindow::End() {
    gesture_.drag = Drag::None;
    if (GetCapture() == window_) ReleaseCapture();
}

void PictureWindow::Paint() {
    PAINTSTRUCT paint = {};
    const HDC context = BeginPaint(window_, &paint);
    PaintPicture(context);
    EndPaint(window_, &paint);
}

void PictureWindow::PaintPicture(HDC context) {
    const Area area = ClientArea();
    const RECT everything = {0, 0, area.width, area.height};
    if (frame_ == nullptr) return FillAround(context, {0, 0, 0, 0}, everything);
    const tools::Picture& picture = frame_->picture;
    const Visible part = VisiblePart(Place(), {picture.width, picture.height}, area);
    FillAround(context, RectOf(part.target), everything);
    // Rows are cut off here, columns by the system: sources that begin within a picture of negative height are
    // counted from different ends by different systems.
    BITMAPINFO info = InfoOf(picture);
    info.bmiHeader.biHeight = -part.source.height;
    const uint32_t* const rows =
        frame_->pixels.data() + static_cast<size_t>(part.source.top) * static_cast<size_t>(picture.width);
    SetStretchBltMode(context, COLORONCOLOR);
    StretchDIBits(context, part.target.left, part.target.top, part.target.width, part.target.height,
                  part.source.left, 0, part.source.width, part.source.height, rows, &info, DIB_RGB_COLORS,
                  SRCCOPY);
}

} // namespace z3d::viewer
