#include "windows/AboutView.hpp"

#include "platform/simulated/ViewReader.hpp"
#include "tests/components/Bench.hpp"
#include "windows/UXAbout.hpp"

namespace bench {
namespace {

using namespace platform;
using platform::simulated::linesOf;

class TheAboutBox : public Bench {
protected:
    bool isTest = false;

    View body() { return AboutView{makeCfg(isTest), buildInfo}.body(); }

    Lines lines() { return linesOf(body(), std::nullopt); }

    static const node::TextRun& run(const View& body, std::size_t child, std::size_t index) {
        return std::get<node::Text>(std::get<node::Stack>(body.node).children.at(child).node).runs.at(index);
    }
};

TEST_F(TheAboutBox, ShowsNameDateVersionAndBuild) {
    EXPECT_EQ(lines().at(0), "picture Marvelode.png | Marvelode Timer, 2025-06-09");
    EXPECT_EQ(lines().at(1), "Version: 1.2.0");
    EXPECT_EQ(lines().at(2), "Build: 1427");
    EXPECT_EQ(lines().at(6), "(OK)");
}

TEST_F(TheAboutBox, HasNoPictureInTestMode) {
    Lines usual = lines();
    isTest = true;
    usual.front() = "Marvelode Timer, 2025-06-09";
    EXPECT_EQ(lines(), usual);
}

TEST_F(TheAboutBox, ShowsEmptyTextsAsTheyAre) {
    buildInfo = std::make_shared<BuildInfo>("", "", "");
    EXPECT_EQ(lines().at(0), "picture Marvelode.png | Marvelode Timer, ");
    EXPECT_EQ(lines().at(1), "Version: ");
    EXPECT_EQ(lines().at(2), "Build: ");
}

TEST_F(TheAboutBox, ShowsTheDateAsItStands) {
    buildInfo = std::make_shared<BuildInfo>("1", "[today](https://example.org)", "1");
    const View about = body();
    const auto& header = std::get<node::Stack>(std::get<node::Stack>(about.node).children[0].node);
    const auto& date = std::get<node::Stack>(header.children[1].node).children[1];
    EXPECT_EQ(std::get<node::Text>(date.node).runs,
              (std::vector<node::TextRun>{{"[today](https://example.org)", std::nullopt}}));
    EXPECT_EQ(date.last<modifier::FontStyle>()->font, Font::Caption);
}

TEST_F(TheAboutBox, ShowsVersionAndBuildAsTheyStandInTranslatableTexts) {
    buildInfo = std::make_shared<BuildInfo>("%@ [b](https://example.org)", "", "[v](https://example.org) %@");
    const View about = body();
    EXPECT_EQ(run(about, 1, 0), (node::TextRun{"Version: [v](https://example.org) %@", std::nullopt}));
    EXPECT_EQ(run(about, 2, 0), (node::TextRun{"Build: %@ [b](https://example.org)", std::nullopt}));
}

TEST_F(TheAboutBox, LinksToLicenceMakerAndSupport) {
    const View about = body();
    EXPECT_EQ(run(about, 3, 0), (node::TextRun{"License", "https://opensource.org/license/mit"}));
    EXPECT_EQ(run(about, 4, 0), (node::TextRun{"© 2026 ", std::nullopt}));
    EXPECT_EQ(run(about, 4, 1), (node::TextRun{"The Marvelode makers", "https://marvelode.example"}));
    EXPECT_EQ(run(about, 5, 0), (node::TextRun{"Support", "https://marvelode.example/support"}));
    EXPECT_EQ(run(about, 5, 1), (node::TextRun{" development", std::nullopt}));
}

TEST_F(TheAboutBox, IsLaidOut) {
    const View about = body();
    const auto& stack = std::get<node::Stack>(about.node);
    EXPECT_EQ(stack.axis, Axis::Vertical);
    EXPECT_EQ(stack.alignment, Alignment::Center);
    ASSERT_EQ(stack.children.size(), 7U);
    for (const std::size_t padded : {0U, 2U, 4U, 5U}) {
        ASSERT_TRUE(stack.children[padded].last<modifier::Padding>()) << padded;
        EXPECT_EQ(stack.children[padded].last<modifier::Padding>()->edges, Edges::Bottom);
        EXPECT_EQ(stack.children[padded].last<modifier::Padding>()->length, 12);
    }
    for (const std::size_t plain : {1U, 3U}) {
        EXPECT_TRUE(stack.children[plain].modifiers.empty()) << plain;
    }
    EXPECT_EQ(std::get<modifier::Padding>(about.modifiers.at(0)).edges, Edges::All);
    EXPECT_EQ(std::get<modifier::Padding>(about.modifiers.at(0)).length, std::nullopt);
    EXPECT_TRUE(std::holds_alternative<modifier::FixedSize>(about.modifiers.at(1)));
    const View& button = stack.children[6];
    EXPECT_EQ(std::get<node::Button>(button.node).labelPadding, 5);
    EXPECT_EQ(button.last<modifier::Shortcut>()->key, KeyboardShortcut::DefaultAction);
}

class TheAboutWindow : public TheAboutBox {
protected:
    std::shared_ptr<UXAbout> window;

    void SetUp() override {
        desktop.launch();
        window = makeShared<UXAbout>(makeCfg(), AboutView{makeCfg(), buildInfo}, NSPanel::HUDWindow);
        desktop.perform([this] { window->runModal([] {}); });
    }

    void TearDown() override {
        desktop.losePower();
        if (window) {
            takeApart(*window);
        }
    }
};

TEST_F(TheAboutWindow, ClosesOnReturn) {
    EXPECT_TRUE(desktop.panelIsUp());
    desktop.pressReturn();
    EXPECT_FALSE(desktop.panelIsUp());
}

TEST_F(TheAboutWindow, ClosesOnOK) {
    desktop.click("OK");
    EXPECT_FALSE(desktop.panelIsUp());
}

TEST_F(TheAboutWindow, DoesNotComeToTheFrontByItself) { EXPECT_FALSE(desktop.isInFront()); }

} // namespace
} // namespace bench
