#include "app/Events.hpp"

#include <utility>

namespace marvelode {
namespace {

template <typename Subscriber, typename... Payload>
// NOLINTNEXTLINE(performance-unnecessary-value-param): what is subscribed during the delivery is no part of it
void deliver(std::vector<Subscriber> snapshot, const Payload&... payload) {
    for (const Subscriber& subscriber : snapshot) {
        subscriber(payload...);
    }
}

} // namespace

void Events::subscribe(CfgChangeSubscriber subscriber) { cfgChangeSubscribers.push_back(std::move(subscriber)); }

void Events::subscribe(UIActionSubscriber subscriber) { uiActionSubscribers.push_back(std::move(subscriber)); }

void Events::subscribe(AppStateChangeSubscriber subscriber) {
    appStateChangeSubscribers.push_back(std::move(subscriber));
}

void Events::publish(const Event& event) {
    if (const auto* cfgChange = std::get_if<Event::cfgChange>(&event.kind)) {
        deliver(cfgChangeSubscribers, cfgChange->parameter);
    } else if (const auto* uiAction = std::get_if<Event::uiAction>(&event.kind)) {
        deliver(uiActionSubscribers, uiAction->action);
    } else if (const auto* change = std::get_if<Event::appStateChange>(&event.kind)) {
        deliver(appStateChangeSubscribers, change->oldState, change->newState);
    }
}

} // namespace marvelode
