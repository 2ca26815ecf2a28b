// The item as a panel sees it on the bus.

#include "platform/linux/tray/StatusNotifierItem.hpp"

#include "tests/support/BusSignals.hpp"
#include "tests/support/CollectedErrors.hpp"
#include "tests/support/PrivateBuses.hpp"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace platform::linux {
namespace {

class Item : public testing::Test {
protected:
    VariantHandle property(const char* name) {
        const VariantHandle answer =
            call(panel.get(), g_dbus_connection_get_unique_name(program.get()), "/StatusNotifierItem",
                 "org.freedesktop.DBus.Properties", "Get", g_variant_new("(ss)", interface, name));
        const VariantHandle box{g_variant_get_child_value(answer.get(), 0)};
        return VariantHandle{g_variant_get_variant(box.get())};
    }

    static constexpr const char* interface = "org.kde.StatusNotifierItem";
    const Resources resources{RESOURCES};
    StatusContent content{"9m", {}, "Marvelode.png", {}, "Break in 9 minutes"};
    ObjectHandle<GDBusConnection> program = connectToSession();
    ObjectHandle<GDBusConnection> panel = connectToSession();
    ActivationToken token;
    CollectedErrors errors;
    StatusNotifierItem item{program.get(), resources, content, [](bool) {}, [] {}, token, errors};
    BusSignals signals{panel.get(), program.get(), interface};
};

TEST_F(Item, GoesOnSayingWhatIsTrueBesideATextThatStays) {
    content.words = "Break in 8 minutes";
    item.show(content);
    item.show(content);
    EXPECT_EQ(signals.take(), std::vector<std::string>{"NewToolTip()"});
    EXPECT_EQ(printed(property("ToolTip")), "('', [], 'Break in 8 minutes', 'Marvelode Timer')");
    EXPECT_EQ(printed(property("IconAccessibleDesc")), "'Break in 8 minutes'");
}

TEST_F(Item, HasWordsWhereItHasNoText) {
    content.text = "";
    content.words = "Break in 10 seconds";
    item.show(content);
    EXPECT_EQ(signals.take(), (std::vector<std::string>{"NewIcon()", "NewToolTip()"}));
    EXPECT_EQ(printed(property("IconAccessibleDesc")), "'Break in 10 seconds'");
}

TEST_F(Item, AnnouncesOnlyWhatHasChanged) {
    item.show(content);
    EXPECT_EQ(signals.take(), std::vector<std::string>{});
    content.colour = NSColor::red;
    item.show(content);
    EXPECT_EQ(signals.take(), std::vector<std::string>{"NewIcon()"});
}

TEST_F(Item, RefusesAnActivationTokenThatIsTooLong) {
    const auto refusal = [&](const std::string& text) {
        std::string error;
        call(panel.get(), g_dbus_connection_get_unique_name(program.get()), "/StatusNotifierItem", interface,
             "ProvideXdgActivationToken", g_variant_new("(s)", text.c_str()), &error);
        return error;
    };
    EXPECT_EQ(refusal("of-the-click"), "");
    EXPECT_NE(refusal(std::string(ActivationToken::longest + 1, 'x')), "");
    EXPECT_EQ(token.take(), "of-the-click");
}

} // namespace
} // namespace platform::linux
