// Ends the program when something takes too long.
#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>

namespace z3d::test {

// Guards its own scope: when that lasts longer than the budget, prints what ran, with the time, and exits with a
// failure. Budgets are far above what is measured; they tell hangs from work.
class Watchdog {
public:
    Watchdog(std::chrono::duration<double> budget, std::string what);
    ~Watchdog();
    Watchdog(const Watchdog&) = delete;
    Watchdog& operator=(const Watchdog&) = delete;

private:
    void Wait();

    const std::chrono::duration<double> budget_;
    const std::string what_;
    std::mutex mutex_;
    std::condition_variable ended_;
    bool hasEnded_ = false;
    std::thread thread_;
};

} // namespace z3d::test
