// The bus beside a model that knows nothing but names: who subscribed to which kind, and what each does when
// called.

#include "app/Events.hpp"
#include "tests/models/Property.hpp"

#include <algorithm>
#include <array>
#include <map>
#include <string>
#include <vector>

namespace models::bus {
namespace {

using namespace marvelode;

constexpr int kinds = 3;

/// What happens: a subscription to a kind, or an event of a kind.
struct Deed {
    bool isSubscription;
    int kind;
};

/// How subscribers react to their calls: by deeds of their own, taken one at a time from a list that all share, so
/// that every life comes to an end.
struct Life {
    std::vector<Deed> deeds;
    std::vector<Deed> reactions;
};

using Notes = std::vector<std::string>;

std::string note(int subscriber, int kind, int event) {
    return std::to_string(subscriber) + " got " + std::to_string(event) + " of kind " + std::to_string(kind);
}

/// The real bus with subscribers that react.
class Reality {
public:
    explicit Reality(const Life& life)
        : _reactions{life.reactions} {
        for (const Deed& deed : life.deeds) {
            perform(deed);
        }
    }

    Notes notes;

private:
    void perform(const Deed& deed) {
        if (deed.isSubscription) {
            subscribe(deed.kind);
        } else {
            publish(deed.kind);
        }
    }

    void subscribe(int kind) {
        const int subscriber = _subscribers++;
        const auto called = [this, subscriber, kind](int event) {
            notes.push_back(note(subscriber, kind, event));
            if (!_reactions.empty()) {
                const Deed reaction = _reactions.back();
                _reactions.pop_back();
                perform(reaction);
            }
        };
        // The number of the event travels in its payload.
        if (kind == 0) {
            _events.subscribe([called](Cfg::Parameter parameter) {
                called(static_cast<int>(std::get<Cfg::Parameter::TimerInterval>(parameter.change).value));
            });
        } else if (kind == 1) {
            _events.subscribe([called](UIAction action) { called(static_cast<int>(action)); });
        } else {
            _events.subscribe([called](AppState before, AppState after) {
                called(static_cast<int>(before) * 3 + static_cast<int>(after));
            });
        }
    }

    void publish(int kind) {
        const int event = _published++;
        if (kind == 0) {
            _events.publish({Event::cfgChange{{Cfg::Parameter::TimerInterval{static_cast<double>(event)}}}});
        } else if (kind == 1) {
            _events.publish({Event::uiAction{static_cast<UIAction>(event)}});
        } else {
            _events.publish(
                {Event::appStateChange{static_cast<AppState>(event / 3), static_cast<AppState>(event % 3)}});
        }
    }

    std::vector<Deed> _reactions;
    Events _events;
    int _subscribers = 0;
    int _published = 0;
};

/// The model: deliveries under way are a stack of calls still to be made, the next one on top.
Notes predict(const Life& life) {
    struct Call {
        int subscriber;
        int kind;
        int event;
    };
    Notes notes;
    std::vector<Deed> reactions = life.reactions;
    std::array<std::vector<int>, kinds> subscribers;
    int subscriberCount = 0;
    int eventCount = 0;
    for (const Deed& first : life.deeds) {
        std::vector<Call> toMake;
        Deed deed = first;
        for (bool hasDeed = true; hasDeed || !toMake.empty();) {
            if (hasDeed) {
                auto& list = subscribers.at(static_cast<std::size_t>(deed.kind));
                if (deed.isSubscription) {
                    list.push_back(subscriberCount++);
                } else {
                    const int event = eventCount++;
                    for (auto subscriber = list.rbegin(); subscriber != list.rend(); ++subscriber) {
                        toMake.push_back({*subscriber, deed.kind, event});
                    }
                }
                hasDeed = false;
                continue;
            }
            const Call call = toMake.back();
            toMake.pop_back();
            notes.push_back(note(call.subscriber, call.kind, call.event));
            if (!reactions.empty()) {
                deed = reactions.back();
                reactions.pop_back();
                hasDeed = true;
            }
        }
    }
    return notes;
}

rc::Gen<std::vector<Deed>> deeds() {
    return rc::gen::container<std::vector<Deed>>(
        rc::gen::construct<Deed>(rc::gen::arbitrary<bool>(), rc::gen::inRange(0, kinds)));
}

void showValue(const Deed& deed, std::ostream& out) {
    out << (deed.isSubscription ? "subscribe to " : "publish ") << deed.kind;
}

TEST(TheBus, DeliversAsTheModelPredicts) {
    expectAlways("deliveries", [] {
        const Life life{*deeds(), *deeds()};
        const Reality reality{life};
        RC_ASSERT(reality.notes == predict(life));
        RC_CLASSIFY(reality.notes.size() > 20, "more than 20 calls");
    });
}

} // namespace
} // namespace models::bus
