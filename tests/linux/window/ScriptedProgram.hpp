#pragma once

// A shell script in place of the program that shows windows, an alert and a panel to show with it, and what the
// main loop is to do meanwhile.

#include "platform/linux/glib/DelayedCall.hpp"
#include "tests/support/BareDesktop.hpp"
#include "tests/support/TemporaryFolder.hpp"

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cerrno>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace platform::linux {

/// Closes its panel's modal session, and counts.
class Host : public NSWindowDelegate {
public:
    void windowWillClose() override {
        ++closings;
        NSApplication::shared().stopModal();
    }

    int closings = 0;
};

class ScriptedProgram : public testing::Test {
protected:
    ScriptedProgram() {
        alert.addButton("Restart");
        alert.addButton("Snooze");
        alert.setShowsSuppressionButton(true);
        panel.delegate = &host;
    }
    void TearDown() override {
        EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1) << "a process or a zombie was left behind";
        EXPECT_EQ(errno, ECHILD);
    }

    /// The program that shows windows is this shell script. Its standard input and output are the socket; `next`
    /// waits for a request, which it appends to the file "requests", and `say` tells an event.
    void play(const std::string& script) {
        const std::filesystem::path program = folder / "program";
        std::ofstream{program}
            << "#!/bin/sh\n"
               "cd '"
            << folder.string()
            << "'\n"
               "echo start >>starts\n"
               "next() { dd bs=65536 count=1 2>/dev/null >request; cat request >>requests; echo >>requests; }\n"
               "say() { printf \"$1\" >&0; }\n"
            << script;
        std::filesystem::permissions(program, std::filesystem::perms::owner_all);
        desktop.emplace(program);
    }

    std::vector<std::string> linesOf(const char* file) const {
        std::ifstream stream{folder / file};
        std::vector<std::string> lines;
        for (std::string line; std::getline(stream, line);) {
            lines.push_back(line);
        }
        return lines;
    }

    bool isTicked() const { return alert.suppressionButton()->state == NSSuppressionButton::StateValue::On; }

    const TemporaryFolder temporary;
    const std::filesystem::path folder = temporary.path;
    std::optional<BareDesktop> desktop;
    NSAlert alert;
    NSPanel panel;
    Host host;
    State<std::int64_t> minutes{10};
    State<bool> isOn{false};
    State<int> sound{0};
    std::vector<std::string> actions;

    View form() {
        const auto action = [this](const char* name) { return [this, name] { actions.emplace_back(name); }; };
        return VStack({
            TextField("600", minutes.binding(), {}).onSubmit(action("submit")),
            Toggle("", isOn.binding()),
            Picker<int>("", sound.binding(), {{"Sonar", 0}, {"Bowl", 1}}).onChange(action("play")),
            Button("Other", 5, action("press")),
            Button("OK", 5, [this] { panel.close(); }),
        });
    }

    void runPanel(const View& content) {
        panel.contentView = std::make_shared<NSHostingView>(NSHostingView{[&] { return content; }});
        NSApplication::shared().runModal(panel);
    }
};

/// Calls something from the main loop after a while.
class Later {
public:
    Later(std::chrono::milliseconds delay, std::function<void()> deed) { _call.start(delay, std::move(deed)); }

private:
    DelayedCall _call;
};

/// Calls something from the main loop as soon as a condition holds there.
class Once {
public:
    Once(std::function<bool()> condition, std::function<void()> deed)
        : _condition{std::move(condition)}
        , _deed{std::move(deed)} {
        const auto call = [](gpointer data) -> gboolean {
            const auto* self = static_cast<Once*>(data);
            const bool isTime = self->_condition();
            if (isTime) {
                self->_deed();
            }
            return isTime ? G_SOURCE_REMOVE : G_SOURCE_CONTINUE;
        };
        g_timeout_add(1, call, this);
    }

private:
    std::function<bool()> _condition;
    std::function<void()> _deed;
};

} // namespace platform::linux
