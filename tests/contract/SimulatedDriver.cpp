// The contract's hands on the simulated desktop: deeds are the story, and time is virtual.

#include "platform/simulated/SimulatedDesktop.hpp"
#include "tests/contract/Driver.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <utility>

namespace contract {
namespace {

using platform::simulated::PictureFile;
using platform::simulated::SoundFile;
using platform::simulated::TextFile;

struct Launcher : platform::NSApplicationDelegate {
    explicit Launcher(std::function<void()> program)
        : program{std::move(program)} {}
    void applicationDidFinishLaunching() override { program(); }

    std::function<void()> program;
};

class SimulatedDriver : public Driver {
public:
    SimulatedDriver() {
        _desktop.resources = {{"Sonar.m4a", SoundFile{}}, {"Marvelode.png", PictureFile{{512, 832}}}};
    }

    void install(std::string_view fileName, std::string_view bytes) override {
        _desktop.resources[std::string{fileName}] = TextFile{std::string{bytes}};
    }

    ResourceName playableSound() override { return {"Sonar", "m4a"}; }

    int run(const std::vector<std::string>& arguments, std::function<void()> program) override {
        _program = std::move(program);
        _agenda.clear();
        _desktop.launch(arguments);
        const milliseconds end = uptime() + std::chrono::seconds{5};
        while (_desktop.isRunning() && uptime() < end) {
            doDeeds();
            _desktop.wait(milliseconds{1});
        }
        _desktop.heard(); // the clauses judge sounds by what play() gives
        EXPECT_FALSE(_desktop.isRunning()) << "the program did not end";
        _desktop.losePower();
        return _desktop.exitStatus().value_or(-1);
    }

    void after(milliseconds delay, std::function<void()> deed) override {
        _agenda.push_back({[this, due = uptime() + delay] { return uptime() >= due; }, std::move(deed)});
    }

    void onceShown(std::function<void()> deed) override {
        _agenda.push_back({[this, before = _desktop.windowsOpened()] {
                               return _desktop.windowsOpened() > before &&
                                      (_desktop.alertIsUp() || _desktop.panelIsUp());
                           },
                           std::move(deed)});
    }

    void stall(milliseconds span) override { _desktop.stall(span); }

    milliseconds uptime() override { return std::chrono::duration_cast<milliseconds>(_desktop.uptime()); }

    void pressAlertButton(std::size_t index) override { _desktop.click(_desktop.alert().buttons().at(index)); }

    void tickAlertCheckBox() override { _desktop.tick(_desktop.alert().suppressionButton()->title); }

    void pressPanelButton(std::string_view label) override { _desktop.click(label); }

    void closePanel() override { _desktop.closeWindow(); }

    bool canPickMenuEntry(std::string_view title) override { return _desktop.isEnabled(title); }

    void pickMenuEntry(std::string_view title) override {
        if (canPickMenuEntry(title)) {
            _desktop.pick(title);
        }
    }

    void wakeMachine() override { _desktop.sleepAndWake(); }

private:
    struct Deed {
        std::function<bool()> isDue;
        std::function<void()> action;
    };

    void doDeeds() {
        while (_desktop.isRunning()) {
            const auto due =
                std::find_if(_agenda.begin(), _agenda.end(), [](const Deed& deed) { return deed.isDue(); });
            if (due == _agenda.end()) {
                return;
            }
            const auto action = std::move(due->action);
            _agenda.erase(due);
            action();
        }
    }

    std::function<void()> _program;
    std::vector<Deed> _agenda;
    platform::simulated::SimulatedDesktop _desktop{
        [this](int argc, const char* const* argv) {
            platform::NSApplication::shared().delegate = std::make_shared<Launcher>(_program);
            return platform::NSApplicationMain(argc, argv);
        },
        [](const std::string& complaint) { ADD_FAILURE() << complaint; }};
};

} // namespace

std::unique_ptr<Driver> makeDriver() { return std::make_unique<SimulatedDriver>(); }

} // namespace contract
