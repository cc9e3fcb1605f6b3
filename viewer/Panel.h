// The controls beside the picture. They show the state and change it; nothing is kept in them.
#pragma once

#include <windows.h>

#include <functional>
#include <string>

#include "State.h"

namespace z3d::viewer {

class Panel {
public:
    // `changed` is called when a control has changed the state. Buttons of commands go to the parent.
    Panel(HWND parent, State& state, std::function<void()> changed);
    ~Panel() { DeleteObject(font_); }
    Panel(const Panel&) = delete;
    Panel& operator=(const Panel&) = delete;

    HWND Window() const { return window_; }
    int Width() const; // in pixels, with room for a scroll bar where one is needed
    void SetHeight(int height);
    void SetResolution(int dotsPerInch);

    // `shown` is the range of the picture on the screen: what black and white are while they are automatic.
    void Show(const tools::Interval& shown);
    void ShowCommand(const std::string& text);

    // Takes the angles as typed. Text that is no number is replaced by what it was.
    void TakeAngles();

    HWND Control(int id) const { return GetDlgItem(window_, id); }

private:
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM first, LPARAM second);
    LRESULT Handle(UINT message, WPARAM first, LPARAM second);
    void OnCommand(int id, int code, HWND control);
    void OnSlider(HWND slider);
    void OnScroll(int request, int position);
    void ScrollTo(int position);

    void Create();
    void Place();
    void ShowAngles();
    void ShowExtra();
    void ShowWindow();
    void ShowRange(const tools::Interval& shown);
    void ShowCrop();
    tools::Interval RangeEnds(const tools::Interval& shown);

    State& state_;
    std::function<void()> changed_;
    HWND window_ = nullptr;
    HFONT font_ = nullptr;
    int dotsPerInch_ = 96;
    int height_ = 0;
    int scrolled_ = 0;
    tools::Interval rangeEnds_ = {0, 1}; // of the sliders of black and white
    size_t rangeMode_ = kModeCount;      // that they belong to
    tools::Interval shown_ = {0, 1};
};

} // namespace z3d::viewer
