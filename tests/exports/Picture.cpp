#include "exports/Picture.h"

#include "exports/Library.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace z3d::test {

Picture TakePicture(Volume3D* volume, const View& view) {
    unsigned short size[2] = {0xABCD, 0xABCD};
    const auto& crop = view.crop;
    float* pixels = TheLibrary().GetRotProjection(volume, view.rotation.data(), view.mode, crop[0], crop[1],
                                                  crop[2], crop[3], crop[4], crop[5], view.high, view.low,
                                                  view.extra, &size[0], &size[1], 0);
    Picture picture = {size[0], size[1], pixels != nullptr, {}};
    if (pixels != nullptr) {
        const std::size_t bytes =
            view.wrappedBytes != 0 ? view.wrappedBytes : ProjectionBytes(size[0], size[1]);
        EXPECT_TRUE(IsBlockOf(pixels, bytes));
        if (IsBlockOf(pixels, bytes)) picture.floats.assign(pixels, pixels + bytes / sizeof(float));
        EXPECT_TRUE(ReleaseProjection(pixels));
    }
    return picture;
}

std::array<float, 9> RotationOf(float angleX, float angleY, float angleZ) {
    const AxisOrder order = {{0, 1, 2}};
    double matrix[9];
    TheLibrary().CreateRotateMatrix(matrix, &order, angleX, angleY, angleZ);
    std::array<float, 9> rotation;
    std::transform(matrix, matrix + 9, rotation.begin(),
                   [](double element) { return static_cast<float>(element); });
    return rotation;
}

void Fill(Volume3D* volume, const std::function<int(int, int, int, int)>& value) {
    unsigned char*** slices = TheLibrary().GlobalLock3D(volume);
    const int channels = static_cast<int>(volume->slices[0]->bytesPerPixel);
    for (int z = 0; z < volume->depth; ++z) {
        for (int y = 0; y < volume->height; ++y) {
            for (int x = 0; x < volume->width; ++x) {
                for (int channel = 0; channel < channels; ++channel)
                    slices[z][y][x * channels + channel] =
                        static_cast<unsigned char>(value(x, y, z, channel));
            }
        }
    }
    TheLibrary().GlobalUnlock3D(volume);
}

} // namespace z3d::test
