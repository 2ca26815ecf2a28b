// What goes over the buses: the menu as a panel sees it, registering with panels that come and go, and waking.

#include "platform/NSMenu.hpp"
#include "platform/linux/EventLoop.hpp"
#include "platform/linux/LinuxDesktop.hpp"
#include "platform/linux/WakeWatcher.hpp"
#include "platform/linux/tray/MenuExport.hpp"
#include "platform/linux/tray/StatusNotifierItem.hpp"
#include "platform/linux/tray/Tray.hpp"
#include "tests/support/PrivateBuses.hpp"
#include "tests/support/TemporaryFolder.hpp"

#include <gio/gunixsocketaddress.h>
#include <glib-unix.h>
#include <gtest/gtest.h>

#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace platform::linux {
namespace {

using namespace std::chrono_literals;

constexpr const char* menuPath = "/Menu";
constexpr const char* menuInterface = "com.canonical.dbusmenu";

std::string printed(const VariantHandle& value) {
    return value ? TextHandle{g_variant_print(value.get(), FALSE)}.get() : "nothing";
}

/// Collects the signals of one interface that somebody sends, in text form.
class Signals {
public:
    Signals(GDBusConnection* bus, GDBusConnection* sender, const char* interface)
        : _bus{bus}
        , _sender{g_dbus_connection_get_unique_name(sender)} {
        const auto received = [](GDBusConnection*, const char*, const char*, const char*, const char* name,
                                 GVariant* arguments, gpointer self) {
            static_cast<Signals*>(self)->_seen.push_back(std::string{name} + printed(owned(arguments)));
        };
        _subscription =
            g_dbus_connection_signal_subscribe(bus, _sender.c_str(), interface, nullptr, nullptr, nullptr,
                                               G_DBUS_SIGNAL_FLAGS_NONE, received, this, nullptr);
        take(); // what was sent before
    }
    ~Signals() { g_dbus_connection_signal_unsubscribe(_bus, _subscription); }
    Signals(const Signals&) = delete;
    Signals& operator=(const Signals&) = delete;

    /// Those since the last time, or since this object was made.
    std::vector<std::string> take() {
        call(_bus, _sender, "/", "org.freedesktop.DBus.Peer", "Ping", nullptr); // whose answer comes behind them
        return std::exchange(_seen, {});
    }

private:
    GDBusConnection* _bus;
    std::string _sender;
    unsigned _subscription;
    std::vector<std::string> _seen;
};

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

TEST_F(Menu, GivesJustTheEntriesAndPropertiesAskedFor) {
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
    Signals signals{panel.get(), program.get(), menuInterface};
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

TEST(Loop, LetsGoOfWhatIsLeftUndoneAtItsEnd) {
    EventLoop loop{[] { return RunLoopMode::Default; }, [] {}};
    bool isDone = false;
    auto waiting = std::make_shared<int>();
    const std::weak_ptr<int> caller = waiting;
    loop.post([&] { loop.quit(); });
    loop.post([&isDone, waiting = std::move(waiting)] { isDone = true; });
    loop.run();
    EXPECT_TRUE(caller.expired()) << "it waits for an answer still";
    EXPECT_FALSE(isDone);
}

/// A panel's watcher that notes who registers.
class Watcher {
public:
    Watcher()
        : _interface{_bus.get(), "/StatusNotifierWatcher",
                     R"xml(<node><interface name="org.kde.StatusNotifierWatcher">
                          <method name="RegisterStatusNotifierItem"><arg type="s" direction="in"/></method>
                          <property name="IsStatusNotifierHostRegistered" type="b" access="read"/>
                          <signal name="StatusNotifierHostRegistered"/>
                          <signal name="StatusNotifierHostUnregistered"/>
                        </interface></node>)xml",
                     [this](std::string_view, GVariant* arguments) {
                         const char* item = "";
                         g_variant_get(arguments, "(&s)", &item);
                         registered.emplace_back(item);
                         return owned(g_variant_new("()"));
                     },
                     [this](std::string_view) { return owned(g_variant_new_boolean(_hasHost)); }} {
        takeName(_bus.get(), "org.kde.StatusNotifierWatcher");
    }

    void setHost(bool hasHost) {
        _hasHost = hasHost;
        _interface.emit(hasHost ? "StatusNotifierHostRegistered" : "StatusNotifierHostUnregistered");
    }

    std::vector<std::string> registered;

private:
    ObjectHandle<GDBusConnection> _bus = connectToSession();
    gboolean _hasHost = TRUE;
    ExportedInterface _interface;
};

class Panels : public testing::Test {
protected:
    ObjectHandle<GDBusConnection> program = connectToSession();
    const std::string name = g_dbus_connection_get_unique_name(program.get());
    std::vector<std::string> hosts;
    std::vector<std::string> errors;
    std::vector<bool> presences;
    Tray tray{program.get(), [this](std::string_view host) { hosts.emplace_back(host); },
              [this](bool isPresent) { presences.push_back(isPresent); },
              [this](std::string_view error) { errors.emplace_back(error); }};
};

TEST_F(Panels, AreOfferedTheItemEachTimeTheyAppear) {
    EXPECT_TRUE(runLoopUntil([&] { return presences == std::vector{false}; }));
    for (std::size_t time = 1; time <= 3; ++time) {
        const Watcher watcher;
        EXPECT_TRUE(runLoopUntil([&] { return !watcher.registered.empty(); }));
        EXPECT_EQ(watcher.registered, std::vector<std::string>{name});
        EXPECT_EQ(hosts.size(), time);
        EXPECT_EQ(hosts.back(), std::string{program_invocation_short_name}.substr(0, 15)) << "this very process";
    }
    EXPECT_TRUE(errors.empty());
}

TEST_F(Panels, ThatRefuseAreToldToTheLogAndCountForNothing) {
    const auto bus = connectToSession();
    takeName(bus.get(), "org.kde.StatusNotifierWatcher"); // without the object that it should have
    EXPECT_TRUE(runLoopUntil([&] { return !errors.empty(); }));
    EXPECT_EQ(errors.size(), 1U);
    EXPECT_EQ(std::count(presences.begin(), presences.end(), true), 0);
}

TEST_F(Panels, ArePresentOnlyWhileTheirWatcherHasOne) {
    Watcher watcher;
    EXPECT_TRUE(runLoopUntil([&] { return !presences.empty() && presences.back(); }));
    watcher.setHost(false);
    EXPECT_TRUE(runLoopUntil([&] { return !presences.back(); }));
    watcher.setHost(true);
    EXPECT_TRUE(runLoopUntil([&] { return presences.back(); }));
}

class Item : public testing::Test {
protected:
    VariantHandle property(const char* name) {
        const VariantHandle answer =
            call(panel.get(), g_dbus_connection_get_unique_name(program.get()), "/StatusNotifierItem",
                 "org.freedesktop.DBus.Properties", "Get", g_variant_new("(ss)", interface, name));
        const VariantHandle box{g_variant_get_child_value(answer.get(), 0)};
        return VariantHandle{g_variant_get_variant(box.get())};
    }

