#pragma once

// A desktop on which a program runs that does nothing by itself: components are put on it one at a time.

#include "app/Events.hpp"
#include "config/BuildInfo.hpp"
#include "config/Cfg.hpp"
#include "platform/UserDefaults.hpp"
#include "platform/simulated/SimulatedDesktop.hpp"
#include "tests/stories/StoryDesktop.hpp"
#include "tests/support/TakeApart.hpp"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace bench {

using namespace marvelode;
using namespace std::chrono_literals;
using namespace std::string_literals;
using platform::DefaultsValue;
using platform::simulated::PictureFile;
using platform::simulated::SoundFile;
using platform::simulated::TextFile;
using platform::simulated::UnreadableFile;
using Lines = platform::simulated::SimulatedDesktop::Lines;
using Parameter = Cfg::Parameter;

/// The names of all sounds, with or without the one that has no file.
inline Lines soundNames(bool withSystem) {
    Lines names;
    for (const Cfg::Sound sound : Cfg::allSounds) {
        if (withSystem || sound != Cfg::Sound::System) {
            names.emplace_back(Cfg::rawValue(sound));
        }
    }
    return names;
}

/// The desktop, a bus on which every change of a setting is noted, and the settings of a later run.
class Bench : public testing::Test {
protected:
    platform::simulated::SimulatedDesktop desktop{
        [](int argc, const char* const* argv) { return platform::NSApplicationMain(argc, argv); },
        [](const std::string& complaint) { ADD_FAILURE() << complaint; }};
    std::shared_ptr<Events> events = std::make_shared<Events>();
    std::shared_ptr<BuildInfo> buildInfo = std::make_shared<BuildInfo>("1427", "2025-06-09", "1.2.0");
    std::vector<Parameter> published;

    Bench() {
        desktop.resources = story::StoryDesktop::completeInstallation();
        desktop.resources.erase("BuildInfo.txt");
        desktop.defaults["Version"] = "1.1.0"s;
        events->subscribe([this](Parameter parameter) { published.push_back(parameter); });
    }
    void TearDown() override { takeApart(*events); }

    std::shared_ptr<Cfg> makeCfg(bool isTest = false) { return std::make_shared<Cfg>(isTest, events, buildInfo); }

    /// What is stored under `key`; nothing if there is nothing.
    std::optional<DefaultsValue> stored(const std::string& key) const {
        const auto found = desktop.defaults.find(key);
        return found == desktop.defaults.end() ? std::nullopt : std::optional{found->second};
    }
};

/// A bench for conditions that stop the program.
class BenchDeathTest : public Bench {
protected:
    BenchDeathTest() { testing::FLAGS_gtest_death_test_style = "threadsafe"; }
};

} // namespace bench

/// Passes if `statement` stops the program as `platform::fatal()` does.
#define EXPECT_FATAL(statement) EXPECT_EXIT(statement, testing::KilledBySignal(SIGABRT), "")
