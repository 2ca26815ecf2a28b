// The status item as a window, with a script in place of the program that shows it: the test says when the script
// reads a request, what its user does and how it ends.

#include "platform/linux/trayless/StatusWindow.hpp"

#include "tests/support/BareDesktop.hpp"
#include "tests/support/PrivateBuses.hpp"
#include "tests/support/ShortSeconds.hpp"
#include "tests/support/TemporaryFolder.hpp"

#include <gmock/gmock.h>
#include <sys/stat.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace platform::linux {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
namespace fs = std::filesystem;

/// Obeys the orders "next" (keeps one request as the next file), "end", and anything else, which it says.
constexpr const char* script = R"script(#!/bin/sh
cd "${0%/*}" || exit
exec 3<&0 <orders
echo $$ >>processes
number=$(cat last 2>/dev/null || echo 0)
while read -r order; do
    case $order in
    next)
        dd bs=65536 count=1 <&3 >packet 2>/dev/null
        number=$((number + 1))
        echo $number >last
        mv packet request-$number ;;
    end) exit ;;
    *) printf %s "$order" >&3 ;;
    esac
done
)script";

class StatusWindowTest : public testing::Test {
protected:
    StatusWindowTest() {
        fs::permissions(folder.write("program", script), fs::perms::owner_all);
        EXPECT_EQ(mkfifo((folder.path / "orders").c_str(), 0600), 0);
        orders.open(folder.path / "orders", std::ios::in | std::ios::out);
        const auto action = [](NSMenuItem&) {};
        for (const char* title : {"About", "Restart timer", "Mute", "Quit"}) {
            menu->addItem(std::make_shared<NSMenuItem>(title, action, ""));
        }
        menu->addItem(NSMenuItem::separator());
        menu->addItem(std::make_shared<NSMenuItem>("Nothing", nullptr, ""));
        item("Mute").setState(NSMenuItem::StateValue::Off);
        show("Break in 9 minutes");
    }
    void TearDown() override {
        window.reset();
        EXPECT_FALSE(isRunning()) << "a process or a zombie was left behind";
    }

    NSMenuItem& item(const char* title) { return *menu->itemWithTitle(title); }
    void show(const char* words) { window->show({{}, {}, {}, {}, words}, menu); }
    void order(const std::string& what) { orders << what << std::endl; }

    /// What the window is asked to show next.
    PanelRequest nextRequest() {
        order("next");
        const fs::path file = folder.path / ("request-" + std::to_string(++requests));
        EXPECT_TRUE(runLoopUntil([&] {
            g_main_context_wakeup(nullptr);
            return fs::exists(file);
        })) << "no request";
        std::ifstream stream{file};
        const std::string message{std::istreambuf_iterator<char>{stream}, {}};
        std::optional<Request> request = decodeRequest(message, [](const Event&) {});
        EXPECT_TRUE(request && std::holds_alternative<PanelRequest>(*request)) << message;
        return request ? std::get<PanelRequest>(*std::move(request))
                       : PanelRequest{0, "", false, false, false, View{}, {}};
    }

    void say(Event::Kind kind) { order(encode(Event{kind, 1, 0, {}})); }
    /// Has the window on the screen.
    void openAndShow() {
        bool isShown = false;
        window->open([&] { isShown = true; });
        nextRequest();
        say(Event::Kind::Shown);
        EXPECT_TRUE(runLoopUntil([&] { return isShown; }));
    }
    void press(std::uint32_t control) { order(encode(Event{Event::Kind::Pressed, 1, control, {}})); }

    static void collectTexts(const View& view, std::vector<std::string>& texts) {
        if (const auto* text = std::get_if<node::Text>(&view.node)) {
            std::string& whole = texts.emplace_back();
            for (const node::TextRun& run : text->runs) {
                whole += run.string;
            }
        } else if (const auto* button = std::get_if<node::Button>(&view.node)) {
            texts.push_back("[" + button->label + "]");
        } else if (std::holds_alternative<node::Toggle>(view.node)) {
            texts.emplace_back("(o )");
        } else if (const auto* stack = std::get_if<node::Stack>(&view.node)) {
            for (const View& child : stack->children) {
                collectTexts(child, texts);
            }
        }
    }
    /// The texts and the controls of the window, from top to bottom.
    static std::vector<std::string> textsOf(const PanelRequest& request) {
        std::vector<std::string> texts;
        collectTexts(request.content, texts);
        return texts;
    }
    static std::string wordsOf(const PanelRequest& request) { return textsOf(request).at(1); }

    /// The identifiers of all processes that were started so far.
    std::vector<pid_t> processes() const {
        std::ifstream stream{folder.path / "processes"};
        return {std::istream_iterator<pid_t>{stream}, {}};
    }
    std::size_t starts() const { return processes().size(); }
    bool isRunning() const {
        const std::vector<pid_t> all = processes();
        return std::any_of(all.begin(), all.end(), [](pid_t process) { return kill(process, 0) == 0; });
    }

