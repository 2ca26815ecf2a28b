#include "app/App.hpp"

#include "app/main.hpp"
#include "tests/components/Bench.hpp"
#include "tests/stories/StoryDesktop.hpp"
#include "tests/support/TakeApart.hpp"

#include <memory>
#include <type_traits>
#include <utility>

namespace {

using namespace marvelode;
using namespace std::chrono_literals;
using story::Lines;
using story::StoryDesktop;

static_assert(!std::is_default_constructible_v<App>);
static_assert(std::is_base_of_v<platform::NSApplicationDelegate, App>);
static_assert(std::is_base_of_v<platform::UNUserNotificationCenterDelegate, App>);
static_assert(static_cast<int>(App::State::Init) == 0 && static_cast<int>(App::State::Timing) == 1 &&
              static_cast<int>(App::State::Reminding) == 2);
static_assert(static_cast<int>(App::TimerType::Timer) == 0 && static_cast<int>(App::TimerType::Reminder) == 1);

TEST(TheEntry, TurnsTestModeOnForTheSingleArgumentTest) {
    StoryDesktop desktop;
    desktop.launch({"-test"});
    EXPECT_TRUE(isTest);
    EXPECT_TRUE(app->cfg->isTest);
    EXPECT_EQ(app->cfg->buildInfo->build, "test");
    EXPECT_EQ(app->cfg->buildInfo->date, "test");
    EXPECT_EQ(app->cfg->buildInfo->version, "test");
    EXPECT_FALSE(desktop.lookedUp().contains("BuildInfo.txt"));
}

TEST(TheEntry, LeavesTestModeOffForAnythingElse) {
    const std::vector<Lines> commandLines{{},        {"-test", "-test"}, {"-test", "x"}, {"x", "-test"}, {"-Test"},
                                          {"-TEST"}, {"--test"},         {"test"},       {"-test "},     {""}};
    for (const Lines& arguments : commandLines) {
        StoryDesktop desktop;
        desktop.launch(arguments);
        EXPECT_FALSE(isTest) << testing::PrintToString(arguments);
        EXPECT_FALSE(app->cfg->isTest);
        EXPECT_EQ(app->cfg->buildInfo->version, "1.2.0");
    }
}

TEST(TheEntry, MakesTheApplicationObjectTheDelegate) {
    StoryDesktop desktop;
    desktop.launch();
    EXPECT_EQ(platform::NSApplication::shared().delegate, app);
}

TEST(TheApplicationObject, IsBuiltWithoutTimersOrAnythingToSee) {
    StoryDesktop desktop;
    const std::shared_ptr<App> constructed = App::create(true);
    EXPECT_EQ(constructed->state, App::State::Init);
    EXPECT_EQ(constructed->systemTimer, nullptr);
    EXPECT_FALSE(desktop.hasStatusItem());
    ASSERT_TRUE(constructed->status);
    EXPECT_EQ(constructed->status->state(), App::State::Init);
    desktop.wait(10ms);
    EXPECT_NEAR(constructed->status->remainingTime(), -0.01, 1e-6); // the deadline is the moment of construction
    EXPECT_TRUE(desktop.defaults.empty());
    takeApart(*constructed);
}

TEST(TheApplicationObject, PassesOneBusAndOneStoreToAll) {
    StoryDesktop desktop;
    desktop.launch();
    EXPECT_EQ(app->cfg->events, app->events);
    EXPECT_EQ(app->audio->cfg, app->cfg);
    EXPECT_EQ(app->popup->cfg, app->cfg);
    EXPECT_EQ(app->status->cfg, app->cfg);
    EXPECT_EQ(app->status->audio, app->audio);
    EXPECT_EQ(app->status->events, app->events);
    EXPECT_EQ(app->status->buildInfo, app->cfg->buildInfo);
}

TEST(TheApplicationObject, HasPublishedOneChangeAndStartedOneIntervalAfterLaunching) {
    StoryDesktop desktop;
    desktop.launch();
    EXPECT_EQ(desktop.published(), Lines{"Init to Timing"});
    EXPECT_TRUE(desktop.hasStatusItem());
    EXPECT_TRUE(desktop.isTimerPending());
    EXPECT_EQ(std::any_cast<App::TimerType>(app->systemTimer->userInfo()), App::TimerType::Timer);
    EXPECT_EQ(app->systemTimer->interval(), 600);
    EXPECT_FALSE(app->systemTimer->repeats());
    EXPECT_EQ(app->countdown(), 600);
}

/// Notes what stands beside the icon when an event has reached those who subscribed before the launch, which the
/// status item did and the application object did not.
class ListeningDesktop : public StoryDesktop {
public:
    std::string titleBeforeTheApplicationReacts;

protected:
    int run(int argc, const char* const* argv) override {
        const auto note = [this](const auto&) { titleBeforeTheApplicationReacts = title(); };
        app->events->subscribe(Events::UIActionSubscriber{note});
        app->events->subscribe(Events::CfgChangeSubscriber{note});
        return StoryDesktop::run(argc, argv);
    }
};

TEST(TheApplicationObject, ReactsToEventsAfterTheStatusItem) {
    ListeningDesktop desktop;
    desktop.hadAFirstRun();
    desktop.launch();
    desktop.stall(5min);
    desktop.pick("Restart timer");
    EXPECT_EQ(desktop.titleBeforeTheApplicationReacts, "6m");
    EXPECT_EQ(desktop.title(), "11m");
    desktop.stall(3min);
    desktop.perform([] { app->cfg->setTimerInterval(1200); });
    EXPECT_EQ(desktop.titleBeforeTheApplicationReacts, "8m");
    EXPECT_EQ(desktop.title(), "21m");
}

/// Keeps neither timers nor the status item, whose actions own the program.
class ForgetfulDesktop : public StoryDesktop {
    void schedule(const std::shared_ptr<platform::Timer>&) override {}
    void showStatusItem(const std::shared_ptr<platform::NSStatusItem>&) override {}
};

TEST(TheApplicationObject, StopsListeningForWakesWhenItIsDestroyed) {
    const ForgetfulDesktop desktop;
    std::shared_ptr<App> object = App::create(true);
    object->applicationDidFinishLaunching();
    EXPECT_TRUE(desktop.workspaceNotifications.hasObservers());
    const std::weak_ptr<App> observer = object;
    takeApart(*object);
    object.reset();
    EXPECT_TRUE(observer.expired());
    EXPECT_FALSE(desktop.workspaceNotifications.hasObservers());
}

TEST(TheApplicationObject, IsKeptByTheClosuresThatItHandsOut) {
    const StoryDesktop desktop;
    std::shared_ptr<App> object = App::create(true);
    const std::shared_ptr<UXStatus> status = object->status;
    const std::weak_ptr<App> kept = object;
    object.reset();
    EXPECT_EQ(status->state(), App::State::Init);
    EXPECT_EQ(status->remainingTime(), 0);
    takeApart(*kept.lock());
}

TEST(TheApplicationObject, IsKeptWhenItsRunLoopHasEnded) {
    platform::simulated::SimulatedDesktop desktop{marvelodeTimer,
                                                  [](const std::string& complaint) { ADD_FAILURE() << complaint; }};
    desktop.resources = StoryDesktop::completeInstallation();
    desktop.launch({"-test"});
    desktop.pick("Quit");
    EXPECT_EQ(desktop.exitStatus(), 0);
    ASSERT_TRUE(app);
    EXPECT_EQ(app->state, App::State::Timing);
    EXPECT_EQ(app->status->remainingTime(), 30);
    takeApart(*std::exchange(app, nullptr)); // for the programs that come after
}

TEST(TheApplicationPicture, IsTheColouredOne) {
    StoryDesktop desktop;
    EXPECT_EQ(App::Icon::image().name(), "Marvelode.png");
    EXPECT_EQ(&App::Icon::image(), &App::Icon::image());
}

using bench::BenchDeathTest;

TEST_F(BenchDeathTest, AMissingApplicationPictureIsFatal) {
    desktop.resources.erase("Marvelode.png");
    EXPECT_FATAL(App::Icon::image());
}

TEST_F(BenchDeathTest, AMissingStatusItemAtLaunchIsFatal) {
    EXPECT_FATAL({
        const std::shared_ptr<App> object = App::create(true);
        object->status = nullptr;
        object->applicationDidFinishLaunching();
    });
}

} // namespace
