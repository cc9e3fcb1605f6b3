// The part of the window that shows the picture and takes the pointer.
#pragma once

#include <windows.h>

#include <functional>
#include <memory>

#include "Frame.h"
#include "Placement.h"
#include "State.h"

namespace z3d::viewer {

class PictureWindow {
public:
    // `changed` is called when the pointer has changed the state.
    PictureWindow(HWND parent, State& state, std::function<void()> changed);

    HWND Window() const { return window_; }

    // Paints at once, so that no picture is skipped.
    void Show(std::shared_ptr<const Frame> frame);
    const std::shared_ptr<const Frame>& Shown() const { return frame_; }

    // After a change of zoom or place.
    void Repaint() { InvalidateRect(window_, nullptr, FALSE); }

    double Fitting() const;

    // Turns the wheel by that many notches.
    void Wheel(double notches);

    // What is under the pointer, in words; empty when it is elsewhere.
    std::string UnderPointer() const;

private:
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM first, LPARAM second);
    LRESULT Handle(UINT message, WPARAM first, LPARAM second);
    bool HandlePointer(UINT message, WPARAM first, LPARAM second);

    void Paint();
    void PaintPicture(HDC context);
    void Begin(Drag drag, POINT at);
    void End();
    Area ClientArea() const;
    Placement Place() const;

    State& state_;
    std::function<void()> changed_;
    HWND window_ = nullptr;
    std::shared_ptr<const Frame> frame_;
    Gesture gesture_;
};

} // namespace z3d::viewer
