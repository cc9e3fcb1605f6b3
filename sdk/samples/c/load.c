/* The pictures of sample.c without the import library: takes the functions from the DLL while it runs, and says in
 * words why that failed. Run it in
 * the folder samples/data. */
#include "Zentra3DRendering.h"
#include <stdio.h>
#include <windows.h>

enum { WIDTH = 48, HEIGHT = 40, DEPTH = 32 };

/* A type for each function that is used: the header's declarations, without the library. */
typedef Volume3D*(Z3D_CALL* Alloc3D)(unsigned int, unsigned int, unsigned int, unsigned int);
typedef unsigned char***(Z3D_CALL* Lock3D)(Volume3D*);
typedef int(Z3D_CALL* Unlock3D)(Volume3D*);
typedef void(Z3D_CALL* Free3D)(Volume3D*);
typedef void(Z3D_CALL* RotateMatrix)(double*, const AxisOrder*, float, float, float);
typedef float*(Z3D_CALL* RotProjection)(Volume3D*, const float*, short, short, short, short, short, short,
                                        short, float, float, float, unsigned short*, unsigned short*, int);

static const struct {
    const char* name;
    short mode;
    float low, high, extra;
} pictures[] = {{"maximum", RenderModeMaximum, 0, 255, 0},
                {"minimum", RenderModeMinimum, 1, 255, 0},
                {"sum", RenderModeSum, 0, 255, 0},
                {"surface", RenderModeSurface, 60, 256, 0},
                {"layers", RenderModeSurface, 60, 256, 0.5f},
                {"blend", RenderModeBlend, 0, 255, 0.5f},
                {"contrast", RenderModeContrast, 0, 256, 0},
                {"first hit", RenderModeFirstHit, 60, 255, 0}};

static HMODULE dll;

static FARPROC Find(const char* name) {
    FARPROC function = GetProcAddress(dll, name); /* the names have no decoration */
    if (function == NULL) {
        printf("Zentra3DRendering.dll has no %s: it is another DLL of that name\n", name);
        ExitProcess(1);
    }
    return function;
}

static const char* Reason(DWORD error) {
    if (error == ERROR_MOD_NOT_FOUND) return "it is neither beside this program nor on the path";
    if (error == ERROR_BAD_EXE_FORMAT)
        return "program and DLL differ in bitness; take the archive for the other one";
    return "see the number";
}

int main(void) {
    AxisOrder order = {{0, 1, 2}};
    double matrix[9];
    float rotation[9], *pixels;
    unsigned short width, height;
    unsigned int checksum, k;
    int i, z;
    Volume3D* volume;
    unsigned char*** slices;
    FILE* file;

    dll = LoadLibraryA("Zentra3DRendering.dll");
    if (dll == NULL) {
        printf("Zentra3DRendering.dll cannot be loaded: %s (error %lu)\n", Reason(GetLastError()),
               GetLastError());
        return 1;
    }
    file = fopen("grey.raw", "rb");
    volume = ((Alloc3D)Find("GlobalAlloc3D"))(WIDTH, HEIGHT, DEPTH, 1);
    slices = ((Lock3D)Find("GlobalLock3D"))(volume);
    if (file == NULL || slices == NULL) return 1;
    for (z = 0; z < DEPTH; ++z)
        if (fread(slices[z][0], WIDTH, HEIGHT, file) != HEIGHT) return 1;
    fclose(file);
    ((Unlock3D)Find("GlobalUnlock3D"))(volume);
    ((RotateMatrix)Find("CreateRotateMatrix"))(matrix, &order, 30, 40, 50);
    for (i = 0; i < 9; ++i)
        rotation[i] = (float)matrix[i];

    for (i = 0; i < (int)(sizeof pictures / sizeof pictures[0]); ++i) {
        pixels = ((RotProjection)Find("GetRotProjection"))(
            volume, rotation, pictures[i].mode, 1, WIDTH, 1, HEIGHT, 1, DEPTH, pictures[i].high,
            pictures[i].low, pictures[i].extra, &width, &height, 0);
        if (pixels == NULL) return 1;
        for (k = 0, checksum = 0x811C9DC5; k < width * height * 12u; ++k)
            checksum = (checksum ^ ((unsigned char*)pixels)[k]) * 0x01000193;
        printf("%-9s %2u x %2u  %08X\n", pictures[i].name, width, height, checksum);
        GlobalUnlock(GlobalHandle(pixels));
        GlobalFree(GlobalHandle(pixels));
    }
    ((Free3D)Find("GlobalFree3D"))(volume);
    return 0;
}
