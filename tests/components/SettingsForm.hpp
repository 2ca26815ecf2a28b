#pragma once

// The settings form as its tests begin with it.

#include "platform/simulated/ViewReader.hpp"
#include "tests/components/Bench.hpp"
#include "windows/UXSettings.hpp"

namespace bench {

using namespace platform;
using platform::simulated::buttonLabelled;
using platform::simulated::controlBeside;

/// The form in its window, in a later run with popups off.
class TheForm : public Bench {
protected:
    std::shared_ptr<Cfg> cfg = makeCfg();
    std::shared_ptr<UXAudio> audio;
    std::shared_ptr<UXSettings> window;

    void open() {
        if (!desktop.isRunning()) {
            desktop.launch();
        }
        desktop.perform([this] {
            if (!window) {
                audio = std::make_shared<UXAudio>(cfg);
                window = makeShared<UXSettings>(cfg, SettingsView{cfg, audio}, NSPanel::HUDWindow);
            }
            window->runModal([] {});
        });
    }

    void confirm(const std::string& minutes) {
        desktop.type(minutes);
        desktop.click("OK");
    }

    /// Clicks the error away.
    void expectRefused() {
        EXPECT_EQ(desktop.alert().messageText, "Oops");
        EXPECT_EQ(desktop.alert().informativeText, "Invalid interval");
        EXPECT_EQ(desktop.alert().alertStyle, NSAlert::Style::Warning);
        EXPECT_EQ(desktop.alert().buttons(), Lines{"OK"});
        EXPECT_FALSE(desktop.alert().suppressionButton());
        desktop.click("OK");
        EXPECT_TRUE(desktop.panelIsUp());
    }

    void TearDown() override {
        desktop.losePower();
        if (window) {
            takeApart(*window);
        }
    }
};

} // namespace bench
