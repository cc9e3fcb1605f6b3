#include "ImageFiles.h"

#include "Failure.h"
#include "File.h"
#include "Text.h"

#include <zlib.h>

#include <cstdlib>

namespace {

// zlib packs better than the small packer of the PNG writer, which takes the block and frees it.
unsigned char* PackForPng(unsigned char* data, int length, int* packedLength, int /*quality*/) {
    uLongf packed = compressBound(static_cast<uLong>(length));
    auto* const block = static_cast<unsigned char*>(std::malloc(packed));
    if (block == nullptr || compress2(block, &packed, data, static_cast<uLong>(length), 6) != Z_OK) {
        std::free(block);
        return nullptr;
    }
    *packedLength = static_cast<int>(packed);
    return block;
}

} // namespace

#define STBIW_ZLIB_COMPRESS PackForPng
#define STB_IMAGE_WRITE_IMPLEMENTATION
#define STB_IMAGE_WRITE_STATIC
#define STBI_WRITE_NO_STDIO
#include <stb_image_write.h>

namespace z3d::tools {

namespace {

// Exceptions must not cross the C code between: it only collects, and the file is written afterwards.
void Collect(void* context, void* bytes, int count) {
    static_cast<std::string*>(context)->append(static_cast<const char*>(bytes), static_cast<size_t>(count));
}

} // namespace

std::string EncodePng(const Picture& picture) {
    std::string encoded;
    if (stbi_write_png_to_func(Collect, &encoded, picture.width, picture.height, picture.channels,
                               picture.bytes.data(), picture.width * picture.channels)
        == 0)
        throw Failure(
            Format("not enough memory to encode a picture of %dx%d", picture.width, picture.height));
    return encoded;
}

void WritePng(const std::filesystem::path& path, const Picture& picture) {
    const std::string encoded = EncodePng(picture);
    OutputFile file(path);
    file.Write(encoded);
    file.Commit();
}

void WritePfm(const std::filesystem::path& path, const Projection& projection) {
    OutputFile file(path);
    // The sign of the scale says little-endian.
    file.Write(Format("PF\n%d %d\n-1.0\n", projection.width, projection.height));
    const size_t rowBytes = static_cast<size_t>(projection.width) * 3 * sizeof(float);
    for (int row = projection.height - 1; row >= 0; --row)
        file.Write(projection.Row(row), rowBytes);
    file.Commit();
}

void WriteNrrd(const std::filesystem::path& headerPath, const std::filesystem::path& dataPath,
               const Projection& projection) {
    OutputFile data(dataPath);
    data.Write(projection.pixels.get(), projection.FloatCount() * sizeof(float));
    OutputFile header(headerPath);
    header.Write(Format("NRRD0004\n"
                        "type: float\n"
                        "dimension: 3\n"
                        "sizes: 3 %d %d\n"
                        "kinds: RGB-color domain domain\n"
                        "endian: little\n"
                        "encoding: raw\n"
                        "data file: %s\n",
                        projection.width, projection.height, Shown(dataPath.filename()).c_str()));
    data.Commit();
    header.Commit();
}

} // namespace z3d::tools
