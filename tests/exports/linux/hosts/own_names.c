#include "own_names.h"

#include <dlfcn.h>
#include <stdio.h>
#include <string.h>

int ownCalls = 0;

void* GlobalHandle(const void* address) {
    (void)address;
    ++ownCalls;
    return &ownCalls;
}

int GlobalUnlock(void* block) {
    (void)block;
    ++ownCalls;
    return 77;
}

void* GlobalFree(void* block) {
    ++ownCalls;
    return block;
}

static int Complain(const char* what) {
    fprintf(stderr, "%s\n", what);
    return 1;
}

/* The function of that name that the library itself has. */
static void Take(void* library, const char* name, void* function) {
    void* address = dlsym(library, name);
    memcpy(function, &address, sizeof address);
}

static int Release(void* library, float* pixels) {
    void* (*handleOf)(const void*);
    int (*unlock)(void*);
    void* (*release)(void*);
    void* block;
    Take(library, "GlobalHandle", &handleOf);
    Take(library, "GlobalUnlock", &unlock);
    Take(library, "GlobalFree", &release);
    if (handleOf == NULL || unlock == NULL || release == NULL)
        return Complain("the library lacks one of the three");
    if (handleOf == GlobalHandle) return Complain("the library's handle leads to the program's own function");
    block = handleOf(pixels);
    if (block == NULL || unlock(block) != 0 || release(block) != NULL)
        return Complain("the picture was not released");
    return handleOf(pixels) == NULL ? 0 : Complain("the picture is still there");
}

int Render(const struct Functions* functions, void* library) {
    static const float notTurned[9] = {1, 0, 0, 0, 1, 0, 0, 0, 1};
    unsigned short width, height;
    float* pixels;
    Volume3D* volume = functions->alloc(5, 4, 3, 1);
    functions->lock(volume)[1][0][4] = 200;
    pixels = functions->render(volume, notTurned, RenderModeMaximum, 1, 5, 1, 4, 1, 3, 255, 0, 0, &width,
                               &height, 0);
    functions->free(volume);
    if (pixels == NULL || width != 5 || height != 4) return Complain("no picture of the right size");
    if (pixels[3 * (3 * 5 + 4)] != 200 || pixels[0] != 0)
        return Complain("the voxel is not where it has to be");
    if (Release(library, pixels) != 0) return 1;
    if (ownCalls != 0) return Complain("the library called a function of the program");
    if (GlobalUnlock(NULL) != 77 || ownCalls != 1)
        return Complain("the program's own function is not its own any more");
    return 0;
}
