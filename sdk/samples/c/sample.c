/* Renders a volume in every mode and loads one from files. Links with Zentra3DRendering.lib.
 * Run it in the folder samples/data. */
#include "Zentra3DRendering.h"
#include <stdio.h>
#include <string.h>
#ifdef _WIN32
#include <windows.h>
#endif

enum { WIDTH = 48, HEIGHT = 40, DEPTH = 32 };
static float rotation[9];

/* Renders the whole volume, prints the picture's size and checksum (FNV-1a), and releases it. */
static void Print(const char* name, Volume3D* volume, short mode, float low, float high, float extra) {
    unsigned short width, height;
    unsigned int checksum = 0x811C9DC5, i;
    float* pixels =
        GetRotProjection(volume, rotation, mode, 1, (short)volume->width, 1, (short)volume->height, 1,
                         (short)volume->depth, high, low, extra, &width, &height, 0);
    if (pixels == NULL) {
        printf("%s: no picture\n", name);
        return;
    }
    for (i = 0; i < width * height * 12u; ++i)
        checksum = (checksum ^ ((unsigned char*)pixels)[i]) * 0x01000193;
    printf("%-9s %2u x %2u  %08X\n", name, width, height, checksum);
    GlobalUnlock(GlobalHandle(pixels)); /* the address is not the handle */
    GlobalFree(GlobalHandle(pixels));
}

static int Z3D_CALL CancelAtHalf(size_t user, int code, unsigned int value) {
    float percent;
    memcpy(&percent, &value, sizeof percent); /* the bits of a float */
    if (code != ProgressCodePercent || percent < 50) return 0;
    *(int*)user = (int)percent;
    return ProgressCancel;
}

int main(void) {
    AxisOrder order = {{0, 1, 2}};
    double matrix[9];
    float most, least;
    int i, z, percent = 0;
    FILE* file;
    Volume3D* volume = GlobalAlloc3D(WIDTH, HEIGHT, DEPTH, 1);
    unsigned char*** slices = GlobalLock3D(volume);
    file = fopen("grey.raw", "rb");
    if (slices == NULL || file == NULL) return 1;
    for (z = 0; z < DEPTH; ++z) /* the rows of a slice follow one another */
        if (fread(slices[z][0], WIDTH, HEIGHT, file) != HEIGHT) return 1;
    fclose(file);
    GlobalUnlock3D(volume);

    CreateRotateMatrix(matrix, &order, 30, 40, 50);
    for (i = 0; i < 9; ++i)
        rotation[i] = (float)matrix[i];
    Print("maximum", volume, RenderModeMaximum, 0, 255, 0);
    Print("minimum", volume, RenderModeMinimum, 1, 255, 0);
    Print("sum", volume, RenderModeSum, 0, 255, 0);
    Print("surface", volume, RenderModeSurface, 60, 256, 0);
    Print("layers", volume, RenderModeSurface, 60, 256, 0.5f);
    Print("blend", volume, RenderModeBlend, 0, 255, 0.5f);
    Print("contrast", volume, RenderModeContrast, 0, 256, 0);
    Print("first hit", volume, RenderModeFirstHit, 60, 255, 0);
    GlobalFree3D(volume);

    volume = GetRGBImage("red.raw", "green.raw", "blue.raw", WIDTH, HEIGHT, DEPTH, 0, 0, 0, 1, 60, &most,
                         &least, NULL, NULL, 0, NULL, 0);
    if (volume == NULL) return 1;
    printf("loaded    %u x %u x %u, display range %.0f to %.0f\n", volume->width, volume->height,
           volume->depth, least, most);
    Print("colour", volume, RenderModeMaximum, 0, 765, 0);
    Free3DData(volume);

    volume = GetRGBImage("red.raw", "green.raw", "blue.raw", WIDTH, HEIGHT, DEPTH, 0, 0, 0, 1, 60, &most,
                         &least, NULL, NULL, (size_t)&percent, CancelAtHalf, 0);
    if (volume == NULL && percent > 0) printf("cancelled at %d %%\n", percent);
    Free3DData(volume); /* null does nothing */
    return 0;
}
