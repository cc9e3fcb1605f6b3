#include "Clipboard.h"

#include <cstring>
#include <vector>

#include "Text.h"

namespace z3d::viewer {

namespace {

bool Put(HWND owner, UINT format, const void* bytes, size_t count) {
    const HGLOBAL block = GlobalAlloc(GMEM_MOVEABLE, count);
    if (block == nullptr) return false;
    std::memcpy(GlobalLock(block), bytes, count);
    GlobalUnlock(block);
    bool put = false;
    if (OpenClipboard(owner) != 0) {
        EmptyClipboard();
        put = SetClipboardData(format, block) != nullptr;
        CloseClipboard();
    }
    // What the clipboard has taken is no longer ours.
    if (!put) GlobalFree(block);
    return put;
}

// Rows of blue, green, red, the bottom one first, each filled up to a multiple of four bytes.
std::vector<uint8_t> BitmapOf(const tools::Picture& picture) {
    const auto width = static_cast<size_t>(picture.width);
    const auto height = static_cast<size_t>(picture.height);
    const auto channels = static_cast<size_t>(picture.channels);
    const size_t rowBytes = (width * 3 + 3) / 4 * 4;
    BITMAPINFOHEADER header = {};
    header.biSize = sizeof header;
    header.biWidth = picture.width;
    header.biHeight = picture.height;
    header.biPlanes = 1;
    header.biBitCount = 24;
    header.biSizeImage = static_cast<DWORD>(rowBytes * height);
    std::vector<uint8_t> bitmap(sizeof header + rowBytes * height);
    std::memcpy(bitmap.data(), &header, sizeof header);
    for (size_t y = 0; y < height; ++y) {
        const uint8_t* in = picture.bytes.data() + (height - 1 - y) * width * channels;
        uint8_t* out = bitmap.data() + sizeof header + y * rowBytes;
        for (size_t x = 0; x < width; ++x, in += channels, out += 3)
            for (size_t c = 0; c < 3; ++c)
                out[c] = in[channels == 3 ? 2 - c : 0];
    }
    return bitmap;
}

} // namespace

bool CopyText(HWND owner, const std::string& text) {
    const std::wstring wide = tools::Wide(text);
    return Put(owner, CF_UNICODETEXT, wide.c_str(), (wide.size() + 1) * sizeof(wchar_t));
}

bool CopyPicture(HWND owner, const tools::Picture& picture) {
    const std::vector<uint8_t> bitmap = BitmapOf(picture);
    return Put(owner, CF_DIB, bitmap.data(), bitmap.size());
}

} // namespace z3d::viewer
