// Who is asked whether reminders are held back, and what is made of the answers.

#include "platform/linux/holding/HoldQuestion.hpp"

#include "tests/support/AnsweringService.hpp"
#include "tests/support/CollectedErrors.hpp"
#include "tests/support/TemporaryFolder.hpp"

#include <gmock/gmock.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace platform::linux {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using Cause = DesktopValues::Cause;

class Question : public testing::Test {
protected:
    void TearDown() override {
        question.reset();
        EXPECT_EQ(children(), _childrenBefore) << "a process or a zombie was left behind";
    }

    static std::string children() {
        std::ifstream stream{"/proc/thread-self/children"};
        return {std::istreambuf_iterator{stream}, {}};
    }

    /// The program in place of the helper does what `commands` of the shell say.
    static std::filesystem::path script(const TemporaryFolder& folder, const char* name,
                                        const std::string& commands) {
        const auto path = folder.write(name, "#!/bin/sh\n" + commands + "\n");
        std::filesystem::permissions(path, std::filesystem::perms::owner_all);
        return path;
    }

    /// From now on, with no system bus.
    void askThrough(const HelperProgram& program) {
        question.emplace(bus.get(), [] { return nullptr; }, program, errorLog, patience);
    }

    std::string ask() {
        std::optional<std::string> answer;
        question->ask(values, [&](const std::string& reason) { answer = reason; });
        EXPECT_TRUE(runLoopUntil([&] { return answer.has_value(); }));
        return answer.value_or("no answer");
    }

    /// The command is this one of the shell, in the test's folder.
    void command(const std::string& commands) {
        values.holdCommand = {"sh", "-c", "cd '" + folder.path.string() + "'; " + commands};
    }

    bool exists(const char* file) const { return std::filesystem::exists(folder.path / file); }

    TemporaryFolder folder;
    CollectedErrors errorLog;
    const std::vector<std::string>& errors = errorLog.problems;
    SessionEnvironment session;
    HelperProgram helper{script(folder, "helper", "echo $1 >>'" + folder.path.string() + "/asked'; exit 1"),
                         session};
    ObjectHandle<GDBusConnection> bus = connectToSession();
    ObjectHandle<GDBusConnection> system = connectToSystem();
    DesktopValues values;
    HoldQuestion::Patience patience{5s, 5s};
    std::optional<HoldQuestion> question{std::in_place,
                                         bus.get(),
                                         [this] { return system.get(); },
                                         static_cast<const HelperProgram&>(helper),
                                         static_cast<ErrorLog&>(errorLog),
                                         patience};

    void impatient(HoldQuestion::Patience lessPatience) {
        question.emplace(bus.get(), [this] { return system.get(); }, helper, errorLog, lessPatience);
    }

private:
    const std::string _childrenBefore = children(); // the buses
};

TEST_F(Question, IsAnsweredAtOnceIfThereIsNothingToAsk) {
    std::optional<std::string> answer;
    question->ask(values, [&](const std::string& reason) { answer = reason; });
    EXPECT_EQ(answer, "");
}

/// A service that tells of one cause in its own way.
struct Source {
    Cause cause;
    bool isOnSystemBus;
    const char* name;
    const char* path;
    const char* member;
    const char* arguments;
    const char* yes;
    const char* no;

    friend void PrintTo(const Source& source, std::ostream* stream) { *stream << source.path << source.arguments; }
};

class Sources : public Question, public testing::WithParamInterface<Source> {
protected:
    AnsweringService service{GetParam().isOnSystemBus ? connectToSystem() : connectToSession(), GetParam().name,
                             GetParam().path, GetParam().member, GetParam().arguments};
};

TEST_P(Sources, AreAskedInTheirOwnWay) {
    values.holdWhile = {GetParam().cause};
    service.say(GetParam().yes);
    EXPECT_EQ(ask(), GetParam().cause == Cause::Locked ? "the session is locked" : "do not disturb");
    service.say(GetParam().no);
    EXPECT_EQ(ask(), "");
    EXPECT_EQ(service.calls(), 2);
}

