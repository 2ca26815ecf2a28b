// The item as a panel sees it on the bus.

#include "platform/linux/tray/StatusNotifierItem.hpp"

#include "tests/support/BusSignals.hpp"
#include "tests/support/CollectedErrors.hpp"
#include "tests/support/PrivateBuses.hpp"
#include "tests/support/TrayWatcher.hpp"

#include <gtest/gtest.h>
#include <sys/prctl.h>

#include <array>
#include <optional>
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
        return valueIn(answer.get());
    }

    static VariantHandle valueIn(GVariant* answer) {
        const VariantHandle box{g_variant_get_child_value(answer, 0)};
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

/// An item in a panel, for which its program has no time while it is asked.
class ItemOfABusyProgram : public Item {
protected:
    void SetUp() override { awaitIn(watcher); }

    void show(const char* text, const char* words) {
        content.text = text;
        content.words = words;
        item.show(content);
    }

    void awaitIn(const std::optional<TrayWatcher>& panelsWatcher) {
        EXPECT_TRUE(runLoopUntil([&] { return panelsWatcher->questions > 0 && item.panelInWords()[0] != 'n'; }));
    }

    VariantHandle propertyAtOnce(const char* name) {
        constexpr int milliseconds = 5000;
        const VariantHandle answer{g_dbus_connection_call_sync(
            panel.get(), g_dbus_connection_get_unique_name(program.get()), "/StatusNotifierItem",
            "org.freedesktop.DBus.Properties", "Get", g_variant_new("(ss)", interface, name), nullptr,
            G_DBUS_CALL_FLAGS_NONE, milliseconds, nullptr, nullptr)};
        return answer ? valueIn(answer.get()) : nullptr;
    }

    bool hasPictures(const VariantHandle& pictures) {
        const VariantHandle now = propertyAtOnce("IconPixmap");
        return now && g_variant_equal(now.get(), pictures.get());
    }

    std::optional<TrayWatcher> watcher{std::in_place};
};

TEST_F(ItemOfABusyProgram, TellsWhatHasChanged) {
    show("8m", "Break in 8 minutes");
    EXPECT_EQ(printed(propertyAtOnce("ToolTip")), "('', [], 'Break in 8 minutes', 'Marvelode Timer')");
    const VariantHandle pictures = propertyAtOnce("IconPixmap");
    show("7m", "Break in 7 minutes");
    EXPECT_EQ(signals.take(), (std::vector<std::string>{"NewIcon()", "NewToolTip()", "NewIcon()", "NewToolTip()"}));
    EXPECT_EQ(printed(propertyAtOnce("IconAccessibleDesc")), "'Break in 7 minutes'");
    EXPECT_FALSE(hasPictures(pictures));
}

TEST_F(ItemOfABusyProgram, KeepsItsPictureWhereTheWordsAloneChange) {
    content.words = "Break in 8 minutes";
    item.show(content);
    const VariantHandle pictures = propertyAtOnce("IconPixmap");
    content.words = "Break in 7 minutes";
    item.show(content);
    EXPECT_EQ(printed(propertyAtOnce("IconAccessibleDesc")), "'Break in 7 minutes'");
    EXPECT_TRUE(hasPictures(pictures));
}

TEST_F(ItemOfABusyProgram, GivesAnotherPanelNothingThatWasMeantForTheOneBefore) {
    content.text = "8m";
    item.show(content);
    const VariantHandle pictures = propertyAtOnce("IconPixmap");
    std::array<char, 16> name{}; // what the kernel keeps
    prctl(PR_GET_NAME, name.data());
    watcher.reset();
    prctl(PR_SET_NAME, "gnome-shell");
    watcher.emplace();
    awaitIn(watcher);
    prctl(PR_SET_NAME, name.data());
    EXPECT_EQ(printed(property("XAyatanaLabel")), "'8m'");
    EXPECT_FALSE(g_variant_equal(property("IconPixmap").get(), pictures.get()));
}

TEST_F(ItemOfABusyProgram, AnswersByItselfOnceThereIsNoPanel) {
    content.text = "8m";
    item.show(content);
    EXPECT_TRUE(propertyAtOnce("IconPixmap"));
    watcher.reset();
    EXPECT_TRUE(runLoopUntil([&] { return item.panelInWords()[0] == 'n'; }));
    show("7m", "Break in 7 minutes");
    EXPECT_EQ(printed(property("IconAccessibleDesc")), "'Break in 7 minutes'");
}

} // namespace
} // namespace platform::linux
