// Windows open on the display of the session in which the timer was last activated, or on the one before if there
// is none; and a session that is over is left in peace.

#include "platform/linux/SessionEnvironment.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <string>
#include <vector>

namespace platform::linux {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

class SessionEnvironmentTest : public testing::Test {
protected:
    SessionEnvironmentTest() {
        for (const char* name : {"WAYLAND_DISPLAY", "XAUTHORITY", "XDG_CURRENT_DESKTOP"}) {
            unsetenv(name);
        }
        setenv("DISPLAY", ":old", 1);
    }

    /// The variables for helpers whose names begin like this, in order.
    std::vector<std::string> variables(const char* beginning) const {
        std::vector<std::string> all = session.forHelpers();
        std::erase_if(all, [&](const std::string& each) { return !each.starts_with(beginning); });
        std::sort(all.begin(), all.end());
        return all;
    }

    void missReminders(int times) {
        for (int time = 0; time < times; ++time) {
            session.reminderWasMissed();
        }
    }
    void findDisplay() { session.displayWasFound(session.display()); }
    void missDisplay() { session.displayWasMissing(session.display()); }

    SessionEnvironment session;
};

TEST_F(SessionEnvironmentTest, IsThatOfThisProgramAtFirst) {
    setenv("XAUTHORITY", "/old/key", 1);
    setenv("UNRELATED", "a=b", 1);
    EXPECT_THAT(variables("DISPLAY"), ElementsAre("DISPLAY=:old"));
    EXPECT_THAT(session.forHelpers(), Contains("XAUTHORITY=/old/key"));
    EXPECT_THAT(session.forHelpers(), Contains("UNRELATED=a=b"));
}

TEST_F(SessionEnvironmentTest, FollowsTheLastActivation) {
    session.adopt({{"DISPLAY", ":1"}, {"XAUTHORITY", "/first/key"}});
    session.adopt({{"DISPLAY", ":2"}, {"WAYLAND_DISPLAY", "wayland-2"}, {"XDG_CURRENT_DESKTOP", "GNOME"}});
    EXPECT_THAT(variables("DISPLAY"), ElementsAre("DISPLAY=:2"));
    EXPECT_THAT(variables("WAYLAND"), ElementsAre("WAYLAND_DISPLAY=wayland-2"));
    EXPECT_THAT(variables("XDG_CURRENT"), ElementsAre("XDG_CURRENT_DESKTOP=GNOME"));
    EXPECT_THAT(variables("XAUTHORITY"), IsEmpty());
}

TEST_F(SessionEnvironmentTest, LeavesNothingOfTheOldSession) {
    setenv("WAYLAND_DISPLAY", "wayland-old", 1);
    session.adopt({{"DISPLAY", ":1"}});
    EXPECT_THAT(variables("WAYLAND"), IsEmpty());
}

TEST_F(SessionEnvironmentTest, StaysWhenTheActivationComesFromNoDisplay) {
    session.adopt({{"XDG_CURRENT_DESKTOP", "GNOME"}});
    session.adopt({{"DISPLAY", ""}});
    session.adopt({});
    EXPECT_THAT(variables("DISPLAY"), ElementsAre("DISPLAY=:old"));
    EXPECT_THAT(variables("XDG_CURRENT"), IsEmpty());
}

TEST_F(SessionEnvironmentTest, GoesBackWhenTheLastActivationNamedADisplayThatIsNotThere) {
    session.adopt({{"DISPLAY", ":nowhere"}, {"WAYLAND_DISPLAY", "nothing"}});
    missDisplay();
    EXPECT_THAT(variables("DISPLAY"), ElementsAre("DISPLAY=:old"));
    EXPECT_THAT(variables("WAYLAND"), IsEmpty());
}

TEST_F(SessionEnvironmentTest, GoesBackPastAllThatWereNeverReached) {
    session.adopt({{"DISPLAY", ":1"}});
    findDisplay();
    session.adopt({{"DISPLAY", ":nowhere"}});
    session.adopt({{"DISPLAY", ":neither"}});
    session.adopt({{"DISPLAY", ":neither"}});
    missDisplay();
    EXPECT_THAT(variables("DISPLAY"), ElementsAre("DISPLAY=:1"));
}

TEST_F(SessionEnvironmentTest, GoesBackWhenADisplayHasGoneThatWasReached) {
    session.adopt({{"DISPLAY", "far.away:10"}});
    findDisplay();
    missDisplay();
    EXPECT_THAT(variables("DISPLAY"), ElementsAre("DISPLAY=:old"));
    missDisplay();
    EXPECT_THAT(variables("DISPLAY"), ElementsAre("DISPLAY=far.away:10")) << "which may be there again";
}

TEST_F(SessionEnvironmentTest, StaysWhenAWindowFindsNothingWhereItWasBefore) {
    const unsigned before = session.display();
    session.adopt({{"DISPLAY", ":1"}});
    session.displayWasMissing(before);
    EXPECT_THAT(variables("DISPLAY"), ElementsAre("DISPLAY=:1"));
    session.displayWasFound(before);
    session.adopt({{"DISPLAY", ":2"}});
    missDisplay();
    EXPECT_THAT(variables("DISPLAY"), ElementsAre("DISPLAY=:old")) << "nothing was ever shown on :1";
}

TEST_F(SessionEnvironmentTest, StaysWhenItIsTheOnlyOne) {
    missDisplay();
    EXPECT_THAT(variables("DISPLAY"), ElementsAre("DISPLAY=:old"));
}

TEST_F(SessionEnvironmentTest, TakesOverNothingElse) {
    session.adopt({{"DISPLAY", ":1"}, {"LD_PRELOAD", "/tmp/evil.so"}});
    EXPECT_THAT(variables("LD_PRELOAD=/tmp"), IsEmpty());
}

TEST_F(SessionEnvironmentTest, HandsOnNoUsedActivationToken) {
    setenv("XDG_ACTIVATION_TOKEN", "used", 1);
    setenv("DESKTOP_STARTUP_ID", "used", 1);
    EXPECT_THAT(variables("XDG_ACTIVATION_TOKEN"), IsEmpty());
    EXPECT_THAT(variables("DESKTOP_STARTUP_ID"), IsEmpty());
}

TEST_F(SessionEnvironmentTest, IsOverAfterThreeRemindersInARowWithoutDisplay) {
    missReminders(2);
    EXPECT_FALSE(session.isOver());
    findDisplay();
    missReminders(2);
    EXPECT_FALSE(session.isOver());
    missReminders(1);
    EXPECT_TRUE(session.isOver());
}

TEST_F(SessionEnvironmentTest, IsNotOverAnyMoreOnceAWindowIsShownOrAnotherIsAdopted) {
    missReminders(3);
    findDisplay();
    EXPECT_FALSE(session.isOver());
    missReminders(3);
    session.adopt({{"DISPLAY", ":1"}});
    EXPECT_FALSE(session.isOver());
}

TEST_F(SessionEnvironmentTest, IsWorthEveryReminderUntilItIsOverAndEveryTenthThen) {
    const auto worthwhile = [this] {
        int count = 0;
        for (int reminder = 0; reminder < 30; ++reminder) {
            count += session.isWorthAReminder() ? 1 : 0;
        }
        return count;
    };
    EXPECT_EQ(worthwhile(), 30);
    missReminders(3);
    EXPECT_EQ(worthwhile(), 3);
    findDisplay();
    EXPECT_EQ(worthwhile(), 30);
}

TEST_F(SessionEnvironmentTest, IsWorthASoundUntilItIsOverAndStillWhereTheSoundIsTheWholeReminder) {
    bool showsPopups = true;
    session.remindersNeedDisplay([&] { return showsPopups; });
    EXPECT_TRUE(session.isWorthASound());
    missReminders(3);
    EXPECT_FALSE(session.isWorthASound());
    showsPopups = false;
    EXPECT_TRUE(session.isWorthASound());
}

} // namespace
} // namespace platform::linux
