#include "app/main.hpp"

#include "app/App.hpp"
#include "platform/NSApplication.hpp"

#include <string_view>

namespace marvelode {

bool isTest = false;
std::shared_ptr<App>& app = *new std::shared_ptr<App>; // never destroyed, and so neither is the application object

int marvelodeTimer(int argc, const char* const* argv) {
    isTest = argc == 2 && std::string_view{argv[1]} == "-test";
    app = App::create(isTest);
    platform::NSApplication::shared().delegate = app;
    return platform::NSApplicationMain(argc, argv);
}

} // namespace marvelode
