/* A program that has functions of the names by which a picture is released on Windows. */
#ifndef OWN_NAMES_H
#define OWN_NAMES_H

#define Z3D_OWN_GLOBAL_MEMORY
#include "Zentra3DRendering.h"

/* The program's own. They give what the library's never do. */
void* GlobalHandle(const void* address);
int GlobalUnlock(void* block);
void* GlobalFree(void* block);

/* How often they were called. */
extern int ownCalls;

/* Every function of the library that Render takes. */
struct Functions {
    Volume3D*(Z3D_CALL* alloc)(unsigned int, unsigned int, unsigned int, unsigned int);
    unsigned char***(Z3D_CALL* lock)(Volume3D*);
    float*(Z3D_CALL* render)(Volume3D*, const float*, short, short, short, short, short, short, short, float,
                             float, float, unsigned short*, unsigned short*, int);
    void(Z3D_CALL* free)(Volume3D*);
};

/*
 * Renders one bright voxel, checks where it is seen, and releases the picture by the functions that the library has:
 * `library` is the handle that dlopen gave. Returns 0 when all is right and none of the program's own was called by
 * the way, else prints what is wrong.
 */
int Render(const struct Functions* functions, void* library);

#endif
