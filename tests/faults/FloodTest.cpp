// A panel that says and asks more than any panel does: it costs no reminder, and no memory for good.

#include "tests/faults/WholeProgram.hpp"

#include <gtest/gtest.h>

#include <iostream>
#include <string>
#include <vector>

namespace faults {
namespace {

using namespace platform::linux;

constexpr int aFlood = 20'000;

class Flood : public testing::Test {
protected:
    Flood() {
        program.store("[Settings]\nVersion='test'\nMute=true\nPopupAlerts=true\n");
        program.start();
        program.await([this] { return !program.panel().registered.empty(); }, "the item");
    }

    /// Runs the main loop until the program has answered everything from the panel.
    void settle() {
        ask("org.marvelode.Timer", "/org/marvelode/Timer", "org.freedesktop.DBus.Properties", "Get",
            g_variant_new("(ss)", "org.marvelode.Timer", "State"));
        while (unanswered > 0) {
            program.await([this, before = unanswered] { return unanswered < before; }, "an answer");
        }
    }

    /// Sends a call without waiting for its answer.
    void ask(const std::string& service, const char* object, const char* interface, const char* method,
             GVariant* arguments) {
        const auto answered = [](GObject* bus, GAsyncResult* result, gpointer count) {
            const VariantHandle ignored{g_dbus_connection_call_finish(G_DBUS_CONNECTION(bus), result, nullptr)};
            --*static_cast<int*>(count);
        };
        ++unanswered;
        constexpr int noTimeout = G_MAXINT;
        g_dbus_connection_call(program.panel().bus(), service.c_str(), object, interface, method, arguments,
                               nullptr, G_DBUS_CALL_FLAGS_NONE, noTimeout, nullptr, answered, &unanswered);
    }
    void askForTheItemsToolTip() {
        ask(item(), "/StatusNotifierItem", "org.freedesktop.DBus.Properties", "Get",
            g_variant_new("(ss)", "org.kde.StatusNotifierItem", "ToolTip"));
    }
    void askItem(const char* method, GVariant* arguments) {
        ask(item(), "/StatusNotifierItem", "org.kde.StatusNotifierItem", method, arguments);
    }
    void askMenu(const char* method, GVariant* arguments) {
        ask(item(), "/MenuBar", "com.canonical.dbusmenu", method, arguments);
    }
    std::string item() { return program.panel().registered.back(); }

    /// Has it do that so often, and still remind its user, and give back the memory in the next turns of the cycle.
    template <typename Deed>
    void survives(int times, Deed deed) {
        constexpr int slack = 4 * 1024;
        const int before = program.memory();
        for (int time = 0; time < times; ++time) {
            deed(time);
        }
        settle();
        const int meanwhile = program.memory();
        for (int turn = 0; turn < 3; ++turn) {
            program.awaitReminder();
        }
        std::cout << before << " KiB before, " << meanwhile << " KiB meanwhile, " << program.memory()
                  << " KiB after it\n";
        EXPECT_LE(program.memory(), before + slack);
        program.quit();
        EXPECT_EQ(program.status(), 0) << program.output();
    }

    WholeProgram program;
    int unanswered = 0;
};

TEST_F(Flood, OfSignalsIsSurvived) {
    survives(aFlood, [this](int time) { program.panel().setPanel(time % 2 != 0); });
}

TEST_F(Flood, OfQuestionsToTheItemIsSurvived) {
    survives(aFlood, [this](int) { askForTheItemsToolTip(); });
}

TEST_F(Flood, OfQuestionsToTheItemIsSurvivedAfterItHasChanged) {
    program.awaitReminder(); // after which GLib's thread answers
    survives(aFlood, [this](int) { askForTheItemsToolTip(); });
}

TEST_F(Flood, OfClicksOnTheItemIsSurvived) {
    survives(aFlood / 4, [this](int) {
        askItem("ProvideXdgActivationToken", g_variant_new("(s)", "token"));
        askItem("Activate", g_variant_new("(ii)", 0, 0));
        askItem("ContextMenu", g_variant_new("(ii)", 0, 0));
        askItem("Scroll", g_variant_new("(is)", 1, "vertical"));
    });
}

TEST_F(Flood, OfQuestionsToTheMenuIsSurvived) {
    survives(aFlood / 4, [this](int time) {
        askMenu("AboutToShow", g_variant_new("(i)", 0));
        askMenu("GetLayout", g_variant_new("(ii@as)", 0, -1, g_variant_new_strv(nullptr, 0)));
        askMenu("Event", g_variant_new("(isvu)", time, "hovered", g_variant_new_int32(0), 0));
    });
}

} // namespace
} // namespace faults
