// The contract's hands on the Mac's desktop: deeds are done from the real run loop, in real time.

#include "platform/NSApplication.hpp"
#include "tests/contract/Driver.hpp"
#import "tests/macos/Session.hpp"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <thread>

namespace contract {
namespace {

using namespace macos_tests;

struct Launcher : platform::NSApplicationDelegate {
    explicit Launcher(std::function<void()> program)
        : program{std::move(program)} {}
    void applicationDidFinishLaunching() override { program(); }

    std::function<void()> program;
};

/// A second of silence in the plainest format of sound.
std::string silence() {
    constexpr std::size_t bytes = 16000;
    const auto number = [](std::size_t value, int length) {
        std::string text;
        for (int index = 0; index < length; ++index) {
            text += static_cast<char>(value >> (8 * index) & 0xFF);
        }
        return text;
    };
    return "RIFF" + number(36 + bytes, 4) + "WAVEfmt " + number(16, 4) + number(1, 2) + number(1, 2) +
           number(8000, 4) + number(16000, 4) + number(2, 2) + number(16, 2) + "data" + number(bytes, 4) +
           std::string(bytes, '\0');
}

class MacDriver : public Driver {
public:
    MacDriver() { install("Chime.wav", silence()); }

    void install(std::string_view fileName, std::string_view bytes) override {
        // not by way of NSBundle: GNUstep's remembers what it saw in a folder, and must not look too early
        auto folder = std::filesystem::canonical(testing::internal::GetArgvs().front()).parent_path();
        if (folder.filename() == "MacOS") { // a Mac's bundle has a folder for each
            folder = folder.parent_path();
        }
        std::ofstream{folder / "Resources" / fileName, std::ios::binary} << bytes;
    }

    ResourceName playableSound() override { return {"Chime", "wav"}; }

    int run(const std::vector<std::string>& arguments, std::function<void()> program) override {
        const int status =
            _session.run(arguments, std::chrono::seconds{5}, [&program](int argc, const char* const* argv) {
                platform::NSApplication::shared().delegate = std::make_shared<Launcher>(std::move(program));
                return platform::NSApplicationMain(argc, argv);
            });
        EXPECT_FALSE(_session.ranOut()) << "the program did not end";
        return status;
    }

    void after(milliseconds delay, std::function<void()> deed) override { _session.after(delay, std::move(deed)); }
    void onceShown(std::function<void()> deed) override { _session.onceShown(std::move(deed)); }
    void stall(milliseconds span) override { std::this_thread::sleep_for(span); }
    milliseconds uptime() override {
        return std::chrono::duration_cast<milliseconds>(std::chrono::steady_clock::now().time_since_epoch());
    }

    void pressAlertButton(std::size_t index) override { press(alertButton(index)); }
    void tickAlertCheckBox() override { press(alertCheckBox()); }
    void pressPanelButton(std::string_view label) override { press(buttonTitled(label)); }
    void closePanel() override { closeFrontWindow(); }
    bool canPickMenuEntry(std::string_view title) override { return [menuEntry(title) isEnabled]; }
    void pickMenuEntry(std::string_view title) override { pick(title); }
    void wakeMachine() override { macos_tests::wakeMachine(); }

private:
    Session _session;
};

} // namespace

std::unique_ptr<Driver> makeDriver() { return std::make_unique<MacDriver>(); }

} // namespace contract
