#include "StepProgress.h"

#include <cmath>

#include "Clock.h"
#include "Console.h"
#include "Interrupt.h"
#include "Text.h"

namespace z3d::tools {

StepProgress::StepProgress(std::string what, bool quiet)
    : what_(std::move(what)), drawn_(!quiet && ErrorsGoToConsole()), start_(SecondsNow()), drawnAt_(start_) {}

files::Progress StepProgress::Callback() {
    return [this](double done) { return Note(done); };
}

bool StepProgress::Note(double done) {
    constexpr double kBetweenLines = 0.1;
    const double now = SecondsNow();
    if (drawn_ && now >= drawnAt_ + kBetweenLines) {
        drawnAt_ = now;
        line_.Show(Format("%s, %.0f %%%s", what_.c_str(), 100 * done, TimeLeft(now - start_, done).c_str()));
    }
    return !Interrupted();
}

std::string TimeLeft(double secondsSoFar, double done) {
    constexpr double kEarliest = 0.5;
    constexpr double kInMinutes = 120;
    if (done <= 0 || secondsSoFar < kEarliest) return "";
    const double left = secondsSoFar * (1 - done) / done;
    if (left < kInMinutes) return Format(", %.0f s left", std::ceil(left));
    return Format(", %.0f min left", std::ceil(left / 60));
}

} // namespace z3d::tools
