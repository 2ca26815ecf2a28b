// Preloaded into a program on a virtual screen, splits that screen in the program's eyes into two monitors side by
// side. Virtual displays have one monitor that GTK takes for one.

#include <X11/extensions/Xrandr.h>
#include <dlfcn.h>

#include <cstdlib>

// NOLINTBEGIN(cppcoreguidelines-no-malloc,cppcoreguidelines-owning-memory): the library frees what it is given
// NOLINTBEGIN(readability-inconsistent-declaration-parameter-name): its names for parameters are not ours

namespace {

constexpr int monitorCount = 2;
RROutput theOutput;

/// The library's own function, which a program that shows no windows does without.
template <typename Function>
Function* original(const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

} // namespace

extern "C" {

XRRMonitorInfo* XRRGetMonitors(Display* display, Window window, Bool getActive, int* count) {
    XRRMonitorInfo* const whole =
        original<decltype(XRRGetMonitors)>("XRRGetMonitors")(display, window, getActive, count);
    if (!whole || *count != 1 || whole->noutput != 1) {
        std::abort();
    }
    theOutput = whole->outputs[0];
    static RROutput outputs[monitorCount];
    auto* const halves = static_cast<XRRMonitorInfo*>(std::calloc(monitorCount, sizeof(XRRMonitorInfo)));
    for (int index = 0; index < monitorCount; ++index) {
        halves[index] = *whole;
        halves[index].width = whole->width / monitorCount;
        halves[index].x = index * halves[index].width;
        halves[index].primary = index == 0;
        halves[index].name = // newer GTK tells monitors by it
            original<decltype(XInternAtom)>("XInternAtom")(display, index == 0 ? "left" : "right", False);
        outputs[index] = theOutput + static_cast<RROutput>(index);
        halves[index].outputs = &outputs[index];
    }
    original<decltype(XRRFreeMonitors)>("XRRFreeMonitors")(whole);
    *count = monitorCount;
    return halves;
}

XRROutputInfo* XRRGetOutputInfo(Display* display, XRRScreenResources* resources, RROutput) {
    return original<decltype(XRRGetOutputInfo)>("XRRGetOutputInfo")(display, resources, theOutput);
}

Atom* XRRListOutputProperties(Display* display, RROutput, int* count) {
    return original<decltype(XRRListOutputProperties)>("XRRListOutputProperties")(display, theOutput, count);
}

int XRRGetOutputProperty(Display* display, RROutput, Atom property, long offset, long length, Bool remove,
                         Bool pending, Atom type, Atom* actualType, int* actualFormat, unsigned long* itemCount,
                         unsigned long* bytesAfter, unsigned char** value) {
    return original<decltype(XRRGetOutputProperty)>("XRRGetOutputProperty")(
        display, theOutput, property, offset, length, remove, pending, type, actualType, actualFormat, itemCount,
        bytesAfter, value);
}
}

// NOLINTEND(readability-inconsistent-declaration-parameter-name)
// NOLINTEND(cppcoreguidelines-no-malloc,cppcoreguidelines-owning-memory)
