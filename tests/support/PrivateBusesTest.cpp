#include "tests/support/PrivateBuses.hpp"

#include <gtest/gtest.h>

#include <string>

namespace platform::linux {
namespace {

std::string activatableNames(GDBusConnection* bus) {
    const VariantHandle answer = call(bus, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                                      "ListActivatableNames", nullptr);
    return TextHandle{g_variant_print(answer.get(), FALSE)}.get();
}

TEST(PrivateBuses, StartNoServiceThatHappensToBeInstalled) {
    EXPECT_EQ(activatableNames(connectToSession().get()), "(['org.freedesktop.DBus'],)");
    EXPECT_EQ(activatableNames(connectToSystem().get()), "(['org.freedesktop.DBus'],)");
}

} // namespace
} // namespace platform::linux
