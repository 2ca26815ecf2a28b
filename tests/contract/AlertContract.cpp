#include "platform/NSAlert.hpp"
#include "platform/NSWorkspace.hpp"
#include "tests/contract/Clause.hpp"

namespace contract {
namespace {

using platform::NSAlert;
using platform::NSApplication;
using platform::NSSuppressionButton;
using State = NSSuppressionButton::StateValue;

class Alerts : public Clause {
protected:
    static NSAlert question() {
        NSAlert alert;
        alert.messageText = "Question";
        alert.informativeText = "What shall be done?";
        alert.addButton("First");
        alert.addButton("Second");
        alert.addButton("Third");
        return alert;
    }

    static NSAlert questionWithCheckBox() {
        NSAlert alert = question();
        alert.setShowsSuppressionButton(true);
        alert.suppressionButton()->title = "Never again";
        return alert;
    }
};

TEST_F(Alerts, AnswerWithTheNumberOfTheButton) {
    runToEnd([&] {
        for (std::size_t index = 0; index < 3; ++index) {
            driver->onceShown([&, index] { driver->pressAlertButton(index); });
            EXPECT_EQ(question().runModal(), NSAlert::FirstButtonReturn + static_cast<int>(index));
        }
    });
}

TEST_F(Alerts, WithoutButtonsOfferOne) {
    runToEnd([&] {
        driver->onceShown([&] { driver->pressAlertButton(0); });
        EXPECT_EQ(NSAlert{}.runModal(), NSAlert::FirstButtonReturn);
    });
}

TEST_F(Alerts, BlockUntilTheyAreAnswered) {
    runToEnd([&] {
        bool isAnswered = false;
        driver->onceShown([&] {
            driver->after(50ms, [&] {
                isAnswered = true;
                driver->pressAlertButton(1);
            });
        });
        EXPECT_EQ(question().runModal(), NSAlert::SecondButtonReturn);
        EXPECT_TRUE(isAnswered);
    });
}

TEST_F(Alerts, LeaveTheCheckBoxAloneUntilTheUserTicksIt) {
    runToEnd([&] {
        NSAlert alert = questionWithCheckBox();
        driver->onceShown([&] { driver->pressAlertButton(0); });
        alert.runModal();
        EXPECT_EQ(alert.suppressionButton()->state, State::Off);

        driver->onceShown([&] {
            driver->tickAlertCheckBox();
            driver->pressAlertButton(1);
        });
        EXPECT_EQ(alert.runModal(), NSAlert::SecondButtonReturn);
        EXPECT_EQ(alert.suppressionButton()->state, State::On);
    });
}

TEST_F(Alerts, ShowATickThatWasThereBeforeAgain) {
    runToEnd([&] {
        NSAlert alert = questionWithCheckBox();
        alert.suppressionButton()->state = State::On;
        driver->onceShown([&] { driver->pressAlertButton(0); });
        alert.runModal();
        EXPECT_EQ(alert.suppressionButton()->state, State::On);
    });
}

TEST_F(Alerts, StandOnTopOfOneAnother) {
    runToEnd([&] {
        driver->onceShown([&] {
            driver->onceShown([&] { driver->pressAlertButton(2); });
            EXPECT_TRUE(NSApplication::shared().isModal());
            driver->wakeMachine(); // upon which the program shows a second alert
        });
        bool isFirst = true;
        const int observer = 0;
        auto& center = platform::NSWorkspace::shared().notificationCenter();
        center.addObserver(
            &observer,
            [&] {
                if (std::exchange(isFirst, false)) {
                    EXPECT_EQ(question().runModal(), 1002);
                    driver->after(150ms, [&] { driver->pressAlertButton(0); });
                }
            },
            platform::NotificationCenter::Name::NSWorkspaceDidWakeNotification);
        EXPECT_EQ(question().runModal(), 1000);
        center.removeObserver(&observer);
        EXPECT_FALSE(NSApplication::shared().isModal());
    });
}

TEST_F(Alerts, AreStoppedWhenTheProgramEnds) {
    int answer = 0;
    run([&] {
        driver->onceShown(end);
        answer = question().runModal();
    });
    EXPECT_EQ(answer, NSAlert::Stopped);
}

} // namespace
} // namespace contract