    static constexpr const char* interface = "org.kde.StatusNotifierItem";
    const Resources resources{RESOURCES};
    StatusContent content{"9m", {}, "Marvelode.png", {}, "Break in 9 minutes"};
    ObjectHandle<GDBusConnection> program = connectToSession();
    ObjectHandle<GDBusConnection> panel = connectToSession();
    StatusNotifierItem item{program.get(),          resources, content, [](bool) {}, [] {}, [](const char*) {},
                            [](std::string_view) {}};
    Signals signals{panel.get(), program.get(), interface};
};

TEST_F(Item, GoesOnSayingWhatIsTrueBesideATextThatStays) {
    content.words = "Break in 8 minutes";
    item.show(content);
    item.show(content);
    EXPECT_EQ(signals.take(), std::vector<std::string>{"NewToolTip()"});
    EXPECT_EQ(printed(property("ToolTip")), "('', [], 'Break in 8 minutes', 'Marvelode Timer')");
    EXPECT_EQ(printed(property("IconAccessibleDesc")), "'Break in 8 minutes'");
}

TEST_F(Item, HasWordsWhereItHasNoText) {
    content.text = "";
    content.words = "Break in 10 seconds";
    item.show(content);
    EXPECT_EQ(signals.take(), (std::vector<std::string>{"NewIcon()", "NewToolTip()"}));
    EXPECT_EQ(printed(property("IconAccessibleDesc")), "'Break in 10 seconds'");
}

TEST_F(Item, AnnouncesOnlyWhatHasChanged) {
    item.show(content);
    EXPECT_EQ(signals.take(), std::vector<std::string>{});
    content.colour = NSColor::red;
    item.show(content);
    EXPECT_EQ(signals.take(), std::vector<std::string>{"NewIcon()"});
}

/// The login manager, as far as sleep is concerned.
class LoginManager {
public:
    LoginManager() { takeName(_bus.get(), "org.freedesktop.login1"); }

    void tell(bool isGoingToSleep, const char* path = "/org/freedesktop/login1") const {
        g_dbus_connection_emit_signal(_bus.get(), nullptr, path, "org.freedesktop.login1.Manager",
                                      "PrepareForSleep", g_variant_new("(b)", gboolean{isGoingToSleep}), nullptr);
        g_dbus_connection_flush_sync(_bus.get(), nullptr, nullptr);
    }

private:
    ObjectHandle<GDBusConnection> _bus = connectToSystem();
};

class Waking : public testing::Test {
protected:
    void watch() {
        watcher.emplace([this] { ++wakes; }, 1s);
        awaitListenerForSleep();
    }

