#include "ChannelFiles.h"

#include <bit>
#include <cstddef>

#include "Clock.h"
#include "Console.h"
#include "Failure.h"
#include "Interrupt.h"
#include "MessageBoxes.h"
#include "StatusLine.h"
#include "Text.h"

namespace z3d::tools {

namespace {

constexpr const char* kChannels[] = {"red", "green", "blue"};

uint64_t BytesOf(const VolumeSize& size, SampleType type) {
    return uint64_t{type == SampleType::Uint8 ? 1u : 4u} * static_cast<uint64_t>(size.width)
           * static_cast<uint64_t>(size.height) * static_cast<uint64_t>(size.depth);
}

// Every name has a short form of plain letters where the file system keeps one.
std::string CodePageName(const std::filesystem::path& path) {
    if (const std::optional<std::string> name = InCodePage(path.native())) return *name;
    if (const std::optional<std::string> name = InCodePage(ShortName(path))) return *name;
    throw Failure("cannot open " + Shown(path)
                  + ": the library takes names in the system's 8-bit code page, which lacks a letter of this "
                    "one, and the file system has no short name for it; rename it, or start in its folder");
}

// Draws the phases of a load as they come.
class LoadProgress {
public:
    void Note(int code, float percent) {
        constexpr int kPhaseStarts = 101;
        if (code == kPhaseStarts) return Start();
        // The last phase comes without a start.
        if (percent < percent_) Start();
        percent_ = percent;
        const int parts = static_cast<int>(percent) * static_cast<int>(kParts) / 100;
        // A console takes longer over a line than the library over a slice.
        const double now = SecondsNow();
        if (parts == drawn_ || now < drawnAt_ + 0.05) return;
        drawn_ = parts;
        drawnAt_ = now;
        const auto done = static_cast<size_t>(parts);
        line_.Show(Format("step %d [%s%s]", step_, std::string(done, '#').c_str(),
                          std::string(kParts - done, '.').c_str()));
    }

private:
    static constexpr size_t kParts = 40;

    void Start() {
        ++step_;
        percent_ = 0;
        drawn_ = -1;
    }

    StatusLine line_;
    int step_ = 0;
    float percent_ = 0;
    int drawn_ = -1;
    double drawnAt_ = 0;
};

// Called by the library, which no exception may cross; a picture of the progress that fails is no reason to end.
int Z3D_CALL OnProgress(std::size_t user, int code, unsigned int value) noexcept {
    constexpr int kGoOn = 0;
    constexpr int kCancel = 200;
    try {
        auto* const progress = std::bit_cast<LoadProgress*>(user);
        if (progress != nullptr && (code == 101 || code == 102))
            progress->Note(code, std::bit_cast<float>(value));
    } catch (...) {
    }
    return Interrupted() ? kCancel : kGoOn;
}

} // namespace

OpenChannels::OpenChannels(const ChannelRequest& request) : request_(request) {
    for (size_t channel = 0; channel < 3; ++channel)
        if (!request.files[channel].empty()) Open(channel);
}

void OpenChannels::Open(size_t channel) {
    const std::filesystem::path& path = request_.files[channel];
    const InputFile& file = files_[channel].emplace(path);
    const VolumeSize& size = request_.size;
    const uint64_t wanted = BytesOf(size, request_.type);
    const std::string has =
        Format("%s has %llu bytes", Shown(path).c_str(), static_cast<unsigned long long>(file.Size()));
    const std::string need = Format("%dx%dx%d samples of %s have %llu", size.width, size.height, size.depth,
                                    request_.type == SampleType::Uint8 ? "uint8" : "float32",
                                    static_cast<unsigned long long>(wanted));
    if (file.Size() < wanted)
        throw Failure("the " + (kChannels[channel] + (" file is too short: " + has)) + ", " + need);
    if (file.Size() > wanted) remarks_ += has + ", " + need + ": the rest is ignored\n";
    names_[channel] = CodePageName(path);
}

ChannelImage OpenChannels::Load() const {
    const NoMessageBoxes unseen;
    SetRenderMsgTitle("zentra");
    LoadProgress progress;
    const auto user = std::bit_cast<std::size_t>(ErrorsGoToConsole() ? &progress : nullptr);
    const VolumeSize& size = request_.size;
    ChannelImage image = {};
    const double start = SecondsNow();
    image.volume.reset(GetRGBImage(
        names_[0].c_str(), names_[1].c_str(), names_[2].c_str(), static_cast<short>(size.width),
        static_cast<short>(size.height), static_cast<short>(size.depth), 0, 0, 0,
        request_.type == SampleType::Uint8, request_.maxDiagonal, &image.display.high, &image.display.low,
        &image.samples.high, &image.samples.low, user, OnProgress, request_.separate));
    image.seconds = SecondsNow() - start;
    StopIfInterrupted();
    // The files are there and the request is in order: nothing but memory is left.
    if (image.volume == nullptr)
        throw Failure(Format("not enough memory to load %dx%dx%d samples; --max-diagonal makes the volume "
                             "smaller",
                             size.width, size.height, size.depth));
    image.type = TypeOf(*image.volume);
    return image;
}

} // namespace z3d::tools
