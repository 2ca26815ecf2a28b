#include "platform/UserDefaults.hpp"
#include "tests/contract/Clause.hpp"

#include <optional>

namespace contract {
namespace {

using platform::DefaultsValue;
using platform::UserDefaults;
using namespace std::string_literals;

class Defaults : public Clause {
protected:
    static UserDefaults& defaults() { return UserDefaults::standard(); }
};

TEST_F(Defaults, AreFalseZeroAndNoTextWhenAbsent) {
    runToEnd([] {
        EXPECT_FALSE(defaults().boolForKey("Nothing"));
        EXPECT_EQ(defaults().integerForKey("Nothing"), 0);
        EXPECT_EQ(defaults().stringForKey("Nothing"), std::nullopt);
    });
}

struct Conversion {
    DefaultsValue stored;
    bool asBool;
    std::int64_t asInteger;
    const char* asText;
};

const std::vector<Conversion>& conversions() {
    static const std::vector<Conversion> all{
        {true, true, 1, "1"},
        {false, false, 0, "0"},
        {std::int64_t{1500}, true, 1500, "1500"},
        {std::int64_t{0}, false, 0, "0"},
        {std::int64_t{-3}, true, -3, "-3"},
        {1500.0, true, 1500, "1500"},
        {90.75, true, 90, "90.75"},
        {-90.75, true, -90, "-90.75"},
        {0.5, true, 0, "0.5"},
        {0.0, false, 0, "0"},
        {"1500"s, true, 1500, "1500"},
        {"12 minutes"s, true, 12, "12 minutes"},
        {"90.7"s, true, 90, "90.7"},
        {"-4"s, true, -4, "-4"},
        {"0"s, false, 0, "0"},
        {"YES"s, true, 0, "YES"},
        {"true"s, true, 0, "true"},
        {"NO"s, false, 0, "NO"},
        {"false"s, false, 0, "false"},
        {"Sonar"s, false, 0, "Sonar"},
        {""s, false, 0, ""},
        {"Größe = \"9\"\tund mehr"s, false, 0, "Größe = \"9\"\tund mehr"},
    };
    return all;
}

void expectConversions(const std::string& when) {
    for (const Conversion& each : conversions()) {
        UserDefaults::standard().set(each.stored, "Key");
        SCOPED_TRACE(when + ": " + each.asText);
        EXPECT_EQ(UserDefaults::standard().boolForKey("Key"), each.asBool);
        EXPECT_EQ(UserDefaults::standard().integerForKey("Key"), each.asInteger);
        EXPECT_EQ(UserDefaults::standard().stringForKey("Key"), each.asText);
    }
}

TEST_F(Defaults, AreConvertedToTheTypeThatIsAskedFor) {
    runToEnd([] { expectConversions("at once"); });
}

TEST_F(Defaults, AreConvertedAlikeInTheNextRun) {
    runToEnd([] {
        std::size_t number = 0;
        for (const Conversion& each : conversions()) {
            defaults().set(each.stored, "Key" + std::to_string(number++));
        }
    });
    runToEnd([] {
        std::size_t number = 0;
        for (const Conversion& each : conversions()) {
            const std::string key = "Key" + std::to_string(number++);
            SCOPED_TRACE(each.asText);
            EXPECT_EQ(defaults().boolForKey(key), each.asBool);
            EXPECT_EQ(defaults().integerForKey(key), each.asInteger);
            EXPECT_EQ(defaults().stringForKey(key), each.asText);
        }
    });
}

TEST_F(Defaults, KeepTheLastValueUnderAKey) {
    runToEnd([] {
        defaults().set(true, "Mute");
        defaults().set("Bowl"s, "Mute");
        EXPECT_EQ(defaults().stringForKey("Mute"), "Bowl");
        defaults().set(false, "Mute");
        EXPECT_EQ(defaults().stringForKey("Mute"), "0");
    });
    runToEnd([] { EXPECT_EQ(defaults().stringForKey("Mute"), "0"); });
}

TEST_F(Defaults, TellKeysApartByCase) {
    runToEnd([] {
        defaults().set("a"s, "Key");
        EXPECT_EQ(defaults().stringForKey("key"), std::nullopt);
    });
}

TEST_F(Defaults, AreReadFromTheCommandLineFirst) {
    runToEnd([] { defaults().set(600.0, "TimerInterval"); });
    runToEnd(
        [] {
            EXPECT_EQ(defaults().integerForKey("TimerInterval"), 1500);
            EXPECT_EQ(defaults().stringForKey("TimerInterval"), "1500");
            EXPECT_TRUE(defaults().boolForKey("Mute"));
            EXPECT_EQ(defaults().stringForKey("AlertSound"), "Bowl");
        },
        {"-TimerInterval", "1500", "-Mute", "YES", "-AlertSound", "Bowl"});
}

TEST_F(Defaults, FromTheCommandLineAreNeverStored) {
    const std::vector<std::string> arguments{"-TimerInterval", "1500"};
    runToEnd(
        [] {
            defaults().set(900.0, "TimerInterval");
            EXPECT_EQ(defaults().integerForKey("TimerInterval"), 1500);
        },
        arguments);
    runToEnd([] { EXPECT_EQ(defaults().integerForKey("TimerInterval"), 900); });
}

TEST_F(Defaults, AWordWithoutAValueOnTheCommandLineSetsNothing) {
    runToEnd([] { EXPECT_EQ(defaults().stringForKey("test"), std::nullopt); }, {"-test"});
}

} // namespace
} // namespace contract