    /// Begins to watch while the system bus is said to be at another address.
    void watchAt(const std::string& address) {
        constexpr const char* variable = "DBUS_SYSTEM_BUS_ADDRESS";
        const std::string before = g_getenv(variable);
        g_setenv(variable, address.c_str(), TRUE);
        watcher.emplace([this] { ++wakes; }, 1s);
        runLoopFor(50ms);
        g_setenv(variable, before.c_str(), TRUE);
    }

    void expectToHear() {
        const LoginManager manager;
        awaitListenerForSleep();
        manager.tell(false);
        EXPECT_TRUE(runLoopUntil([&] { return wakes == 1; }));
    }

    ObjectHandle<GDBusConnection> bus = connectToSystem();
    int wakes = 0;
    std::optional<WakeWatcher> watcher;
};

TEST_F(Waking, IsToldOncePerSleep) {
    const LoginManager manager;
    watch();
    for (int time = 1; time <= 2; ++time) {
        manager.tell(true);
        manager.tell(false);
        EXPECT_TRUE(runLoopUntil([&] { return wakes == time; }));
    }
    runLoopFor(20ms);
    EXPECT_EQ(wakes, 2);
}

TEST_F(Waking, IsToldByALoginManagerThatComesLateOrRestarts) {
    watch();
    for (int time = 1; time <= 2; ++time) {
        const LoginManager manager;
        manager.tell(false);
        EXPECT_TRUE(runLoopUntil([&] { return wakes == time; }));
    }
}

TEST_F(Waking, IsNotToldByAnybodyElse) {
    watch();
    g_dbus_connection_emit_signal(bus.get(), nullptr, "/org/freedesktop/login1", "org.freedesktop.login1.Manager",
                                  "PrepareForSleep", g_variant_new("(b)", FALSE), nullptr);
    runLoopFor(50ms);
    EXPECT_EQ(wakes, 0);
}

TEST_F(Waking, IsHeardOfOnceThereIsASystemBus) {
    watchAt("unix:path=/nonexistent");
    expectToHear();
}

TEST_F(Waking, IsHeardOfAgainWhenTheSystemBusIsBack) {
    watch();
    stopSystemBus();
    runLoopFor(50ms);
    startSystemBus();
    expectToHear();
}

/// A bus that says no more than a first answer, to each client.
class BrokenBus {
public:
    explicit BrokenBus(std::string answer)
        : _answer{std::move(answer)} {
        const ObjectHandle<GSocketAddress> address{g_unix_socket_address_new(_path.c_str())};
        EXPECT_TRUE(g_socket_bind(_socket.get(), address.get(), TRUE, nullptr));
        EXPECT_TRUE(g_socket_listen(_socket.get(), nullptr));
        const auto cameIn = [](gint, GIOCondition, gpointer data) -> gboolean {
            auto& self = *static_cast<BrokenBus*>(data);
            self._clients.emplace_back(g_socket_accept(self._socket.get(), nullptr, nullptr));
            g_socket_send(self._clients.back().get(), self._answer.data(), self._answer.size(), nullptr, nullptr);
            return G_SOURCE_CONTINUE;
        };
        _source = g_unix_fd_add(g_socket_get_fd(_socket.get()), G_IO_IN, cameIn, this);
    }
    ~BrokenBus() { g_source_remove(_source); }
    BrokenBus(const BrokenBus&) = delete;
    BrokenBus& operator=(const BrokenBus&) = delete;

    std::string address() const { return "unix:path=" + _path; }

private:
    const std::string _answer;
    const TemporaryFolder _folder;
    const std::string _path = _folder.path / "bus";
    ObjectHandle<GSocket> _socket{
        g_socket_new(G_SOCKET_FAMILY_UNIX, G_SOCKET_TYPE_STREAM, G_SOCKET_PROTOCOL_DEFAULT, nullptr)};
    std::vector<ObjectHandle<GSocket>> _clients;
    unsigned _source;
};

TEST_F(Waking, IsNotWaitedForOnASystemBusThatNeverAnswers) {
    {
        const BrokenBus silent{""};
        watchAt(silent.address());
    } // from here on it is as good as missing
    expectToHear();
}

TEST_F(Waking, IsNotWaitedForOnASystemBusThatRefusesUs) {
    const BrokenBus refusing{"REJECTED EXTERNAL\r\n"};
    watchAt(refusing.address());
    expectToHear();
}

TEST_F(Waking, IsNotWaitedForOnASystemBusThatBreaksOff) {
    const BrokenBus interrupted{"OK "};
    watchAt(interrupted.address());
    expectToHear();
}

TEST_F(Waking, MayBeForgottenBeforeTheSystemBusAnswers) {
    watchAt("unix:path=/nonexistent");
    watcher.reset();
    watcher.emplace([this] { ++wakes; });
    watcher.reset();
    runLoopFor(50ms);
    EXPECT_EQ(wakes, 0);
}

} // namespace
} // namespace platform::linux
