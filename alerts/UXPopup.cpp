#include "alerts/UXPopup.hpp"

#include "platform/Fatal.hpp"

#include <utility>

namespace marvelode {

using platform::NSAlert;
using platform::NSSuppressionButton;

UXPopup::UXPopup(std::shared_ptr<Cfg> cfg)
    : cfg{std::move(cfg)} {
    alert.alertStyle = NSAlert::Style::Informational;
    alert.icon = std::nullopt;
    alert.messageText = "Marvelode Timer";
    alert.informativeText = "Look around. Take a breath. Stretch.";
    alert.addButton("Restart");
    alert.addButton("Snooze");
    alert.setShowsSuppressionButton(true);
    NSSuppressionButton* const suppression = alert.suppressionButton();
    if (!suppression) {
        platform::fatal();
    }
    suppression->state = NSSuppressionButton::StateValue::Off;
    suppression->title = "Disable popup notifications";
}

} // namespace marvelode
