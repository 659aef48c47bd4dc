// Preloaded into the sanitizer test run: keeps the graphics and windowing libraries mapped until
// the process ends. The OpenGL dispatch library unloads its driver while the program exits,
// before the leak check runs, and the driver's own allocations then show up as leaks from an
// unknown module, which no suppression can name. Pinned, they keep their names, and
// tests/lsan.supp covers them.
#include <dlfcn.h>

namespace {

__attribute__((constructor)) void pinGraphicsLibraries() {
    static const char* const libraries[] = {
        "libGL.so.1",         "libGLX.so.0",        "libGLX_mesa.so.0",
        "libGLdispatch.so.0", "libglapi.so.0",      "/usr/lib/x86_64-linux-gnu/dri/swrast_dri.so",
        "libX11.so.6",        "libX11-xcb.so.1",    "libxcb.so.1",
        "libXext.so.6",       "libXrandr.so.2",     "libXi.so.6",
        "libXcursor.so.1",    "libXfixes.so.3",     "libXxf86vm.so.1",
        "libXss.so.1",        "libdbus-1.so.3",     "libfontconfig.so.1",
        "libfreetype.so.6",   "libglut.so.3",       "libSDL2-2.0.so.0",
    };
    for (const char* library : libraries) dlopen(library, RTLD_NOW | RTLD_GLOBAL | RTLD_NODELETE);
}

}  // namespace
