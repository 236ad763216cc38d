// GL that is opened at run time: each function by its name, or with a plugin (PLUGIN), which prefers its own
// libraries to those of the program.

#include <dlfcn.h>

#include <cstdlib>

#ifndef PLUGIN
static void* const libraries[] = {dlopen("libGL.so.1", RTLD_NOW | RTLD_LOCAL),
                                  dlopen("libEGL.so.1", RTLD_NOW | RTLD_LOCAL)};
#define GL(name) reinterpret_cast<decltype(&name)>(dlsym(libraries[#name[0] == 'e'], #name))
#endif
#include "Headless.h"
#include "Scene.h"

#ifdef PLUGIN
extern "C" int draw() {
#else
static int draw() {
#endif
    if (!makeContext())
        return 77;
    drawScene(1);
    printScene("opened");
    return 8;
}

#ifndef PLUGIN
int main(int, char** arguments) {
    if (!arguments[1])
        return draw();
    void* plugin = dlopen(arguments[1], RTLD_NOW | RTLD_DEEPBIND);
    return plugin ? reinterpret_cast<int (*)()>(dlsym(plugin, "draw"))() : 77;
}
#endif
