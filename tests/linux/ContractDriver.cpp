// The contract's hands on the Linux desktop: private buses in place of the session's, and a scripted user behind
// the program that shows windows, so that neither a display nor a panel is needed.

#include "platform/linux/LinuxDesktop.hpp"
#include "tests/contract/Driver.hpp"
#include "tests/linux/ScriptedUser.hpp"
#include "tests/support/PrivateBuses.hpp"
#include "tests/support/TemporaryFolder.hpp"

#include <gtest/gtest.h>

#include <filesystem>
#include <list>
#include <optional>
#include <thread>
#include <utility>

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
    ObjectHandle<GDBusConnection> _system = connectToSystem();
    ObjectHandle<GDBusConnection> _panel = connectToSession();
    ScriptedUser _user{_folder.path / "user", [this] { windowOpened(); }};
    std::string _program; // its name on the bus
    std::list<Deed> _deeds;
    bool _isWaiting = false;
    std::vector<std::function<void()>> _onceShown;
};

} // namespace

std::unique_ptr<Driver> makeDriver() { return std::make_unique<LinuxDriver>(); }

} // namespace contract
