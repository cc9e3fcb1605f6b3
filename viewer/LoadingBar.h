// Progress and Cancel, in a strip below the picture while a volume is loaded.
#pragma once

#include <windows.h>

#include <string>

namespace z3d::viewer {

class LoadingBar {
public:
    explicit LoadingBar(HWND parent);

    static int Height(int dotsPerInch);
    void Place(int top, int width, int dotsPerInch);
    void SetFont(HFONT font);
    void Show(const std::string& name, double done);
    void Hide();
    bool Shown() const { return shown_; }

private:
    void SetVisible(bool visible);

    HWND label_;
    HWND bar_;
    HWND cancel_;
    bool shown_ = false;
};

} // namespace z3d::viewer
