/* Preloaded into every process of the sanitizer suite: no library is ever unloaded. The leak
 * checker runs at exit and names each leaked allocation by the library that made it, so that the
 * suppressions for the system's graphics libraries apply. Mesa unloads its driver (and LLVM with
 * it) when the display closes, and SDL unloads libdbus after a failed connection; what they leave
 * behind would otherwise show as "<unknown module>", which no suppression can name. */
#include <stddef.h>

int dlclose(void* handle) {
    (void)handle;
    return 0;
}
