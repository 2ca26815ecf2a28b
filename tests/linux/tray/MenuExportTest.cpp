// The menu as a panel sees it on the bus.

#include "platform/linux/tray/MenuExport.hpp"

#include "platform/NSMenu.hpp"
#include "platform/linux/LinuxDesktop.hpp"
#include "tests/support/BusSignals.hpp"
#include "tests/support/PrivateBuses.hpp"
#include "tests/support/TemporaryFolder.hpp"

#include <gtest/gtest.h>

#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace platform::linux {
namespace {

constexpr const char* menuPath = "/Menu";
constexpr const char* menuInterface = "com.canonical.dbusmenu";

class Menu : public testing::Test {
protected:
    Menu() {
        menu->addItem(entry("About"));
        menu->addItem(NSMenuItem::separator());
        menu->addItem(std::make_shared<NSMenuItem>(
            "Quit_now", [this](NSMenuItem& sender) { picked.push_back(sender.title); }, "q"));
        menu->addItem(entry("Mute"));
        menu->items()[3]->setState(NSMenuItem::StateValue::Off);
        menu->addItem(std::make_shared<NSMenuItem>("Dead", nullptr, ""));
        exported.show(menu);
    }

    std::shared_ptr<NSMenuItem> entry(const char* title) {
        return std::make_shared<NSMenuItem>(
            title, [this](NSMenuItem& sender) { picked.push_back(sender.title); }, "");
    }

    VariantHandle ask(const char* method, const char* arguments, std::string* error = nullptr) {
        return call(panel.get(), g_dbus_connection_get_unique_name(program.get()), menuPath, menuInterface, method,
                    g_variant_new_parsed(arguments), error);
    }

    TemporaryFolder folder;
    ObjectHandle<GDBusConnection> program = connectToSession();
    ObjectHandle<GDBusConnection> panel = connectToSession();
    LinuxDesktop desktop{program.get(), {folder.path, folder.path, folder.path / "settings"}, {}};
    std::deque<std::function<void()>> posted;
    std::vector<std::string> picked;
    std::shared_ptr<NSMenu> menu = std::make_shared<NSMenu>();
    MenuExport exported{program.get(), menuPath,
                        [this](std::function<void()> work) { posted.push_back(std::move(work)); }};
};

TEST_F(Menu, IsLaidOutWithMarksSeparatorsAndShortcuts) {
    EXPECT_EQ(printed(ask("GetLayout", "(0, -1, @as [])")),
              "(2, (0, {'children-display': <'submenu'>}, ["
              "<(1, {'label': <'About'>, 'enabled': <true>}, @av [])>, "
              "<(2, {'type': <'separator'>}, @av [])>, "
              "<(3, {'label': <'Quit__now'>, 'enabled': <true>, 'shortcut': <[['Control', 'q']]>}, @av [])>, "
              "<(4, {'label': <'Mute'>, 'enabled': <true>, 'toggle-type': <'checkmark'>, 'toggle-state': <0>}, @av "
              "[])>, "
              "<(5, {'label': <'Dead'>, 'enabled': <false>}, @av [])>]))");
}

TEST_F(Menu, IsToldInJustTheEntriesAndPropertiesAskedFor) {
    EXPECT_EQ(printed(ask("GetLayout", "(4, -1, ['label'])")), "(2, (4, {'label': <'Mute'>}, []))");
    EXPECT_EQ(printed(ask("GetGroupProperties", "([1, 4], ['enabled', 'toggle-state'])")),
              "([(1, {'enabled': <true>}), (4, {'enabled': <true>, 'toggle-state': <0>})],)");
    EXPECT_EQ(printed(ask("GetProperty", "(5, 'enabled')")), "(<false>,)");
    EXPECT_EQ(printed(ask("AboutToShow", "(0,)")), "(false,)");
    EXPECT_EQ(printed(ask("AboutToShowGroup", "([0],)")), "([], [])");
}

TEST_F(Menu, RefusesWhatItDoesNotHave) {
    for (const auto& [method, arguments] :
         {std::pair{"GetLayout", "(6, -1, @as [])"}, std::pair{"GetProperty", "(6, 'label')"},
          std::pair{"GetProperty", "(1, 'colour')"}, std::pair{"Event", "(-1, 'clicked', <0>, @u 0)"}}) {
        std::string error;
        EXPECT_FALSE(ask(method, arguments, &error));
        EXPECT_NE(error, "") << method << arguments;
    }
    EXPECT_EQ(printed(ask("EventGroup", "([(1, 'opened', <0>, @u 0), (9, 'clicked', <0>, 0)],)")), "([9],)");
}

TEST_F(Menu, AnswersBeforeItRunsWhatWasPicked) {
    ask("Event", "(3, 'clicked', <0>, @u 0)");
    EXPECT_TRUE(picked.empty());
    ASSERT_EQ(posted.size(), 1U);
    posted.front()();
    EXPECT_EQ(picked, std::vector<std::string>{"Quit_now"});
}

TEST_F(Menu, TakesNothingButClicksForAPick) {
    ask("Event", "(0, 'opened', <0>, @u 0)");
    ask("Event", "(1, 'hovered', <0>, @u 0)");
    EXPECT_TRUE(posted.empty());
    ask("Event", "(5, 'clicked', <0>, @u 0)");
    for (const auto& work : posted) {
        work();
    }
    EXPECT_TRUE(picked.empty()) << "an entry without action cannot be picked, whatever the panel says";
}

TEST_F(Menu, AnnouncesOnlyWhatHasChanged) {
    BusSignals signals{panel.get(), program.get(), menuInterface};
    exported.show(menu);
    EXPECT_TRUE(signals.take().empty());
    menu->items()[3]->setState(NSMenuItem::StateValue::On);
    exported.show(menu);
    exported.show(menu);
    EXPECT_EQ(signals.take(),
              std::vector<std::string>{
                  "ItemsPropertiesUpdated([(4, {'label': <'Mute'>, 'enabled': <true>, 'toggle-type': "
                  "<'checkmark'>, 'toggle-state': <1>})], [])"});
    menu->addItem(entry("More"));
    exported.show(menu);
    EXPECT_EQ(signals.take(), std::vector<std::string>{"LayoutUpdated(3, 0)"});
}

} // namespace
} // namespace platform::linux
