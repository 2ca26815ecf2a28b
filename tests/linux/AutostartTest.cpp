// Whether the desktop starts the program, by the entry in the user's autostart folder.

#include "platform/linux/Autostart.hpp"

#include "platform/linux/RegularFile.hpp"
#include "tests/support/TemporaryFolder.hpp"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace platform::linux {
namespace {

class AutostartTest : public testing::Test {
protected:
    void store(const std::string& text) const {
        std::filesystem::create_directories(entry.parent_path());
        folder.write("config/autostart/org.marvelode.Timer.desktop", text);
    }
    std::string content() const { return readRegularFile(entry).bytes; }

    TemporaryFolder folder;
    const std::string installed = "[Desktop Entry]\nType=Application\n# why\nExec=\"/usr/bin/marvelode-timer\"\n";
    const std::filesystem::path entry = folder.path / "config/autostart/org.marvelode.Timer.desktop";
    const Autostart autostart{folder.write("installed", installed), entry};
};

TEST_F(AutostartTest, IsOffUntilItIsTurnedOn) {
    EXPECT_FALSE(autostart.isOn());
    EXPECT_EQ(autostart.turnOn(), "");
    EXPECT_TRUE(autostart.isOn());
    EXPECT_EQ(content(), installed);
    EXPECT_EQ(autostart.turnOff(), "");
    EXPECT_FALSE(autostart.isOn());
    EXPECT_FALSE(std::filesystem::exists(entry));
    EXPECT_EQ(autostart.turnOff(), "");
}

TEST_F(AutostartTest, IsOffWhereADesktopHasMarkedItSoAndKeepsTheRestWhenTurnedOn) {
    const std::string own = "[Desktop Entry]\nExec=marvelode-timer -TimerInterval 1500\n";
    for (const char* mark : {"Hidden=true\n", "X-GNOME-Autostart-enabled=false\n"}) {
        store(own + mark);
        EXPECT_FALSE(autostart.isOn()) << mark;
        EXPECT_EQ(autostart.turnOn(), "");
        EXPECT_TRUE(autostart.isOn());
        EXPECT_EQ(content(), own);
    }
}

TEST_F(AutostartTest, AnEntryThatIsOnIsLeftAsItIs) {
    const std::string own = "[Desktop Entry]\nExec=marvelode-timer -Mute true\nX-GNOME-Autostart-enabled=true\n";
    store(own);
    EXPECT_EQ(autostart.turnOn(), "");
    EXPECT_EQ(content(), own);
}

TEST_F(AutostartTest, AnEntryThatStartsNothingIsReplaced) {
    for (const char* broken : {"", "nonsense", "[Desktop Entry]\nHidden=true\n"}) {
        store(broken);
        EXPECT_FALSE(autostart.isOn()) << broken;
        EXPECT_EQ(autostart.turnOn(), "");
        EXPECT_EQ(content(), installed);
    }
}

TEST_F(AutostartTest, SaysWhatIsInTheWay) {
    std::filesystem::create_directories(entry / "in the way");
    EXPECT_NE(autostart.turnOn(), "");
    EXPECT_NE(autostart.turnOff(), "");
    EXPECT_FALSE(autostart.isOn());
    const Autostart incomplete{folder.path / "missing", folder.path / "entry"};
    EXPECT_EQ(incomplete.turnOn(), (folder.path / "missing").string() + " is missing");
}

} // namespace
} // namespace platform::linux
