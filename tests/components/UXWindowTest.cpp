#include "windows/UXWindow.hpp"

#include "tests/components/Bench.hpp"
#include "windows/UXAbout.hpp"
#include "windows/UXSettings.hpp"

#include <type_traits>
#include <utility>

namespace bench {
namespace {

using platform::NSPanel;

/// A view with a counter that stays from one showing to the next.
struct CountingView {
    platform::View body() const {
        return platform::VStack({platform::Text(std::to_string(*count)),
                                 platform::Button("Count", 5, [count = count] { count.binding().set(*count + 1); }),
                                 platform::Button("Done", 5, _done)});
    }

    std::function<void()> _done = [] {};
    platform::State<int> count{0};
};

// A host cannot be made of nothing.
static_assert(!std::is_default_constructible_v<UXWindow<CountingView>>);
static_assert(!std::is_default_constructible_v<UXSettings>);
static_assert(!std::is_default_constructible_v<UXAbout>);

static_assert(std::is_base_of_v<UXWindow<SettingsView>, UXSettings>);
static_assert(std::is_base_of_v<UXWindow<AboutView>, UXAbout>);
static_assert(UXWindowView<SettingsView> && UXWindowView<AboutView>);

struct ViewWithoutDone {
    platform::View body() const { return platform::Text(""); }
};
static_assert(!UXWindowView<ViewWithoutDone>);

class TheHost : public Bench {
protected:
    using Host = UXWindow<CountingView>;

    std::shared_ptr<Host> host = makeShared<Host>(makeCfg(), CountingView{}, NSPanel::StyleMask{8192});
    int completions = 0;

    TheHost() { desktop.launch(); }

    void run() {
        desktop.perform([this] { host->runModal([this] { ++completions; }); });
    }

    void TearDown() override {
        desktop.losePower();
        takeApart(*host);
    }
};

TEST_F(TheHost, ShowsNothingUntilItIsRun) {
    EXPECT_FALSE(desktop.panelIsUp());
    ASSERT_TRUE(host->window.contentView);
    EXPECT_TRUE(host->window.contentView->isHidden);
}

TEST_F(TheHost, HidesItsTitleAndButtonsButHasThem) {
    EXPECT_EQ(host->window.title, "Marvelode Timer");
    EXPECT_EQ(host->window.titleVisibility, NSPanel::TitleVisibility::Hidden);
    EXPECT_TRUE(host->window.titlebarAppearsTransparent);
    for (const auto type :
         {NSPanel::ButtonType::Close, NSPanel::ButtonType::Miniaturize, NSPanel::ButtonType::Zoom}) {
        ASSERT_TRUE(host->window.standardWindowButton(type));
        EXPECT_TRUE(host->window.standardWindowButton(type)->isHidden);
    }
}

TEST_F(TheHost, IsItsPanelsDelegate) {
    EXPECT_EQ(host->window.delegate, host.get());
    EXPECT_TRUE(host->window.preventsApplicationTerminationWhenModal);
    EXPECT_TRUE(host->window.isMovableByWindowBackground);
}

TEST_F(TheHost, AddsTheStyleMaskToThePanelsOwn) {
    EXPECT_EQ(host->window.styleMask, NSPanel{}.styleMask | 8192U);
    EXPECT_NE(host->window.styleMask, 8192U);
}

TEST_F(TheHost, ShowsTheSamePanelAgainInTheMiddleWithItsStateKept) {
    run();
    EXPECT_EQ(&desktop.panel(), &host->window);
    EXPECT_TRUE(desktop.panelIsCentred());
    EXPECT_FALSE(host->window.contentView->isHidden);
    desktop.click("Count");
    desktop.click("Count");
    desktop.dragPanelAway();
    desktop.click("Done");
    EXPECT_FALSE(desktop.panelIsUp());
    EXPECT_TRUE(host->window.contentView->isHidden);

    run();
    EXPECT_EQ(&desktop.panel(), &host->window);
    EXPECT_TRUE(desktop.panelIsCentred());
    EXPECT_EQ(desktop.panelLines(), (Lines{"2", "(Count)", "(Done)"}));
}

TEST_F(TheHost, CompletesOnceHoweverItIsClosed) {
    run();
    EXPECT_EQ(completions, 0);
    desktop.click("Done");
    EXPECT_EQ(completions, 1);
    run();
    desktop.closeWindow();
    EXPECT_EQ(completions, 2);
    run();
    desktop.perform([this] { host->window.close(); });
    EXPECT_EQ(completions, 3);
    desktop.wait(1min);
    EXPECT_EQ(completions, 3);
}

TEST_F(TheHost, CompletesWithTheContentHiddenAgain) {
    bool wasHidden = false;
    desktop.perform([&] { host->runModal([&] { wasHidden = host->window.contentView->isHidden; }); });
    desktop.click("Done");
    EXPECT_TRUE(wasHidden);
}

TEST_F(TheHost, KeepsTheProgramFromEndingWhileItRuns) {
    run();
    desktop.perform([] { platform::NSApplication::shared().terminate(); });
    EXPECT_TRUE(desktop.isRunning());
    desktop.click("Done");
    desktop.perform([] { platform::NSApplication::shared().terminate(); });
    EXPECT_FALSE(desktop.isRunning());
}

TEST_F(TheHost, ToleratesAPanelWithoutContent) {
    host->window.contentView = nullptr;
    run();
    EXPECT_EQ(desktop.panelLines(), Lines{});
    desktop.closeWindow();
    EXPECT_EQ(completions, 1);
}

TEST_F(TheHost, IsKeptByTheClosureThatItHandsToItsView) {
    run();
    const std::weak_ptr<Host> kept = std::exchange(host, nullptr);
    ASSERT_FALSE(kept.expired());
    desktop.click("Done");
    EXPECT_FALSE(desktop.panelIsUp());
    EXPECT_EQ(completions, 1);
    host = kept.lock();
}

TEST_F(TheHost, LeavesTheViewItWasGivenAlone) {
    const CountingView view;
    const auto other = makeShared<Host>(makeCfg(), view, NSPanel::StyleMask{0});
    view._done(); // still does nothing
    EXPECT_EQ(other->window.styleMask, NSPanel{}.styleMask);
    takeApart(*other);
}

} // namespace
} // namespace bench
