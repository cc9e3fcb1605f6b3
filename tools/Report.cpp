#include "Report.h"

#include "Clock.h"
#include "Console.h"
#include "StepProgress.h"
#include "Text.h"

namespace z3d::tools {

namespace {

std::string Listed(const std::vector<std::filesystem::path>& files) {
    std::string list;
    for (const auto& file : files)
        list += (list.empty() ? "" : ", ") + Shown(file);
    return list;
}

} // namespace

Report::Report(bool quiet, int projections)
    : quiet_(quiet),
      progressLine_(!quiet && projections > 1 && ErrorsGoToConsole()),
      projections_(projections),
      start_(SecondsNow()) {}

void Report::Done(PictureSize size, double seconds, const std::vector<std::filesystem::path>& files) {
    if (quiet_) return;
    ++done_;
    seconds_ += seconds;
    lastFiles_ = Listed(files);
    if (done_ == 1) firstFiles_ = lastFiles_;
    const double milliseconds = seconds * 1000;
    if (!progressLine_) {
        PrintError(Format("%dx%d pixels in %.1f ms: %s\n", size.width, size.height, milliseconds,
                          lastFiles_.c_str()));
        return;
    }
    const std::string left = TimeLeft(SecondsNow() - start_, 1.0 * done_ / projections_);
    line_.Show(Format("picture %d of %d, %.1f ms%s", done_, projections_, milliseconds, left.c_str()));
}

void Report::Finish() {
    if (!progressLine_) return;
    line_.Clear();
    PrintError(Format("%d pictures, %.1f ms each: %s to %s\n", done_, seconds_ * 1000 / done_,
                      firstFiles_.c_str(), lastFiles_.c_str()));
}

} // namespace z3d::tools
