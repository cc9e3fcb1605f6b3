#include "PairedTimer.h"

#include <algorithm>
#include <chrono>
#include <limits>

namespace z3d::bench {

std::vector<double> TimeInTurn(const std::vector<std::function<void()>>& candidates, double seconds) {
    using Clock = std::chrono::steady_clock;
    const auto secondsSince = [](Clock::time_point start) {
        return std::chrono::duration<double>(Clock::now() - start).count();
    };
    std::vector<double> best(candidates.size(), std::numeric_limits<double>::max());
    const Clock::time_point start = Clock::now();
    for (int round = 0; round < 3 || secondsSince(start) < seconds; ++round) {
        for (std::size_t index = 0; index < candidates.size(); ++index) {
            // Short jobs are repeated: the clock of some systems ticks in steps of 100 ns and more.
            int repeats = 0;
            const Clock::time_point begin = Clock::now();
            do {
                candidates[index]();
                ++repeats;
            } while (secondsSince(begin) < 0.002);
            best[index] = std::min(best[index], secondsSince(begin) / repeats);
        }
    }
    return best;
}

} // namespace z3d::bench