TEST_P(Sources, AreAskedForTheirOwnCauseOnly) {
    values.holdWhile = {GetParam().cause == Cause::Locked ? Cause::DoNotDisturb : Cause::Locked, Cause::FullScreen};
    service.say(GetParam().yes);
    EXPECT_EQ(ask(), "");
    EXPECT_EQ(service.calls(), 0);
}

TEST_P(Sources, CountAsNotHoldingWhenTheyAreSilent) {
    impatient({20ms, 5s});
    values.holdWhile = {GetParam().cause};
    EXPECT_EQ(ask(), "");
}

TEST_P(Sources, CountAsNotHoldingWhenTheyTalkNonsense) {
    values.holdWhile = {GetParam().cause};
    for (const char* const nonsense : {"()", "('yes',)", "(<'yes'>,)", "(<@ax [1]>, 2)", "(uint32 1,)"}) {
        service.say(nonsense);
        EXPECT_EQ(ask(), "") << nonsense;
    }
}

TEST_P(Sources, CountAsNotHoldingOnceTheyHaveDied) {
    values.holdWhile = {GetParam().cause};
    service.say(GetParam().yes);
    EXPECT_NE(ask(), "");
    service.die();
    EXPECT_EQ(ask(), "");
}

constexpr const char* notifications = "org.freedesktop.Notifications";
constexpr const char* notificationsPath = "/org/freedesktop/Notifications";

constexpr Source screenSaver(const char* name, const char* path) {
    return {Cause::Locked, false, name, path, "GetActive", "()", "(true,)", "(false,)"};
}

INSTANTIATE_TEST_SUITE_P(
    All, Sources,
    testing::Values(Source{Cause::DoNotDisturb, false, notifications, notificationsPath, "Get",
                           "('org.freedesktop.Notifications', 'Inhibited')", "(<true>,)", "(<false>,)"},
                    Source{Cause::DoNotDisturb, false, notifications, notificationsPath, "Get",
                           "('org.dunstproject.cmd0', 'paused')", "(<true>,)", "(<false>,)"},
                    Source{Cause::DoNotDisturb, false, notifications, "/fr/emersion/Mako", "ListModes", "()",
                           "(['default', 'do-not-disturb'],)", "(['default', 'away'],)"},
                    Source{Cause::DoNotDisturb, false, "org.xfce.Xfconf", "/org/xfce/Xfconf", "GetProperty",
                           "('xfce4-notifyd', '/do-not-disturb')", "(<true>,)", "(<false>,)"},
                    Source{Cause::Locked, true, "org.freedesktop.login1", "/org/freedesktop/login1/session/auto",
                           "Get", "('org.freedesktop.login1.Session', 'LockedHint')", "(<true>,)", "(<false>,)"},
                    screenSaver("org.freedesktop.ScreenSaver", "/org/freedesktop/ScreenSaver"),
                    screenSaver("org.gnome.ScreenSaver", "/org/gnome/ScreenSaver"),
                    screenSaver("org.cinnamon.ScreenSaver", "/org/cinnamon/ScreenSaver"),
                    screenSaver("org.mate.ScreenSaver", "/org/mate/ScreenSaver"),
                    screenSaver("org.xfce.ScreenSaver", "/org/xfce/ScreenSaver")));

TEST_F(Question, GoesWithoutASystemBus) {
    system.reset();
    values.holdWhile = {Cause::Locked};
    EXPECT_EQ(ask(), "");
}

TEST_F(Question, AsksTheHelperForDisplaysAndForGnome) {
    values.holdWhile = {Cause::DoNotDisturb, Cause::Locked, Cause::FullScreen};
    EXPECT_EQ(ask(), "");
    std::ifstream stream{folder.path / "asked"};
    const std::vector<std::string> words{std::istream_iterator<std::string>{stream}, {}};
    EXPECT_THAT(words, testing::UnorderedElementsAre("do-not-disturb", "full-screen"));
}

