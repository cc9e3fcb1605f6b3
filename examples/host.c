/* Renders a ball from an oblique angle and writes the picture to ball.pgm. */
#include "Zentra3DRendering.h"
#include <stdio.h>
#include <windows.h>

int main(void) {
    AxisOrder order = {{0, 1, 2}};
    double matrix[9];
    float rotation[9], *pixels;
    unsigned short width, height;
    int x, y, z, i;
    FILE* file = fopen("ball.pgm", "wb");
    Volume3D* volume = GlobalAlloc3D(64, 64, 64, 1);
    unsigned char*** slices = GlobalLock3D(volume);
    if (file == NULL || slices == NULL) return 1;
    for (z = -32; z < 32; ++z)
        for (y = -32; y < 32; ++y)
            for (x = -32; x < 32; ++x)
                slices[z + 32][y + 32][x + 32] = (unsigned char)max(0, 255 - (x * x + y * y + z * z) / 4);
    CreateRotateMatrix(matrix, &order, 30.0f, 40.0f, 50.0f);
    for (i = 0; i < 9; ++i)
        rotation[i] = (float)matrix[i];
    pixels = GetRotProjection(volume, rotation, RenderModeMaximum, 1, 64, 1, 64, 1, 64, 255.0f /* high */,
                              0.0f /* low */, 0.0f, &width, &height, 0);
    GlobalFree3D(volume);
    if (pixels == NULL) return 1;
    fprintf(file, "P5\n%d %d\n255\n", width, height);
    for (i = 0; i < width * height; ++i)
        fputc((int)max(0.0f, pixels[3 * i]), file);
    GlobalUnlock(GlobalHandle(pixels));
    GlobalFree(GlobalHandle(pixels));
    return fclose(file);
}
