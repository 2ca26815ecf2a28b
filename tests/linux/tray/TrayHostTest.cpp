#include "platform/linux/tray/TrayHost.hpp"

#include "platform/linux/Resources.hpp"
#include "tests/support/Pixels.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

namespace platform::linux {
namespace {

TEST(TrayHost, ShowsInThePictureTheColourThatALabelCannotHave) {
    const Resources resources{RESOURCES};
    const TrayHost& gnome = TrayHost::ofProcess("gnome-shell");
    StatusContent early{};
    early.image = "MarvelodeGrey.png";
    early.text = "+9";
    StatusContent due = early;
    due.colour = NSColor::red;
    EXPECT_TRUE(gnome.needsNewPicture(early, due));
    const auto reddish = [](std::uint32_t pixel) {
        return part(pixel, 24) > 200 && part(pixel, 16) > 200 && part(pixel, 8) < 80 && part(pixel, 0) < 80;
    };
    std::size_t pictures = 0;
    gnome.draw(due, resources, [&](const Picture& picture) {
        ++pictures;
        EXPECT_GT(std::count_if(picture.pixels.begin(), picture.pixels.end(), reddish),
                  picture.width * picture.height / 5);
    });
    EXPECT_EQ(pictures, panelSizes.size());
    gnome.draw(early, resources, [&](const Picture& picture) {
        EXPECT_EQ(std::count_if(picture.pixels.begin(), picture.pixels.end(), reddish), 0);
    });
}

/// Widths and heights of what the host is offered of that content.
std::vector<std::pair<int, int>> offered(const TrayHost& host, const StatusContent& content) {
    std::vector<std::pair<int, int>> shapes;
    host.draw(content, Resources{RESOURCES},
              [&](const Picture& picture) { shapes.emplace_back(picture.width, picture.height); });
    return shapes;
}

using Shapes = std::vector<std::pair<int, int>>;
const Shapes squares{{16, 16}, {22, 22}, {24, 24}, {32, 32}, {44, 44}, {48, 48}};
const Shapes wide{{33, 16}, {46, 22}, {50, 24}, {66, 32}, {92, 44}, {100, 48}};
const Shapes wideForMate{{33, 16}, {50, 24}, {66, 32}, {100, 48}};

struct Row {
    const char* process;
    TrayHost::Style style;
    Shapes pictures;
    bool readsAllAtOnce = false;
    bool opensMenuIfRefused = false;
};

std::ostream& operator<<(std::ostream& stream, const Row& row) { return stream << row.process; }

class TrayHostRow : public testing::TestWithParam<Row> {};

TEST_P(TrayHostRow, IsGivenWhatItShowsBest) {
    const Row& row = GetParam();
    const TrayHost& host = TrayHost::ofProcess(row.process);
    EXPECT_EQ(host.style, row.style);
    EXPECT_EQ(host.readsAllAtOnce, row.readsAllAtOnce);
    EXPECT_EQ(host.opensMenuIfRefused, row.opensMenuIfRefused);
    EXPECT_EQ(offered(host, {"9m", {}, "Marvelode.png", 0.5, ""}), row.pictures);
}

INSTANTIATE_TEST_SUITE_P(Each, TrayHostRow,
                         testing::Values(Row{"ayatana-indicat", TrayHost::Style::LabelBesideNamedIcon, {}},
                                         Row{"gnome-shell", TrayHost::Style::LabelBesideIcon, squares},
                                         Row{"kded5", TrayHost::Style::TextInPicture, squares, false, true},
                                         Row{"kded6", TrayHost::Style::TextInPicture, squares, false, true},
                                         Row{"mate-panel", TrayHost::Style::TextBesideIcon, wideForMate},
                                         Row{"notification-ar", TrayHost::Style::TextBesideIcon, wideForMate},
                                         Row{"panel-8-systray", TrayHost::Style::TextInPicture, {{44, 44}}, true},
                                         Row{"waybar", TrayHost::Style::TextBesideIcon, {{66, 32}}},
                                         Row{"wrapper-2.0", TrayHost::Style::TextInPicture, {{44, 44}}, true},
                                         Row{"xapp-sn-watcher", TrayHost::Style::TextBesideIcon, wide},
                                         Row{"lxqt-panel", TrayHost::Style::TextInPicture, squares},
                                         Row{"", TrayHost::Style::TextInPicture, squares}),
                         [](const auto& each) {
                             std::string name = each.param.process;
                             std::erase_if(name, [](char letter) { return letter == '-' || letter == '.'; });
                             return name.empty() ? "unknown" : name;
                         });

TEST(TrayHost, ShowsTheIconAloneWhereThereIsNoText) {
    for (const char* const process : {"mate-panel", "kded5", "gnome-shell"}) {
        for (const auto& [width, height] :
             offered(TrayHost::ofProcess(process), {"", {}, "Marvelode.png", {}, ""})) {
            EXPECT_EQ(width, height) << process;
        }
    }
}

TEST(TrayHost, NeedsANewPictureForNewTextUnlessTheTextIsALabel) {
    const StatusContent before{"9m", {}, "Marvelode.png", 0.5, "Break in 9 minutes"};
    StatusContent after = before;
    after.text = "8m";
    for (const char* const process : {"ayatana-indicat", "gnome-shell"}) {
        EXPECT_FALSE(TrayHost::ofProcess(process).needsNewPicture(before, after)) << process;
    }
    for (const char* const process :
         {"kded5", "mate-panel", "panel-8", "waybar", "xapp-sn-watcher", "lxqt-panel"}) {
        EXPECT_TRUE(TrayHost::ofProcess(process).needsNewPicture(before, after)) << process;
    }
}

TEST(TrayHost, NeedsANewPictureForABarThatIsAnEighthShorterWhereThereIsOne) {
    const StatusContent before{"9m", {}, "Marvelode.png", 0.5, ""};
    StatusContent after = before;
    after.shareLeft = 0.4;
    EXPECT_FALSE(TrayHost::ofProcess("lxqt-panel").needsNewPicture(before, after));
    after.shareLeft = 0.37;
    EXPECT_TRUE(TrayHost::ofProcess("lxqt-panel").needsNewPicture(before, after));
    EXPECT_FALSE(TrayHost::ofProcess("mate-panel").needsNewPicture(before, after)) << "it has no bar";
    after.shareLeft.reset();
    EXPECT_TRUE(TrayHost::ofProcess("lxqt-panel").needsNewPicture(before, after));
}

TEST(TrayHost, NeedsANewPictureForEachNewIconAndForAColourUnlessTheIconIsNamed) {
    const StatusContent before{"9m", {}, "Marvelode.png", 0.5, ""};
    StatusContent grey = before;
    grey.image = "MarvelodeGrey.png";
    StatusContent red = before;
    red.colour = NSColor::red;
    for (const char* const process : {"ayatana-indicat", "gnome-shell", "lxqt-panel", "mate-panel"}) {
        EXPECT_TRUE(TrayHost::ofProcess(process).needsNewPicture(before, grey)) << process;
        EXPECT_EQ(TrayHost::ofProcess(process).needsNewPicture(before, red),
                  std::string{process} != "ayatana-indicat");
    }
}

TEST(TrayHost, NamesTheFileOfTheIconWhereThatIsWanted) {
    const Resources resources{RESOURCES};
    const StatusContent content{"9m", {}, "MarvelodeGrey.png", 0.5, ""};
    EXPECT_EQ(TrayHost::ofProcess("ayatana-indicat").pictureFile(content, resources),
              std::string{RESOURCES} + "/status/MarvelodeGrey-22.png");
    EXPECT_EQ(TrayHost::ofProcess("gnome-shell").pictureFile(content, resources), "");
}

TEST(TrayHost, OpensTheMenuOfARefusedClickOnPlasmaOnly) {
    EXPECT_TRUE(TrayHost::ofProcess("kded5").opensMenuIfRefused);
    EXPECT_TRUE(TrayHost::ofProcess("kded6").opensMenuIfRefused);
    EXPECT_FALSE(TrayHost::ofProcess("lxqt-panel").opensMenuIfRefused);
}

} // namespace
} // namespace platform::linux
