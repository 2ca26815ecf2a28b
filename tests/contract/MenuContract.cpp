#include "platform/NSAlert.hpp"
#include "platform/NSPanel.hpp"
#include "platform/NSStatusItem.hpp"
#include "tests/contract/Clause.hpp"

namespace contract {
namespace {

using platform::NSAlert;
using platform::NSApplication;
using platform::NSMenu;
using platform::NSMenuItem;
using platform::NSPanel;
using platform::NSStatusBar;
using platform::NSStatusItem;

/// A program with a status item whose menu notes what was picked.
class Menus : public Clause {
protected:
    std::shared_ptr<NSStatusItem> item;
    std::shared_ptr<NSMenu> menu;
    std::vector<std::string> picked;

    void showMenu(bool autoenablesItems = true) {
        menu = std::make_shared<NSMenu>();
        menu->autoenablesItems = autoenablesItems;
        menu->addItem(noting("Plain"));
        menu->addItem(noting("Marked not enabled"));
        menu->items().back()->isEnabled = false;
        menu->addItem(NSMenuItem::separator());
        menu->addItem(std::make_shared<NSMenuItem>("Without action", nullptr, ""));
        item = NSStatusBar::system().statusItemWithLength(50);
        item->setMenu(menu);
    }

    void TearDown() override {
        item = nullptr;
        menu = nullptr;
    }

    std::shared_ptr<NSMenuItem> noting(const std::string& title) {
        return std::make_shared<NSMenuItem>(
            title, [this](NSMenuItem& sender) { picked.push_back(sender.title); }, "");
    }

    /// Has the user pick the entry a little later, then goes on with `next`.
    void pickAndThen(const std::string& title, std::function<void()> next) {
        driver->after(30ms, [this, title, next = std::move(next)] {
            driver->pickMenuEntry(title);
            driver->after(50ms, next);
        });
    }
};

TEST_F(Menus, LetTheUserPickWhatHasAnAction) {
    run([&] {
        showMenu();
        driver->after(30ms, [&] {
            EXPECT_TRUE(driver->canPickMenuEntry("Plain"));
            EXPECT_TRUE(driver->canPickMenuEntry("Marked not enabled"));
            EXPECT_FALSE(driver->canPickMenuEntry("Without action"));
        });
        pickAndThen("Plain", [&] { pickAndThen("Marked not enabled", end); });
    });
    EXPECT_EQ(picked, (std::vector<std::string>{"Plain", "Marked not enabled"}));
}

TEST_F(Menus, ThatDoNotEnableByThemselvesHeedTheFlags) {
    run([&] {
        showMenu(false);
        driver->after(30ms, [&] {
            EXPECT_TRUE(driver->canPickMenuEntry("Plain"));
            EXPECT_FALSE(driver->canPickMenuEntry("Marked not enabled"));
        });
        pickAndThen("Marked not enabled", [&] { pickAndThen("Plain", end); });
    });
    EXPECT_EQ(picked, (std::vector<std::string>{"Plain"}));
}

TEST_F(Menus, TakeNothingWhileAnAlertIsUp) {
    run([&] {
        showMenu();
        driver->onceShown([&] {
            driver->after(30ms, [&] { EXPECT_FALSE(driver->canPickMenuEntry("Plain")); });
            pickAndThen("Plain", [&] { driver->pressAlertButton(0); });
        });
        NSAlert{}.runModal();
        EXPECT_TRUE(picked.empty());
        pickAndThen("Plain", end);
    });
    EXPECT_EQ(picked, (std::vector<std::string>{"Plain"}));
}

TEST_F(Menus, TakeNothingWhileAPanelIsUp) {
    run([&] {
        showMenu();
        driver->onceShown([&] {
            driver->after(30ms, [&] { EXPECT_FALSE(driver->canPickMenuEntry("Plain")); });
            pickAndThen("Plain", [] { NSApplication::shared().stopModal(); });
        });
        NSPanel panel;
        NSApplication::shared().runModal(panel);
        EXPECT_TRUE(picked.empty());
        pickAndThen("Plain", end);
    });
    EXPECT_EQ(picked, (std::vector<std::string>{"Plain"}));
}

TEST_F(Menus, LetTheirActionsOpenWindows) {
    run([&] {
        menu = std::make_shared<NSMenu>();
        menu->addItem(std::make_shared<NSMenuItem>(
            "Ask",
            [this](NSMenuItem&) {
                driver->onceShown([this] { driver->pressAlertButton(0); });
                picked.push_back(std::to_string(NSAlert{}.runModal()));
            },
            ""));
        item = NSStatusBar::system().statusItemWithLength(50);
        item->setMenu(menu);
        pickAndThen("Ask", [&] { driver->after(50ms, end); });
    });
    EXPECT_EQ(picked, (std::vector<std::string>{"1000"}));
}

} // namespace
} // namespace contract
