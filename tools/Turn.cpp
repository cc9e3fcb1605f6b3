#include "Turn.h"

#include <algorithm>
#include <thread>

#include "Animation.h"
#include "Console.h"
#include "ImageFiles.h"
#include "Interrupt.h"
#include "OrderedWork.h"
#include "Text.h"
#include "Volume.h"
#include "files/VolumeReader.h"

namespace z3d::tools {

namespace {

// How much of the address space copies of the volume take when nobody says how many.
constexpr uint64_t kBytesForCopies = uint64_t{1} << 30;

int CountOf(const TurnRequest& request) { return static_cast<int>(request.views.size()); }

PictureNumber NumberOf(const TurnRequest& request, int picture) {
    if (!request.numbered) return {0, 0};
    return {picture, std::max(3, static_cast<int>(std::to_string(CountOf(request) - 1).size()))};
}

int DefaultJobs(Volume3D& volume) {
    const VolumeSize size = SizeOf(volume);
    const uint64_t bytes = files::Fitted{size, TypeOf(volume), false}.ByteCount();
    const auto affordable = static_cast<int>(std::min<uint64_t>(kBytesForCopies / bytes, 1000));
    return std::clamp(static_cast<int>(std::thread::hardware_concurrency()), 1, 1 + affordable);
}

struct Frame {
    std::string png; // empty unless some output wants it
    PictureSize size;
    double seconds;
};

class Turn {
public:
    Turn(const TurnRequest& request, Volume3D& volume, bool quiet)
        : request_(request), volume_(volume), quiet_(quiet), report_(quiet, CountOf(request)) {
        for (const Output& output : request.outputs)
            if (output.kind == OutputKind::Apng)
                animations_.push_back(
                    std::make_unique<Animation>(output.path, CountOf(request), request.picturesPerSecond));
        if (request.numbered) FindSize();
    }

    void Run() {
        Note(0, Render(volume_, 0));
        if (CountOf(request_) > 1) RenderOthers();
        for (const auto& animation : animations_)
            animation->Finish();
        report_.Finish();
    }

private:
    void FindSize() {
        for (const Rotation& view : request_.views) {
            const PictureSize size = SizeOfView(volume_, view);
            size_.width = std::max(size_.width, size.width);
            size_.height = std::max(size_.height, size.height);
        }
        size_ = {(size_.width + 1) / 2 * 2, (size_.height + 1) / 2 * 2};
    }

    Frame Render(Volume3D& volume, int picture) {
        StopIfInterrupted();
        const Projection projection =
            Padded(Project(volume, request_.views[static_cast<size_t>(picture)], request_.projection), size_,
                   EmptyPixelOf(*request_.mode));
        // The first picture is rendered before all others.
        if (picture == 0) range_ = RangeFor(request_.range, *request_.mode, request_.colour, projection);
        Frame frame = {{}, {projection.width, projection.height}, projection.seconds};
        if (AnyOf(request_.outputs, OutputKind::Png) || !animations_.empty())
            frame.png = EncodePng(
                MakePicture(projection, {request_.colour, range_, request_.background, request_.palette}));
        for (const Output& output : request_.outputs)
            WriteOutput(output, NumberOf(request_, picture), projection, frame.png);
        return frame;
    }

    void Note(int picture, const Frame& frame) {
        for (const auto& animation : animations_)
            animation->Add(frame.png);
        report_.Done(frame.size, frame.seconds, FilesOf(request_, picture));
    }

    // A volume is rendered by one thread at a time: each further thread has a copy.
    std::vector<VolumeOwner> MakeCopies() {
        const int wanted = std::min(request_.jobs.value_or(DefaultJobs(volume_)), CountOf(request_) - 1);
        std::vector<VolumeOwner> copies;
        while (static_cast<int>(copies.size()) < wanted - 1) {
            VolumeOwner copy = CopyOf(volume_);
            if (copy == nullptr) break;
            copies.push_back(std::move(copy));
        }
        const int jobs = 1 + static_cast<int>(copies.size());
        if (jobs < wanted && request_.jobs && !quiet_)
            PrintError(Format("memory is short: %d pictures at once instead of %d\n", jobs, wanted));
        return copies;
    }

    void RenderOthers() {
        const std::vector<VolumeOwner> copies = MakeCopies();
        const int ahead = 4 * (1 + static_cast<int>(copies.size()));
        OrderedWork<Frame> work(1, CountOf(request_), ahead,
                                [this](int picture, const Frame& frame) { Note(picture, frame); });
        {
            std::vector<std::jthread> threads;
            for (const VolumeOwner& copy : copies)
                threads.emplace_back(
                    [&work, &copy, this] { work.Work([&](int picture) { return Render(*copy, picture); }); });
            work.Work([this](int picture) { return Render(volume_, picture); });
        }
        work.Rethrow();
    }

    const TurnRequest& request_;
    Volume3D& volume_;
    bool quiet_;
    Report report_;
    std::vector<std::unique_ptr<Animation>> animations_;
    PictureSize size_ = {};
    Interval range_ = {};
};

} // namespace

std::vector<std::filesystem::path> FilesOf(const TurnRequest& request, int picture) {
    return FilesOf(request.outputs, NumberOf(request, picture));
}

void RenderTurn(const TurnRequest& request, Volume3D& volume, bool quiet) {
    Turn(request, volume, quiet).Run();
}

} // namespace z3d::tools
