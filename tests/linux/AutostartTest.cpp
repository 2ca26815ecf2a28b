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
    /// As it is installed with the program at that place.
    static std::string entryFor(const std::string& program) {
        return "[Desktop Entry]\nType=Application\n# why\nTryExec=" + program + "\nExec=\"" + program + "\"\n";
    }

    const std::string installed = entryFor("/bin/true");
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
    for (const char* broken : {"", "[Desktop Entry]\nHidden=true\n"}) {
        store(broken);
        EXPECT_FALSE(autostart.isOn()) << broken;
        EXPECT_EQ(autostart.turnOn(), "");
        EXPECT_EQ(content(), installed);
    }
}

TEST_F(AutostartTest, IsOffOnceTheProgramIsGoneAndThenStartsTheInstalledOne) {
    for (const char* gone : {"TryExec=/gone/marvelode-timer\nExec=\"/gone/marvelode-timer\" -Mute true\n",
                             "TryExec=/gone/marvelode-timer\nExec=/gone/marvelode-timer -Mute true\n"}) {
        store(std::string{"[Desktop Entry]\nName=Mine\n"} + gone);
        EXPECT_FALSE(autostart.isOn());
        EXPECT_EQ(autostart.turnOn(), "");
        EXPECT_TRUE(autostart.isOn());
        EXPECT_EQ(content(), "[Desktop Entry]\nName=Mine\nTryExec=/bin/true\nExec=\"/bin/true\" -Mute true\n");
    }
    store("[Desktop Entry]\nTryExec=/gone/marvelode-timer\nExec=nice marvelode-timer\n");
    EXPECT_EQ(autostart.turnOn(), "");
    EXPECT_EQ(content(), "[Desktop Entry]\nTryExec=/bin/true\nExec=nice marvelode-timer\n");
}

TEST_F(AutostartTest, AnEntryOfAnotherInstallationIsRemoved) {
    for (const char* program : {"/gone/marvelode-timer", "/bin/false"}) {
        store(entryFor(program));
        EXPECT_EQ(autostart.turnOff(), "");
        EXPECT_FALSE(std::filesystem::exists(entry)) << program;
    }
}

TEST_F(AutostartTest, WhatItsUserHasChangedIsMarkedAndNotRemoved) {
    const std::string own = "[Desktop Entry]\n# mine\nExec=marvelode-timer -Mute true\n";
    for (const std::string& changed : {own, installed + "X-Delay=5\n", installed + "Name=Mine\n"}) {
        store(changed);
        EXPECT_EQ(autostart.turnOff(), "");
        EXPECT_FALSE(autostart.isOn());
        EXPECT_NE(content().find("Hidden=true\n"), std::string::npos) << content();
        const std::string marked = content();
        EXPECT_EQ(autostart.turnOff(), "");
        EXPECT_EQ(content(), marked);
        EXPECT_EQ(autostart.turnOn(), "");
        EXPECT_EQ(content(), changed);
    }
}

TEST_F(AutostartTest, ALinkStaysUnlessItLeadsToTheInstalledEntry) {
    std::filesystem::create_directories(entry.parent_path());
    const auto own = folder.write("own", installed);
    std::filesystem::create_symlink(own, entry);
    EXPECT_EQ(autostart.turnOff(), "");
    EXPECT_TRUE(std::filesystem::is_symlink(entry));
    EXPECT_EQ(content(), installed + "Hidden=true\n");
    std::filesystem::remove(entry);
    std::filesystem::create_symlink(folder.path / "installed", entry);
    EXPECT_EQ(autostart.turnOff(), "");
    EXPECT_FALSE(std::filesystem::is_symlink(entry));
    EXPECT_EQ(readRegularFile(folder.path / "installed").bytes, installed);
}

TEST_F(AutostartTest, WhatCannotBeUnderstoodIsReportedAndLeftAlone) {
    store("nonsense\n");
    for (const std::string& problem : {autostart.turnOn(), autostart.turnOff()}) {
        EXPECT_TRUE(problem.starts_with(entry.string() + ": ")) << problem;
    }
    EXPECT_EQ(content(), "nonsense\n");
    std::filesystem::remove(entry);
    std::filesystem::create_directory(entry);
    EXPECT_EQ(autostart.turnOn(), entry.string() + " is no regular file");
    EXPECT_EQ(autostart.turnOff(), entry.string() + " is no regular file");
    EXPECT_TRUE(std::filesystem::is_directory(entry));
}

TEST_F(AutostartTest, SaysWhatIsInTheWay) {
    std::filesystem::create_directories(entry / "in the way");
    EXPECT_NE(autostart.turnOn(), "");
    EXPECT_NE(autostart.turnOff(), "");
    EXPECT_FALSE(autostart.isOn());
    const Autostart incomplete{folder.path / "missing", folder.path / "entry"};
    EXPECT_EQ(incomplete.turnOn(), (folder.path / "missing").string() + " is missing");
    const auto moved = folder.write("moved", entryFor("/gone/marvelode-timer"));
    EXPECT_EQ((Autostart{moved, folder.path / "entry"}.turnOn()),
              "the program of " + moved.string() + " is missing");
}

} // namespace
} // namespace platform::linux
