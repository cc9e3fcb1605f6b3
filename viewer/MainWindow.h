// The window: it brings the state, the threads and the parts of the screen together.
#pragma once

#include <windows.h>

#include <shellapi.h>

#include <memory>

#include "Commands.h"
#include "Dialogs.h"
#include "LoadThread.h"
#include "LoadingBar.h"
#include "Panel.h"
#include "PictureWindow.h"
#include "RenderThread.h"
#include "Speed.h"
#include "StatusBar.h"

namespace z3d::viewer {

class MainWindow {
public:
    MainWindow();

    // Shows the volume once it is loaded; until then, and if that fails, the present one.
    void Open(const Source& source);

    void Appear(int how);

    // Until the window is closed.
    void Run();

private:
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM first, LPARAM second);
    LRESULT Handle(UINT message, WPARAM first, LPARAM second);

    // The window and its parts.
    void MakeParts();
    void Resize();
    void SetResolution(int dotsPerInch);
    bool TakesKey(const MSG& message);
    Focus FocusNow() const;

    // What comes from outside.
    void OnFrame();
    void OnLoaded();
    void OnDrop(HDROP drop);
    void OnTick();

    // What commands do.
    void Do(Command command);
    void DoOutside(Command command);
    void OpenByDialog();
    void Save(SaveKind kind);
    void CopyShownPicture();
    void CopyShownCommand();

    // From the state to the screen and to the renderer.
    void Changed();
    void Ask();
    void Refresh();
    void ShowStatus(bool numbers);
    std::string ShownCommand() const;

    HWND window_ = nullptr;
    int dotsPerInch_ = 96;
    State state_;
    std::shared_ptr<LoadedVolume> volume_;
    std::unique_ptr<PictureWindow> picture_;
    std::unique_ptr<Panel> panel_;
    std::unique_ptr<StatusBar> status_;
    std::unique_ptr<LoadingBar> loading_;
    HFONT font_ = nullptr;
    StatusTexts texts_;
    Speed speed_;
    View asked_ = {};
    double askedZoom_ = 0;
    Point askedOffset_ = {};
    double spunAt_ = 0;
    double refreshedAt_ = 0;
    double numbersAt_ = 0;
    bool stale_ = true; // the panel does not show the state
    std::unique_ptr<RenderThread> renderer_;
    std::unique_ptr<LoadThread> loader_;
};

} // namespace z3d::viewer