TEST_F(Question, TakesTheHelpersWord) {
    script(folder, "helper", "exit 0");
    const HelperProgram yes{folder.path / "helper", session};
    askThrough(yes);
    values.holdWhile = {Cause::FullScreen};
    EXPECT_EQ(ask(), "a full-screen window");
    values.holdWhile = {Cause::DoNotDisturb};
    EXPECT_EQ(ask(), "do not disturb");
}

TEST_F(Question, SaysOnceThatSomethingCannotBeKnown) {
    script(folder, "helper", "exit 3");
    const HelperProgram helpless{folder.path / "helper", session};
    askThrough(helpless);
    values.holdWhile = {Cause::FullScreen};
    EXPECT_EQ(ask(), "");
    EXPECT_EQ(ask(), "");
    EXPECT_THAT(errors, ElementsAre("HoldWhile: this session cannot tell of \"full-screen\""));
}

TEST_F(Question, GoesWithoutAHelper) {
    const HelperProgram missing{folder.path / "missing", session};
    askThrough(missing);
    values.holdWhile = {Cause::FullScreen};
    EXPECT_EQ(ask(), "");
    EXPECT_EQ(ask(), "");
    ASSERT_EQ(errors.size(), 1U);
    EXPECT_THAT(errors[0], HasSubstr("The desktop cannot be asked for \"full-screen\": "));
}

TEST_F(Question, IsAnsweredByTheStatusOfTheCommand) {
    command("exit 0");
    EXPECT_EQ(ask(), "HoldCommand says so");
    for (const char* const otherwise : {"exit 1", "exit 2", "kill $$"}) {
        command(otherwise);
        EXPECT_EQ(ask(), "") << otherwise;
    }
    EXPECT_THAT(errors, IsEmpty());
}

TEST_F(Question, StartsTheCommandWithoutAShell) {
    values.holdCommand = {"test", "$(true) *", "=", "$(true) *"};
    EXPECT_EQ(ask(), "HoldCommand says so");
}

TEST_F(Question, KillsACommandThatTakesTooLongWithAllThatItHasStarted) {
    impatient({5s, 300ms});
    command("echo $$ >shell; sleep 60 & echo $! >child; wait");
    EXPECT_EQ(ask(), "");
    const auto isGone = [&](const char* file) {
        std::string process;
        std::ifstream{folder.path / file} >> process;
        return std::ifstream{"/proc/" + process + "/stat"}.fail() || process.empty();
    };
    EXPECT_TRUE(exists("child"));
    EXPECT_TRUE(runLoopUntil([&] {
        g_main_context_wakeup(nullptr);
        return isGone("shell") && isGone("child");
    }));
}

TEST_F(Question, SaysOnceThatTheCommandCannotBeStarted) {
    values.holdCommand = {"/no/such/program"};
    EXPECT_EQ(ask(), "");
    EXPECT_EQ(ask(), "");
    ASSERT_EQ(errors.size(), 1U);
    EXPECT_THAT(errors[0], HasSubstr("HoldCommand cannot be started: "));
}

TEST_F(Question, EndsWithTheFirstYes) {
    AnsweringService service{connectToSession(), "org.gnome.ScreenSaver", "/org/gnome/ScreenSaver", "GetActive",
                             "()"};
    service.say("(true,)");
    values.holdWhile = {Cause::Locked};
    command("sleep 60");
    EXPECT_EQ(ask(), "the session is locked");
    EXPECT_EQ(ask(), "the session is locked") << "whatever becomes of the command";
}

TEST_F(Question, MayBeLeftOpen) {
    values.holdWhile = {Cause::DoNotDisturb, Cause::Locked};
    command("sleep 60");
    question->ask(values, [](const std::string&) { ADD_FAILURE() << "answered after the end"; });
    question.reset();
    runLoopFor(20ms);
}

} // namespace
} // namespace platform::linux
