#pragma once

// The desktop of a Mac. Every verb is the one call that AppKit or Foundation has for it; what takes more than a
// call has a file of its own beside this one.

#include "platform/Desktop.hpp"
#include "platform/macos/Panel.hpp"
#include "platform/macos/Retained.hpp"
#include "platform/macos/SoundPlayer.hpp"
#include "platform/macos/StatusItem.hpp"
#include "platform/macos/Timers.hpp"

#import <AppKit/AppKit.h>

#include <optional>
#include <vector>

@class ApplicationDelegate;

namespace macos {

class MacDesktop final : public platform::Desktop {
public:
    MacDesktop();
    ~MacDesktop() override;

    int run(int argc, const char* const* argv) override;
    void terminate() override;
    void activate(bool ignoringOtherApps) override;
    void activateRunningApplication(bool ignoringOtherApps) override;

    platform::Date now() override;
    void schedule(const std::shared_ptr<platform::Timer>& timer) override;
    void cancel(const platform::Timer& timer) override;

    void showStatusItem(const std::shared_ptr<platform::NSStatusItem>& item) override;
    void statusItemChanged() override;

    int runAlert(platform::NSAlert& alert) override;
    void runModal(platform::NSPanel& model, const platform::View& content) override;
    void stopModal() override;
    void center(platform::NSPanel& panel) override;
    void close(platform::NSPanel& model) override;

    bool boolForKey(std::string_view key) override;
    std::int64_t integerForKey(std::string_view key) override;
    std::optional<std::string> stringForKey(std::string_view key) override;
    void setDefault(platform::DefaultsValue value, std::string_view key) override;

    std::optional<std::filesystem::path> resource(std::string_view name, std::string_view extension) override;
    std::optional<std::string> contentsOf(const std::filesystem::path& url) override;
    std::optional<platform::NSImage> imageNamed(std::string_view name) override;

    bool canPlay(const std::filesystem::path& url) override;
    bool play(const platform::NSSound& sound) override;
    void beep() override;

    void print(std::string_view line) override;
    bool isLogEnabled(const platform::Logger& logger, platform::Logger::Level level) override;
    void log(const platform::Logger& logger, platform::Logger::Level level, std::string_view message) override;

private:
    Retained<ApplicationDelegate> _applicationDelegate;
    Retained<NSObject> _activity;
    Timers _timers;
    std::optional<StatusItem> _statusItem;
    std::vector<Panel*> _running; // innermost last
    const platform::NSPanel* _centered = nullptr;
    SoundPlayer _sounds;
};

} // namespace macos
