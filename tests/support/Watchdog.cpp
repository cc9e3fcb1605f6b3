#include "support/Watchdog.h"

#include <cstdio>
#include <cstdlib>
#include <utility>

namespace z3d::test {

Watchdog::Watchdog(std::chrono::duration<double> budget, std::string what)
    : budget_(budget), what_(std::move(what)), thread_([this] { Wait(); }) {}

Watchdog::~Watchdog() {
    {
        const std::lock_guard lock(mutex_);
        hasEnded_ = true;
    }
    ended_.notify_one();
    thread_.join();
}

void Watchdog::Wait() {
    std::unique_lock lock(mutex_);
    if (ended_.wait_for(lock, budget_, [this] { return hasEnded_; })) return;
    std::fprintf(stderr, "not done within %.1f s: %s\n", budget_.count(), what_.c_str());
    std::fflush(stderr);
    std::_Exit(EXIT_FAILURE);
}

} // namespace z3d::test
