#include "alerts/UXPopup.hpp"

#include "tests/components/Bench.hpp"

namespace bench {
namespace {

using platform::NSAlert;
using platform::NSSuppressionButton;

class ThePopup : public Bench {
protected:
    UXPopup popup{makeCfg()};

    int answer = 0;

    void show() {
        desktop.launch();
        desktop.perform([this] { answer = popup.alert.runModal(); });
    }
};

TEST_F(ThePopup, SaysWhatItIsAbout) {
    EXPECT_EQ(popup.alert.messageText, "Marvelode Timer");
    EXPECT_EQ(popup.alert.informativeText, "Look around. Take a breath. Stretch.");
    EXPECT_EQ(popup.alert.alertStyle, NSAlert::Style::Informational);
    EXPECT_EQ(popup.alert.icon, std::nullopt);
}

TEST_F(ThePopup, OffersRestartAndThenSnooze) { EXPECT_EQ(popup.alert.buttons(), (Lines{"Restart", "Snooze"})); }

TEST_F(ThePopup, AnswersAThousandForRestart) {
    show();
    desktop.click("Restart");
    EXPECT_EQ(answer, 1000);
}

TEST_F(ThePopup, AnswersAThousandAndOneForSnooze) {
    show();
    desktop.click("Snooze");
    EXPECT_EQ(answer, 1001);
}

TEST_F(ThePopup, TakesReturnForRestart) {
    show();
    desktop.pressReturn();
    EXPECT_EQ(answer, 1000);
}

TEST_F(ThePopup, BeginsWithAnUntickedBox) {
    ASSERT_TRUE(popup.alert.suppressionButton());
    EXPECT_EQ(popup.alert.suppressionButton()->state, NSSuppressionButton::StateValue::Off);
    EXPECT_EQ(popup.alert.suppressionButton()->title, "Disable popup notifications");
}

TEST_F(ThePopup, KeepsATick) {
    show();
    desktop.tick("Disable popup notifications");
    desktop.click("Snooze");
    desktop.perform([this] { answer = popup.alert.runModal(); });
    desktop.untick("Disable popup notifications");
    desktop.click("Snooze");
    EXPECT_EQ(popup.alert.suppressionButton()->state, NSSuppressionButton::StateValue::Off);
}

} // namespace
} // namespace bench
