#include "support/RecordingHost.h"

#include <bit>
#include <utility>

namespace z3d::test {
namespace {

constexpr std::uint32_t kHundredBits = 0x42C80000;

} // namespace

HostEvent Start() { return {101, 0, {}}; }
HostEvent Percent(float percent) { return {102, std::bit_cast<std::uint32_t>(percent), {}}; }
HostEvent NoResult() { return {0, kHundredBits, {}}; }
HostEvent CannotRun() { return {200, kHundredBits, {}}; }
HostEvent Warning(const char* text) { return {0, 0, text}; }

void PrintTo(const HostEvent& event, std::ostream* out) {
    if (!event.warning.empty()) {
        *out << "warning \"" << event.warning << '"';
    } else {
        *out << '(' << event.code << ", bits " << std::hex << event.valueBits << std::dec << " = "
             << std::bit_cast<float>(event.valueBits) << ')';
    }
}

frame::Host RecordingHost::Get() { return {this, Report, Warn}; }

frame::Host RecordingHost::WithoutCallback() { return {this, nullptr, Warn}; }

std::int32_t RecordingHost::Report(void* context, std::int32_t code, std::uint32_t value) {
    auto& self = *static_cast<RecordingHost*>(context);
    self.Record({code, value, {}});
    return self.calls_++ == self.cancelAt_ ? self.cancelResult_ : 0;
}

void RecordingHost::Warn(void* context, const char* text) {
    static_cast<RecordingHost*>(context)->Record({0, 0, text});
}

void RecordingHost::Record(HostEvent event) {
    if (atEachEvent) atEachEvent();
    events_.push_back(std::move(event));
}

} // namespace z3d::test