    TemporaryFolder folder;
    std::fstream orders;
    BareDesktop desktop{"none"};
    std::shared_ptr<NSMenu> menu = std::make_shared<NSMenu>();
    std::vector<std::string> picked;
    CollectedErrors errorLog;
    const std::vector<std::string>& errors = errorLog.problems;
    ActivationToken token;
    int requests = 0;
    SessionEnvironment session;
    HelperProgram program{folder.path / "program", session};
    std::optional<StatusWindow> window{
        std::in_place, program, [this](NSMenuItem& entry) { picked.push_back(entry.title); }, errorLog, token};
};

TEST_F(StatusWindowTest, ShowsWordsAndMenu) {
    window->open();
    const PanelRequest request = nextRequest();
    EXPECT_EQ(request.title, "Marvelode Timer");
    EXPECT_TRUE(request.isMovableByBackground);
    EXPECT_FALSE(request.isModal);
    EXPECT_FALSE(request.comesUnasked);
    EXPECT_THAT(textsOf(request), ElementsAre("Marvelode Timer", "Break in 9 minutes", "[About]", "[Restart timer]",
                                              "Mute", "(o )", "[Quit]", "[Nothing]", "[Hide this window]"));
    EXPECT_EQ(valuesOf(request.content).at(2), ControlValue{false});
}

TEST_F(StatusWindowTest, LeavesTheKeyboardAloneIfTheUserDidNotAskForIt) {
    window->appear();
    EXPECT_TRUE(nextRequest().comesUnasked);
}

TEST_F(StatusWindowTest, AppearsOnce) {
    window->appear();
    window->appear();
    nextRequest();
    show("Break in 8 minutes");
    EXPECT_EQ(wordsOf(nextRequest()), "Break in 8 minutes");
    EXPECT_EQ(starts(), 1U);
}

TEST_F(StatusWindowTest, OpensInFrontEachTimeItIsAskedFor) {
    window->appear();
    nextRequest();
    window->open();
    EXPECT_FALSE(nextRequest().comesUnasked);
    EXPECT_EQ(starts(), 2U);
}

TEST_F(StatusWindowTest, IsStartedOnceHoweverOftenItIsAskedForOnItsWay) {
    for (int count = 0; count < 60; ++count) {
        window->open();
    }
    nextRequest();
    EXPECT_EQ(starts(), 1U);
    order(encode(Event{Event::Kind::Shown, 1, 0, {}}));
    EXPECT_TRUE(runLoopUntil([&] {
        window->open();
        g_main_context_wakeup(nullptr);
        return starts() == 2;
    })) << "once it is on the screen, a new one comes to the front";
}

TEST_F(StatusWindowTest, FollowsWordsAndMenuAndIsSentOnlyWhatIsNew) {
    window->open();
    nextRequest();
    show("Break in 9 minutes");
    show("Break due for 2 minutes");
    EXPECT_EQ(wordsOf(nextRequest()), "Break due for 2 minutes");
    item("Mute").setState(NSMenuItem::StateValue::On);
    show("Break due for 2 minutes");
    EXPECT_EQ(valuesOf(nextRequest().content).at(2), ControlValue{true});
    menu->autoenablesItems = false;
    item("Quit").isEnabled = false;
    show("Break due for 2 minutes");
    show("Break due for 3 minutes");
    nextRequest();
    EXPECT_EQ(wordsOf(nextRequest()), "Break due for 3 minutes");
}

TEST_F(StatusWindowTest, PicksTheEntryThatWasPressed) {
    window->open();
    nextRequest();
    press(1);
    order(encode(Event{Event::Kind::Changed, 1, 2, ControlValue{true}}));
    press(3);
    ASSERT_TRUE(runLoopUntil([&] { return picked.size() == 3; }));
    EXPECT_THAT(picked, ElementsAre("Restart timer", "Mute", "Quit"));
    show("Break in 9 minutes");
    EXPECT_EQ(valuesOf(nextRequest().content).at(2), ControlValue{false}) << "the window shows a tick that is none";
}

TEST_F(StatusWindowTest, GoesWhenItIsHiddenOrClosed) {
    window->open();
    nextRequest();
    press(5);
    ASSERT_TRUE(runLoopUntil([&] { return !isRunning(); }));
    window->open();
    nextRequest();
    order(encode(Event{Event::Kind::Closed, 1, 0, {}}));
    ASSERT_TRUE(runLoopUntil([&] { return !isRunning(); }));
    EXPECT_THAT(picked, IsEmpty());
    EXPECT_THAT(errors, IsEmpty());
}

TEST_F(StatusWindowTest, ComesBackWhenItsProgramHasDied) {
    const ShortSeconds seconds{std::chrono::milliseconds{100}};
    openAndShow();
    order("end");
    EXPECT_TRUE(nextRequest().comesUnasked);
    EXPECT_EQ(starts(), 2U);
    show("Break in 8 minutes");
    EXPECT_EQ(wordsOf(nextRequest()), "Break in 8 minutes");
}

TEST_F(StatusWindowTest, DoesNotComeLaterIfItCouldNotBeShownWhenItWasAskedFor) {
    const ShortSeconds seconds{std::chrono::milliseconds{10}};
    bool isShown = false;
    window->open([&] { isShown = true; });
    order("end");
    ASSERT_TRUE(runLoopUntil([&] { return !errors.empty(); }));
    runLoopFor(std::chrono::milliseconds{200});
    EXPECT_EQ(starts(), 1U);
    EXPECT_FALSE(isShown);
}

