/* What a host in C does, step by step. Needs nothing but the public header and the platform's three functions. */
#include "client.h"

#include "Zentra3DRendering.h"

__declspec(dllimport) void* __stdcall GlobalHandle(const void* address);
__declspec(dllimport) int __stdcall GlobalUnlock(void* block);
__declspec(dllimport) void* __stdcall GlobalFree(void* block);

static const float kIdentity[9] = {1, 0, 0, 0, 1, 0, 0, 0, 1};

#define EXPECT(condition)                                                                                    \
    do {                                                                                                     \
        if (!(condition)) return __LINE__;                                                                   \
    } while (0)

static int UseAnImage(void) {
    Image2D* image = GlobalAlloc2D(5, 4, 1);
    EXPECT(image != 0 && image->width == 5 && image->height == 4 && image->bytesPerPixel == 1);
    EXPECT(GlobalLock2D(image) == image->rows);
    EXPECT(image->rows[3] - image->rows[0] == 15 && image->rows[3][4] == 0);
    EXPECT(GlobalUnlock2D(image) == 0);
    GlobalFree2D(image);
    return 0;
}

static int UseAVolume(void) {
    Volume3D* volume = GlobalAlloc3D(4, 3, 2, 3);
    EXPECT(volume != 0 && volume->depth == 2);
    EXPECT(GlobalLock3D(volume) == volume->sliceRows);
    EXPECT(GlobalUnlock3D(volume) == 0);
    EXPECT(GlobalUnlock3D(volume) == 1);
    GlobalFree3D(volume);
    Free3DData(GlobalAlloc3D(4, 3, 2, 0));
    return 0;
}

static int RenderAProjection(void) {
    unsigned short width = 0;
    unsigned short height = 0;
    void* block;
    float* pixels;
    Volume3D* volume = GlobalAlloc3D(4, 3, 2, 1);
    GlobalLock3D(volume)[1][2][1] = 200;
    GlobalUnlock3D(volume);

    GetRotDim(volume, kIdentity, 1, 4, 1, 3, 1, 2, &width, &height, 0);
    EXPECT(width == 4 && height == 3);
    pixels = GetRotProjection(volume, kIdentity, RenderModeMaximum, 1, 4, 1, 3, 1, 2, 255.0f, 0.0f, 0.0f,
                              &width, &height, 0);
    EXPECT(pixels != 0 && pixels[3] == 200.0f && pixels[0] == 0.0f);

    block = GlobalHandle(pixels);
    EXPECT(block != 0 && GlobalUnlock(block) == 0 && GlobalFree(block) == 0);
    Free3DData(volume);
    return 0;
}

int RunClient(void) {
    int line = UseAnImage();
    if (line == 0) line = UseAVolume();
    if (line == 0) line = RenderAProjection();
    return line;
}
