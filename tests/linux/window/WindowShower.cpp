// Shows the program's windows and prints what becomes of them, line by line, for a script that plays the user:
// each argument is a `popup`, `settings` or `about`, or the small window, `status` if the user asked for it and
// else `unasked`. The views are shaped like the program's own.

#include "platform/linux/trayless/StatusWindow.hpp"
#include "tests/support/BareDesktop.hpp"

#include <glib-unix.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <string>
#include <string_view>

namespace {

using namespace platform;

/// Stops the modal session when its panel closes.
class Host : public NSWindowDelegate {
public:
    void windowWillClose() override {
        std::cout << "window closes" << std::endl;
        NSApplication::shared().stopModal();
    }
};

NSPanel& panel() {
    static Host host;
    static NSPanel panel;
    panel.title = "Marvelode Timer";
    panel.isMovableByWindowBackground = true;
    panel.delegate = &host;
    return panel;
}

void runPanel(const std::function<View()>& content) {
    panel().contentView = std::make_shared<NSHostingView>(NSHostingView{content});
    NSApplication::shared().runModal(panel());
}

/// Prints each value that is set.
template <typename Value>
Binding<Value> printing(const char* name, const State<Value>& state) {
    return {[=] { return *state; },
            [=](Value value) {
                std::cout << name << " = " << value << std::endl;
                state.binding().set(value);
            }};
}

View row(const char* label, View control) {
    return HStack({Text(label).frame({.width = 140, .height = {}, .alignment = Alignment::Trailing}),
                   std::move(control)
                       .frame({.width = 100, .height = {}, .alignment = Alignment::Leading})
                       .padding(Edges::Leading, 20)});
}

View header(std::vector<View> texts) {
    texts.insert(texts.begin(), Text("Marvelode Timer").font(Font::Title2));
    return HStack({Image(*NSImage::named("Marvelode.png"))
                       .frame({.width = 50.0 / 520 * 320, .height = 50, .alignment = Alignment::Center})
                       .padding(Edges::Trailing, 12),
                   VStack(Alignment::Trailing, std::move(texts))});
}

/// A settings form that refuses more than 120 minutes.
class Settings {
public:
    void update() const {
        std::cout << "save" << std::endl;
        if (*_minutes > 0 && *_minutes <= 120) {
            panel().close();
            return;
        }
        NSAlert alert;
        alert.messageText = "Oops";
        alert.informativeText = "Invalid interval";
        std::cout << "alert answered " << alert.runModal() << std::endl;
    }

