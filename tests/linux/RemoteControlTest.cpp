// What others on the session bus can do with the timer and see of it, and that there is one timer only.

#include "tests/linux/ControlTest.hpp"
#include "tests/support/BusSignals.hpp"

#include <gmock/gmock.h>

#include <chrono>
#include <future>
#include <string>
#include <thread>
#include <vector>

namespace platform::linux {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

TEST_F(ControlTest, AMethodPicksItsEntry) {
    EXPECT_TRUE(run("Restart"));
    EXPECT_TRUE(run("Quit"));
    EXPECT_THAT(picked, ElementsAre("Restart timer", "Quit now"));
    EXPECT_EQ(menus, 0);
}

TEST_F(ControlTest, AnActionOfTheDesktopPicksItsEntry) {
    EXPECT_TRUE(activateAction("quit"));
    EXPECT_TRUE(activateAction("restart"));
    EXPECT_THAT(picked, ElementsAre("Quit now", "Restart timer"));
}

TEST_F(ControlTest, WhatIsNoActionIsRefused) {
    std::string error;
    EXPECT_FALSE(activateAction("Restart", &error));
    EXPECT_THAT(error, HasSubstr("org.freedesktop.DBus.Error.InvalidArgs"));
    EXPECT_THAT(error, HasSubstr("Marvelode Timer has no such action."));
    EXPECT_FALSE(run("Explode", &error));
    EXPECT_THAT(error, HasSubstr("org.freedesktop.DBus.Error.UnknownMethod"));
    EXPECT_THAT(picked, IsEmpty());
}

TEST_F(ControlTest, WhatIsNoActionChangesNothing) {
    std::string error;
    EXPECT_FALSE(ask("org.freedesktop.Application", "ActivateAction",
                     g_variant_new_parsed("('explode', @av [], {'activation-token': <'token'>, "
                                          "'environ': <[b'DISPLAY=:7']>})"),
                     &error));
    EXPECT_THAT(session.forHelpers(), Not(Contains("DISPLAY=:7")));
    EXPECT_EQ(token.take(), "");
}

TEST_F(ControlTest, SuccessIsNotToldBeforeTheEntryWasPicked) {
    answersAtOnce = false;
    bool isAnswered = false;
    const auto answered = [](GObject* from, GAsyncResult* result, gpointer data) {
        ErrorSlot error;
        const VariantHandle answer{g_dbus_connection_call_finish(G_DBUS_CONNECTION(from), result, error.out())};
        EXPECT_TRUE(answer) << error.message();
        *static_cast<bool*>(data) = true;
    };
    g_dbus_connection_call(script.get(), busName, objectPath, "org.marvelode.Timer", "Restart", nullptr, nullptr,
                           G_DBUS_CALL_FLAGS_NONE, -1, nullptr, answered, &isAnswered);
    EXPECT_TRUE(runLoopUntil([&] { return pending != nullptr; }));
    runLoopFor(std::chrono::milliseconds{50});
    EXPECT_FALSE(isAnswered);
    pending();
    pending(); // once more, as happens to an entry that opens a window
    EXPECT_TRUE(runLoopUntil([&] { return isAnswered; }));
}

TEST_F(ControlTest, WhatTheMenuCannotDoNowFailsAsBusy) {
    isBusy = true;
    answersAtOnce = false;
    std::string error;
    EXPECT_FALSE(run("Restart", &error));
    EXPECT_THAT(error, HasSubstr("org.marvelode.Timer.Error.Busy"));
    EXPECT_FALSE(activateAction("quit", &error));
    EXPECT_THAT(error, HasSubstr("org.marvelode.Timer.Error.Busy"));
}

TEST_F(ControlTest, TheMenuIsShownHoweverItIsAskedFor) {
    isBusy = true;
    EXPECT_TRUE(run("ShowMenu"));
    EXPECT_TRUE(ask("org.freedesktop.Application", "Activate", g_variant_new("(a{sv})", nullptr)));
    EXPECT_TRUE(ask("org.freedesktop.Application", "Open", g_variant_new("(asa{sv})", nullptr, nullptr)));
    EXPECT_EQ(menus, 3);
    EXPECT_THAT(picked, IsEmpty());
}

TEST_F(ControlTest, TheDesktopLetsItsWindowsComeToTheFront) {
    EXPECT_TRUE(
        ask("org.freedesktop.Application", "Activate", g_variant_new_parsed("({'activation-token': <'first'>},)")));
    EXPECT_EQ(token.take(), "first");
    EXPECT_TRUE(ask("org.freedesktop.Application", "Open",
                    g_variant_new_parsed("(@as [], {'activation-token': <'second'>})")));
    EXPECT_EQ(token.take(), "second");
    EXPECT_TRUE(ask("org.freedesktop.Application", "ActivateAction",
                    g_variant_new_parsed("('quit', @av [], {'activation-token': <'third'>})")));
    EXPECT_EQ(token.take(), "third");
    EXPECT_TRUE(
        ask("org.freedesktop.Application", "Activate", g_variant_new_parsed("({'activation-token': <4>},)")));
    EXPECT_EQ(token.take(), "");
}

TEST_F(ControlTest, ACallWithATokenThatIsTooLongIsRefusedAndHasNoEffect) {
    const std::string tooLong(ActivationToken::longest + 1, 'x');
    GVariantDict data;
    g_variant_dict_init(&data, nullptr);
    g_variant_dict_insert(&data, "activation-token", "s", tooLong.c_str());
    std::string error;
    EXPECT_FALSE(ask("org.freedesktop.Application", "Activate",
                     g_variant_new("(@a{sv})", g_variant_dict_end(&data)), &error));
    EXPECT_THAT(error, HasSubstr("org.freedesktop.DBus.Error.InvalidArgs"));
    EXPECT_EQ(token.take(), "");
    EXPECT_EQ(menus, 0);
}

TEST_F(ControlTest, SuccessIsNotToldBeforeTheMenuIsOnTheScreen) {
    isMenuShownAtOnce = false;
    bool isAnswered = false;
    const auto answered = [](GObject* from, GAsyncResult* result, gpointer data) {
        ErrorSlot error;
        const VariantHandle answer{g_dbus_connection_call_finish(G_DBUS_CONNECTION(from), result, error.out())};
        EXPECT_TRUE(answer) << error.message();
        *static_cast<bool*>(data) = true;
    };
    g_dbus_connection_call(script.get(), busName, objectPath, "org.freedesktop.Application", "Activate",
                           g_variant_new("(a{sv})", nullptr), nullptr, G_DBUS_CALL_FLAGS_NONE, -1, nullptr,
                           answered, &isAnswered);
    EXPECT_TRUE(runLoopUntil([&] { return menuShown != nullptr; }));
    runLoopFor(std::chrono::milliseconds{50});
    EXPECT_FALSE(isAnswered);
    menuShown();
    EXPECT_TRUE(runLoopUntil([&] { return isAnswered; }));
}

TEST_F(ControlTest, AMenuThatCannotBeShownIsToldAsAnError) {
    hasDisplay = false;
    std::string error;
    EXPECT_FALSE(run("ShowMenu", &error));
    EXPECT_THAT(error, HasSubstr("org.marvelode.Timer.Error.NoWindow"));
}

TEST_F(ControlTest, ACallersDisplayIsAdopted) {
    EXPECT_TRUE(
        ask("org.freedesktop.Application", "Activate",
            g_variant_new_parsed("({'environ': <[b'DISPLAY=:7', b'XAUTHORITY=/a=b', b'HOME=/', b'odd']>},)")));
    EXPECT_THAT(session.forHelpers(), Contains("DISPLAY=:7"));
    EXPECT_THAT(session.forHelpers(), Contains("XAUTHORITY=/a=b"));
    EXPECT_THAT(session.forHelpers(), Not(Contains("HOME=/")));
    const std::string tooLong = "DISPLAY=" + std::string(5000, '9');
    GVariantDict data;
    g_variant_dict_init(&data, nullptr);
    const std::vector<const char*> variables{tooLong.c_str(), "WAYLAND_DISPLAY=wayland-3", nullptr};
    g_variant_dict_insert_value(&data, "environ", g_variant_new_bytestring_array(variables.data(), -1));
    EXPECT_TRUE(
        ask("org.freedesktop.Application", "Activate", g_variant_new("(@a{sv})", g_variant_dict_end(&data))));
    EXPECT_THAT(session.forHelpers(), Contains("WAYLAND_DISPLAY=wayland-3"));
    EXPECT_THAT(session.forHelpers(), Not(Contains(tooLong)));
}

TEST_F(ControlTest, TheNameCannotBeTakenOver) {
    constexpr guint32 replaceAndDoNotQueue = 2 | 4;
    constexpr guint32 belongsToAnother = 3;
    const VariantHandle answer =
        call(script.get(), "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "RequestName",
             g_variant_new("(su)", busName, replaceAndDoNotQueue));
    EXPECT_EQ(g_variant_get_uint32(VariantHandle{g_variant_get_child_value(answer.get(), 0)}.get()),
              belongsToAnother);
}

TEST_F(ControlTest, ThePropertiesAreReadAfresh) {
    EXPECT_EQ(property("State"), "'Timing'");
    EXPECT_EQ(property("Text"), "'9m'");
    EXPECT_EQ(property("RemainingSeconds"), "int64 540");
    EXPECT_EQ(property("Muted"), "false");
    EXPECT_EQ(property("Popups"), "true");
    isReminding = true;
    seconds = -70;
    isMuted = true;
    showsPopups = false;
    EXPECT_EQ(property("State"), "'Reminding'");
    EXPECT_EQ(property("RemainingSeconds"), "int64 -70");
    EXPECT_EQ(property("Muted"), "true");
    EXPECT_EQ(property("Popups"), "false");
}

TEST_F(ControlTest, WhatItKnowsOfItselfIsTold) {
    EXPECT_EQ(printed(run("Diagnose")), "([('Panel', 'none'), ('Error', '\uFFFD')],)");
}

TEST_F(ControlTest, TheNameBelongsToOneTimer) {
    EXPECT_FALSE(RemoteControl::claimName(script.get(), noError));
    control.reset();
    g_dbus_connection_close_sync(bus.get(), nullptr, nullptr);
    bool isClaimed = false;
    EXPECT_TRUE(runLoopUntil([&] {
        g_main_context_wakeup(nullptr);
        return isClaimed = isClaimed || RemoteControl::claimName(script.get(), noError);
    }));
}

TEST_F(ControlTest, TheNameIsNotClaimedOnABusThatHasGone) {
    g_dbus_connection_close_sync(script.get(), nullptr, nullptr);
    ErrorSlot error;
    EXPECT_FALSE(RemoteControl::claimName(script.get(), error));
    EXPECT_TRUE(error);
}

TEST_F(ControlTest, ASecondTimerHasTheFirstShowItsMenu) {
    std::promise<bool> isShown;
    std::thread second{[&] {
        ErrorSlot error;
        isShown.set_value(RemoteControl::showMenuOfOwner(script.get(), error));
        g_main_context_wakeup(nullptr);
    }};
    std::future<bool> answer = isShown.get_future();
    EXPECT_TRUE(runLoopUntil([&] { return menus == 1; }));
    runLoopUntil([&] { return answer.wait_for(std::chrono::seconds{0}) == std::future_status::ready; });
    second.join();
    EXPECT_TRUE(answer.get());
}

TEST_F(ControlTest, ATimerThatIsGoneShowsNoMenu) {
    control.reset();
    g_dbus_connection_close_sync(bus.get(), nullptr, nullptr);
    ErrorSlot error;
    EXPECT_FALSE(RemoteControl::showMenuOfOwner(script.get(), error));
    EXPECT_THAT(error.message(), HasSubstr("org.marvelode.Timer"));
}

TEST_F(ControlTest, NothingIsAnsweredOnceItHasEnded) {
    control.reset();
    std::string error;
    EXPECT_FALSE(run("Restart", &error));
    EXPECT_THAT(picked, IsEmpty());
}

} // namespace
} // namespace platform::linux
