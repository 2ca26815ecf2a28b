// Reminders that are held back: on request, by the desktop or by a command. Held, not skipped; and whatever becomes
// of those who hold them, the reminder comes.

#include "tests/faults/WholeProgram.hpp"
#include "tests/support/AnsweringService.hpp"
#include "tests/support/BusMonitor.hpp"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

namespace faults {
namespace {

namespace fs = std::filesystem;

constexpr std::int64_t secondsOfInterval = 31;
constexpr std::int64_t secondsOfSnooze = 5;

class HeldBack : public testing::Test {
protected:
    void start(const std::string& desktop = {},
               const std::string& settings = "PopupAlerts=true\nAutoRestart=true\n") {
        program.install("marvelode-timer-sound", "echo \"$@\" >>\"$HOME/sounds\"\n");
        program.store("[Settings]\nVersion='test'\nShowCountdown=true\nAlertSound='Sonar'\n" + settings +
                      "\n[Desktop]\n" + desktop);
        begin();
    }

    void begin() {
        program.start();
        program.await([this] { return !program.get("State").empty(); }, "the timer on the bus");
    }

    bool hold(std::int64_t seconds) { return program.succeeds("Hold", g_variant_new("(x)", seconds)); }

    std::string reason() {
        const std::string printed = program.get("HeldReason"); // "(<'...'>,)"
        return printed.substr(3, printed.size() - 3 - 4);
    }

    void awaitReason(const std::string& expected) {
        program.await([&] { return reason() == expected; }, "to be held by: " + expected);
    }

    /// Passes an interval, or a snooze, at whose end the reminder is held back.
    void passAndBeHeld(std::int64_t seconds, const std::string& because) {
        program.passTime(seconds);
        awaitReason(because);
        EXPECT_EQ(program.get("State"), "(<'Reminding'>,)");
        EXPECT_EQ(program.user().reminders, 0);
        EXPECT_EQ(sounds(), 0);
    }

    /// Passes one snooze, at whose end the reminder must come.
    void passAndBeReminded(std::int64_t seconds = secondsOfSnooze) {
        program.await([this] { return !program.user().isWaiting(); }, "the last window to close");
        program.get("State"); // which is told once the snooze has begun
        const int before = program.user().reminders;
        program.passTime(seconds);
        program.await([&] { return program.user().reminders == before + 1; }, "the reminder");
    }

    int remaining() { return std::stoi(program.get("RemainingSeconds").substr(std::string{"(<int64 "}.size())); }

    int sounds() const {
        std::ifstream stream{program.home() / "sounds"};
        return static_cast<int>(std::count(std::istreambuf_iterator<char>{stream}, {}, '\n'));
    }

    void awaitSounds(int count) {
        program.await([&] { return sounds() == count; }, "a sound");
    }

    void TearDown() override { EXPECT_TRUE(program.isRunning()) << program.output(); }