    View body() const {
        const auto save = [this] { update(); };
        const std::vector<std::pair<std::string, int>> sounds{
            {"Sonar", 0}, {"Bowl", 1}, {"System", 2}, {"Whistle", 3}};
        return VStack(
                   {
                       header({}),
                       row("Interval in minutes",
                           TextField("600", printing("minutes", _minutes), NumberFormatter{})
                               .frame({.width = 30, .height = {}, .alignment = Alignment::Leading})
                               .focusable()
                               .onSubmit([=] {
                                   std::cout << "submitted" << std::endl;
                                   save();
                               })),
                       row("Restart after sleep", Toggle("", printing("restart", _restart))),
                       row("Auto restart timer", Toggle("", printing("auto", _auto)).disabled(true)),
                       row("Reminder sound", Picker("", printing("sound", _sound), sounds).focusable().onChange([] {
                           std::cout << "plays" << std::endl;
                       })).padding(Edges::Bottom),
                       Button("OK", 5, save).focusable().keyboardShortcut(KeyboardShortcut::DefaultAction),
                   })
            .fixedSize()
            .padding(Edges::Bottom, 10)
            .padding(Edges::Trailing, 10);
    }

private:
    State<std::int64_t> _minutes{10};
    State<bool> _restart{true};
    State<bool> _auto{true};
    State<int> _sound{0};
};

View about() {
    return VStack({
                      header({VerbatimText("2026-11-21").font(Font::Caption)}).padding(Edges::Bottom, 12),
                      Text("Version: 1.0.0"),
                      Text("Build: 42").padding(Edges::Bottom, 12),
                      Text("[License](https://marvelode.example/license)"),
                      Text("© 2026 [The Marvelode makers](https://marvelode.example)").padding(Edges::Bottom, 12),
                      Text("[Support](https://marvelode.example/support) development").padding(Edges::Bottom, 12),
                      Button("OK", 5, [] { panel().close(); }).keyboardShortcut(KeyboardShortcut::DefaultAction),
                  })
        .padding()
        .fixedSize();
}

void popup() {
    NSAlert alert;
    alert.alertStyle = NSAlert::Style::Informational;
    alert.messageText = "Marvelode Timer";
    alert.informativeText = "Look around. Take a breath. Stretch.";
    alert.addButton("Restart");
    alert.addButton("Snooze");
    alert.setShowsSuppressionButton(true);
    alert.suppressionButton()->title = "Disable popup notifications";
    const int answer = alert.runModal();
    const bool isTicked = alert.suppressionButton()->state == NSSuppressionButton::StateValue::On;
    std::cout << "answered " << answer << (isTicked ? " ticked" : "") << std::endl;
}

/// The small window. Its "Quit" ends it; SIGUSR1 makes a minute pass, SIGUSR2 enables or disables "Quit".
class Status {
public:
    Status(const linux::HelperProgram& helper, bool isUnasked, linux::ErrorLog& errorLog)
        : _window{helper, [this](NSMenuItem& item) { pick(item); }, errorLog, _token} {
        for (const char* title : {"About", "Restart timer", "Mute", "Quit"}) {
            _menu->addItem(std::make_shared<NSMenuItem>(title, [](NSMenuItem&) {}, ""));
        }
        _menu->autoenablesItems = false;
        _menu->itemWithTitle("Mute")->setState(NSMenuItem::StateValue::Off);
        show();
        isUnasked ? _window.appear() : _window.open();
        const auto minutePasses = [](gpointer self) -> gboolean {
            --static_cast<Status*>(self)->_minutes;
            static_cast<Status*>(self)->show();
            return G_SOURCE_CONTINUE;
        };
        const auto quitChanges = [](gpointer self) -> gboolean {
            auto& quit = *static_cast<Status*>(self)->_menu->itemWithTitle("Quit");
            quit.isEnabled = !quit.isEnabled.value_or(true);
            static_cast<Status*>(self)->show();
            return G_SOURCE_CONTINUE;
        };
        _signals = {g_unix_signal_add(SIGUSR1, minutePasses, this), g_unix_signal_add(SIGUSR2, quitChanges, this)};
    }
    ~Status() { std::for_each(_signals.begin(), _signals.end(), g_source_remove); }
    Status(const Status&) = delete;
    Status& operator=(const Status&) = delete;

    void run() const {
        while (!_isOver) {
            g_main_context_iteration(nullptr, TRUE);
        }
    }

private:
    void pick(NSMenuItem& item) {
        std::cout << "picks " << item.title << std::endl;
        if (item.hasState()) {
            using enum NSMenuItem::StateValue;
            item.setState(item.state() == On ? Off : On);
        }
        _isOver = item.title == "Quit";
        show();
    }
    void show() { _window.show({{}, {}, {}, {}, "Break in " + std::to_string(_minutes) + " minutes"}, _menu); }

    int _minutes = 9;
    bool _isOver = false;
    std::shared_ptr<NSMenu> _menu = std::make_shared<NSMenu>();
    linux::ActivationToken _token;
    linux::StatusWindow _window;
    std::array<unsigned, 2> _signals{};
};

} // namespace

int main(int argc, char** argv) {
    if (argc < 4) {
        std::cerr << "usage: window_shower HELPER RESOURCES popup|settings|about|status|unasked...\n";
        return EXIT_FAILURE;
    }
    linux::BareDesktop desktop{argv[1], argv[2]};
    desktop.activationToken.keep("of-the-click");
    const Settings settings;
    for (int index = 3; index < argc; ++index) {
        const std::string_view window{argv[index]};
        if (window == "popup") {
            popup();
        } else if (window == "settings") {
            runPanel([&] { return settings.body(); });
        } else if (window == "about") {
            runPanel(about);
        } else if (window == "status" || window == "unasked") {
            Status{desktop.program, window == "unasked", desktop.errorLog}.run();
        }
    }
    for (const std::string& error : desktop.errors) {
        std::cout << "error: " << error << std::endl;
    }
    return EXIT_SUCCESS;
}
