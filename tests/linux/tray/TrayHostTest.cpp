#include "platform/linux/tray/TrayHost.hpp"

#include "tests/support/Pixels.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>

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

TEST(TrayHost, OpensTheMenuOfARefusedClickOnPlasmaOnly) {
    EXPECT_TRUE(TrayHost::ofProcess("kded5").opensMenuIfRefused);
    EXPECT_TRUE(TrayHost::ofProcess("kded6").opensMenuIfRefused);
    EXPECT_FALSE(TrayHost::ofProcess("lxqt-panel").opensMenuIfRefused);
}

} // namespace
} // namespace platform::linux
