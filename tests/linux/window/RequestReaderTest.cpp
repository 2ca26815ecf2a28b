// Requests arrive as they were sent, and nothing else arrives.

#include "platform/linux/window/Protocol.hpp"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace platform::linux {
namespace {

void ignore(const Event&) {}

AlertRequest received(const AlertRequest& request) {
    return std::get<AlertRequest>(decodeRequest(encode(request), ignore).value());
}

TEST(AlertOnTheWire, KeepsEverything) {
    AlertRequest request{3, {}, "/pictures/Marvelode.png"};
    request.alert.alertStyle = NSAlert::Style::Critical;
    request.alert.icon = "Other.png";
    request.alert.messageText = "Message";
    request.alert.informativeText = "Information";
    request.alert.addButton("Restart");
    request.alert.addButton("Snooze");
    request.alert.setShowsSuppressionButton(true);
    *request.alert.suppressionButton() = {NSSuppressionButton::StateValue::On, "Title"};

    const AlertRequest arrived = received(request);
    EXPECT_EQ(arrived.window, 3U);
    EXPECT_EQ(arrived.picture, "/pictures/Marvelode.png");
    EXPECT_EQ(arrived.alert.alertStyle, NSAlert::Style::Critical);
    EXPECT_EQ(arrived.alert.icon, "Other.png");
    EXPECT_EQ(arrived.alert.messageText, "Message");
    EXPECT_EQ(arrived.alert.informativeText, "Information");
    EXPECT_EQ(arrived.alert.buttons(), (std::vector<std::string>{"Restart", "Snooze"}));
    ASSERT_TRUE(arrived.alert.suppressionButton());
    EXPECT_EQ(arrived.alert.suppressionButton()->title, "Title");
    EXPECT_EQ(arrived.alert.suppressionButton()->state, NSSuppressionButton::StateValue::On);
}

TEST(AlertOnTheWire, MayBePlain) {
    const AlertRequest arrived = received(AlertRequest{1, {}, {}});
    EXPECT_EQ(arrived.alert.icon, std::nullopt);
    EXPECT_EQ(arrived.alert.buttons(), std::vector<std::string>{"OK"});
    EXPECT_EQ(arrived.alert.suppressionButton(), nullptr);
    EXPECT_TRUE(arrived.picture.empty());
}

TEST(CloseOnTheWire, NamesItsWindow) {
    EXPECT_EQ(std::get<CloseRequest>(decodeRequest(encode(CloseRequest{5}), ignore).value()).window, 5U);
}

TEST(MalformedRequest, IsRefused) {
    EXPECT_TRUE(decodeRequest(
        "('panel', <(uint32 1, 'Title', true, true, true, <(('toggle', <('', true)>), [('font', <1>)])>)>)",
        ignore))
        << "the malformed ones below differ from this in more than meant";
    for (const char* content :
         {"garbage", "('dance', <1>)", "('close', <'one'>)", "('values', <(uint32 1, [<'text'>])>)",
          "('panel', <(uint32 1, 'Title', true, true, true, <'no view'>)>)",
          "('panel', <(uint32 1, 'Title', true, true, true, <(('text', <1>), @a(sv) [])>)>)",
          "('panel', <(uint32 1, 'Title', true, true, true, <(('stack', <(9, 0, @av [])>), @a(sv) [])>)>)",
          "('panel', <(uint32 1, 'Title', true, true, true, <(('stack', <(0, 0, [<'no view'>])>), @a(sv) [])>)>)",
          "('panel', <(uint32 1, 'Title', true, true, true, <(('toggle', <('', true)>), [('font', <7>)])>)>)",
          "('panel', <(uint32 1, 'Title', true, true, true, <(('toggle', <('', true)>), [('hat', <7>)])>)>)",
          "('alert', <(uint32 1, b'', 9, @ms nothing, '', '', @as [], @m(sb) nothing)>)"}) {
        EXPECT_FALSE(decodeRequest(content, ignore)) << content;
    }
}

} // namespace
} // namespace platform::linux
