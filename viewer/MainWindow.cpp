#include "MainWindow.h"

#include <commctrl.h>

#include "Clock.h"
#include "Menu.h"
#include "Screen.h"
#include "StatusText.h"
#include "Text.h"

namespace z3d::viewer {

namespace {

constexpr wchar_t kMainClass[] = L"ZentraView";
constexpr UINT kFrameWaits = WM_APP + 1;
constexpr UINT kLoadWaits = WM_APP + 2;
constexpr UINT_PTR kTimer = 1;
constexpr UINT kTickMilliseconds = 100;

constexpr int kFirstWidth = 1060; // at 96 dots per inch
constexpr int kFirstHeight = 800;
constexpr int kLeastWidth = 600;
constexpr int kLeastHeight = 360;

std::function<void()> Poster(HWND window, UINT message) {
    return [window, message] { PostMessageW(window, message, 0, 0); };
}

bool IsClass(HWND window, const wchar_t* wanted) {
    wchar_t name[32] = {};
    GetClassNameW(window, name, 32);
    return lstrcmpiW(name, wanted) == 0;
}

bool IsDown(int key) { return GetKeyState(key) < 0; }

} // namespace

MainWindow::MainWindow() {
    RegisterWindowClass(kMainClass, Procedure, 0, reinterpret_cast<HBRUSH>(COLOR_BTNFACE + 1));
    CreateWindowExW(WS_EX_CONTROLPARENT, kMainClass, L"Zentra view", WS_OVERLAPPEDWINDOW | WS_CLIPCHILDREN,
                    CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT, nullptr, MakeMenu(),
                    GetModuleHandleW(nullptr), this);
    MakeParts();
    SetResolution(DotsPerInch(window_));
    RECT place = {};
    RECT work = {};
    GetWindowRect(window_, &place);
    SystemParametersInfoW(SPI_GETWORKAREA, 0, &work, 0);
    const int width = std::min<int>(Scaled(kFirstWidth, dotsPerInch_), work.right - work.left);
    const int height = std::min<int>(Scaled(kFirstHeight, dotsPerInch_), work.bottom - work.top);
    SetWindowPos(window_, nullptr, std::max<int>(work.left, std::min<int>(place.left, work.right - width)),
                 std::max<int>(work.top, std::min<int>(place.top, work.bottom - height)), width, height,
                 SWP_NOZORDER);
    DragAcceptFiles(window_, TRUE);
    SetTimer(window_, kTimer, kTickMilliseconds, nullptr);
    loader_ = std::make_unique<LoadThread>(Poster(window_, kLoadWaits));
    renderer_ = std::make_unique<RenderThread>(Poster(window_, kFrameWaits));
}

void MainWindow::MakeParts() {
    const auto changed = [this] { Changed(); };
    picture_ = std::make_unique<PictureWindow>(window_, state_, changed);
    loading_ = std::make_unique<LoadingBar>(window_);
    panel_ = std::make_unique<Panel>(window_, state_, changed);
    status_ = std::make_unique<StatusBar>(window_);
}

void MainWindow::Appear(int how) {
    ShowWindow(window_, how);
    SetFocus(picture_->Window());
}

void MainWindow::Run() {
    MSG message = {};
    while (GetMessageW(&message, nullptr, 0, 0) > 0) {
        if (TakesKey(message) || IsDialogMessageW(window_, &message) != 0) continue;
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
}

Focus MainWindow::FocusNow() const {
    const HWND focus = GetFocus();
    if (focus == picture_->Window()) return Focus::Picture;
    return IsClass(focus, L"Edit") || IsClass(focus, L"ComboBox") ? Focus::Typing : Focus::Elsewhere;
}

bool MainWindow::TakesKey(const MSG& message) {
    if (message.message != WM_KEYDOWN || IsDown(VK_MENU)) return false;
    const Key key = {static_cast<unsigned>(message.wParam), IsDown(VK_CONTROL), IsDown(VK_SHIFT)};
    const std::optional<Command> command = CommandOf(key, FocusNow());
    if (command) Do(*command);
    return command.has_value();
}

LRESULT CALLBACK MainWindow::Procedure(HWND window, UINT message, WPARAM first, LPARAM second) {
    auto* const self = OwnerOf<MainWindow>(window, message, second);
    if (self == nullptr) return DefWindowProcW(window, message, first, second);
    self->window_ = window;
    // Before the parts are made there is nothing to show and to ask.
    if (self->renderer_ == nullptr) return DefWindowProcW(window, message, first, second);
    return Guarded([&] { return self->Handle(message, first, second); });
}

LRESULT MainWindow::Handle(UINT message, WPARAM first, LPARAM second) {
    switch (message) {
    case WM_SIZE:
        Resize();
        return 0;
    case WM_SETFOCUS:
        SetFocus(picture_->Window());
        return 0;
    case WM_COMMAND:
        if (first == IDOK) panel_->TakeAngles();
        Do(static_cast<Command>(LOWORD(first)));
        return 0;
    case WM_MOUSEWHEEL:
        picture_->Wheel(1.0 * GET_WHEEL_DELTA_WPARAM(first) / WHEEL_DELTA);
        return 0;
    case WM_TIMER:
        OnTick();
        return 0;
    case WM_DROPFILES:
        OnDrop(reinterpret_cast<HDROP>(first));
        return 0;
    case WM_GETMINMAXINFO:
        reinterpret_cast<MINMAXINFO*>(second)->ptMinTrackSize = {Scaled(kLeastWidth, dotsPerInch_),
                                                                 Scaled(kLeastHeight, dotsPerInch_)};
        return 0;
    case WM_DPICHANGED: {
        const RECT& place = *reinterpret_cast<const RECT*>(second);
        SetResolution(HIWORD(first));
        SetWindowPos(window_, nullptr, place.left, place.top, place.right - place.left,
                     place.bottom - place.top, SWP_NOZORDER | SWP_NOACTIVATE);
        return 0;
    }
    case kFrameWaits:
        OnFrame();
        return 0;
    case kLoadWaits:
        OnLoaded();
        return 0;
    case WM_DESTROY:
        PostQuitMessage(0);
        return 0;
    default:
        return DefWindowProcW(window_, message, first, second);
    }
}

void MainWindow::SetResolution(int dotsPerInch) {
    dotsPerInch_ = dotsPerInch;
    const HFONT former = font_;
    font_ = MessageFont(dotsPerInch);
    status_->SetFont(font_);
    loading_->SetFont(font_);
    DeleteObject(former);
    panel_->SetResolution(dotsPerInch);
    Resize();
}

void MainWindow::Resize() {
    RECT client = {};
    GetClientRect(window_, &client);
    status_->Place(client.right, dotsPerInch_);
    const int height = std::max<int>(0, client.bottom - status_->Height());
    panel_->SetHeight(height);
    const int panelWidth = panel_->Width();
    const int pictureWidth = std::max<int>(0, client.right - panelWidth);
    const int strip = loading_->Shown() ? LoadingBar::Height(dotsPerInch_) : 0;
    MoveWindow(panel_->Window(), pictureWidth, 0, panelWidth, height, TRUE);
    MoveWindow(picture_->Window(), 0, 0, pictureWidth, std::max(0, height - strip), TRUE);
    loading_->Place(height - strip, pictureWidth, dotsPerInch_);
}

void MainWindow::Open(const Source& source) {
    loader_->Start(source);
    loading_->Show(source.Name(), 0);
    Resize();
}

void MainWindow::OnLoaded() {
    const std::unique_ptr<LoadResult> result = loader_->Take();
    if (result == nullptr) return;
    loading_->Hide();
    Resize();
    if (result->volume != nullptr) {
        volume_ = result->volume;
        ShowVolume(state_, volume_->source, volume_->size, volume_->type);
        state_.message = volume_->remark;
        SetText(window_, TitleText(state_.source.Name()));
        Ask();
        return;
    }
    // Someone who named a file that cannot be read still sees what the program does.
    if (volume_ == nullptr && !result->source.IsPhantom()) Open({});
    Warn(window_, result->failure);
}

void MainWindow::OnDrop(HDROP drop) {
    Source source;
    const UINT count = DragQueryFileW(drop, 0xFFFFFFFF, nullptr, 0);
    for (UINT i = 0; i < count; ++i) {
        std::wstring name(DragQueryFileW(drop, i, nullptr, 0) + 1, L'\0');
        name.resize(DragQueryFileW(drop, i, name.data(), static_cast<UINT>(name.size())));
        source.paths.emplace_back(name);
    }
    DragFinish(drop);
    if (!source.IsPhantom()) Open(source);
}

void MainWindow::OnFrame() {
    const std::shared_ptr<const Frame> frame = renderer_->Take();
    // One of the volume before, rendered while the present one was loaded, is of no interest.
    if (frame == nullptr || frame->volume != volume_) return;
    const double now = tools::SecondsNow();
    if (!frame->failure.empty()) {
        state_.message = frame->failure;
        state_.spinning = false;
        stale_ = true;
        return;
    }
    // The next picture is rendered while this one is painted.
    if (state_.spinning) {
        Spin(state_, now - spunAt_);
        spunAt_ = now;
        Ask();
    }
    picture_->Show(frame);
    speed_.Note(now);
    stale_ = true;
    // Timers come last: pictures must not keep them waiting.
    if (now > refreshedAt_ + 0.1) Refresh();
}

void MainWindow::OnTick() {
    if (loader_->Running()) loading_->Show(loader_->Loading().Name(), loader_->Done());
    Refresh();
}

void MainWindow::Changed() {
    stale_ = true;
    if (volume_ == nullptr) return;
    state_.message.clear();
    const bool moved =
        askedZoom_ != state_.zoom || askedOffset_.x != state_.offset.x || askedOffset_.y != state_.offset.y;
    if (moved) picture_->Repaint();
    askedZoom_ = state_.zoom;
    askedOffset_ = state_.offset;
    if (!SamePicture(asked_, state_.view)) Ask();
}

void MainWindow::Ask() {
    stale_ = true;
    asked_ = state_.view;
    renderer_->Ask(state_.view, volume_);
}

void MainWindow::Refresh() {
    const double now = tools::SecondsNow();
    refreshedAt_ = now;
    // Numbers that change faster than this cannot be read.
    const bool numbers = now > numbersAt_ + 0.25;
    if (numbers) numbersAt_ = now;
    ShowStatus(numbers);
    if (!stale_ || volume_ == nullptr) return;
    stale_ = false;
    panel_->Show(picture_->Shown() != nullptr ? picture_->Shown()->range : tools::Interval{0, 1});
    panel_->ShowCommand(ShownCommand());
    ShowInMenu(GetMenu(window_), state_);
    // Paint comes last as well.
    RedrawWindow(window_, nullptr, nullptr, RDW_UPDATENOW | RDW_ALLCHILDREN);
}

void MainWindow::ShowStatus(bool numbers) {
    if (volume_ != nullptr)
        texts_.message =
            state_.message.empty() ? VolumeText(state_.source.Name(), state_.view) : state_.message;
    else
        texts_.message = loader_->Running() ? "" : "Open a volume with Ctrl+O, or drop one here";
    if (const Frame* const frame = picture_->Shown().get(); frame != nullptr && numbers) {
        texts_.size = SizeText(*frame);
        texts_.time = TimeText(*frame);
        texts_.speed = SpeedText(speed_.PicturesPerSecond(tools::SecondsNow()));
    }
    texts_.value = picture_->UnderPointer();
    status_->Show(texts_);
}

} // namespace z3d::viewer
