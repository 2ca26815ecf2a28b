#pragma once

// The timer's interfaces on a private session bus, with a program behind them that notes what it is asked for.

#include "platform/linux/RemoteControl.hpp"
#include "tests/support/PrivateBuses.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace platform::linux {

inline constexpr const char* busName = "org.marvelode.Timer";
inline constexpr const char* objectPath = "/org/marvelode/Timer";

class ControlTest : public testing::Test {
protected:
    ControlTest() { EXPECT_TRUE(RemoteControl::claimName(bus.get(), noError)); }
    void TearDown() override {
        g_dbus_connection_close_sync(bus.get(), nullptr, nullptr);
    } // and gives the name back

    VariantHandle ask(const char* interface, const char* method, GVariant* arguments,
                      std::string* error = nullptr) {
        return call(script.get(), busName, objectPath, interface, method, arguments, error);
    }
    VariantHandle run(const char* method, std::string* error = nullptr) {
        return ask("org.marvelode.Timer", method, nullptr, error);
    }
    VariantHandle activateAction(const char* action, std::string* error = nullptr) {
        return ask("org.freedesktop.Application", "ActivateAction",
                   g_variant_new("(s@av@a{sv})", action, g_variant_new_array(G_VARIANT_TYPE_VARIANT, nullptr, 0),
                                 g_variant_new("a{sv}", nullptr)),
                   error);
    }
    std::string property(const char* name) {
        const VariantHandle answer =
            ask("org.freedesktop.DBus.Properties", "Get", g_variant_new("(ss)", "org.marvelode.Timer", name));
        if (!answer) {
            return "no answer";
        }
        GVariant* value = nullptr;
        g_variant_get(answer.get(), "(v)", &value);
        const VariantHandle ownedValue{value};
        const TextHandle text{g_variant_print(value, TRUE)};
        return text.get();
    }

    std::vector<std::string> picked;
    std::function<void()> pending;
    bool answersAtOnce = true;
    bool isBusy = false;
    int menus = 0;
    std::function<void()> menuShown;
    bool isMenuShownAtOnce = true;
    bool hasDisplay = true;
    SessionEnvironment session;
    ActivationToken token;
    bool isReminding = false;
    std::int64_t seconds = 540;
    bool isMuted = false;
    bool showsPopups = true;
    unsigned settingsState = 0;
    int settingsAsked = 0;
    std::vector<std::chrono::seconds> holds;
    int releases = 0;
    std::string holdReason;
    ErrorSlot noError;
    ObjectHandle<GDBusConnection> bus = connectToSession();
    ObjectHandle<GDBusConnection> script = connectToSession();
    std::optional<RemoteControl> control{
        std::in_place, bus.get(),
        ControlledProgram{.commands = {{"Restart", "restart", "Restart timer"}, {"Quit", "quit", "Quit now"}},
                          .pick =
                              [this](std::string_view entry, std::function<void()> done) {
                                  picked.emplace_back(entry);
                                  pending = std::move(done);
                                  if (answersAtOnce) {
                                      pending();
                                  }
                                  if (isBusy) {
                                      pending = nullptr;
                                  }
                              },
                          .showMenu =
                              [this](std::function<void()> shown) {
                                  ++menus;
                                  menuShown = hasDisplay ? std::move(shown) : nullptr;
                                  if (hasDisplay && isMenuShownAtOnce) {
                                      menuShown();
                                  }
                              },
                          .activationToken = token,
                          .session = session,
                          .isReminding = [this] { return isReminding; },
                          .text = [] { return std::string{"9m"}; },
                          .remainingSeconds = [this] { return seconds; },
                          .isMuted =
                              [this] {
                                  ++settingsAsked;
                                  return isMuted;
                              },
                          .showsPopups =
                              [this] {
                                  ++settingsAsked;
                                  return showsPopups;
                              },
                          .settingsState = [this] { return settingsState; },
                          .findings = [] { return Findings{{"Panel", "none"}, {"Error", "\xff"}}; },
                          .hold = [this](std::chrono::seconds span) { holds.push_back(span); },
                          .release = [this] { ++releases; },
                          .holdReason = [this] { return holdReason; }}};
};

} // namespace platform::linux
