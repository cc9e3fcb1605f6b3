/* Zentra3DRendering: renders 3D image volumes. The library's one public header. */
#ifndef ZENTRA3DRENDERING_H
#define ZENTRA3DRENDERING_H

#ifdef __cplusplus
extern "C" {
#endif

#if defined(_WIN32)
#define Z3D_CALL __stdcall
#else
#define Z3D_CALL
#endif

typedef struct Image2D {
    void* mem;
    unsigned char** rows;
    unsigned short width;
    unsigned short height;
    unsigned int bytesPerPixel;
} Image2D;

typedef struct Volume3D {
    Image2D** slices;
    unsigned char*** sliceRows;
    unsigned short width;
    unsigned short height;
    unsigned short depth;
} Volume3D;

typedef int(Z3D_CALL* ProgressCallback)(void* user, int code, int value);

#ifdef __cplusplus
}
#endif

#endif
