#pragma once

// What the desktop tells every program about the machine: here, that it woke from sleep.

#include <cstdint>
#include <functional>
#include <utility>
#include <vector>

namespace platform {

/// Passes notifications from the desktop on to those who asked for them, in the order in which they asked.
class NotificationCenter {
public:
    enum class Name { NSWorkspaceDidWakeNotification };
    using Observer = const void*; ///< Identifies who asked; never dereferenced.

    /// Calls `action` at every notification of that name from now on, until `observer` is removed.
    void addObserver(Observer observer, std::function<void()> action, Name name) {
        if (const auto hook = std::exchange(_firstObserverHook, nullptr)) {
            hook();
        }
        _registrations.push_back({observer, std::move(action), name});
    }

    /// Forgets everything that `observer` asked for.
    void removeObserver(Observer observer) {
        std::erase_if(_registrations, [&](const Registration& each) { return each.observer == observer; });
    }

    /// For desktops: runs `hook` once, as soon as anybody asks for anything; in place of an earlier hook.
    void onFirstObserver(std::function<void()> hook) { _firstObserverHook = std::move(hook); }

    /// For desktops: tells everybody who asked, before it returns.
    void post(Name name) {
        const auto snapshot = _registrations;
        for (const Registration& each : snapshot) {
            if (each.name == name) {
                each.action();
            }
        }
    }

private:
    struct Registration {
        Observer observer;
        std::function<void()> action;
        Name name;
    };
    std::vector<Registration> _registrations;
    std::function<void()> _firstObserverHook;
};

/// The desktop around the program.
class NSWorkspace {
public:
    static NSWorkspace& shared();

    NotificationCenter& notificationCenter();
};

} // namespace platform
