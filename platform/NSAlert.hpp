#pragma once

// A message with buttons that the user must answer before the program goes on. An alert is filled once and can be
// run any number of times; its check box keeps its state from one run to the next.

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace platform {

/// A check box.
struct NSSuppressionButton {
    enum class StateValue { Off = 0, On = 1 };
    StateValue state = StateValue::Off;
    std::string title;
};

/// A modal message.
class NSAlert {
public:
    enum class Style { Warning = 0, Informational = 1, Critical = 2 };

    /// What `runModal()` returns for the first and the second button; later ones count on.
    static constexpr int FirstButtonReturn = 1000;
    static constexpr int SecondButtonReturn = 1001;
    /// What `runModal()` returns when the alert went away without an answer.
    static constexpr int Stopped = -1000;

    Style alertStyle = Style::Warning;
    std::optional<std::string> icon; ///< A picture's resource name; the application's own icon when absent.
    std::string messageText;
    std::string informativeText;

    /// Adds a button; the first one is the default button, which the Return key presses.
    void addButton(std::string title) { _buttons.push_back(std::move(title)); }

    /// Whether any button was added.
    bool hasOwnButtons() const { return !_buttons.empty(); }

    /// The titles of the buttons in order; a single "OK" if none was added.
    std::vector<std::string> buttons() const {
        return _buttons.empty() ? std::vector<std::string>{"OK"} : _buttons;
    }

    /// Whether a check box stands below the message.
    void setShowsSuppressionButton(bool shows);

    /// The check box; null if the alert shows none. Owned by the alert.
    NSSuppressionButton* suppressionButton() { return _suppressionButton ? &*_suppressionButton : nullptr; }
    const NSSuppressionButton* suppressionButton() const {
        return _suppressionButton ? &*_suppressionButton : nullptr;
    }

    /// Shows the alert in front of everything else and waits for the answer: `FirstButtonReturn` and up, or
    /// `Stopped`. Other work of the run loop goes on; one-shot timers wait.
    int runModal();

private:
    std::vector<std::string> _buttons;
    std::optional<NSSuppressionButton> _suppressionButton;
};

} // namespace platform
