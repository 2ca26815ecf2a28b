// Shows the program's windows and prints what becomes of them, line by line, for a script that plays the user:
// each argument is a `popup`, `settings` or `about`. The views are shaped like the program's own.

#include "tests/window/BareDesktop.hpp"

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

} // namespace

int main(int argc, char** argv) {
    if (argc < 4) {
        std::cerr << "usage: window_shower HELPER RESOURCES popup|settings|about...\n";
        return EXIT_FAILURE;
    }
    freedesktop::BareDesktop desktop{argv[1], argv[2]};
    const Settings settings;
    for (int index = 3; index < argc; ++index) {
        const std::string_view window{argv[index]};
        if (window == "popup") {
            popup();
        } else if (window == "settings") {
            runPanel([&] { return settings.body(); });
        } else if (window == "about") {
            runPanel(about);
        }
    }
    for (const std::string& error : desktop.errors) {
        std::cout << "error: " << error << std::endl;
    }
    return EXIT_SUCCESS;
}
