/* Linked with the library: the program's own functions of the three names are found before the library's. */
#include "own_names.h"

#include <dlfcn.h>
#include <stddef.h>

int main(void) {
    static const struct Functions functions = {GlobalAlloc3D, GlobalLock3D, GetRotProjection, Free3DData};
    void* library = dlopen("libzentra3drendering.so.1", RTLD_NOW | RTLD_NOLOAD);
    return library == NULL || Render(&functions, library) != 0;
}
