#pragma once

// The bus on which components tell one another what happened, without knowing one another. Delivery is
// synchronous: when `publish` returns, every subscriber has been called.

#include "app/AppState.hpp"
#include "config/Cfg.hpp"

#include <functional>
#include <variant>
#include <vector>

namespace marvelode {

/// What the user can ask the application to do.
enum class UIAction {
    CountdownChange, ///< The countdown display changed; published by no component at present.
    Restart,         ///< Start a new work interval.
    Terminate,       ///< Quit.
};

/// What happened.
struct Event {
    /// A setting was changed.
    struct cfgChange {
        Cfg::Parameter parameter;
    };

    /// The user chose an action.
    struct uiAction {
        UIAction action;
    };

    /// The break cycle changed phase, or started the same phase anew.
    struct appStateChange {
        AppState oldState;
        AppState newState;
    };

    std::variant<cfgChange, uiAction, appStateChange> kind;
};

/// The bus. Subscribers are kept for its whole life and called in the order in which they subscribed; a
/// closure that is subscribed twice is called twice.
class Events {
public:
    using CfgChangeSubscriber = std::function<void(Cfg::Parameter)>;
    using UIActionSubscriber = std::function<void(UIAction)>;
    using AppStateChangeSubscriber = std::function<void(AppState oldState, AppState newState)>;

    void subscribe(CfgChangeSubscriber subscriber);
    void subscribe(UIActionSubscriber subscriber);
    void subscribe(AppStateChangeSubscriber subscriber);

    /// Calls all subscribers that the kind of event has when the delivery begins. A subscriber may publish: its
    /// event is delivered in full before the next subscriber of the first one is called.
    void publish(const Event& event);

private:
    std::vector<CfgChangeSubscriber> cfgChangeSubscribers;
    std::vector<UIActionSubscriber> uiActionSubscribers;
    std::vector<AppStateChangeSubscriber> appStateChangeSubscribers;
};

} // namespace marvelode
