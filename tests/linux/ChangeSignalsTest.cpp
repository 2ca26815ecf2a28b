// What the timer tells those on the session bus who listen, without being asked.

#include "tests/linux/ControlTest.hpp"
#include "tests/support/BusSignals.hpp"

#include <gmock/gmock.h>

#include <memory>
#include <string_view>

namespace platform::linux {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class ChangeSignalsTest : public ControlTest {};

TEST_F(ChangeSignalsTest, ChangesAreAnnouncedOnce) {
    BusSignals signals{script.get(), bus.get(), "org.freedesktop.DBus.Properties"};
    const auto announced = [&] {
        control->announceChanges();
        return signals.take();
    };
    EXPECT_THAT(announced(), IsEmpty()) << "nobody was told anything else";
    isReminding = true;
    EXPECT_THAT(announced(), ElementsAre("PropertiesChanged('org.marvelode.Timer', {'State': <'Reminding'>}, [])"));
    EXPECT_THAT(announced(), IsEmpty());
    isReminding = false;
    isMuted = true;
    showsPopups = false;
    ++settingsState;
    EXPECT_THAT(announced(), ElementsAre(AllOf(HasSubstr("'State': <'Timing'>"), HasSubstr("'Muted': <true>"),
                                               HasSubstr("'Popups': <false>"))));
    holdReason = "do not disturb";
    EXPECT_THAT(announced(),
                ElementsAre(AllOf(HasSubstr("'Held': <true>"), HasSubstr("'HeldReason': <'do not disturb'>"))));
    seconds = 539;
    EXPECT_THAT(announced(), IsEmpty()) << "that changes by itself";
}

TEST_F(ChangeSignalsTest, SettingsThatStayTheSameAreNotAskedForAgain) {
    control->announceChanges();
    settingsAsked = 0;
    control->announceChanges();
    EXPECT_EQ(settingsAsked, 0);
    ++settingsState;
    control->announceChanges();
    EXPECT_EQ(settingsAsked, 2);
}

TEST_F(ChangeSignalsTest, WhatIsAnnouncedIsDescribedSo) {
    const VariantHandle answer = ask("org.freedesktop.DBus.Introspectable", "Introspect", nullptr);
    const char* description = nullptr;
    g_variant_get(answer.get(), "(&s)", &description);
    const std::unique_ptr<GDBusNodeInfo, Release<g_dbus_node_info_unref>> node{
        g_dbus_node_info_new_for_xml(description, nullptr)};
    GDBusInterfaceInfo* timer = g_dbus_node_info_lookup_interface(node.get(), "org.marvelode.Timer");
    const auto isAnnounced = [&](const char* property) {
        const char* value =
            g_dbus_annotation_info_lookup(g_dbus_interface_info_lookup_property(timer, property)->annotations,
                                          "org.freedesktop.DBus.Property.EmitsChangedSignal");
        return !value || value == std::string_view{"true"};
    };
    for (const char* property : {"State", "Muted", "Popups", "Held", "HeldReason"}) {
        EXPECT_TRUE(isAnnounced(property)) << property;
    }
    for (const char* property : {"Text", "RemainingSeconds"}) {
        EXPECT_FALSE(isAnnounced(property)) << property;
    }
}

} // namespace
} // namespace platform::linux
