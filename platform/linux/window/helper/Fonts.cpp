#include "platform/linux/window/helper/Fonts.hpp"

#include <fontconfig/fontconfig.h>

namespace platform::linux {
namespace {

bool hasCacheFolder(FcConfig* config) {
    FcStrList* folders = FcConfigGetCacheDirs(config);
    const bool hasOne = folders && FcStrListNext(folders);
    if (folders) {
        FcStrListDone(folders);
    }
    return hasOne;
}

/// Does what FcInit() would, without its list of all configurations that could be chosen. Where there is no
/// configuration, or none that names a folder for what was found, it leaves things to FcInit(), which knows what to
/// do. The current configuration is kept for ever: not all versions of Fontconfig count that it is in use.
gpointer readFonts(gpointer) {
    FcConfig* config = FcConfigCreate();
    if (!FcConfigParseAndLoad(config, nullptr, FcTrue) || !hasCacheFolder(config) || !FcConfigSetCurrent(config)) {
        FcConfigDestroy(config);
    }
    return nullptr;
}

/// Whether GDK is going to: it removes these.
bool changesEnvironment() { return g_getenv("DESKTOP_STARTUP_ID") || g_getenv("GDK_NATIVE_WINDOWS"); }

} // namespace

FontReading::FontReading() {
    if (!changesEnvironment()) {
        _thread = g_thread_try_new("fonts", readFonts, nullptr, nullptr);
    }
}

FontReading::~FontReading() {
    if (_thread) {
        g_thread_join(_thread);
    }
}

} // namespace platform::linux
