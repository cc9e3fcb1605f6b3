#include "frame/Host.h"

#include <bit>

namespace z3d::frame {
namespace {

constexpr std::int32_t kCodeEndedWithoutResult = 0;
constexpr std::int32_t kCodeStart = 101;
constexpr std::int32_t kCodeProgress = 102;
constexpr std::int32_t kCodeCannotRun = 200;
constexpr std::uint16_t kCancel = 200;

Answer Report(const Host& host, std::int32_t code, std::uint32_t value) {
    if (host.report == nullptr) return Answer::GoOn;
    const std::int32_t result = host.report(host.context, code, value);
    return static_cast<std::uint16_t>(result) == kCancel ? Answer::Cancel : Answer::GoOn;
}

std::uint32_t PercentBits(double percent) {
    return std::bit_cast<std::uint32_t>(static_cast<float>(percent));
}

} // namespace

Answer Host::Start() const { return Report(*this, kCodeStart, 0); }

Answer Host::Progress(std::int32_t z, std::int32_t n) const {
    return Report(*this, kCodeProgress, PercentBits((z + 1) * 100.0 / n));
}

void Host::EndedWithoutResult() const { Report(*this, kCodeEndedWithoutResult, PercentBits(100.0)); }

void Host::CannotRun() const { Report(*this, kCodeCannotRun, PercentBits(100.0)); }

} // namespace z3d::frame