TEST_F(StatusWindowTest, ComesBackIfItStoodInForTheIconBeforeItWasAskedForInVain) {
    const ShortSeconds seconds{std::chrono::milliseconds{100}};
    window->appear();
    nextRequest();
    window->open();
    nextRequest();
    order("end");
    EXPECT_TRUE(nextRequest().comesUnasked);
}

TEST_F(StatusWindowTest, DoesNotComeBackWhileTheSessionIsOver) {
    openAndShow();
    for (int reminder = 0; reminder < 3; ++reminder) {
        session.reminderWasMissed();
    }
    {
        const ShortSeconds seconds{std::chrono::milliseconds{1}};
        order("end");
        ASSERT_TRUE(runLoopUntil([&] { return !errors.empty(); }));
        runLoopFor(std::chrono::milliseconds{300});
    }
    EXPECT_EQ(starts(), 1U);
    session.displayWasFound(session.display());
    EXPECT_TRUE(nextRequest().comesUnasked);
}

TEST_F(StatusWindowTest, IsKnownToHaveBeenShownThoughItIsAskedForAgainAtThatMoment) {
    bool isShown = false;
    window->open([&] { isShown = true; });
    nextRequest();
    say(Event::Kind::Shown);
    ASSERT_TRUE(runLoopUntil([&] {
        window->open();
        g_main_context_wakeup(nullptr);
        return starts() == 2;
    }));
    EXPECT_TRUE(isShown);
}

TEST_F(StatusWindowTest, OpensWhereItsUserIsThoughItIsOnItsWayElsewhere) {
    bool isFirstAnswered = false;
    window->open([&] { isFirstAnswered = true; });
    nextRequest();
    session.adopt({{"DISPLAY", ":elsewhere"}});
    openAndShow();
    EXPECT_EQ(starts(), 2U);
    EXPECT_TRUE(isFirstAnswered);
}

TEST_F(StatusWindowTest, ComesBackWhenItsProgramCanBeStartedAgain) {
    const ShortSeconds seconds{std::chrono::milliseconds{50}};
    fs::rename(folder.path / "program", folder.path / "away");
    window->appear();
    runLoopFor(std::chrono::milliseconds{50});
    fs::rename(folder.path / "away", folder.path / "program");
    EXPECT_TRUE(nextRequest().comesUnasked);
}

TEST_F(StatusWindowTest, ComesBackMoreAndMoreSlowlyIfItsProgramAlwaysDies) {
    const ShortSeconds seconds{std::chrono::milliseconds{1}};
    fs::permissions(folder.write("program", "#!/bin/sh\necho $$ >>\"${0%/*}/processes\"\n"), fs::perms::owner_all);
    window->appear();
    EXPECT_TRUE(runLoopUntil([&] {
        g_main_context_wakeup(nullptr);
        return starts() >= 3;
    }));
    runLoopFor(std::chrono::milliseconds{250});
    EXPECT_LE(starts(), 9U) << "the pauses add up to 255 ms before the ninth start";
}

TEST_F(StatusWindowTest, StaysAwayOnceItsUserHasClosedIt) {
    window->open();
    nextRequest();
    const ShortSeconds seconds{std::chrono::milliseconds{1}};
    order(encode(Event{Event::Kind::Closed, 1, 0, {}}));
    ASSERT_TRUE(runLoopUntil([&] { return !isRunning(); }));
    runLoopFor(std::chrono::milliseconds{50});
    EXPECT_EQ(starts(), 1U);
}

TEST_F(StatusWindowTest, CanAppearAgainAfterItsProgramDied) {
    window->appear();
    nextRequest();
    order("end");
    ASSERT_TRUE(runLoopUntil([&] { return !errors.empty(); }));
    EXPECT_THAT(errors, ElementsAre("the window program ended before its window was closed"));
    runLoopUntil([] { return !g_main_context_pending(nullptr); });
    window->appear();
    EXPECT_TRUE(nextRequest().comesUnasked);
}

TEST_F(StatusWindowTest, CanAppearAgainAfterItsProgramShowedNothing) {
    {
        const ShortSeconds seconds{std::chrono::milliseconds{10}};
        window->appear();
        ASSERT_TRUE(runLoopUntil([&] { return !errors.empty(); }));
    }
    EXPECT_THAT(errors, ElementsAre("the window program has shown no window for half a minute"));
    runLoopUntil([] { return !g_main_context_pending(nullptr); });
    window->appear();
    EXPECT_TRUE(nextRequest().comesUnasked);
}

TEST_F(StatusWindowTest, CanAppearAfterItsProgramCouldNotBeStarted) {
    const fs::path program = folder.path / "program";
    fs::rename(program, folder.path / "away");
    window->appear();
    EXPECT_EQ(errors.size(), 1U);
    fs::rename(folder.path / "away", program);
    window->appear();
    EXPECT_TRUE(nextRequest().comesUnasked);
}

} // namespace
} // namespace platform::linux
