// A panel and its views arrive as they were sent, and its controls tell what is done to them.

#include "platform/linux/window/Protocol.hpp"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace platform::linux {
namespace {

using namespace std::string_literals;

void ignoreEvent(const Event&) {}

/// The panel as the window program gets it. `told` collects what its controls tell.
PanelRequest received(const View& content, std::vector<Event>* told = nullptr) {
    const auto tell = [told](const Event& event) {
        if (told) {
            told->push_back(event);
        }
    };
    const auto request = decodeRequest(encode(PanelRequest{7, "Title", true, true, true, content, nullptr}), tell);
    const auto* panel = request ? std::get_if<PanelRequest>(&*request) : nullptr;
    if (!panel) {
        throw std::logic_error("the panel was refused");
    }
    return *panel;
}

template <typename Kind>
Kind receivedNode(const View& view) {
    return std::get<Kind>(received(view).content.node);
}

template <typename Kind>
Kind receivedModifier(const View& view) {
    const View arrived = received(view).content;
    EXPECT_EQ(arrived.modifiers.size(), 1U);
    return std::get<Kind>(arrived.modifiers.at(0));
}

TEST(PanelOnTheWire, KeepsItsProperties) {
    const PanelRequest panel = received(Text(""));
    EXPECT_EQ(panel.window, 7U);
    EXPECT_EQ(panel.title, "Title");
    EXPECT_TRUE(panel.isMovableByBackground);
    EXPECT_TRUE(panel.isModal);
    EXPECT_TRUE(panel.comesUnasked);
}

TEST(NodeOnTheWire, TextKeepsItsLinks) {
    const auto text = receivedNode<node::Text>(Text("© [Makers](https://marvelode.example) 'of' \"it\"\n\\"));
    const std::vector<node::TextRun> runs{
        {"© ", std::nullopt}, {"Makers", "https://marvelode.example"}, {" 'of' \"it\"\n\\", std::nullopt}};
    EXPECT_EQ(text.runs, runs);
}

TEST(NodeOnTheWire, ImageKeepsPathAndSize) {
    const NSImage image{"gr\xFCn.png", "/with space/gr\xFCn.png", {320, 520.5}}; // a path is bytes, not text
    EXPECT_EQ(receivedNode<node::Image>(Image(image)).image, image);
}

TEST(NodeOnTheWire, TextFieldKeepsPlaceholderAndValue) {
    const State<std::int64_t> minutes{std::int64_t{-9'000'000'000'000}};
    const auto field = receivedNode<node::TextField>(TextField("600", minutes.binding(), {}));
    EXPECT_EQ(field.placeholder, "600");
    EXPECT_EQ(field.text(), "-9000000000000");
}

TEST(NodeOnTheWire, ToggleKeepsTitleAndValue) {
    for (const bool isOn : {false, true}) {
        const auto toggle = receivedNode<node::Toggle>(Toggle("Title", State{isOn}.binding()));
        EXPECT_EQ(toggle.title, "Title");
        EXPECT_EQ(toggle.isOn.get(), isOn);
    }
}

TEST(NodeOnTheWire, PickerKeepsItemsAndSelection) {
    const std::vector<std::pair<std::string, int>> options{{"Sonar", 10}, {"Bowl", 20}, {"", 30}};
    const auto picker = receivedNode<node::Picker>(Picker("Title", State{20}.binding(), options));
    EXPECT_EQ(picker.title, "Title");
    EXPECT_EQ(picker.items, (std::vector<std::string>{"Sonar", "Bowl", ""}));
    EXPECT_EQ(picker.selection.get(), 1U);
}

TEST(NodeOnTheWire, ButtonKeepsLabelAndPadding) {
    const auto button = receivedNode<node::Button>(Button("OK", 5.5, nullptr));
    EXPECT_EQ(button.label, "OK");
    EXPECT_EQ(button.labelPadding, 5.5);
}

TEST(NodeOnTheWire, StacksKeepAxisAlignmentAndChildren) {
    const auto rows =
        receivedNode<node::Stack>(VStack(Alignment::Trailing, {HStack({Text("a"), Text("b")}), VStack({})}));
    EXPECT_EQ(rows.axis, Axis::Vertical);
    EXPECT_EQ(rows.alignment, Alignment::Trailing);
    ASSERT_EQ(rows.children.size(), 2U);
    const auto& row = std::get<node::Stack>(rows.children[0].node);
    EXPECT_EQ(row.axis, Axis::Horizontal);
    EXPECT_EQ(row.alignment, Alignment::Center);
    ASSERT_EQ(row.children.size(), 2U);
    EXPECT_EQ(std::get<node::Text>(row.children[1].node).runs, (std::vector<node::TextRun>{{"b", std::nullopt}}));
    EXPECT_TRUE(std::get<node::Stack>(rows.children[1].node).children.empty());
}

TEST(ModifierOnTheWire, FrameKeepsWhatIsFixed) {
    const auto frame = receivedModifier<modifier::Frame>(
        Text("").frame({.width = 30.25, .height = std::nullopt, .alignment = Alignment::Leading}));
    EXPECT_EQ(frame.width, 30.25);
    EXPECT_EQ(frame.height, std::nullopt);
    EXPECT_EQ(frame.alignment, Alignment::Leading);
}

TEST(ModifierOnTheWire, PaddingKeepsEdgesAndLength) {
    const auto usual = receivedModifier<modifier::Padding>(Text("").padding());
    EXPECT_EQ(usual.edges, Edges::All);
    EXPECT_EQ(usual.length, std::nullopt);
    const auto exact = receivedModifier<modifier::Padding>(Text("").padding(Edges::Trailing, 12));
    EXPECT_EQ(exact.edges, Edges::Trailing);
    EXPECT_EQ(exact.length, 12);
}

TEST(ModifierOnTheWire, TheOthersKeepWhatTheySay) {
    EXPECT_EQ(receivedModifier<modifier::FontStyle>(Text("").font(Font::Caption)).font, Font::Caption);
    EXPECT_TRUE(receivedModifier<modifier::Disabled>(Text("").disabled(true)).isDisabled);
    EXPECT_FALSE(receivedModifier<modifier::Disabled>(Text("").disabled(false)).isDisabled);
    receivedModifier<modifier::Focusable>(Text("").focusable());
    receivedModifier<modifier::FixedSize>(Text("").fixedSize());
    EXPECT_EQ(receivedModifier<modifier::Shortcut>(Text("").keyboardShortcut(KeyboardShortcut::DefaultAction)).key,
              KeyboardShortcut::DefaultAction);
}

TEST(ModifierOnTheWire, OrderIsKept) {
    const View view = received(Text("").padding().frame({}).fixedSize().padding(Edges::Top)).content;
    ASSERT_EQ(view.modifiers.size(), 4U);
    EXPECT_TRUE(std::holds_alternative<modifier::Padding>(view.modifiers[0]));
    EXPECT_TRUE(std::holds_alternative<modifier::Frame>(view.modifiers[1]));
    EXPECT_TRUE(std::holds_alternative<modifier::FixedSize>(view.modifiers[2]));
    EXPECT_EQ(std::get<modifier::Padding>(view.modifiers[3]).edges, Edges::Top);
}

TEST(ModifierOnTheWire, ActionsStayBehind) {
    EXPECT_TRUE(received(Text("").onAppear([] { FAIL() << "ran"; })).content.modifiers.empty());
}

/// A form with one control of each kind, some of them in stacks.
class ControlsOnTheWire : public testing::Test {
protected:
    State<std::int64_t> minutes{10};
    State<bool> isOn{false};
    State<int> sound{0};
    View form =
        VStack({Text("Minutes"), HStack({Text(""), TextField("600", minutes.binding(), {}).focusable()}),
                Toggle("", isOn.binding()), HStack({Picker<int>("", sound.binding(), {{"Sonar", 0}, {"Bowl", 1}})}),
                Button("OK", 5, [] { FAIL() << "ran in the window program"; })});
    std::vector<Event> told;
    PanelRequest panel = received(form, &told);

