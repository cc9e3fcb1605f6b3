// How many pictures came within the last second.
#pragma once

#include <deque>

namespace z3d::viewer {

class Speed {
public:
    void Note(double now) {
        times_.push_back(now);
        Forget(now);
    }

    // 0 when there were fewer than two.
    double PicturesPerSecond(double now) {
        Forget(now);
        if (times_.size() < 2) return 0;
        return static_cast<double>(times_.size() - 1) / (times_.back() - times_.front());
    }

private:
    void Forget(double now) {
        while (!times_.empty() && times_.front() < now - 1)
            times_.pop_front();
    }

    std::deque<double> times_;
};

} // namespace z3d::viewer
