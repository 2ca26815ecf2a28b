// A panel's watcher that misbehaves at each step of what it has to do with the item: in the end there is the item
// in the panel, or the small window.

#include "platform/linux/tray/StatusNotifierItem.hpp"
#include "platform/linux/trayless/TraylessNotice.hpp"
#include "tests/support/CollectedErrors.hpp"
#include "tests/support/Interference.hpp"
#include "tests/support/PrivateBuses.hpp"
#include "tests/support/ShortSeconds.hpp"
#include "tests/support/TrayWatcher.hpp"

#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

namespace platform::linux {
namespace {

using namespace std::chrono_literals;

void floodWithPanels(GDBusConnection* bus) {
    for (int count = 0; count < 1000; ++count) {
        g_dbus_connection_emit_signal(
            bus, nullptr, "/StatusNotifierWatcher", "org.kde.StatusNotifierWatcher",
            count % 2 == 0 ? "StatusNotifierHostRegistered" : "StatusNotifierHostUnregistered", nullptr, nullptr);
    }
}

const std::vector<Interference::Step> steps{
    {"RegisterStatusNotifierItem", "()", "('what?',)", floodWithPanels},
    {"Get", "(<true>,)", "(<'what?'>,)", floodWithPanels},
};

constexpr std::array misbehaviours{Misbehaviour::IsSilent,      Misbehaviour::AnswersLate, Misbehaviour::Refuses,
                                   Misbehaviour::TalksNonsense, Misbehaviour::Floods,      Misbehaviour::Dies};
constexpr std::array names{"IsSilent", "AnswersLate", "Refuses", "TalksNonsense", "Floods", "Dies"};

struct Window final : StandInWindow {
    void open() override { isOpen = true; }
    void appear() override { isOpen = true; }
    void close() override { isOpen = false; }

    bool isOpen = false;
};

class MisbehavingPanel : public testing::TestWithParam<std::tuple<Interference::Step, Misbehaviour>> {
protected:
    void misbehave(int times) {
        const auto& [step, misbehaviour] = GetParam();
        interference.emplace(watcher->bus(), step, misbehaviour, times);
    }

    void start() {
        item.emplace(
            bus.get(), resources, StatusContent{"9m", {}, "Marvelode.png", {}, "Break in 9 minutes"},
            [this](bool present) {
                isPresent = present;
                notice.trayChanged(present);
            },
            [] {}, token, errors);
    }

    bool comesAbout(const std::function<bool()>& state) {
        return runLoopUntil([&] {
            if (isLateAnswerDue()) {
                interference->answerNow();
            }
            return interference->meetings() > 0 && state();
        });
    }

    /// What is late comes when it is not waited for any more.
    bool isLateAnswerDue() const { return isPresent == false || window.isOpen; }

    const ShortSeconds seconds{10ms};
    ObjectHandle<GDBusConnection> bus = connectToSession();
    const Resources resources{RESOURCES};
    CollectedErrors errors;
    ActivationToken token;
    Window window;
    TraylessNotice notice{bus.get(), window, [](std::string_view) {}, token};
    std::optional<bool> isPresent;
    std::optional<TrayWatcher> watcher{std::in_place};
    std::optional<Interference> interference;
    std::optional<StatusNotifierItem> item;
};

TEST_P(MisbehavingPanel, LeavesTheItemOrTheWindowInTheEnd) {
    misbehave(Interference::always);
    start();
    EXPECT_TRUE(comesAbout([&] { return isPresent == true || window.isOpen; }));
    EXPECT_LE(errors.problems.size(), 1U);
    runLoopFor(100ms);
    EXPECT_TRUE(isPresent == true || window.isOpen) << "and it stays so";
}

TEST_P(MisbehavingPanel, ShowsTheItemOnceItBehaves) {
    misbehave(1);
    start();
    if (std::get<Misbehaviour>(GetParam()) == Misbehaviour::Dies) {
        ASSERT_TRUE(comesAbout([&] { return isPresent == false; }));
        watcher.emplace();
    }
    EXPECT_TRUE(comesAbout([&] { return isPresent == true && !window.isOpen; }));
    runLoopFor(100ms);
    EXPECT_TRUE(isPresent == true && !window.isOpen) << "and it stays so";
}

INSTANTIATE_TEST_SUITE_P(Each, MisbehavingPanel,
                         testing::Combine(testing::ValuesIn(steps), testing::ValuesIn(misbehaviours)),
                         [](const auto& each) {
                             return std::string{names[static_cast<std::size_t>(std::get<1>(each.param))]} + "At" +
                                    std::get<0>(each.param).method;
                         });

} // namespace
} // namespace platform::linux