    template <typename Kind>
    const Kind& control(std::size_t number) const {
        return std::get<Kind>(*controlsIn(panel.content).at(number));
    }
};

TEST_F(ControlsOnTheWire, AreNumberedAlikeOnBothSides) {
    ASSERT_EQ(controlsIn(form).size(), 4U);
    ASSERT_EQ(controlsIn(panel.content).size(), 4U);
    for (std::size_t number = 0; number < 4; ++number) {
        EXPECT_EQ(controlsIn(form)[number]->index(), controlsIn(panel.content)[number]->index());
    }
    EXPECT_EQ(*panel.values, valuesOf(form));
}

TEST_F(ControlsOnTheWire, TellTheirChangesAndShowThemAtOnce) {
    control<node::TextField>(0).commit(" 25 ");
    control<node::Toggle>(1).isOn.set(true);
    control<node::Picker>(2).select(1);
    const std::vector<Event> expected{{Event::Kind::Changed, 7, 0, std::int64_t{25}},
                                      {Event::Kind::Changed, 7, 1, true},
                                      {Event::Kind::Changed, 7, 2, std::int64_t{1}}};
    EXPECT_EQ(told, expected);
    EXPECT_EQ(control<node::TextField>(0).text(), "25");
    EXPECT_TRUE(control<node::Toggle>(1).isOn.get());
    EXPECT_EQ(control<node::Picker>(2).selection.get(), 1U);
}

TEST_F(ControlsOnTheWire, TellPressesAndSubmissions) {
    control<node::Button>(3).action();
    control<node::TextField>(0).submit("5");
    const std::vector<Event> expected{{Event::Kind::Pressed, 7, 3, std::nullopt},
                                      {Event::Kind::Changed, 7, 0, std::int64_t{5}},
                                      {Event::Kind::Submitted, 7, 0, std::nullopt}};
    EXPECT_EQ(told, expected);
}

TEST_F(ControlsOnTheWire, KeepTheirValueWhenTheTextIsNoNumber) {
    control<node::TextField>(0).commit("soon");
    EXPECT_TRUE(told.empty());
    EXPECT_EQ(control<node::TextField>(0).text(), "10");
}

TEST_F(ControlsOnTheWire, ShowFreshValues) {
    minutes.binding().set(99);
    isOn.binding().set(true);
    sound.binding().set(1);
    const auto fresh = decodeRequest(encode(ValuesRequest{7, valuesOf(form)}), ignoreEvent);
    ASSERT_TRUE(fresh && std::holds_alternative<ValuesRequest>(*fresh));
    EXPECT_EQ(std::get<ValuesRequest>(*fresh).window, 7U);
    *panel.values = std::get<ValuesRequest>(*fresh).values;
    EXPECT_EQ(control<node::TextField>(0).text(), "99");
    EXPECT_TRUE(control<node::Toggle>(1).isOn.get());
    EXPECT_EQ(control<node::Picker>(2).selection.get(), 1U);
    EXPECT_TRUE(told.empty());
}

} // namespace
} // namespace platform::linux
