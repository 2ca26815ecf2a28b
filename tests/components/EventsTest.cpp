#include "app/Events.hpp"

#include <gtest/gtest.h>

#include <string>

namespace {

using namespace marvelode;
using Notes = std::vector<std::string>;

static_assert(static_cast<int>(UIAction::CountdownChange) == 0 && static_cast<int>(UIAction::Restart) == 1 &&
              static_cast<int>(UIAction::Terminate) == 2);
static_assert(
    std::is_same_v<decltype(Event::kind), std::variant<Event::cfgChange, Event::uiAction, Event::appStateChange>>);

const Event muted{Event::cfgChange{{Cfg::Parameter::Mute{true}}}};
const Event restart{Event::uiAction{UIAction::Restart}};
const Event timing{Event::appStateChange{AppState::Timing, AppState::Timing}};

class TheBus : public testing::Test {
protected:
    Events events;
    Notes notes;

    void subscribeAll(const std::string& name) {
        events.subscribe([this, name](Cfg::Parameter) { notes.push_back(name + " cfg"); });
        events.subscribe([this, name](UIAction) { notes.push_back(name + " action"); });
        events.subscribe([this, name](AppState, AppState) { notes.push_back(name + " state"); });
    }
};

TEST_F(TheBus, DeliversNothingWithoutSubscribers) {
    events.publish(muted);
    events.publish(restart);
    events.publish(timing);
    EXPECT_EQ(notes, Notes{});
}

TEST_F(TheBus, DeliversInTheOrderOfSubscription) {
    subscribeAll("first");
    subscribeAll("second");
    events.publish(muted);
    events.publish(restart);
    events.publish(timing);
    EXPECT_EQ(notes,
              (Notes{"first cfg", "second cfg", "first action", "second action", "first state", "second state"}));
}

TEST_F(TheBus, HandsOverWhatWasPublished) {
    events.subscribe([this](Cfg::Parameter parameter) {
        notes.push_back(std::to_string(std::get<Cfg::Parameter::TimerInterval>(parameter.change).value));
    });
    events.subscribe([this](UIAction action) { notes.push_back(std::to_string(static_cast<int>(action))); });
    events.subscribe([this](AppState before, AppState after) {
        notes.push_back(std::to_string(static_cast<int>(before)) + std::to_string(static_cast<int>(after)));
    });
    events.publish({Event::cfgChange{{Cfg::Parameter::TimerInterval{1.5}}}});
    events.publish({Event::uiAction{UIAction::Terminate}});
    events.publish({Event::appStateChange{AppState::Timing, AppState::Reminding}});
    EXPECT_EQ(notes, (Notes{"1.500000", "2", "12"}));
}

TEST_F(TheBus, CallsAClosureSubscribedTwiceTwice) {
    const Events::UIActionSubscriber closure = [this](UIAction) { notes.emplace_back("called"); };
    events.subscribe(closure);
    events.subscribe(closure);
    events.publish(restart);
    EXPECT_EQ(notes, (Notes{"called", "called"}));
}

TEST_F(TheBus, CallsThoseWhoSubscribeDuringADeliveryFromTheNextOneOn) {
    bool isFirst = true;
    events.subscribe([&](UIAction) {
        notes.emplace_back("old");
        if (std::exchange(isFirst, false)) {
            events.subscribe([this](UIAction) { notes.emplace_back("new"); });
        }
    });
    events.subscribe([this](UIAction) { notes.emplace_back("second"); });
    events.publish(restart);
    EXPECT_EQ(notes, (Notes{"old", "second"}));
    events.publish(restart);
    EXPECT_EQ(notes, (Notes{"old", "second", "old", "second", "new"}));
}

TEST_F(TheBus, DeliversWhatIsPublishedDuringADeliveryFirst) {
    events.subscribe([&](Cfg::Parameter) {
        notes.emplace_back("first begins");
        events.publish(timing);
        notes.emplace_back("first ends");
    });
    subscribeAll("second");
    events.publish(muted);
    EXPECT_EQ(notes, (Notes{"first begins", "second state", "first ends", "second cfg"}));
}

TEST_F(TheBus, DeliversAnEventOfTheSameKindDuringItsOwnDelivery) {
    int depth = 0;
    events.subscribe([&](UIAction action) {
        notes.push_back("first " + std::to_string(static_cast<int>(action)));
        if (depth++ == 0) {
            events.publish({Event::uiAction{UIAction::Terminate}});
        }
    });
    events.subscribe(
        [&](UIAction action) { notes.push_back("second " + std::to_string(static_cast<int>(action))); });
    events.publish(restart);
    EXPECT_EQ(notes, (Notes{"first 1", "first 2", "second 2", "second 1"}));
}

TEST_F(TheBus, DeliversAChangeFromAStateToItself) {
    events.subscribe([this](AppState before, AppState after) {
        EXPECT_EQ(before, AppState::Timing);
        EXPECT_EQ(after, AppState::Timing);
        notes.emplace_back("delivered");
    });
    events.publish(timing);
    EXPECT_EQ(notes, Notes{"delivered"});
}

TEST_F(TheBus, DeliversAChangeOfTheCountdownDisplay) {
    events.subscribe([this](UIAction action) {
        EXPECT_EQ(action, UIAction::CountdownChange);
        notes.emplace_back("delivered");
    });
    events.publish({Event::uiAction{UIAction::CountdownChange}});
    EXPECT_EQ(notes, Notes{"delivered"});
}

} // namespace
