// What the settings file's group [Desktop] may say, and what is made of what it should not.

#include "platform/linux/DesktopSettings.hpp"

#include "tests/support/CollectedErrors.hpp"
#include "tests/support/TemporaryFolder.hpp"

#include <gmock/gmock.h>

#include <chrono>
#include <string>
#include <vector>

namespace platform::linux {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::MatchesRegex;
using Cause = DesktopValues::Cause;

class DesktopGroup : public testing::Test {
protected:
    /// Edits the group, and has the program look at the file.
    const DesktopValues& write(const std::string& lines, const std::string& others = "Mute=true\n") {
        folder.write("settings", "[Settings]\n" + others + "[Desktop]\n" + lines);
        file.value("Mute");
        return settings.current();
    }

    TemporaryFolder folder;
    CollectedErrors errorLog;
    const std::vector<std::string>& errors = errorLog.problems;
    SettingsFile file{folder.path / "settings", errorLog};
    DesktopSettings settings{file, errorLog};
};

TEST_F(DesktopGroup, IsEmptyAtFirst) {
    const DesktopValues& values = settings.current();
    EXPECT_FALSE(values.canHold());
    EXPECT_EQ(values.restartAfterLocked, std::nullopt);
    EXPECT_EQ(values.volume, std::nullopt);
}

TEST_F(DesktopGroup, ListsCausesInAnyWritingOfAList) {
    for (const char* const list : {"do-not-disturb, locked", "do-not-disturb;locked;", "locked do-not-disturb",
                                   "['do-not-disturb', 'locked']", "'do-not-disturb,locked'"}) {
        EXPECT_THAT(write(std::string{"HoldWhile="} + list).holdWhile,
                    ElementsAre(Cause::DoNotDisturb, Cause::Locked))
            << list;
    }
    EXPECT_THAT(write("HoldWhile=full-screen").holdWhile, ElementsAre(Cause::FullScreen));
    EXPECT_THAT(errors, IsEmpty());
}

TEST_F(DesktopGroup, IgnoresUnknownWordsAndSaysSoOnce) {
    EXPECT_THAT(write("HoldWhile=locked, lunch").holdWhile, ElementsAre(Cause::Locked));
    write("HoldWhile=locked, lunch", "Mute=false\n");
    EXPECT_THAT(errors, ElementsAre("HoldWhile knows do-not-disturb, locked and full-screen, but not \"lunch\""));
}

TEST_F(DesktopGroup, SplitsTheCommandAsAShellWould) {
    EXPECT_THAT(write("HoldCommand=sh -c 'pgrep -x \"$0\"' obs").holdCommand,
                ElementsAre("sh", "-c", "pgrep -x \"$0\"", "obs"));
    EXPECT_THAT(write("HoldCommand='/opt/my tools/in-call'").holdCommand, ElementsAre("/opt/my tools/in-call"));
    EXPECT_THAT(write("HoldCommand=true").holdCommand, ElementsAre("true"));
    EXPECT_THAT(errors, IsEmpty());
}

TEST_F(DesktopGroup, IgnoresACommandWithoutItsLastQuote) {
    EXPECT_THAT(write("HoldCommand=pgrep 'obs").holdCommand, IsEmpty());
    ASSERT_EQ(errors.size(), 1U);
    EXPECT_TRUE(errors[0].starts_with("HoldCommand cannot be understood: ")) << errors[0];
}

TEST_F(DesktopGroup, ReadsNumbersThatMakeSense) {
    EXPECT_EQ(write("RestartAfterLocked=300\nVolume=0.25").restartAfterLocked, 300s);
    EXPECT_EQ(settings.current().volume, 0.25);
    EXPECT_EQ(write("Volume=0").volume, 0.0);
    EXPECT_EQ(write("Volume='1.0'").volume, 1.0);
    EXPECT_THAT(errors, IsEmpty());
}

TEST_F(DesktopGroup, IgnoresNumbersThatDoNotAndSaysSo) {
    for (const char* const number : {"1.01", "-0.1", "loud", "0,5", "nan"}) {
        EXPECT_EQ(write(std::string{"Volume="} + number).volume, std::nullopt) << number;
        EXPECT_EQ(errors.back(), std::string{"Volume is a number from 0 to 1, and not \""} + number + '"');
    }
    for (const char* const number : {"0", "-300", "5 minutes", "1e99"}) {
        EXPECT_EQ(write(std::string{"RestartAfterLocked="} + number).restartAfterLocked, std::nullopt) << number;
        EXPECT_EQ(errors.back(),
                  std::string{"RestartAfterLocked is a number of seconds from 1, and not \""} + number + '"');
    }
}

TEST_F(DesktopGroup, TakesAnEmptyTextForNothing) {
    EXPECT_FALSE(write("HoldWhile=\nHoldCommand=\nVolume=\nRestartAfterLocked=\n").canHold());
    EXPECT_FALSE(write("HoldWhile=''\nHoldCommand=''\nVolume=''\nRestartAfterLocked=''\n").canHold());
    EXPECT_THAT(errors, IsEmpty());
}

TEST_F(DesktopGroup, StaysAsItIsWhenOtherSettingsAreWritten) {
    write("# in calls\nHoldWhile = locked\nFuture=1\n");
    file.set(false, "Mute");
    const TextHandle text = [&] {
        char* bytes = nullptr;
        g_file_get_contents((folder.path / "settings").c_str(), &bytes, nullptr, nullptr);
        return TextHandle{bytes};
    }();
    // newer releases of GLib leave out the empty line
    EXPECT_THAT(text.get(), MatchesRegex("\\[Settings\\]\nMute=false\n\n?"
                                         "\\[Desktop\\]\n# in calls\nHoldWhile=locked\nFuture=1\n"));
    EXPECT_THAT(settings.current().holdWhile, ElementsAre(Cause::Locked));
}

TEST_F(DesktopGroup, IsNoneOfTheSettingsThatTheProgramAsksFor) {
    write("Mute=false\nHoldWhile=locked\n", "");
    EXPECT_EQ(file.value("Mute"), std::nullopt);
    EXPECT_EQ(file.value("HoldWhile"), std::nullopt);
}

TEST_F(DesktopGroup, GoesOnAsItWasWhileTheFileCannotBeUnderstood) {
    write("HoldWhile=locked\n");
    folder.write("settings", "no settings\n");
    file.value("Mute");
    EXPECT_THAT(settings.current().holdWhile, ElementsAre(Cause::Locked));
}

} // namespace
} // namespace platform::linux
