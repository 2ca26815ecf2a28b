#include "statusbar/UXMenu.hpp"

#include "tests/components/Bench.hpp"

#include <utility>

namespace bench {
namespace {

using platform::NSMenuItem;
using platform::NSPanel;

class TheStatusMenu : public Bench {
protected:
    std::shared_ptr<platform::NSStatusItem> item;
    std::shared_ptr<UXMenu> menu;
    std::vector<UIAction> actions;

    /// Puts the menu behind a status item and starts the program.
    void show() {
        desktop.launch();
        desktop.perform([this] {
            const auto cfg = makeCfg();
            menu = makeShared<UXMenu>(cfg, buildInfo, std::make_shared<UXAudio>(cfg), events,
                                      [] { return AppState::Timing; });
            item = platform::NSStatusBar::system().statusItemWithLength(50);
            item->setMenu(menu->main);
        });
        events->subscribe([this](UIAction action) { actions.push_back(action); });
    }

    const NSMenuItem& entry(const std::string& title) const { return *menu->main->itemWithTitle(title); }

    void TearDown() override {
        desktop.losePower();
        if (menu) {
            takeApart(*menu);
        }
        Bench::TearDown();
    }
};

TEST_F(TheStatusMenu, HasItsEntries) {
    show();
    EXPECT_EQ(desktop.menu(), (Lines{"About Marvelode Timer", "---", "Restart timer (r)", "Mute", "Popup reminders",
                                     "Settings (s)", "---", "Quit (q)"}));
    EXPECT_EQ(menu->main->delegate, menu.get());
}

TEST_F(TheStatusMenu, MarksItsEntriesButLeavesThemToBeEnabledByThemselves) {
    show();
    EXPECT_EQ(entry("About Marvelode Timer").isEnabled, false);
    EXPECT_EQ(entry("Restart timer").isEnabled, false);
    EXPECT_EQ(entry("Settings").isEnabled, true);
    for (const char* title : {"Mute", "Popup reminders", "Quit"}) {
        EXPECT_EQ(entry(title).isEnabled, std::nullopt) << title;
    }
    EXPECT_TRUE(menu->main->autoenablesItems);
    for (const char* title :
         {"About Marvelode Timer", "Restart timer", "Mute", "Popup reminders", "Settings", "Quit"}) {
        EXPECT_TRUE(desktop.isEnabled(title)) << title;
    }
}

TEST_F(TheStatusMenu, MarksWhatIsOn) {
    desktop.defaults["Mute"] = true;
    desktop.defaults["PopupAlerts"] = true;
    show();
    EXPECT_TRUE(desktop.isChecked("Mute"));
    EXPECT_TRUE(desktop.isChecked("Popup reminders"));
}

TEST_F(TheStatusMenu, MarksPopupsInAFirstRun) {
    desktop.defaults.clear();
    show();
    EXPECT_FALSE(desktop.isChecked("Mute"));
    EXPECT_TRUE(desktop.isChecked("Popup reminders"));
    EXPECT_EQ(stored("PopupAlerts"), DefaultsValue{true});
}

TEST_F(TheStatusMenu, MutesAndUnmutes) {
    show();
    desktop.pick("Mute");
    EXPECT_TRUE(desktop.isChecked("Mute"));
    EXPECT_EQ(stored("Mute"), DefaultsValue{true});
    desktop.pick("Mute");
    EXPECT_FALSE(desktop.isChecked("Mute"));
    EXPECT_EQ(stored("Mute"), DefaultsValue{false});
}

TEST_F(TheStatusMenu, KeepsPopupsMarkedDuringAFirstRun) {
    desktop.defaults.clear();
    show();
    desktop.pick("Popup reminders");
    EXPECT_TRUE(desktop.isChecked("Popup reminders"));
    EXPECT_EQ(stored("PopupAlerts"), DefaultsValue{true});
    EXPECT_EQ(published, (std::vector<Parameter>{{Parameter::PopupAlerts{false}}}));
}

TEST_F(TheStatusMenu, SwitchesPopupsInALaterRun) {
    desktop.defaults["PopupAlerts"] = true;
    show();
    desktop.pick("Popup reminders");
    EXPECT_FALSE(desktop.isChecked("Popup reminders"));
    desktop.pick("Popup reminders");
    EXPECT_TRUE(desktop.isChecked("Popup reminders"));
}

TEST_F(TheStatusMenu, RefreshesTheMuteMarkAtEveryChange) {
    show();
    desktop.defaults["Mute"] = true;
    events->publish({Event::appStateChange{AppState::Timing, AppState::Timing}});
    EXPECT_TRUE(desktop.isChecked("Mute"));
    desktop.defaults["Mute"] = false;
    events->publish({Event::cfgChange{{Parameter::AutoRestart{true}}}});
    EXPECT_FALSE(desktop.isChecked("Mute"));
    desktop.defaults["Mute"] = true;
    events->publish({Event::uiAction{UIAction::CountdownChange}}); // not subscribed to
    EXPECT_FALSE(desktop.isChecked("Mute"));
}

TEST_F(TheStatusMenu, HasTheRightMuteMarkAfterTheSettingsWindow) {
    show();
    desktop.pick("Settings");
    desktop.defaults["Mute"] = true;
    desktop.closeWindow();
    EXPECT_TRUE(desktop.isChecked("Mute"));
}

TEST_F(TheStatusMenu, DoesNotRefreshAnythingAfterTheAboutBox) {
    show();
    desktop.pick("About Marvelode Timer");
    desktop.defaults["Mute"] = true;
    desktop.closeWindow();
    EXPECT_FALSE(desktop.isChecked("Mute"));
}

TEST_F(TheStatusMenu, LeavesThePopupMarkWhenPopupsAreDisabledElsewhere) {
    desktop.defaults["PopupAlerts"] = true;
    show();
    desktop.perform([this] { menu->cfg->disablePopups(); });
    EXPECT_TRUE(desktop.isChecked("Popup reminders"));
    EXPECT_EQ(stored("PopupAlerts"), DefaultsValue{false});
}

TEST_F(TheStatusMenu, IsReachedByItsKeys) {
    show();
    desktop.pickByKey("r");
    EXPECT_EQ(actions, std::vector{UIAction::Restart});
    desktop.pickByKey("s");
    EXPECT_EQ(&desktop.panel(), &menu->settings->window);
    desktop.closeWindow();
    desktop.pickByKey("q");
    EXPECT_EQ(actions, (std::vector{UIAction::Restart, UIAction::Terminate}));
}

TEST_F(TheStatusMenu, OnlyAsksForRestartingAndQuitting) {
    show();
    desktop.pick("Restart timer");
    desktop.pick("Quit");
    EXPECT_EQ(actions, (std::vector{UIAction::Restart, UIAction::Terminate}));
    EXPECT_TRUE(desktop.isRunning()); // no component carried it out
}

TEST_F(TheStatusMenu, OpensItsWindowsInTheDarkStyleAndInTheMiddle) {
    show();
    for (const auto& [title, window] : std::vector<std::pair<std::string, const NSPanel*>>{
             {"Settings", &menu->settings->window}, {"About Marvelode Timer", &menu->about->window}}) {
        EXPECT_TRUE(window->contentView->isHidden);
        desktop.pick(title);
        EXPECT_EQ(&desktop.panel(), window);
        EXPECT_TRUE(desktop.panelIsCentred());
        EXPECT_FALSE(window->contentView->isHidden);
        EXPECT_EQ(window->styleMask & 8192U, 8192U);
        EXPECT_EQ(window->titleVisibility, NSPanel::TitleVisibility::Hidden);
        desktop.closeWindow();
        EXPECT_TRUE(window->contentView->isHidden);
    }
}

TEST_F(TheStatusMenu, IsKeptByTheBusAndByItsEntries) {
    show();
    const std::shared_ptr<platform::NSMenu> entries = menu->main;
    const std::weak_ptr<UXMenu> kept = std::exchange(menu, nullptr);
    takeApart(*events);
    ASSERT_FALSE(kept.expired());
    desktop.pick("Mute");
    EXPECT_TRUE(desktop.isChecked("Mute"));
    menu = kept.lock();
}

using StatusMenuDeathTest = TheStatusMenu;

TEST_F(StatusMenuDeathTest, AMissingMenuIsFatal) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_FATAL({
        show();
        menu->main = nullptr;
        events->publish({Event::appStateChange{AppState::Timing, AppState::Timing}});
    });
}

TEST_F(StatusMenuDeathTest, AMissingMuteEntryIsFatal) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_FATAL({
        show();
        menu->main = std::make_shared<platform::NSMenu>();
        events->publish({Event::appStateChange{AppState::Timing, AppState::Timing}});
    });
}

} // namespace
} // namespace bench
