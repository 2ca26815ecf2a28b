#include "config/Cfg.hpp"

#include "tests/components/Bench.hpp"

#include <cmath>
#include <limits>

namespace bench {
namespace {

using Sound = Cfg::Sound;

class TheStore : public Bench {
protected:
    void makeFresh() { desktop.defaults.clear(); }
};

// The first run

TEST_F(TheStore, OfAFreshUserHasItsDefaults) {
    makeFresh();
    const auto cfg = makeCfg();
    EXPECT_TRUE(desktop.defaults.empty()); // construction touches nothing
    EXPECT_TRUE(cfg->isFirstRun());
    EXPECT_EQ(stored("Version"), DefaultsValue{"1.2.0"s});
    EXPECT_TRUE(cfg->popups());
    EXPECT_TRUE(cfg->autoRestart());
    EXPECT_TRUE(cfg->restartOnWake());
    EXPECT_TRUE(cfg->showCountdown());
    EXPECT_EQ(stored("PopupAlerts"), DefaultsValue{true});
    EXPECT_EQ(stored("AutoRestart"), DefaultsValue{true});
    EXPECT_EQ(stored("ResartOnWake"), DefaultsValue{true});
    EXPECT_EQ(stored("ShowCountdown"), DefaultsValue{true});
    EXPECT_FALSE(cfg->isMuted());
    EXPECT_EQ(stored("Mute"), std::nullopt);
    EXPECT_EQ(cfg->sound(), Sound::System);
    EXPECT_EQ(cfg->timerInterval(), 600);
    EXPECT_EQ(cfg->reminderInterval(), 60);
    EXPECT_TRUE(published.empty());
}

TEST_F(TheStore, KnowsALaterRunByAnyRecordedVersion) {
    for (const std::string version : {"1.1.0", "1.2.0", "9", "", "UNKNOWN"}) {
        desktop.defaults = {{"Version", version}};
        const auto cfg = makeCfg();
        EXPECT_FALSE(cfg->isFirstRun()) << version;
        EXPECT_EQ(stored("Version"), DefaultsValue{"1.2.0"s});
        EXPECT_FALSE(cfg->popups());
        EXPECT_FALSE(cfg->autoRestart());
        EXPECT_FALSE(cfg->restartOnWake());
        EXPECT_FALSE(cfg->showCountdown());
        EXPECT_EQ(desktop.defaults.size(), 1U);
    }
}

TEST_F(TheStore, DecidesOnceWhetherItIsAFirstRun) {
    makeFresh();
    const auto cfg = makeCfg();
    EXPECT_TRUE(cfg->isFirstRun());
    EXPECT_TRUE(cfg->isFirstRun());
    EXPECT_FALSE(makeCfg()->isFirstRun());
    desktop.defaults.erase("Version");
    EXPECT_TRUE(cfg->isFirstRun());
    EXPECT_EQ(stored("Version"), std::nullopt);
}

TEST_F(TheStore, RecordsTheTestVersionInTestMode) {
    makeFresh();
    buildInfo = std::make_shared<BuildInfo>("test", "test", "test");
    makeCfg(true)->isFirstRun();
    EXPECT_EQ(stored("Version"), DefaultsValue{"test"s});
}

TEST_F(TheStore, WritesTheFirstRunsDefaultsAtEveryRead) {
    makeFresh();
    const auto cfg = makeCfg();
    for (const auto& [key, read] : std::map<std::string, bool (Cfg::*)()>{{"PopupAlerts", &Cfg::popups},
                                                                          {"AutoRestart", &Cfg::autoRestart},
                                                                          {"ResartOnWake", &Cfg::restartOnWake},
                                                                          {"ShowCountdown", &Cfg::showCountdown}}) {
        EXPECT_TRUE((cfg.get()->*read)());
        desktop.defaults[key] = false;
        EXPECT_TRUE((cfg.get()->*read)()) << key;
        EXPECT_EQ(stored(key), DefaultsValue{true});
    }
}

TEST_F(TheStore, LeavesTheMuteSettingAloneInAFirstRun) {
    makeFresh();
    const auto cfg = makeCfg();
    EXPECT_TRUE(cfg->isFirstRun());
    EXPECT_TRUE(cfg->toggleMute());
    EXPECT_TRUE(cfg->isMuted());
    EXPECT_FALSE(cfg->toggleMute());
    EXPECT_FALSE(cfg->isMuted());
    EXPECT_EQ(stored("Mute"), DefaultsValue{false});
}

// Popups

TEST_F(TheStore, TogglesPopupsBackDuringAFirstRun) {
    makeFresh();
    const auto cfg = makeCfg();
    EXPECT_TRUE(cfg->togglePopups());
    EXPECT_EQ(published, (std::vector<Parameter>{{Parameter::PopupAlerts{false}}}));
    EXPECT_EQ(stored("PopupAlerts"), DefaultsValue{true});
}

TEST_F(TheStore, TogglesPopupsInALaterRun) {
    desktop.defaults["PopupAlerts"] = true;
    const auto cfg = makeCfg();
    EXPECT_FALSE(cfg->togglePopups());
    EXPECT_EQ(stored("PopupAlerts"), DefaultsValue{false});
    EXPECT_TRUE(cfg->togglePopups());
    EXPECT_EQ(stored("PopupAlerts"), DefaultsValue{true});
    EXPECT_EQ(published, (std::vector<Parameter>{{Parameter::PopupAlerts{false}}, {Parameter::PopupAlerts{true}}}));
}

TEST_F(TheStore, DisablesPopupsWithoutAskingWhichRunItIs) {
    makeFresh();
    makeCfg()->disablePopups();
    EXPECT_EQ(desktop.defaults, (decltype(desktop.defaults){{"PopupAlerts", false}}));
    EXPECT_EQ(published, (std::vector<Parameter>{{Parameter::PopupAlerts{false}}}));
}

// Mute

TEST_F(TheStore, TogglesMute) {
    const auto cfg = makeCfg();
    EXPECT_TRUE(cfg->toggleMute());
    EXPECT_EQ(stored("Mute"), DefaultsValue{true});
    EXPECT_TRUE(cfg->isMuted());
    EXPECT_FALSE(cfg->toggleMute());
    EXPECT_EQ(stored("Mute"), DefaultsValue{false});
    EXPECT_EQ(published, (std::vector<Parameter>{{Parameter::Mute{true}}, {Parameter::Mute{false}}}));
}

// The interval

TEST_F(TheStore, RefusesIntervalsOutsideOfTwoHours) {
    desktop.defaults["TimerInterval"] = 1500.0;
    const auto cfg = makeCfg();
    for (const double seconds :
         {0.0, -0.0, -5.0, 7200.5, 7201.0, std::nan(""), std::numeric_limits<double>::infinity(),
          -std::numeric_limits<double>::infinity()}) {
        EXPECT_FALSE(cfg->setTimerInterval(seconds)) << seconds;
    }
    EXPECT_EQ(stored("TimerInterval"), DefaultsValue{1500.0});
    EXPECT_TRUE(published.empty());
}

TEST_F(TheStore, AcceptsIntervalsUpToTwoHours) {
    const auto cfg = makeCfg();
    for (const double seconds : {7200.0, 60.0, 0.001}) {
        EXPECT_TRUE(cfg->setTimerInterval(seconds));
        EXPECT_EQ(stored("TimerInterval"), DefaultsValue{seconds});
        EXPECT_EQ(published.back(), (Parameter{Parameter::TimerInterval{seconds}}));
    }
    EXPECT_EQ(published.size(), 3U);
}

TEST_F(TheStore, StoresFractionsOfAnIntervalButDoesNotReadThem) {
    const auto cfg = makeCfg();
    EXPECT_TRUE(cfg->setTimerInterval(90.7));
    EXPECT_EQ(stored("TimerInterval"), DefaultsValue{90.7});
    EXPECT_EQ(cfg->timerInterval(), 90);
    EXPECT_TRUE(cfg->setTimerInterval(0.7));
    EXPECT_EQ(cfg->timerInterval(), 600);
}

TEST_F(TheStore, PublishesAfterItHasWritten) {
    const auto cfg = makeCfg();
    std::vector<std::optional<DefaultsValue>> seen;
    events->subscribe([&](Parameter) { seen = {stored("TimerInterval"), stored("Mute"), stored("PopupAlerts")}; });
    cfg->setTimerInterval(60);
    EXPECT_EQ(seen[0], DefaultsValue{60.0});
    cfg->toggleMute();
    EXPECT_EQ(seen[1], DefaultsValue{true});
    cfg->togglePopups();
    EXPECT_EQ(seen[2], DefaultsValue{true});
    cfg->disablePopups();
    EXPECT_EQ(seen[2], DefaultsValue{false});
}

TEST_F(TheStore, UsesANegativeIntervalAsItStands) {
    desktop.defaults["TimerInterval"] = -60.0;
    EXPECT_EQ(makeCfg()->timerInterval(), -60);
}

TEST_F(TheStore, HasFixedIntervalsInTestMode) {
    desktop.defaults["TimerInterval"] = 1500.0;
    const auto cfg = makeCfg(true);
    EXPECT_EQ(cfg->timerInterval(), 30);
    EXPECT_EQ(cfg->reminderInterval(), 5);
}

TEST_F(TheStore, NeverRemembersAValue) {
    const auto cfg = makeCfg();
    cfg->setTimerInterval(60);
    desktop.defaults["TimerInterval"] = std::int64_t{120};
    EXPECT_EQ(cfg->timerInterval(), 120);
    desktop.defaults["Mute"] = true;
    EXPECT_TRUE(cfg->isMuted());
    desktop.defaults.erase("Mute");
    EXPECT_FALSE(cfg->isMuted());
}

// The sound

TEST_F(TheStore, OffersTheSoundsInTheirOrder) {
    EXPECT_EQ(soundNames(true), (Lines{"Sonar", "Bowl", "System", "Whistle"}));
}

TEST_F(TheStore, ReadsTheSoundByItsExactName) {
    const auto cfg = makeCfg();
    const std::map<std::string, Sound> sounds{
        {"Sonar", Sound::Sonar},  {"Bowl", Sound::Bowl},    {"System", Sound::System}, {"Whistle", Sound::Whistle},
        {"sonar", Sound::System}, {"SONAR", Sound::System}, {" Sonar", Sound::System}, {"Sonar ", Sound::System},
        {"Gong", Sound::System},  {"", Sound::System}};
    for (const auto& [name, sound] : sounds) {
        desktop.defaults["AlertSound"] = name;
        EXPECT_EQ(cfg->sound(), sound) << name;
    }
}

TEST_F(TheStore, TakesASoundOfAnotherTypeForTheSystems) {
    desktop.defaults["AlertSound"] = true;
    EXPECT_EQ(makeCfg()->sound(), Sound::System);
}

TEST(TheSounds, HaveTheirNamesAndOrder) {
    std::vector<std::string> names;
    for (const Sound sound : Cfg::allSounds) {
        names.emplace_back(Cfg::rawValue(sound));
        EXPECT_EQ(Cfg::soundFromRawValue(names.back()), sound);
    }
    EXPECT_EQ(names, (std::vector<std::string>{"Sonar", "Bowl", "System", "Whistle"}));
    EXPECT_EQ(Cfg::soundFromRawValue("bowl"), std::nullopt);
}

// Keys

TEST_F(TheStore, ReadsRestartOnWakeUnderItsOwnSpellingOnly) {
    desktop.defaults["RestartOnWake"] = true;
    const auto cfg = makeCfg();
    EXPECT_FALSE(cfg->restartOnWake());
    desktop.defaults["ResartOnWake"] = true;
    EXPECT_TRUE(cfg->restartOnWake());
}

TEST_F(TheStore, ReadsEachSettingUnderItsKey) {
    const auto cfg = makeCfg();
    for (const auto& [key, read] : std::map<std::string, bool (Cfg::*)()>{{"PopupAlerts", &Cfg::popups},
                                                                          {"AutoRestart", &Cfg::autoRestart},
                                                                          {"ResartOnWake", &Cfg::restartOnWake},
                                                                          {"ShowCountdown", &Cfg::showCountdown}}) {
        desktop.defaults = {{"Version", "1"s}, {key, true}};
        EXPECT_EQ(cfg->popups(), key == "PopupAlerts");
        EXPECT_EQ(cfg->autoRestart(), key == "AutoRestart");
        EXPECT_EQ(cfg->restartOnWake(), key == "ResartOnWake");
        EXPECT_EQ(cfg->showCountdown(), key == "ShowCountdown");
        EXPECT_TRUE((cfg.get()->*read)());
    }
}

static_assert(std::is_same_v<
              decltype(Parameter::change),
              std::variant<Parameter::AlertSound, Parameter::AutoRestart, Parameter::Mute, Parameter::PopupAlerts,
                           Parameter::RestartOnWake, Parameter::ShowCountdown, Parameter::TimerInterval>>);

} // namespace
} // namespace bench
