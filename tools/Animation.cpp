#include "Animation.h"

#include <zlib.h>

#include <functional>

namespace z3d::tools {

namespace {

constexpr std::string_view kSignature = "\x89PNG\r\n\x1A\n";

std::string BigEndian(uint32_t number, int bytes) {
    std::string text;
    for (int shift = 8 * (bytes - 1); shift >= 0; shift -= 8)
        text += static_cast<char>(number >> shift & 0xFF);
    return text;
}

uint32_t NumberAt(std::string_view bytes, size_t at) {
    uint32_t number = 0;
    for (size_t i = 0; i < 4; ++i)
        number = number << 8 | static_cast<unsigned char>(bytes[at + i]);
    return number;
}

// Every chunk of a PNG that our own writer made: length, kind, body, checksum.
void ForEachChunk(const std::string& png,
                  const std::function<void(std::string_view kind, const std::string& body)>& use) {
    for (size_t at = kSignature.size(); at < png.size();) {
        const size_t length = NumberAt(png, at);
        use(std::string_view(png).substr(at + 4, 4), png.substr(at + 8, length));
        at += 12 + length;
    }
}

} // namespace

Animation::Animation(const std::filesystem::path& path, int pictures, int picturesPerSecond)
    : file_(path), pictures_(pictures), picturesPerSecond_(picturesPerSecond) {}

void Animation::WriteChunk(const char* kind, const std::string& body) {
    const std::string checked = kind + body;
    const uLong sum =
        crc32(0, reinterpret_cast<const Bytef*>(checked.data()), static_cast<uInt>(checked.size()));
    file_.Write(BigEndian(static_cast<uint32_t>(body.size()), 4) + checked
                + BigEndian(static_cast<uint32_t>(sum), 4));
}

// The whole picture, for its part of a second, in place of the one before.
void Animation::WriteFrameControl(const std::string& header) {
    const std::string noOffset(8, '\0');
    const std::string replace(2, '\0');
    WriteChunk("fcTL", BigEndian(sequence_++, 4) + header.substr(0, 8) + noOffset + BigEndian(1, 2)
                           + BigEndian(static_cast<uint32_t>(picturesPerSecond_), 2) + replace);
}

void Animation::Add(const std::string& png) {
    std::string header, data;
    ForEachChunk(png, [&](std::string_view kind, const std::string& body) {
        if (kind == "IHDR") header = body;
        if (kind == "IDAT") data += body;
    });
    if (isFirst_) {
        file_.Write(kSignature);
        WriteChunk("IHDR", header);
        WriteChunk("acTL", BigEndian(static_cast<uint32_t>(pictures_), 4) + BigEndian(0, 4));
    }
    WriteFrameControl(header);
    if (isFirst_)
        WriteChunk("IDAT", data);
    else
        WriteChunk("fdAT", BigEndian(sequence_++, 4) + data);
    isFirst_ = false;
}

void Animation::Finish() {
    WriteChunk("IEND", "");
    file_.Commit();
}

} // namespace z3d::tools
