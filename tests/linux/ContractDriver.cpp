// The contract's hands on the Linux desktop: private buses in place of the session's, and a scripted user behind
// the program that shows windows, so that neither a display nor a panel is needed.

#include "platform/linux/LinuxDesktop.hpp"
#include "platform/linux/window/Protocol.hpp"
#include "tests/contract/Driver.hpp"
#include "tests/support/PrivateBuses.hpp"
#include "tests/support/TemporaryFolder.hpp"

#include <glib-unix.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <filesystem>
#include <list>
#include <optional>
#include <thread>
#include <utility>
#include <variant>

namespace contract {
namespace {

using namespace platform::linux;
namespace fs = std::filesystem;

struct Launcher : platform::NSApplicationDelegate {
    explicit Launcher(std::function<void()> launch)
        : program{std::move(launch)} {}
    void applicationDidFinishLaunching() override { program(); }

    std::function<void()> program;
};

/// The user in front of the windows: knows which are open, and does what a user does with the topmost.
class User {
public:
    /// Waits at the socket `path` for the windows' program; calls `windowOpened` for each window.
    User(const fs::path& path, std::function<void()> windowOpened)
        : _windowOpened{std::move(windowOpened)}
        , _door{socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0)} {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        std::strncpy(address.sun_path, path.c_str(), sizeof address.sun_path - 1);
        constexpr int visitors = 4;
        EXPECT_EQ(bind(_door, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
        EXPECT_EQ(listen(_door, visitors), 0);
        _doorSource = watch(_door, [](gint, GIOCondition, gpointer self) -> gboolean {
            static_cast<User*>(self)->letIn();
            return G_SOURCE_CONTINUE;
        });
        g_setenv("MARVELODE_SCRIPTED_USER", path.c_str(), TRUE);
    }
    ~User() {
        hangUp();
        g_source_remove(_doorSource);
        close(_door);
    }
    User(const User&) = delete;
    User& operator=(const User&) = delete;

    void pressAlertButton(std::size_t index) {
        if (const auto* alert = topmost<AlertRequest>()) {
            tell({Event::Kind::Pressed, alert->window, static_cast<std::uint32_t>(index), {}});
            _windows.pop_back(); // nothing more can be done with it
        }
    }

    void tickAlertCheckBox() {
        if (const auto* alert = topmost<AlertRequest>()) {
            const auto checkBox = static_cast<std::uint32_t>(alert->alert.buttons().size());
            tell({Event::Kind::Changed, alert->window, checkBox, ControlValue{true}});
        }
    }

    void pressPanelButton(std::string_view label) {
        if (const auto* panel = topmost<PanelRequest>()) {
            const auto controls = controlsIn(panel->content);
            const auto found = std::find_if(controls.begin(), controls.end(), [&](const platform::Node* node) {
                const auto* button = std::get_if<platform::node::Button>(node);
                return button && button->label == label;
            });
            ASSERT_NE(found, controls.end()) << "no button " << label;
            tell({Event::Kind::Pressed, panel->window, static_cast<std::uint32_t>(found - controls.begin()), {}});
        }
    }

    void closePanel() {
        if (const auto* panel = topmost<PanelRequest>()) {
            tell({Event::Kind::Closed, panel->window, 0, {}});
        }
    }

private:
    using Window = std::variant<AlertRequest, PanelRequest>;

    unsigned watch(int descriptor, GUnixFDSourceFunc ready) {
        return g_unix_fd_add(descriptor, static_cast<GIOCondition>(G_IO_IN | G_IO_HUP), ready, this);
    }

    void letIn() {
        hangUp();
        _line = accept4(_door, nullptr, nullptr, SOCK_CLOEXEC);
        _lineSource = watch(_line, [](gint, GIOCondition, gpointer self) -> gboolean {
            static_cast<User*>(self)->listenToProgram();
            return G_SOURCE_CONTINUE;
        });
    }

    void listenToProgram() {
        static std::array<char, longestMessage> message;
        const ssize_t size = recv(_line, message.data(), message.size(), MSG_DONTWAIT);
        if (size <= 0) {
            hangUp();
            return;
        }
        const auto request = decodeRequest({message.data(), static_cast<std::size_t>(size)}, [](const Event&) {});
        ASSERT_TRUE(request);
        if (const auto* alert = std::get_if<AlertRequest>(&*request)) {
            open(*alert);
        } else if (const auto* panel = std::get_if<PanelRequest>(&*request)) {
            open(*panel);
        } else if (const auto* close = std::get_if<CloseRequest>(&*request)) {
            std::erase_if(_windows, [&](const Window& window) {
                return std::visit([&](const auto& each) { return each.window == close->window; }, window);
            });
        }
    }

    void open(Window window) {
        _windows.push_back(std::move(window));
        _windowOpened();
    }

    void hangUp() {
        if (_line >= 0) {
            g_source_remove(_lineSource);
            close(std::exchange(_line, -1));
            _windows.clear();
        }
    }

    template <typename Kind>
    const Kind* topmost() const {
        const Kind* kind = _windows.empty() ? nullptr : std::get_if<Kind>(&_windows.back());
        EXPECT_TRUE(kind) << "no such window in front";
        return kind;
    }

    void tell(const Event& event) {
        const std::string message = encode(event);
        EXPECT_EQ(send(_line, message.data(), message.size(), MSG_NOSIGNAL), static_cast<ssize_t>(message.size()));
    }

    std::function<void()> _windowOpened;
    int _door;
    unsigned _doorSource;
    int _line = -1;
    unsigned _lineSource = 0;
    std::vector<Window> _windows;
};

class LinuxDriver : public Driver {
public:
    LinuxDriver() {
        fs::create_directories(_folder.path / "helpers");
        fs::create_directories(_folder.path / "resources");
        fs::create_symlink(SCRIPTED_WINDOW, _folder.path / "helpers/marvelode-timer-window");
        const fs::path sound = _folder.write("helpers/marvelode-timer-sound", "#!/bin/sh\nexec sleep 1\n");
        fs::permissions(sound, fs::perms::owner_all);
        for (const char* const resource : {"Sonar.m4a", "Marvelode.png"}) {
            fs::copy(fs::path{RESOURCES} / resource, _folder.path / "resources");
        }
        takeName(_system.get(), "org.freedesktop.login1");
    }

    void install(std::string_view fileName, std::string_view bytes) override {
        _folder.write("resources/" + std::string{fileName}, bytes);
    }

    ResourceName playableSound() override { return {"Sonar", "m4a"}; }

    int run(const std::vector<std::string>& arguments, std::function<void()> program) override {
        const auto bus = connectToSession();
        _program = g_dbus_connection_get_unique_name(bus.get());
        LinuxDesktop desktop{bus.get(),
                             {_folder.path / "resources", _folder.path / "helpers", _folder.path / "settings"},
                             arguments};
        desktop.application.delegate = std::make_shared<Launcher>(std::move(program));
        after(std::chrono::seconds{5}, [&] {
            ADD_FAILURE() << "the program did not end";
            desktop.terminate();
        });
        const int status = desktop.run(0, nullptr);
        forgetDeeds();
        desktop.application.delegate = nullptr;
        return status;
    }

    void after(milliseconds delay, std::function<void()> deed) override {
        struct Due {
            LinuxDriver& driver;
            std::list<Deed>::iterator deed;
        };
        _deeds.push_back({std::move(deed), 0});
        const auto due = [](gpointer data) -> gboolean {
            auto& [driver, planned] = *static_cast<Due*>(data);
            if (driver._isWaiting) {
                return G_SOURCE_CONTINUE; // one deed after the other
            }
            const auto action = std::move(planned->action);
            driver._deeds.erase(planned);
            action();
            return G_SOURCE_REMOVE;
        };
        _deeds.back().source =
            g_timeout_add_full(G_PRIORITY_DEFAULT, static_cast<guint>(delay.count()), due,
                               std::make_unique<Due>(Due{*this, std::prev(_deeds.end())}).release(),
                               [](gpointer data) { std::unique_ptr<Due>{static_cast<Due*>(data)}; });
    }

    void onceShown(std::function<void()> deed) override { _onceShown.push_back(std::move(deed)); }

    void stall(milliseconds span) override { std::this_thread::sleep_for(span); }

    milliseconds uptime() override { return milliseconds{g_get_monotonic_time() / 1000}; }

    void pressAlertButton(std::size_t index) override { _user.pressAlertButton(index); }
    void tickAlertCheckBox() override { _user.tickAlertCheckBox(); }
    void pressPanelButton(std::string_view label) override { _user.pressPanelButton(label); }
    void closePanel() override { _user.closePanel(); }

    bool canPickMenuEntry(std::string_view title) override {
        const auto entry = menuEntry(title);
        return entry && entry->isEnabled;
    }

    void pickMenuEntry(std::string_view title) override {
        const auto entry = menuEntry(title);
        ASSERT_TRUE(entry) << title;
        g_dbus_connection_call(_panel.get(), _program.c_str(), menuPath, menuInterface, "Event",
                               g_variant_new("(isvu)", entry->identifier, "clicked", g_variant_new_int32(0), 0U),
                               nullptr, G_DBUS_CALL_FLAGS_NONE, -1, nullptr, nullptr, nullptr);
    }

    void wakeMachine() override {
        _isWaiting = true;
        awaitListenerForSleep(); // the program waits for nobody while it connects
        _isWaiting = false;
        for (const bool isGoingToSleep : {true, false}) {
            g_dbus_connection_emit_signal(_system.get(), nullptr, "/org/freedesktop/login1",
                                          "org.freedesktop.login1.Manager", "PrepareForSleep",
                                          g_variant_new("(b)", gboolean{isGoingToSleep}), nullptr);
        }
    }

private:
    static constexpr const char* menuPath = "/MenuBar";
    static constexpr const char* menuInterface = "com.canonical.dbusmenu";

    struct Deed {
        std::function<void()> action;
        unsigned source;
    };
    struct MenuEntry {
        std::int32_t identifier;
        bool isEnabled;
    };

    /// The entry as a panel sees it.
    std::optional<MenuEntry> menuEntry(std::string_view title) {
        const VariantHandle layout = call(_panel.get(), _program, menuPath, menuInterface, "GetLayout",
                                          g_variant_new("(iias)", 0, -1, nullptr));
        const VariantHandle children{
            g_variant_get_child_value(VariantHandle{g_variant_get_child_value(layout.get(), 1)}.get(), 2)};
        for (std::size_t index = 0; index < g_variant_n_children(children.get()); ++index) {
            GVariant* unpacked = nullptr;
            g_variant_get_child(children.get(), index, "v", &unpacked);
            const VariantHandle entry{unpacked};
            const VariantHandle properties{g_variant_get_child_value(entry.get(), 1)};
            const char* label = "";
            gboolean isEnabled = TRUE;
            g_variant_lookup(properties.get(), "label", "&s", &label);
            g_variant_lookup(properties.get(), "enabled", "b", &isEnabled);
            if (title == label) {
                return MenuEntry{
                    g_variant_get_int32(VariantHandle{g_variant_get_child_value(entry.get(), 0)}.get()),
                    isEnabled != FALSE};
            }
        }
        return std::nullopt;
    }

    void windowOpened() {
        for (const auto& deed : std::exchange(_onceShown, {})) {
            deed();
        }
    }

    void forgetDeeds() {
        for (const Deed& deed : std::exchange(_deeds, {})) {
            g_source_remove(deed.source);
        }
        _onceShown.clear();
    }

    TemporaryFolder _folder;
    platform::linux::ObjectHandle<GDBusConnection> _system = connectToSystem();
    platform::linux::ObjectHandle<GDBusConnection> _panel = connectToSession();
    User _user{_folder.path / "user", [this] { windowOpened(); }};
    std::string _program; // its name on the bus
    std::list<Deed> _deeds;
    bool _isWaiting = false;
    std::vector<std::function<void()>> _onceShown;
};

} // namespace

std::unique_ptr<Driver> makeDriver() { return std::make_unique<LinuxDriver>(); }

} // namespace contract
