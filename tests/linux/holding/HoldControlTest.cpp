// How others on the session bus hold reminders back, and see that they are.

#include "tests/linux/ControlTest.hpp"

#include <gmock/gmock.h>

#include <chrono>
#include <cstdint>
#include <limits>
#include <string>

namespace platform::linux {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class HoldControl : public ControlTest {
protected:
    VariantHandle hold(std::int64_t span, std::string* error = nullptr) {
        return ask("org.marvelode.Timer", "Hold", g_variant_new("(x)", span), error);
    }
};

TEST_F(HoldControl, TakesSpansFromASecondToADay) {
    for (const std::int64_t span : {1, 3600, 86'400}) {
        EXPECT_TRUE(hold(span));
    }
    EXPECT_THAT(holds, ElementsAre(1s, 3600s, 86'400s));
}

TEST_F(HoldControl, RefusesOtherSpansByNamingTheRange) {
    for (const std::int64_t span :
         {std::int64_t{0}, std::int64_t{86'401}, std::int64_t{-1}, std::numeric_limits<std::int64_t>::max(),
          std::numeric_limits<std::int64_t>::min()}) {
        std::string error;
        EXPECT_FALSE(hold(span, &error)) << span;
        EXPECT_THAT(error, HasSubstr("org.freedesktop.DBus.Error.InvalidArgs"));
        EXPECT_THAT(error, HasSubstr("Reminders can be held for 1 to 86400 seconds."));
    }
    EXPECT_THAT(holds, IsEmpty());
}

TEST_F(HoldControl, ReleasesOnRequest) {
    EXPECT_TRUE(run("Release"));
    EXPECT_EQ(releases, 1);
}

TEST_F(HoldControl, IsAnActionOfTheLauncher) {
    EXPECT_TRUE(activateAction("hold-for-an-hour"));
    EXPECT_TRUE(activateAction("release"));
    EXPECT_THAT(holds, ElementsAre(3600s));
    EXPECT_EQ(releases, 1);
}

TEST_F(HoldControl, SaysWhetherAndWhy) {
    EXPECT_EQ(property("Held"), "false");
    EXPECT_EQ(property("HeldReason"), "''");
    holdReason = "do not disturb";
    EXPECT_EQ(property("Held"), "true");
    EXPECT_EQ(property("HeldReason"), "'do not disturb'");
}

} // namespace
} // namespace platform::linux
