#include "ByteStream.h"

#include <zlib.h>

#include <algorithm>
#include <array>
#include <limits>
#include <new>

#include "Failure.h"
#include "Text.h"

namespace z3d::files {

namespace {

constexpr std::array<unsigned char, 2> kMagic = {0x1F, 0x8B};

class GzipStream : public ByteStream {
public:
    GzipStream(std::unique_ptr<ByteStream> packed, const std::filesystem::path& path)
        : packed_(std::move(packed)), path_(path) {
        // 16 more than the largest window: gzip's header and checksum.
        if (inflateInit2(&state_, 16 + MAX_WBITS) != Z_OK) throw std::bad_alloc();
    }
    ~GzipStream() override { inflateEnd(&state_); }

    size_t Read(void* bytes, size_t count) override {
        size_t got = 0;
        while (got < count && !ended_) {
            const size_t piece =
                std::min(count - got, static_cast<size_t>(std::numeric_limits<uInt>::max() / 2));
            state_.next_out = static_cast<Bytef*>(bytes) + got;
            state_.avail_out = static_cast<uInt>(piece);
            Inflate();
            got += piece - state_.avail_out;
        }
        return got;
    }

private:
    void Inflate() {
        if (state_.avail_in == 0) Refill();
        const int result = inflate(&state_, Z_NO_FLUSH);
        if (result == Z_MEM_ERROR) throw std::bad_alloc();
        if (result == Z_STREAM_END) return StartMember();
        // Nothing could be done, although there is room: the input is used up.
        if (result == Z_BUF_ERROR) Refuse("its compressed data ends early");
        if (result != Z_OK) Refuse("its compressed data is damaged");
    }

    // Packed files may be put together; anything else behind the end is padding.
    void StartMember() {
        ended_ = state_.avail_in == 0 && !Refill();
        if (!ended_ && state_.next_in[0] != kMagic[0]) ended_ = true;
        if (!ended_) inflateReset(&state_);
    }

    bool Refill() {
        const size_t got = packed_->Read(input_.data(), input_.size());
        state_.next_in = input_.data();
        state_.avail_in = static_cast<uInt>(got);
        return got > 0;
    }

    [[noreturn]] void Refuse(const char* reason) const {
        throw FileFailure("cannot read " + Shown(path_) + ": " + reason);
    }

    std::unique_ptr<ByteStream> packed_;
    std::filesystem::path path_;
    z_stream state_ = {};
    std::array<unsigned char, 65536> input_;
    bool ended_ = false;
};

} // namespace

std::unique_ptr<ByteStream> Unpacked(std::unique_ptr<ByteStream> packed, const std::filesystem::path& path) {
    return std::make_unique<GzipStream>(std::move(packed), path);
}

std::unique_ptr<ByteStream> OpenUnpacked(const FileSystem& files, const std::filesystem::path& path) {
    std::array<unsigned char, 2> start = {};
    const bool isPacked = files.Open(path)->Read(start.data(), start.size()) == 2 && start == kMagic;
    return isPacked ? Unpacked(files.Open(path), path) : files.Open(path);
}

} // namespace z3d::files
