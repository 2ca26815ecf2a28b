#include "platform/NSAlert.hpp"
#include "platform/NSPanel.hpp"
#include "tests/contract/Clause.hpp"

namespace contract {
namespace {

using platform::Button;
using platform::NSAlert;
using platform::NSApplication;
using platform::NSHostingView;
using platform::NSPanel;
using platform::NSWindowDelegate;
using platform::Text;
using platform::View;
using platform::VStack;

/// A panel with one button, and a delegate that ends its modal session when it closes.
class Panels : public Clause, protected NSWindowDelegate {
protected:
    NSPanel panel;
    int closings = 0;
    int appearances = 0;
    std::function<void()> onButton = [] {};

    void SetUp() override {
        panel.title = "Panel";
        panel.delegate = this;
        panel.contentView = std::make_shared<NSHostingView>();
        panel.contentView->rootView = [this] {
            return VStack({Text("Something to read"), Button("Go", 5, [this] { onButton(); })}).onAppear([this] {
                ++appearances;
            });
        };
    }

    void windowWillClose() override {
        ++closings;
        NSApplication::shared().stopModal();
    }

    void runPanel() {
        panel.center();
        NSApplication::shared().runModal(panel);
    }
};

TEST_F(Panels, BlockUntilTheModalSessionIsStopped) {
    runToEnd([&] {
        bool wasStopped = false;
        driver->onceShown([&] {
            EXPECT_TRUE(NSApplication::shared().isModal());
            driver->after(50ms, [&] {
                wasStopped = true;
                NSApplication::shared().stopModal();
            });
        });
        runPanel();
        EXPECT_TRUE(wasStopped);
        EXPECT_FALSE(NSApplication::shared().isModal());
    });
    EXPECT_EQ(closings, 0);
}

TEST_F(Panels, PassTheirButtonsOn) {
    runToEnd([&] {
        onButton = [this] { panel.close(); };
        driver->onceShown([&] { driver->pressPanelButton("Go"); });
        runPanel();
    });
    EXPECT_EQ(closings, 1);
    EXPECT_EQ(appearances, 1);
}

TEST_F(Panels, TellTheirDelegateWhenTheUserClosesThem) {
    runToEnd([&] {
        driver->onceShown([&] { driver->closePanel(); });
        runPanel();
    });
    EXPECT_EQ(closings, 1);
}

TEST_F(Panels, CanBeRunAgain) {
    runToEnd([&] {
        for (int time = 1; time <= 2; ++time) {
            driver->onceShown([&] { driver->closePanel(); });
            runPanel();
            EXPECT_EQ(closings, time);
            EXPECT_EQ(appearances, time);
        }
    });
}

TEST_F(Panels, CanHaveAnAlertOnTop) {
    runToEnd([&] {
        onButton = [&] {
            driver->onceShown([&] { driver->pressAlertButton(0); });
            EXPECT_EQ(NSAlert{}.runModal(), NSAlert::FirstButtonReturn);
            EXPECT_TRUE(NSApplication::shared().isModal());
            panel.close();
        };
        driver->onceShown([&] { driver->pressPanelButton("Go"); });
        runPanel();
    });
    EXPECT_EQ(closings, 1);
}

TEST_F(Panels, EndWithTheProgram) {
    bool hasReturned = false;
    run([&] {
        driver->onceShown(end);
        runPanel();
        hasReturned = true;
    });
    EXPECT_TRUE(hasReturned);
}

TEST_F(Panels, CanKeepTheProgramFromEnding) {
    bool wasStillUp = false;
    panel.preventsApplicationTerminationWhenModal = true;
    run([&] {
        driver->onceShown([&] {
            end();
            driver->after(50ms, [&] {
                wasStillUp = NSApplication::shared().isModal();
                driver->closePanel();
            });
        });
        runPanel();
        end();
    });
    EXPECT_TRUE(wasStillUp);
    EXPECT_EQ(closings, 1);
}

TEST_F(Panels, WithoutContentCanBeRunToo) {
    panel.contentView = nullptr;
    runToEnd([&] {
        driver->onceShown([] { NSApplication::shared().stopModal(); });
        runPanel();
    });
}

} // namespace
} // namespace contract
