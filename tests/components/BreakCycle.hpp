#pragma once

// The break cycle on the simulated desktop, as its tests begin with it.

#include "app/App.hpp"
#include "app/main.hpp"
#include "tests/components/Bench.hpp"
#include "tests/stories/StoryDesktop.hpp"

namespace break_cycle {

using namespace marvelode;
using namespace std::chrono_literals;
using platform::DefaultsValue;
using story::Lines;
using story::StoryDesktop;

class BreakCycle : public testing::Test {
protected:
    StoryDesktop desktop;

    /// Launches with the settings of a later run.
    void launch(bool popups, bool autoRestart, bool muted = false) {
        desktop.hadAFirstRun();
        desktop.defaults["PopupAlerts"] = popups;
        desktop.defaults["AutoRestart"] = autoRestart;
        desktop.defaults["Mute"] = muted;
        desktop.launch();
        desktop.published();
    }

    static App::TimerType pendingKind() { return std::any_cast<App::TimerType>(app->systemTimer->userInfo()); }

    void expectFreshInterval() {
        EXPECT_EQ(desktop.state(), App::State::Timing);
        EXPECT_TRUE(desktop.isTimerPending());
        EXPECT_EQ(pendingKind(), App::TimerType::Timer);
        EXPECT_EQ(app->countdown(), app->cfg->timerInterval());
    }

    void expectSnooze(double seconds) {
        EXPECT_EQ(desktop.state(), App::State::Reminding);
        EXPECT_TRUE(desktop.isTimerPending());
        EXPECT_EQ(pendingKind(), App::TimerType::Reminder);
        EXPECT_EQ(app->systemTimer->interval(), seconds);
    }

    void TearDown() override { desktop.heard(); }
};

} // namespace break_cycle
