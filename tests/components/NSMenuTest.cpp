#include "platform/NSMenu.hpp"

#include "tests/components/Bench.hpp"

namespace bench {
namespace {

using platform::NSMenu;
using platform::NSMenuItem;

class AMenu : public Bench {
protected:
    int picks = 0;
    std::shared_ptr<NSMenuItem> withAction =
        std::make_shared<NSMenuItem>("Act", [this](NSMenuItem&) { ++picks; }, "");
    std::shared_ptr<NSMenuItem> withoutAction = std::make_shared<NSMenuItem>("Rest", nullptr, "");
};

TEST_F(AMenu, EnablesByItselfExactlyWhatHasAnAction) {
    const NSMenu menu;
    withAction->isEnabled = false;
    EXPECT_TRUE(menu.validates(*withAction));
    EXPECT_FALSE(menu.validates(*withoutAction));
    EXPECT_FALSE(menu.validates(*NSMenuItem::separator()));
}

TEST_F(AMenu, HeedsTheFlagsWhenToldSo) {
    NSMenu menu;
    menu.autoenablesItems = false;
    EXPECT_TRUE(menu.validates(*withAction));
    EXPECT_TRUE(menu.validates(*withoutAction));
    withAction->isEnabled = false;
    EXPECT_FALSE(menu.validates(*withAction));
    EXPECT_FALSE(menu.validates(*NSMenuItem::separator()));
    menu.performActionForItem(*withAction);
    menu.performActionForItem(*withoutAction);
    EXPECT_EQ(picks, 0);
}

TEST_F(AMenu, TakesNothingDuringAModalRun) {
    const NSMenu menu;
    desktop.launch();
    desktop.perform([] { platform::NSAlert{}.runModal(); });
    EXPECT_TRUE(desktop.alertIsUp());
    EXPECT_FALSE(menu.validates(*withAction));
    menu.performActionForItem(*withAction);
    EXPECT_EQ(picks, 0);
    desktop.click("OK");
    menu.performActionForItem(*withAction);
    EXPECT_EQ(picks, 1);
}

TEST_F(AMenu, FindsTheFirstEntryOfATitle) {
    NSMenu menu;
    menu.addItem(withAction);
    menu.addItem(NSMenuItem::separator());
    menu.addItem(std::make_shared<NSMenuItem>("Act", nullptr, ""));
    EXPECT_EQ(menu.itemWithTitle("Act"), withAction);
    EXPECT_EQ(menu.itemWithTitle("act"), nullptr);
    EXPECT_EQ(menu.items().size(), 3U);
}

} // namespace
} // namespace bench
