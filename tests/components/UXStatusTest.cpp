#include "statusbar/UXStatus.hpp"

#include "tests/components/Bench.hpp"

namespace bench {
namespace {

using platform::NSColor;
using platform::NSFont;
using platform::NSStatusBarButton;

/// A status item whose state and remaining time are what the test says.
class TheStatusItem : public Bench {
protected:
    AppState state = AppState::Init;
    double remaining = 600;

    std::shared_ptr<UXStatus> makeStatus(bool isTest = false) {
        const auto cfg = makeCfg(isTest);
        auto status = makeShared<UXStatus>(
            cfg, std::make_shared<UXAudio>(cfg), buildInfo, events, [this] { return state; },
            [this] { return remaining; });
        _made.push_back(status);
        return status;
    }

    /// A started one, timing, with the countdown shown.
    std::shared_ptr<UXStatus> startedStatus(bool isTest = false) {
        desktop.defaults["ShowCountdown"] = true;
        auto status = makeStatus(isTest);
        status->start();
        state = AppState::Timing;
        return status;
    }

    void TearDown() override {
        for (const auto& status : _made) {
            if (status->menu) {
                takeApart(*status->menu);
            }
        }
        Bench::TearDown();
    }

    std::vector<std::shared_ptr<UXStatus>> _made;
};

TEST_F(TheStatusItem, ShowsNothingBeforeItIsStarted) {
    const auto status = makeStatus();
    EXPECT_FALSE(desktop.hasStatusItem());
    EXPECT_EQ(status->menu, nullptr);
    EXPECT_EQ(status->statusBarItem, nullptr);
}

TEST_F(TheStatusItem, HasItsConstants) {
    const auto status = makeStatus();
    EXPECT_EQ(status->TimerIcon, "Marvelode.png");
    EXPECT_EQ(status->ReminderIcon, "MarvelodeGrey.png");
    EXPECT_EQ(status->font, (NSFont{NSFont::Design::Monospaced, 12, NSFont::Weight::Regular}));
    EXPECT_EQ(status->StatusBarItemWidth, 50);
    EXPECT_EQ(status->IconSize, (platform::NSSize{16, 26}));
}

TEST_F(TheStatusItem, StartsWithTheTimerIconAndItsMenuWhateverTheState) {
    for (const AppState each : {AppState::Init, AppState::Timing, AppState::Reminding}) {
        state = each;
        const auto status = makeStatus();
        status->start();
        const platform::NSStatusItem& item = desktop.statusItem();
        EXPECT_EQ(item.length, 50);
        EXPECT_EQ(item.menu(), status->menu->main);
        EXPECT_EQ(item.button()->target, status.get());
        EXPECT_EQ(item.button()->actionMask(), 20U);
        EXPECT_EQ(desktop.title(), "");
        ASSERT_EQ(desktop.icon(), "Marvelode.png");
        EXPECT_EQ(item.button()->image()->size, (platform::NSSize{16, 26}));
    }
}

TEST_F(TheStatusItem, IsNotRefreshedBeforeTheFirstInterval) {
    const auto status = startedStatus();
    state = AppState::Init;
    status->update();
    EXPECT_EQ(desktop.title(), "");
}

TEST_F(TheStatusItem, ReadsZeroInRedDuringTheLastSecond) {
    const auto status = startedStatus();
    for (const double seconds : {0.999, 0.5, 0.0, -0.0}) {
        remaining = seconds;
        status->update();
        EXPECT_EQ(desktop.title(), "0") << seconds;
        EXPECT_EQ(desktop.titleColor(), NSColor::red);
    }
}

TEST_F(TheStatusItem, ReadsTheLastSecondsInTheDefaultColour) {
    const auto status = startedStatus();
    for (const double seconds : {1.0, 5.5, 9.99}) {
        remaining = seconds;
        status->update();
        EXPECT_EQ(desktop.title(), std::to_string(static_cast<int>(seconds)));
        EXPECT_EQ(desktop.titleColor(), std::nullopt);
    }
}

TEST_F(TheStatusItem, IsEmptyAtExactlyTenSeconds) {
    const auto status = startedStatus();
    remaining = 10;
    status->update();
    EXPECT_EQ(desktop.title(), "");
    EXPECT_EQ(desktop.titleColor(), std::nullopt);
}

TEST_F(TheStatusItem, CountsUpInRedWhileReminding) {
    const auto status = startedStatus();
    state = AppState::Reminding;
    for (const auto& [seconds, text] : std::map<double, std::string>{{-5, "+5"}, {-75, "+1m"}, {-7300, "+>2h"}}) {
        remaining = seconds;
        status->update();
        EXPECT_EQ(desktop.title(), text);
        EXPECT_EQ(desktop.titleColor(), NSColor::red);
    }
}

TEST_F(TheStatusItem, CountsUpInTheDefaultColourWhileStillTiming) {
    const auto status = startedStatus();
    remaining = -5;
    status->update();
    EXPECT_EQ(desktop.title(), "+5");
    EXPECT_EQ(desktop.titleColor(), std::nullopt);
}

TEST_F(TheStatusItem, IsRedWhileRemindingEvenIfTimeIsLeft) {
    const auto status = startedStatus();
    state = AppState::Reminding;
    remaining = 120;
    status->update();
    EXPECT_EQ(desktop.title(), "3m");
    EXPECT_EQ(desktop.titleColor(), NSColor::red);
}

TEST_F(TheStatusItem, WritesInItsFont) {
    const auto status = startedStatus();
    status->update();
    EXPECT_EQ(desktop.statusItem().button()->attributedTitle().font, status->font);
}

TEST_F(TheStatusItem, KeepsTheLastTextWhenTheCountdownIsSwitchedOff) {
    const auto status = startedStatus();
    remaining = 300;
    status->update();
    desktop.defaults["ShowCountdown"] = false;
    remaining = 60;
    state = AppState::Reminding;
    status->update();
    EXPECT_EQ(desktop.title(), "6m");
    EXPECT_EQ(desktop.titleColor(), std::nullopt);
    EXPECT_EQ(desktop.icon(), "MarvelodeGrey.png"); // the icon goes on
    desktop.defaults["ShowCountdown"] = true;
    status->update();
    EXPECT_EQ(desktop.title(), "2m");
}

TEST_F(TheStatusItem, HasNoIconInTestMode) {
    const auto status = startedStatus(true);
    EXPECT_EQ(desktop.icon(), "");
    status->update();
    EXPECT_EQ(desktop.icon(), "");
    state = AppState::Reminding;
    status->update();
    EXPECT_EQ(desktop.icon(), "");
    status->setIcon("Marvelode.png");
    EXPECT_EQ(desktop.icon(), "");
    EXPECT_NE(desktop.title(), "");
}

TEST_F(TheStatusItem, ChangesItsIconAtOnceWhenTheStateChanges) {
    const auto status = startedStatus();
    state = AppState::Reminding;
    events->publish({Event::appStateChange{AppState::Timing, AppState::Reminding}});
    EXPECT_EQ(desktop.icon(), "MarvelodeGrey.png");
    EXPECT_EQ(desktop.statusItem().button()->image()->size, (platform::NSSize{16, 26}));
    state = AppState::Timing;
    events->publish({Event::appStateChange{AppState::Reminding, AppState::Timing}});
    EXPECT_EQ(desktop.icon(), "Marvelode.png");
}

TEST_F(TheStatusItem, IsRefreshedByEveryKindOfEvent) {
    const auto status = startedStatus();
    const std::vector<Event> kinds{{Event::appStateChange{AppState::Timing, AppState::Timing}},
                                   {Event::cfgChange{{Parameter::Mute{true}}}},
                                   {Event::uiAction{UIAction::CountdownChange}}};
    for (const Event& event : kinds) {
        remaining += 60;
        const std::string before = desktop.title();
        events->publish(event);
        EXPECT_NE(desktop.title(), before);
    }
}

TEST_F(TheStatusItem, IsRefreshedEverySecond) {
    desktop.launch();
    std::shared_ptr<UXStatus> status;
    desktop.perform([&] { status = startedStatus(); });
    remaining = 300;
    desktop.wait(999ms);
    EXPECT_EQ(desktop.title(), "");
    desktop.wait(1ms);
    EXPECT_EQ(desktop.title(), "6m");
    remaining = 60;
    desktop.wait(1s);
    EXPECT_EQ(desktop.title(), "2m");
    desktop.losePower();
}

TEST_F(TheStatusItem, IsKeptByTheBusAndByItsTimer) {
    const std::weak_ptr<UXStatus> status = startedStatus();
    _made.clear();
    ASSERT_FALSE(status.expired());
    remaining = 300;
    events->publish({Event::uiAction{UIAction::CountdownChange}});
    EXPECT_EQ(desktop.title(), "6m");
    takeApart(*events);
    EXPECT_FALSE(status.expired()); // its timer is pending
    _made.push_back(status.lock());
}

using StatusItemDeathTest = TheStatusItem;

TEST_F(StatusItemDeathTest, RefreshingBeforeTheStartIsFatal) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    state = AppState::Timing;
    EXPECT_FATAL(makeStatus()->update());
}

TEST_F(StatusItemDeathTest, AMissingIconIsFatal) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_FATAL(startedStatus()->setIcon("Nothing.png"));
}

} // namespace
} // namespace bench
