#include "exports/ExportedVolume.h"

#include "exports/Library.h"

namespace z3d::test {

ExportedVolume::ExportedVolume(unsigned int width, unsigned int height, unsigned int depth,
                               unsigned int bytesPerVoxel)
    : volume_(TheLibrary().GlobalAlloc3D(width, height, depth, bytesPerVoxel)) {
    unsigned char*** slices = TheLibrary().GlobalLock3D(volume_);
    unsigned int value = 1;
    for (unsigned int z = 0; z < depth; ++z) {
        for (unsigned int y = 0; y < height; ++y) {
            for (unsigned int byte = 0; byte < width * bytesPerVoxel; ++byte) {
                value = value * 1664525u + 1013904223u;
                slices[z][y][byte] = static_cast<unsigned char>(value >> 24);
            }
        }
    }
    TheLibrary().GlobalUnlock3D(volume_);
}

ExportedVolume::~ExportedVolume() { TheLibrary().GlobalFree3D(volume_); }

Projection RenderMaximum(Volume3D* volume, const float* rotation) {
    Projection projection;
    projection.pixels =
        TheLibrary().GetRotProjection(volume, rotation, RenderModeMaximum, 1, 32767, 1, 32767, 1, 32767,
                                      765.0f, 0.0f, 0.0f, &projection.width, &projection.height, 0);
    return projection;
}

} // namespace z3d::test
