// Preloaded into the program that shows windows, lets it open its display once and never again.

#include <dlfcn.h>

extern "C" void* XOpenDisplay(const char* name) {
    static bool wasOpened = false;
    if (wasOpened) {
        return nullptr;
    }
    wasOpened = true;
    return reinterpret_cast<void* (*)(const char*)>(dlsym(RTLD_NEXT, "XOpenDisplay"))(name);
}
