#include "compose/RgbImagePipeline.h"

#include "compose/ChannelComposition.h"
#include "compose/GreyConversion.h"
#include "compose/OutputSize.h"
#include "frame/Owned.h"
#include "platform/MultibyteText.h"
#include "volume/RawVolumeLoader.h"

#include <utility>

namespace z3d::compose {
namespace {

using frame::OwnedVolume;
using primitives::ValueRange;
using volume::VolumeSize;

bool IsNamed(const char* file) { return file != nullptr && file[0] != '\0'; }

void StoreIfWanted(float* to, float value) {
    if (to != nullptr) *to = value;
}

// The volumes of the three channels while the result is made.
class LoadedChannels {
public:
    LoadedChannels(const RgbImageRequest& request, const frame::Host& host)
        : request_(request),
          host_(host),
          stored_{request.width, request.height, request.depth},
          size_(OutputSize(stored_, request.maxDiagonal)) {}

    // Loads every named channel, red first. Green and blue share the red volume when they name its file and the
    // host does not mind.
    bool Load() {
        return Load(request_.redFile, red_) && LoadOrShare(request_.greenFile, green_)
               && LoadOrShare(request_.blueFile, blue_);
    }

    // Over all channels; missing ones do not count.
    ValueRange Range() const {
        ValueRange range = red_.range;
        range.Widen(green_.range);
        range.Widen(blue_.range);
        return range;
    }

    // Makes the result and the range that it is to be displayed with.
    OwnedVolume MakeResult(ValueRange& display) {
        const ChannelVolumes channels = {red_.volume.get(), VolumeOf(green_), VolumeOf(blue_)};
        if (channels.green != channels.red || channels.blue != channels.red) {
            return ComposeVolumes(channels, common_, display, host_);
        }
        if (!request_.is8bit) return ConvertToGrey(channels.red, common_, display, host_);
        display = common_;
        return std::move(red_.volume);
    }

private:
    struct Channel {
        OwnedVolume volume;
        bool sharesRed = false;
        ValueRange range;
    };

    bool Load(const char* name, Channel& channel) {
        if (!IsNamed(name)) return true;
        channel.volume =
            volume::LoadRawVolume({name, stored_, request_.is8bit}, size_, common_, channel.range, host_);
        return channel.volume != nullptr;
    }

    bool LoadOrShare(const char* name, Channel& channel) {
        channel.sharesRed = IsNamed(name) && IsNamed(request_.redFile) && !request_.keepChannelsApart
                            && platform::IsSameText(name, request_.redFile);
        return channel.sharesRed || Load(name, channel);
    }

    Volume3D* VolumeOf(const Channel& channel) const {
        return channel.sharesRed ? red_.volume.get() : channel.volume.get();
    }

    const RgbImageRequest& request_;
    const frame::Host& host_;
    const VolumeSize stored_;
    const VolumeSize size_;
    ValueRange common_; // widened by each load
    Channel red_;
    Channel green_;
    Channel blue_;
};

// Null on every failure, with all channels freed.
Volume3D* MakeImage(const RgbImageRequest& request, const frame::Host& host) {
    StoreIfWanted(request.rangeMaxOut, ValueRange().max);
    StoreIfWanted(request.rangeMinOut, ValueRange().min);

    LoadedChannels channels(request, host);
    if (!channels.Load()) return nullptr;
    if (request.rangeMaxOut != nullptr && request.rangeMinOut != nullptr) {
        *request.rangeMaxOut = channels.Range().max;
        *request.rangeMinOut = channels.Range().min;
    }

    ValueRange display;
    OwnedVolume result = channels.MakeResult(display);
    if (!result) return nullptr;
    StoreIfWanted(request.outMax, display.max);
    StoreIfWanted(request.outMin, display.min);
    return result.release();
}

} // namespace

Volume3D* GetRGBImage(const RgbImageRequest& request, const frame::Host& host) {
    Volume3D* image = MakeImage(request, host);
    if (image == nullptr) host.EndedWithoutResult();
    return image;
}

} // namespace z3d::compose
