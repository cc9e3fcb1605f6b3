/*
 * Loads the library behind another one that has all of its names, for everybody to find, and whose functions end the
 * program. Usage: loaded OTHER_LIBRARY LIBRARY
 */
#include "own_names.h"

#include <dlfcn.h>
#include <stdio.h>
#include <string.h>

static void Take(void* library, const char* name, void* function) {
    void* address = dlsym(library, name);
    memcpy(function, &address, sizeof address);
}

int main(int count, char** arguments) {
    struct Functions functions;
    void *other, *library;
    if (count != 3) return 2;
    other = dlopen(arguments[1], RTLD_NOW | RTLD_GLOBAL);
    library = dlopen(arguments[2], RTLD_NOW | RTLD_LOCAL);
    if (other == NULL || library == NULL) {
        fprintf(stderr, "%s\n", dlerror());
        return 2;
    }
    Take(library, "GlobalAlloc3D", &functions.alloc);
    Take(library, "GlobalLock3D", &functions.lock);
    Take(library, "GetRotProjection", &functions.render);
    Take(library, "Free3DData", &functions.free);
    if (dlsym(RTLD_DEFAULT, "GetRotProjection") != dlsym(other, "GetRotProjection")) {
        fprintf(stderr, "the library came before what was there\n");
        return 1;
    }
    if (Render(&functions, library) != 0) return 1;
    dlclose(library);
    return dlsym(other, "GetRotProjection") == NULL;
}
