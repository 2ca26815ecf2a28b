#pragma once

// The status item as a window, with a script in place of the program that shows it: the test says when the script
// reads a request, what its user does and how it ends.

#include "platform/linux/trayless/StatusWindow.hpp"
#include "tests/support/BareDesktop.hpp"
#include "tests/support/PrivateBuses.hpp"
#include "tests/support/TemporaryFolder.hpp"

#include <gmock/gmock.h>
#include <sys/stat.h>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace platform::linux {

/// Obeys the orders "next" (keeps one request as the next file), "end", and anything else, which it says.
inline constexpr const char* statusWindowScript = R"script(#!/bin/sh
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
        std::filesystem::permissions(folder.write("program", statusWindowScript),
                                     std::filesystem::perms::owner_all);
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
        const std::filesystem::path file = folder.path / ("request-" + std::to_string(++requests));
        EXPECT_TRUE(runLoopUntil([&] {
            g_main_context_wakeup(nullptr);
            return std::filesystem::exists(file);
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

} // namespace platform::linux
