#include "tests/components/SettingsForm.hpp"

namespace bench {
namespace {

TEST_F(TheForm, IsLaidOutInRowsOfLabelsAndControls) {
    open();
    const View& body = desktop.panelContent();
    const auto& stack = std::get<node::Stack>(body.node);
    EXPECT_EQ(stack.axis, Axis::Vertical);
    EXPECT_EQ(stack.alignment, Alignment::Center);
    ASSERT_EQ(stack.children.size(), 6U);
    for (std::size_t index = 1; index <= 4; ++index) {
        const auto& row = std::get<node::Stack>(stack.children[index].node);
        ASSERT_EQ(row.children.size(), 2U);
        const auto* label = row.children[0].last<modifier::Frame>();
        EXPECT_EQ(label->width, 140);
        EXPECT_EQ(label->alignment, Alignment::Trailing);
        const auto* control = row.children[1].last<modifier::Frame>();
        EXPECT_EQ(control->width, 100);
        EXPECT_EQ(control->alignment, Alignment::Leading);
        const auto* padding = row.children[1].last<modifier::Padding>();
        EXPECT_EQ(padding->edges, Edges::Leading);
        EXPECT_EQ(padding->length, 20);
    }
    const auto* belowSounds = stack.children[4].last<modifier::Padding>();
    EXPECT_EQ(belowSounds->edges, Edges::Bottom);
    EXPECT_EQ(belowSounds->length, std::nullopt);

    ASSERT_EQ(body.modifiers.size(), 4U);
    EXPECT_TRUE(std::holds_alternative<modifier::FixedSize>(body.modifiers[0]));
    EXPECT_EQ(std::get<modifier::Padding>(body.modifiers[1]).edges, Edges::Bottom);
    EXPECT_EQ(std::get<modifier::Padding>(body.modifiers[1]).length, 10);
    EXPECT_EQ(std::get<modifier::Padding>(body.modifiers[2]).edges, Edges::Trailing);
    EXPECT_EQ(std::get<modifier::Padding>(body.modifiers[2]).length, 10);
}

TEST_F(TheForm, GivesTheFieldItsOwnWidth) {
    open();
    const View& field = *controlBeside("Interval in minutes", desktop.panelContent())->view;
    const auto& own = std::get<modifier::Frame>(field.modifiers.front());
    EXPECT_EQ(own.width, 30);
    EXPECT_EQ(own.alignment, Alignment::Leading);
    EXPECT_TRUE(field.last<modifier::Focusable>());
    EXPECT_TRUE(controlBeside("Reminder sound", desktop.panelContent())->view->last<modifier::Focusable>());
}

TEST_F(TheForm, HasAHeaderWithThePictureInItsProportions) {
    open();
    const auto& header = std::get<node::Stack>(std::get<node::Stack>(desktop.panelContent().node).children[0].node);
    ASSERT_EQ(header.children.size(), 2U);
    const View& picture = header.children[0];
    EXPECT_EQ(std::get<node::Image>(picture.node).image.name(), "Marvelode.png");
    EXPECT_EQ(picture.last<modifier::Frame>()->height, 50);
    EXPECT_DOUBLE_EQ(picture.last<modifier::Frame>()->width.value(), 50.0 / 832 * 512);
    EXPECT_EQ(picture.last<modifier::Padding>()->edges, Edges::Trailing);
    EXPECT_EQ(picture.last<modifier::Padding>()->length, 12);
    const auto& texts = std::get<node::Stack>(header.children[1].node);
    EXPECT_EQ(texts.alignment, Alignment::Trailing);
    ASSERT_EQ(texts.children.size(), 1U);
    EXPECT_EQ(texts.children[0].last<modifier::FontStyle>()->font, Font::Title2);
}

TEST_F(TheForm, HasControlsWithoutTitlesBesideTheirLabels) {
    open();
    const auto control = [this](std::string_view label) -> const Node& {
        return controlBeside(label, desktop.panelContent())->view->node;
    };
    EXPECT_EQ(std::get<node::Toggle>(control("Restart after sleep")).title, "");
    EXPECT_EQ(std::get<node::Toggle>(control("Auto restart timer")).title, "");
    EXPECT_EQ(std::get<node::Picker>(control("Reminder sound")).title, "");
}

TEST_F(TheForm, HasAButtonThatReturnPresses) {
    open();
    const View& button = *buttonLabelled("OK", desktop.panelContent())->view;
    EXPECT_EQ(std::get<node::Button>(button.node).labelPadding, 5);
    EXPECT_TRUE(button.last<modifier::Focusable>());
    EXPECT_EQ(button.last<modifier::Shortcut>()->key, KeyboardShortcut::DefaultAction);
}

} // namespace
} // namespace bench
