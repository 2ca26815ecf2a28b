#pragma once

// The little of a desktop that showing windows needs: where pictures lie, and what closing a panel leads to. Its
// other verbs do nothing.

#include "platform/Desktop.hpp"
#include "platform/linux/window/WindowHelper.hpp"
#include "tests/support/CollectedErrors.hpp"

#include <glib.h>

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

namespace platform::linux {

class BareDesktop : public Desktop {
public:
    /// Shows windows with the program at `helperProgram`, and takes pictures from the folder `resources`.
    explicit BareDesktop(std::filesystem::path helperProgram, std::filesystem::path resources = {})
        : program{std::move(helperProgram), session}
        , windows{program, [] { g_main_context_iteration(nullptr, TRUE); }, errorLog, activationToken}
        , _resources{std::move(resources)} {}

    CollectedErrors errorLog;
    const std::vector<std::string>& errors = errorLog.problems;
    ActivationToken activationToken; ///< For the next panel.
    SessionEnvironment session;
    HelperProgram program;
    WindowHelper windows;

    /// As the whole desktop does it, seldom once the session is over.
    int runAlert(NSAlert& alert) override {
        return session.isWorthAReminder() ? windows.runAlert(alert) : NSAlert::Stopped;
    }
    void runModal(NSPanel& panel, const View& content) override { windows.runModal(panel, content); }
    void stopModal() override { windows.stopModal(); }
    void close(NSPanel& panel) override {
        if (panel.delegate) {
            panel.delegate->windowWillClose();
        }
    }
    void terminate() override { windows.closeAll(); }

    std::optional<NSImage> imageNamed(std::string_view name) override {
        return NSImage{std::string{name}, _resources / name, {320, 520}};
    }

    int run(int, const char* const*) override { return 0; }
    void activate(bool) override {}
    Date now() override { return Date{0}; }
    void schedule(const std::shared_ptr<Timer>&) override {}
    void cancel(const Timer&) override {}
    void showStatusItem(const std::shared_ptr<NSStatusItem>&) override {}
    void statusItemChanged() override {}
    void center(NSPanel&) override {}
    bool boolForKey(std::string_view) override { return false; }
    std::int64_t integerForKey(std::string_view) override { return 0; }
    std::optional<std::string> stringForKey(std::string_view) override { return {}; }
    void setDefault(DefaultsValue, std::string_view) override {}
    std::optional<std::filesystem::path> resource(std::string_view, std::string_view) override { return {}; }
    std::optional<std::string> contentsOf(const std::filesystem::path&) override { return {}; }
    bool canPlay(const std::filesystem::path&) override { return false; }
    bool play(const NSSound&) override { return false; }
    void beep() override {}
    void print(std::string_view) override {}
    bool isLogEnabled(const Logger&, Logger::Level) override { return false; }
    void log(const Logger&, Logger::Level, std::string_view) override {}

private:
    std::filesystem::path _resources;
};

} // namespace platform::linux
