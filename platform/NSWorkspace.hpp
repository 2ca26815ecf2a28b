#pragma once

// What the desktop tells every program about the machine: here, that it woke from sleep.

#include <cstdint>
#include <functional>
#include <utility>
#include <vector>

namespace platform {

/// Delivers the desktop's notifications to their observers, in the order in which these were added.
class NotificationCenter {
public:
    enum class Name { NSWorkspaceDidWakeNotification };
    using Observer = const void*; ///< Identifies an observer; not owned and never dereferenced.

    /// Calls `action` at every notification of that name from now on, until `observer` is removed.
    void addObserver(Observer observer, std::function<void()> action, Name name) {
        if (const auto hook = std::exchange(_firstObserverHook, nullptr)) {
            hook();
        }
        _registrations.push_back({observer, std::move(action), name});
    }

    /// Removes all registrations of `observer`.
    void removeObserver(Observer observer) {
        std::erase_if(_registrations, [&](const Registration& each) { return each.observer == observer; });
    }

    bool hasObservers() const { return !_registrations.empty(); }

    /// For desktops: runs `hook` once, when the first observer is added. Replaces an earlier hook.
    void onFirstObserver(std::function<void()> hook) { _firstObserverHook = std::move(hook); }

    /// For desktops: calls all observers of that name, then returns.
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