    WholeProgram program;
};

TEST_F(HeldBack, OnRequestUntilReleased) {
    start();
    EXPECT_TRUE(hold(3600));
    EXPECT_TRUE(reason().starts_with("on request until ")) << reason();
    const std::string because = reason();
    passAndBeHeld(secondsOfInterval, because);
    passAndBeHeld(secondsOfSnooze, because);
    passAndBeHeld(secondsOfSnooze, because);
    EXPECT_TRUE(program.succeeds("Release"));
    EXPECT_EQ(program.get("Held"), "(<false>,)");
    passAndBeReminded();
    awaitSounds(1);
}

TEST_F(HeldBack, OnRequestUntilItsTimeIsOver) {
    start();
    EXPECT_TRUE(hold(secondsOfInterval + secondsOfSnooze + 1));
    passAndBeHeld(secondsOfInterval, reason());
    passAndBeHeld(secondsOfSnooze, reason());
    passAndBeReminded();
}

TEST_F(HeldBack, OnRequestWhileTheMachineSleepsAsWell) {
    start();
    EXPECT_TRUE(hold(7200));
    program.plan().secondsAsleep += 3600;
    program.passTime(1);
    EXPECT_EQ(program.get("Held"), "(<true>,)");
    program.plan().secondsAsleep += 3600;
    program.passTime(1);
    EXPECT_EQ(program.get("Held"), "(<false>,)");
}

TEST_F(HeldBack, OnRequestNotInTheNextRunOfTheProgram) {
    start();
    EXPECT_TRUE(hold(86'400));
    program.kill();
    begin();
    EXPECT_EQ(program.get("Held"), "(<false>,)");
    passAndBeReminded(secondsOfInterval);
}

TEST_F(HeldBack, ByDoNotDisturbUntilThatEnds) {
    AnsweringService service{connectToSession(), "org.freedesktop.Notifications", "/org/freedesktop/Notifications",
                             "Get", "('org.freedesktop.Notifications', 'Inhibited')"};
    service.say("(<true>,)");
    start("HoldWhile=do-not-disturb\n");
    passAndBeHeld(secondsOfInterval, "do not disturb");
    passAndBeHeld(secondsOfSnooze, "do not disturb");
    EXPECT_EQ(program.get("Held"), "(<true>,)");
    service.say("(<false>,)");
    passAndBeReminded();
    awaitSounds(1);
    program.await([this] { return program.get("Held") == "(<false>,)"; }, "the end of the hold");
    EXPECT_EQ(service.calls(), 3) << "asked when a reminder is due, and at no other time";
}

TEST_F(HeldBack, ByNoServiceThatHangs) {
    AnsweringService service{connectToSession(), "org.gnome.ScreenSaver", "/org/gnome/ScreenSaver", "GetActive",
                             "()"};
    start("HoldWhile=locked\n");
    passAndBeReminded(secondsOfInterval);
    EXPECT_EQ(service.calls(), 1);
    awaitSounds(1);
}

TEST_F(HeldBack, ByNoServiceThatHasDied) {
    AnsweringService service{connectToSession(), "org.gnome.ScreenSaver", "/org/gnome/ScreenSaver", "GetActive",
                             "()"};
    service.say("(true,)");
    start("HoldWhile=locked\n");
    passAndBeHeld(secondsOfInterval, "the session is locked");
    service.die();
    passAndBeReminded();
}

TEST_F(HeldBack, ByTheLoginManagersHint) {
    AnsweringService service{connectToSystem(), "org.freedesktop.login1", "/org/freedesktop/login1/session/auto",
                             "Get", "('org.freedesktop.login1.Session', 'LockedHint')"};
    service.say("(<true>,)");
    start("HoldWhile=locked\n");
    awaitListenerForSleep();
    passAndBeHeld(secondsOfInterval, "the session is locked");
}

TEST_F(HeldBack, ByTheCommandThatSaysSo) {
    const fs::path call = program.home() / "call";
    std::ofstream{call} << "going on\n";
    start("HoldCommand=test -e '" + call.string() + "'\n");
    passAndBeHeld(secondsOfInterval, "HoldCommand says so");
    fs::remove(call);
    passAndBeReminded();
}

TEST_F(HeldBack, OnlyByItsSoundWhenPopupsAreOff) {
    start({}, "PopupAlerts=false\nAutoRestart=true\n");
    EXPECT_TRUE(hold(secondsOfInterval + 20));
    program.passTime(secondsOfInterval);
    program.await([this] { return program.get("State") == "(<'Timing'>,)"; }, "the next interval");
    program.passTime(secondsOfInterval);
    awaitSounds(1);
}

TEST_F(HeldBack, WhileTheMenuWorks) {
    start();
    EXPECT_TRUE(hold(3600));
    passAndBeHeld(secondsOfInterval, reason());
    EXPECT_TRUE(program.succeeds("Restart"));
    EXPECT_EQ(program.get("State"), "(<'Timing'>,)");
    EXPECT_EQ(program.get("Held"), "(<true>,)");
}

TEST_F(HeldBack, ForNoReasonOnceTheBreakIsOver) {
    start("HoldCommand=true\n");
    passAndBeHeld(secondsOfInterval, "HoldCommand says so");
    EXPECT_TRUE(program.succeeds("Restart"));
    program.await([this] { return program.get("Held") == "(<false>,)"; }, "nothing to be held");
}

TEST_F(HeldBack, NeverByALockThatWasLongEnoughToRestart) {
    const auto locker = connectToSession();
    takeName(locker.get(), "org.gnome.ScreenSaver");
    const auto lock = [&](bool isLocked) {
        g_dbus_connection_emit_signal(locker.get(), nullptr, "/org/gnome/ScreenSaver", "org.gnome.ScreenSaver",
                                      "ActiveChanged", g_variant_new("(b)", gboolean{isLocked}), nullptr);
        call(locker.get(), "org.marvelode.Timer", "/org/marvelode/Timer", "org.freedesktop.DBus.Properties", "Get",
             g_variant_new("(ss)", "org.marvelode.Timer", "State")); // which is answered behind that
    };
    start("RestartAfterLocked=10\n");
    program.passTime(15);
    lock(true);
    program.passTime(9);
    lock(false);
    EXPECT_LT(remaining(), 7) << "a short lock changes nothing";
    lock(true);
    program.plan().secondsAsleep += 10;
    lock(false);
    program.await([&] { return remaining() > 25; }, "the next interval");
}

/// The program's connection.
std::string uniqueName() {
    const auto bus = connectToSession();
    const auto answer = call(bus.get(), "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                             "GetNameOwner", g_variant_new("(s)", "org.marvelode.Timer"));
    const char* name = "";
    g_variant_get(answer.get(), "(&s)", &name);
    return name;
}

TEST_F(HeldBack, ByNothingAndWithoutAskingAnyoneIfNoSettingSaysSo) {
    BusMonitor monitor;
    start();
    const std::string name = uniqueName();
    program.await([&] { return monitor.callsBy(name).back() == "org.kde.StatusNotifierWatcher Get"; }, "the panel");
    const std::vector<std::string> before = monitor.callsBy(name);
    passAndBeReminded(secondsOfInterval);
    passAndBeReminded();
    awaitSounds(2);
    EXPECT_EQ(monitor.callsBy(name), before) << "a reminder calls no service";
}

TEST_F(HeldBack, ByWhatTheSettingsSayAtThatMoment) {
    start();
    std::ofstream{program.home() / "config/marvelode-timer/settings", std::ios::app} << "HoldCommand=true\n";
    passAndBeHeld(secondsOfInterval, "HoldCommand says so");
}

} // namespace
} // namespace faults
