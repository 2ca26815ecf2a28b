#include "tests/components/BreakCycle.hpp"

#include <functional>

namespace break_cycle {
namespace {

// Intervals

TEST_F(BreakCycle, LastsThirtySecondsInTestModeWhateverIsStored) {
    desktop.hadAFirstRun();
    desktop.defaults["TimerInterval"] = 1500.0;
    desktop.launch({"-test"});
    EXPECT_EQ(app->countdown(), 30);
    desktop.wait(30s);
    desktop.click("Snooze");
    expectSnooze(5);
}

TEST_F(BreakCycle, LastsTenMinutesWithoutAStoredInterval) {
    launch(true, true);
    EXPECT_EQ(app->countdown(), 600);
}

TEST_F(BreakCycle, LastsTenMinutesWithAStoredIntervalOfZero) {
    desktop.defaults["TimerInterval"] = 0.0;
    desktop.launch();
    EXPECT_EQ(app->countdown(), 600);
}

TEST_F(BreakCycle, LastsAsLongAsIsStored) {
    desktop.defaults["TimerInterval"] = 1500.0;
    desktop.launch();
    EXPECT_EQ(app->countdown(), 1500);
    EXPECT_EQ(app->systemTimer->interval(), 1500);
}

TEST_F(BreakCycle, ReadsTheIntervalAfreshForEachInterval) {
    launch(false, true);
    desktop.defaults["TimerInterval"] = 60.0;
    EXPECT_EQ(app->countdown(), 600);
    desktop.wait(10min);
    EXPECT_EQ(app->countdown(), 60);
}

// Transitions

TEST_F(BreakCycle, PublishesARestartWhileTimingAndMovesTheDeadline) {
    launch(true, true);
    const double before = desktop.deadline();
    desktop.wait(100s);
    desktop.pick("Restart timer");
    EXPECT_EQ(desktop.published(), (Lines{"Restart", "Timing to Timing"}));
    EXPECT_EQ(desktop.deadline(), before + 100);
    expectFreshInterval();
}

TEST_F(BreakCycle, LeavesAReminderByActionByAChangeOfTheIntervalAndByAWake) {
    const std::vector<std::function<void()>> deeds{
        [this] { desktop.pick("Restart timer"); },
        [this] { desktop.perform([] { app->cfg->setTimerInterval(1200); }); },
        [this] { desktop.sleepAndWake(2h); }};
    launch(false, false);
    for (const auto& deed : deeds) {
        desktop.wait(20min);
        EXPECT_EQ(desktop.state(), App::State::Reminding);
        desktop.published();
        deed();
        EXPECT_EQ(desktop.published().back(), "Reminding to Timing");
        expectFreshInterval();
    }
}

TEST_F(BreakCycle, RestartsByAChangeOfTheInterval) {
    launch(true, true);
    desktop.wait(5min);
    desktop.perform([] { app->cfg->setTimerInterval(1200); });
    EXPECT_EQ(desktop.published(), (Lines{"TimerInterval 1200", "Timing to Timing"}));
    EXPECT_EQ(app->countdown(), 1200);
}

TEST_F(BreakCycle, ReadsTheIntervalAfreshWhateverTheChangeCarries) {
    launch(true, true);
    desktop.perform([] { app->onCfgChange({Cfg::Parameter::TimerInterval{5}}); });
    EXPECT_EQ(app->countdown(), 600);
}

TEST_F(BreakCycle, IgnoresChangesOfOtherSettings) {
    launch(true, true);
    desktop.wait(5min);
    desktop.perform([] {
        app->onCfgChange({Cfg::Parameter::Mute{true}});
        app->onCfgChange({Cfg::Parameter::PopupAlerts{true}});
        app->onCfgChange({Cfg::Parameter::AutoRestart{true}});
        app->onCfgChange({Cfg::Parameter::RestartOnWake{true}});
        app->onCfgChange({Cfg::Parameter::ShowCountdown{true}});
        app->onCfgChange({Cfg::Parameter::AlertSound{Cfg::Sound::Bowl}});
    });
    EXPECT_EQ(desktop.published(), Lines{});
    EXPECT_EQ(app->countdown(), 300);
}

TEST_F(BreakCycle, RemindsWhenTheWorkTimerFires) {
    launch(true, true);
    desktop.wait(10min);
    EXPECT_TRUE(desktop.alertIsUp());
    EXPECT_EQ(desktop.published(), Lines{"Timing to Reminding"});
    EXPECT_EQ(desktop.heard(), Lines{"beep"});
    EXPECT_EQ(desktop.state(), App::State::Reminding);
}

TEST_F(BreakCycle, GoesStraightOnWhenMutedWithoutPopupsAndWithAutomaticRestart) {
    launch(false, true, true);
    desktop.wait(10min);
    EXPECT_EQ(desktop.published(), (Lines{"Timing to Reminding", "Reminding to Timing"}));
    EXPECT_EQ(desktop.heard(), Lines{});
    expectFreshInterval();
}

TEST_F(BreakCycle, GoesStraightOnAfterTheSoundWithoutPopupsAndWithAutomaticRestart) {
    launch(false, true);
    desktop.wait(10min);
    EXPECT_EQ(desktop.heard(), Lines{"beep"});
    expectFreshInterval();
}

TEST_F(BreakCycle, WaitsForTheUserWithoutPopupsAndWithoutAutomaticRestart) {
    launch(false, false);
    desktop.wait(10min);
    EXPECT_EQ(desktop.heard(), Lines{"beep"});
    EXPECT_EQ(desktop.published(), Lines{"Timing to Reminding"});
    EXPECT_EQ(desktop.state(), App::State::Reminding);
    EXPECT_FALSE(desktop.isTimerPending());
    EXPECT_EQ(app->countdown(), 0);
    desktop.wait(1h);
    EXPECT_EQ(desktop.heard(), Lines{});
    EXPECT_EQ(app->countdown(), -3600);
    EXPECT_EQ(desktop.published(), Lines{});
}

// Waking

TEST_F(BreakCycle, RestartsAtEveryWakeWhateverTheSettingHolds) {
    for (const bool restartOnWake : {true, false}) {
        desktop.hadAFirstRun();
        desktop.defaults["ResartOnWake"] = restartOnWake;
        desktop.launch();
        desktop.published();
        desktop.wait(5min);
        desktop.sleepAndWake(2h);
        EXPECT_EQ(desktop.published(), Lines{"Timing to Timing"});
        expectFreshInterval();
        desktop.pick("Quit");
    }
}

TEST_F(BreakCycle, LeavesASnoozeAtAWake) {
    launch(true, true);
    desktop.wait(10min);
    desktop.click("Snooze");
    desktop.published();
    desktop.sleepAndWake(2h);
    EXPECT_EQ(desktop.published(), Lines{"Reminding to Timing"});
    expectFreshInterval();
}

// Timers

TEST_F(BreakCycle, IgnoresATimerThatIsNotTheCurrentOne) {
    launch(true, true);
    const std::shared_ptr<platform::Timer> stale = app->systemTimer;
    desktop.pick("Restart timer");
    EXPECT_FALSE(stale->isValid());
    desktop.published();
    desktop.perform([&] { app->timeExpired(stale); });
    EXPECT_EQ(desktop.published(), Lines{});
    EXPECT_EQ(desktop.state(), App::State::Timing);
}

TEST_F(BreakCycle, IgnoresTheCurrentTimerOnceItIsInvalid) {
    launch(true, true);
    desktop.perform([] {
        app->systemTimer->invalidate();
        app->timeExpired(app->systemTimer);
    });
    EXPECT_EQ(desktop.published(), Lines{});
    EXPECT_EQ(desktop.state(), App::State::Timing);
}

TEST_F(BreakCycle, IgnoresATimerBeforeTheFirstInterval) {
    const std::shared_ptr<App> object = App::create(true);
    object->timeExpired(nullptr);
    object->timerFired();
    object->reminderFired();
    EXPECT_EQ(object->state, App::State::Init);
    EXPECT_EQ(object->systemTimer, nullptr);
    takeApart(*object);
}

TEST_F(BreakCycle, IgnoresTheEndOfASnoozeWhileTiming) {
    launch(true, true);
    desktop.perform([] { app->reminderFired(); });
    EXPECT_EQ(desktop.published(), Lines{});
    EXPECT_EQ(desktop.heard(), Lines{});
    expectFreshInterval();
}

TEST_F(BreakCycle, IgnoresTheEndOfAnIntervalWhileReminding) {
    launch(false, false);
    desktop.wait(10min);
    desktop.heard();
    desktop.published();
    desktop.perform([] { app->timerFired(); });
    EXPECT_EQ(desktop.published(), Lines{});
    EXPECT_EQ(desktop.heard(), Lines{});
}

// Actions

TEST_F(BreakCycle, IgnoresAChangeOfTheCountdownDisplay) {
    launch(true, true);
    desktop.wait(5min);
    desktop.perform([] { app->onUIAction(UIAction::CountdownChange); });
    EXPECT_EQ(desktop.published(), Lines{});
    EXPECT_EQ(app->countdown(), 300);
}

TEST_F(BreakCycle, EndsWithTheProgram) {
    launch(true, true);
    desktop.perform([] { app->onUIAction(UIAction::Terminate); });
    EXPECT_EQ(desktop.exitStatus(), 0);
}

using bench::BenchDeathTest;

TEST_F(BenchDeathTest, ATimerWithoutItsKindIsFatal) {
    EXPECT_FATAL({
        const std::shared_ptr<App> object = App::create(true);
        object->systemTimer = platform::Timer::scheduledTimer(1, [](const auto&) {}, std::string{"no kind"}, false);
        object->timeExpired(object->systemTimer);
    });
}

} // namespace
} // namespace break_cycle
