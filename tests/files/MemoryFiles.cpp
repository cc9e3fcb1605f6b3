#include "MemoryFiles.h"

#include <zlib.h>

#include <algorithm>
#include <cstring>

namespace z3d::files {

namespace {

class MemoryStream : public ByteStream {
public:
    explicit MemoryStream(const Bytes& bytes) : bytes_(bytes) {}

    size_t Read(void* out, size_t count) override {
        const size_t got = std::min(count, bytes_.size() - at_);
        std::memcpy(out, bytes_.data() + at_, got);
        at_ += got;
        return got;
    }

    std::optional<uint64_t> Size() const override { return bytes_.size(); }

private:
    const Bytes& bytes_;
    size_t at_ = 0;
};

void Append(Bytes& png, const char* kind, const Bytes& body) {
    const Bytes checked = kind + body;
    const uint32_t sum = static_cast<uint32_t>(
        crc32(0, reinterpret_cast<const Bytef*>(checked.data()), static_cast<uInt>(checked.size())));
    png += Packed<uint32_t>({static_cast<uint32_t>(body.size())}, true) + checked
           + Packed<uint32_t>({sum}, true);
}

} // namespace

std::unique_ptr<ByteStream> MemoryFiles::Open(const std::filesystem::path& path) const {
    const auto found = files_.find(path);
    if (found == files_.end()) throw FileFailure("cannot open " + path.string() + ": there is no such file");
    return std::make_unique<MemoryStream>(found->second);
}

bool MemoryFiles::IsFolder(const std::filesystem::path& path) const {
    return std::ranges::any_of(files_, [&](const auto& file) { return file.first.parent_path() == path; });
}

std::vector<std::filesystem::path> MemoryFiles::FilesIn(const std::filesystem::path& folder) const {
    std::vector<std::filesystem::path> found;
    for (const auto& [path, bytes] : files_)
        if (path.parent_path() == (folder == "." ? "" : folder)) found.push_back(path);
    return found;
}

Bytes Gzipped(const Bytes& bytes) {
    z_stream state = {};
    deflateInit2(&state, 9, Z_DEFLATED, 16 + MAX_WBITS, 8, Z_DEFAULT_STRATEGY);
    Bytes packed(deflateBound(&state, static_cast<uLong>(bytes.size())) + 32, '\0');
    state.next_in = const_cast<Bytef*>(reinterpret_cast<const Bytef*>(bytes.data()));
    state.avail_in = static_cast<uInt>(bytes.size());
    state.next_out = reinterpret_cast<Bytef*>(packed.data());
    state.avail_out = static_cast<uInt>(packed.size());
    deflate(&state, Z_FINISH);
    packed.resize(state.total_out);
    deflateEnd(&state);
    return packed;
}

Bytes NiftiHeader(const NiftiFields& fields) {
    Bytes header(352, '\0');
    const auto put = [&](size_t at, const Bytes& bytes) { header.replace(at, bytes.size(), bytes); };
    put(0, Packed<int32_t>({fields.length}, fields.bigEndian));
    put(40, Packed(fields.dim, fields.bigEndian));
    put(70, Packed<int16_t>({fields.type}, fields.bigEndian));
    put(80, Packed<float>({fields.spacing[0], fields.spacing[1], fields.spacing[2]}, fields.bigEndian));
    put(108, Packed<float>({fields.offset, fields.slope, fields.intercept}, fields.bigEndian));
    put(344, fields.magic);
    return header;
}

Bytes Png(int width, int height, int channels, int bits, const Bytes& samples) {
    const size_t rowBytes = static_cast<size_t>(width * channels * bits / 8);
    Bytes rows;
    for (size_t y = 0; y < static_cast<size_t>(height); ++y)
        rows += '\0' + samples.substr(y * rowBytes, rowBytes);
    Bytes packed(compressBound(static_cast<uLong>(rows.size())), '\0');
    uLongf length = static_cast<uLongf>(packed.size());
    compress(reinterpret_cast<Bytef*>(packed.data()), &length, reinterpret_cast<const Bytef*>(rows.data()),
             static_cast<uLong>(rows.size()));
    packed.resize(length);
    Bytes png = "\x89PNG\r\n\x1A\n";
    const Bytes kind = {static_cast<char>(bits), static_cast<char>(channels == 3 ? 2 : 0), 0, 0, 0};
    Append(png, "IHDR",
           Packed<uint32_t>({static_cast<uint32_t>(width), static_cast<uint32_t>(height)}, true) + kind);
    Append(png, "IDAT", packed);
    Append(png, "IEND", "");
    return png;
}

std::vector<int> Voxels(const VolumeReader& reader, const ValueRange& input, const FitRequest& request) {
    const Fitted fitted = reader.Fit(request);
    const size_t sliceBytes =
        static_cast<size_t>(fitted.ByteCount()) / static_cast<size_t>(fitted.size.depth);
    std::vector<unsigned char> bytes(static_cast<size_t>(fitted.ByteCount()));
    reader.Read(fitted, input, [&](int z) { return bytes.data() + static_cast<size_t>(z) * sliceBytes; }, {});
    return {bytes.begin(), bytes.end()};
}

std::vector<int> Voxels(const VolumeReader& reader, const FitRequest& request) {
    return Voxels(reader, reader.ProposedInput({}), request);
}

std::string Refusal(const MemoryFiles& files, const std::filesystem::path& path) {
    try {
        Voxels(VolumeReader({{path}, {}, {}}, files));
        return "nothing was refused";
    } catch (const FileFailure& failure) {
        return failure.what();
    }
}

} // namespace z3d::files
