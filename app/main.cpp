#include "app/main.hpp"

#include "app/App.hpp"
#include "platform/NSApplication.hpp"

#include <string_view>

namespace marvelode {

bool isTest = false;
std::shared_ptr<App> app;

namespace {

/// Lets the application object go while the desktop that it takes leave of still exists.
struct Farewell {
    ~Farewell() {
        platform::NSApplication::shared().delegate = nullptr;
        app = nullptr;
    }
};

} // namespace

int marvelodeTimer(int argc, const char* const* argv) {
    const Farewell farewell;
    isTest = argc == 2 && std::string_view{argv[1]} == "-test";
    app = std::make_shared<App>(isTest);
    platform::NSApplication::shared().delegate = app;
    return platform::NSApplicationMain(argc, argv);
}

} // namespace marvelode
