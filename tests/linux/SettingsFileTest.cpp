// The settings file: what is in it, what it survives, and when it is left alone.

#include "platform/linux/SettingsFile.hpp"

#include "tests/support/CollectedErrors.hpp"
#include "tests/support/TemporaryFolder.hpp"

#include <gio/gunixsocketaddress.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace platform::linux {
namespace {

namespace fs = std::filesystem;
using namespace std::string_literals;

class Settings : public testing::Test {
protected:
    Settings() { fs::create_directory(folder.path / "marvelode-timer"); }

    /// Opens the file as the next run of the program does.
    SettingsFile& open() { return open(file); }
    SettingsFile& open(const fs::path& path) {
        settings.reset();
        settings = std::make_unique<SettingsFile>(path, errorLog, SettingsFile::Values{{"Version", "known"s}});
        return *settings;
    }

    /// Writes the file as an editor does, always into a new one.
    void edit(std::string_view content) { folder.write("marvelode-timer/settings", content); }

    std::string content() const { return contentOf(file); }
    static std::string contentOf(const fs::path& path) {
        std::ifstream stream{path, std::ios::binary};
        return {std::istreambuf_iterator{stream}, {}};
    }

    ino_t inode() const {
        struct stat status{};
        stat(file.c_str(), &status);
        return status.st_ino;
    }

    static mode_t permissions(const fs::path& path) {
        struct stat status{};
        stat(path.c_str(), &status);
        return status.st_mode & 07777U;
    }

    TemporaryFolder folder;
    const fs::path file = folder.path / "marvelode-timer/settings";
    CollectedErrors errorLog;
    std::vector<std::string>& errors = errorLog.problems;
    std::unique_ptr<SettingsFile> settings;
};

TEST_F(Settings, KeepTypedValuesInText) {
    open().set(600.0, "TimerInterval");
    settings->set(true, "Mute");
    settings->set("Sonar"s, "AlertSound");
    settings->set(std::int64_t{9'000'000'000}, "Count");
    EXPECT_EQ(content(), "[Settings]\nTimerInterval=600.0\nMute=true\nAlertSound='Sonar'\nCount=9000000000\n");
    open();
    EXPECT_EQ(settings->value("TimerInterval"), DefaultsValue{600.0});
    EXPECT_EQ(settings->value("Mute"), DefaultsValue{true});
    EXPECT_EQ(settings->value("AlertSound"), DefaultsValue{"Sonar"s});
    EXPECT_EQ(settings->value("Count"), DefaultsValue{std::int64_t{9'000'000'000}});
    EXPECT_EQ(settings->value("Nothing"), std::nullopt);
    EXPECT_TRUE(errors.empty());
}

TEST_F(Settings, KeepEveryText) {
    const std::vector<std::string> texts{"",         "true",    "7",       "it's \"so\"", "two\nlines\t\\ ",
                                         " spaces ", "# ;[x]=", "Größe ☕"};
    for (const std::string& text : texts) {
        open().set(text, "Text");
        EXPECT_EQ(open().value("Text"), DefaultsValue{text});
    }
}

TEST_F(Settings, BelongToTheirOwnerAlone) {
    const fs::path elsewhere = folder.path / "config/marvelode-timer/settings";
    open(elsewhere).set(true, "Mute");
    EXPECT_EQ(permissions(elsewhere), 0600U);
    EXPECT_EQ(permissions(elsewhere.parent_path()), 0700U);
}

TEST_F(Settings, AreNotTouchedByAWriteThatChangesNothing) {
    open().set(true, "Mute");
    const ino_t before = inode();
    settings->set(true, "Mute");
    open().set(true, "Mute");
    EXPECT_EQ(inode(), before);
    settings->set(false, "Mute");
    EXPECT_NE(inode(), before) << "a change replaces the file";
}

TEST_F(Settings, AreNotWrittenByReading) {
    EXPECT_EQ(open().value("Mute"), std::nullopt);
    EXPECT_FALSE(fs::exists(file));
}

TEST_F(Settings, KeepWhatTheProgramDoesNotKnow) {
    edit("# mine\n\n[Settings]\n# loud\nMute=false\nColour='teal'\n\n[Other]\nkey=value\n");
    open().set(true, "Mute");
    EXPECT_EQ(content(), "# mine\n\n[Settings]\n# loud\nMute=true\nColour='teal'\n\n[Other]\nkey=value\n");
}

TEST_F(Settings, FollowEditsMadeByHand) {
    open().set(600.0, "TimerInterval");
    edit("[Settings]\nTimerInterval=1500.0\n");
    EXPECT_EQ(settings->value("TimerInterval"), DefaultsValue{1500.0});
    fs::remove(file);
    EXPECT_EQ(settings->value("TimerInterval"), std::nullopt);
}

TEST_F(Settings, DoNotLoseAnEditToAWrite) {
    open().set(600.0, "TimerInterval");
    edit("[Settings]\nTimerInterval=1500.0\nAlertSound='Bowl'\n");
    settings->set(true, "Mute");
    EXPECT_EQ(content(), "[Settings]\nTimerInterval=1500.0\nAlertSound='Bowl'\nMute=true\n");
}

TEST_F(Settings, TakeATextWithoutQuotesAsItStands) {
    edit("[Settings]\nAlertSound=Sonar\nTimerInterval = 1500\nMute=yes\n");
    EXPECT_EQ(open().value("AlertSound"), DefaultsValue{"Sonar"s});
    EXPECT_EQ(settings->value("TimerInterval"), DefaultsValue{std::int64_t{1500}});
    EXPECT_EQ(settings->value("Mute"), DefaultsValue{"yes"s});
}

TEST_F(Settings, KeepADamagedFileAside) {
    for (const std::string& damage : {"no key file at all"s, "[Settings]\nMute=\xFF\n"s, std::string(100, '\0')}) {
        errors.clear();
        edit(damage);
        EXPECT_EQ(open().value("Mute"), std::nullopt);
        settings->set(true, "Mute");
        EXPECT_EQ(content(), "[Settings]\nVersion='known'\nMute=true\n");
        ASSERT_EQ(errors.size(), 1U);
        EXPECT_NE(errors[0].find("damaged"), std::string::npos) << errors[0];
    }
    EXPECT_EQ(contentOf(file.string() + ".damaged"), "no key file at all");
    EXPECT_EQ(contentOf(file.string() + ".damaged-1"), "[Settings]\nMute=\xFF\n");
    EXPECT_EQ(contentOf(file.string() + ".damaged-2").size(), 100U);
}

TEST_F(Settings, OutliveAnEditThatDamagesTheFile) {
    open().set("Bowl"s, "AlertSound");
    edit("[Settings\nAlertSound");
    EXPECT_EQ(settings->value("AlertSound"), DefaultsValue{"Bowl"s});
    EXPECT_EQ(content(), "[Settings]\nAlertSound='Bowl'\n") << "the last good ones are back";
    EXPECT_EQ(contentOf(file.string() + ".damaged"), "[Settings\nAlertSound");
}

TEST_F(Settings, HoldForTheRunIfTheFolderCannotBeWritten) {
    open("/proc/marvelode/settings"); // where not even root can make a folder
    settings->set(true, "Mute");
    settings->set("Bowl"s, "AlertSound");
    settings->set(false, "Mute");
    EXPECT_EQ(settings->value("Mute"), DefaultsValue{false});
    EXPECT_EQ(settings->value("AlertSound"), DefaultsValue{"Bowl"s});
    EXPECT_EQ(errors.size(), 1U) << "told once";
}

TEST_F(Settings, AreWrittenAsSoonAsTheyCanBe) {
    const fs::path home = folder.path / "home";
    fs::create_symlink("/proc/marvelode", home);
    open(home / "settings").set(true, "Mute");
    ASSERT_EQ(errors.size(), 1U);
    fs::remove(home);
    settings->set("Bowl"s, "AlertSound");
    EXPECT_EQ(contentOf(home / "settings"), "[Settings]\nMute=true\nAlertSound='Bowl'\n");
}

TEST_F(Settings, AreWrittenAtTheEndIfNotBefore) {
    const fs::path home = folder.path / "home";
    fs::create_symlink("/proc/marvelode", home);
    open(home / "settings").set(true, "Mute");
    fs::remove(home);
    settings.reset();
    EXPECT_EQ(contentOf(home / "settings"), "[Settings]\nMute=true\n");
}

TEST_F(Settings, NeverReplaceAFileThatCannotBeRead) {
    fs::create_directory(file); // unreadable even for root
    open().set(true, "Mute");
    EXPECT_EQ(settings->value("Mute"), DefaultsValue{true});
    EXPECT_TRUE(fs::is_directory(file));
    EXPECT_EQ(errors.size(), 1U);
}

TEST_F(Settings, AreReadAsSoonAsTheyCanBeAndKeepWhatWasSetMeanwhile) {
    fs::create_directory(file); // unreadable even for root
    open().set(true, "Mute");
    fs::remove(file);
    edit("[Settings]\nPopupAlerts=false\nMute=false\n");
    EXPECT_EQ(settings->value("PopupAlerts"), DefaultsValue{false});
    EXPECT_EQ(settings->value("Mute"), DefaultsValue{true});
    settings.reset();
    EXPECT_EQ(content(), "[Settings]\nPopupAlerts=false\nMute=true\n");
}

TEST_F(Settings, AreAssumedAndNotStoredWhileTheFileCannotBeRead) {
    fs::create_directory(file);
    open().value("Version");
    EXPECT_EQ(settings->value("Version"), DefaultsValue{"known"s});
    EXPECT_EQ(settings->value("Mute"), std::nullopt);
    fs::remove(file);
    edit("[Settings]\nMute=true\n");
    EXPECT_EQ(settings->value("Version"), std::nullopt);
    EXPECT_EQ(settings->value("Mute"), DefaultsValue{true});
    settings.reset();
    EXPECT_EQ(content(), "[Settings]\nMute=true\n");
}

TEST_F(Settings, AreNotAssumedWhereThereIsNoFile) { EXPECT_EQ(open().value("Version"), std::nullopt); }

TEST_F(Settings, AreStoredAsAssumedWhenAFileThatWasNeverReadIsRemoved) {
    fs::create_directory(file);
    open().value("Version");
    fs::remove(file);
    EXPECT_EQ(settings->value("Version"), DefaultsValue{"known"s});
    settings.reset();
    EXPECT_EQ(content(), "[Settings]\nVersion='known'\n");
}

TEST_F(Settings, AreThoseOfAFileThatWasAwayForAMomentAndCanThenBeRead) {
    fs::create_directory(file);
    open().value("Version");
    fs::remove(file);
    EXPECT_EQ(settings->value("Version"), DefaultsValue{"known"s});
    edit("[Settings]\nVersion='1.0'\n");
    EXPECT_EQ(settings->value("Version"), DefaultsValue{"1.0"s});
    settings.reset();
    EXPECT_EQ(content(), "[Settings]\nVersion='1.0'\n");
}

TEST_F(Settings, KeepAChoiceThatEqualsWhatIsAssumed) {
    fs::create_directory(file);
    open().set("known"s, "Version");
    fs::remove(file);
    edit("[Settings]\nVersion='1.0'\n");
    EXPECT_EQ(settings->value("Version"), DefaultsValue{"known"s});
}

TEST_F(Settings, AreThoseOfARepairedFileThatIsPutBack) {
    edit("[Settings\nMute=true\n");
    EXPECT_EQ(open().value("Version"), DefaultsValue{"known"s}) << "it was there, whatever it said";
    EXPECT_EQ(content(), "[Settings]\nVersion='known'\n");
    edit("[Settings]\nVersion='1.0'\nMute=true\n");
    EXPECT_EQ(settings->value("Version"), DefaultsValue{"1.0"s});
    EXPECT_EQ(settings->value("Mute"), DefaultsValue{true});
    settings.reset();
    EXPECT_EQ(content(), "[Settings]\nVersion='1.0'\nMute=true\n");
}

TEST_F(Settings, LeaveWhatIsNoRegularFileAsItIs) {
    const ObjectHandle<GSocket> socket{
        g_socket_new(G_SOCKET_FAMILY_UNIX, G_SOCKET_TYPE_STREAM, G_SOCKET_PROTOCOL_DEFAULT, nullptr)};
    const ObjectHandle<GSocketAddress> address{g_unix_socket_address_new((folder.path / "socket").c_str())};
    ASSERT_TRUE(g_socket_bind(socket.get(), address.get(), TRUE, nullptr));
    ASSERT_EQ(mkfifo((folder.path / "pipe").c_str(), 0600), 0);
    fs::create_directory(folder.path / "folder");
    for (const char* name : {"socket", "pipe", "folder"}) {
        errors.clear();
        fs::create_symlink(folder.path / name, file);
        const fs::file_type before = fs::status(file).type();
        open().set(true, "Mute");
        EXPECT_EQ(settings->value("Mute"), DefaultsValue{true});
        settings.reset();
        EXPECT_EQ(fs::status(file).type(), before);
        EXPECT_EQ(errors.size(), 1U) << name;
        fs::remove(file);
    }
}

TEST_F(Settings, AreNotTakenFromAFileOfMoreThanAMegabyte) {
    edit("[Settings]\nMute=true\n#" + std::string(1024 * 1024, 'x'));
    EXPECT_EQ(open().value("Mute"), std::nullopt);
    EXPECT_EQ(errors.size(), 1U);
}

TEST_F(Settings, KeepTheFilesPermissionsFromTheFirstWriteOn) {
    for (const mode_t mode : {0640U, 0664U, 0600U}) {
        edit("[Settings]\n");
        chmod(file.c_str(), mode);
        open().set(true, "Mute");
        EXPECT_EQ(permissions(file), mode);
    }
}

TEST_F(Settings, AreRidOfWhatAKilledWriteHasLeftBehind) {
    const std::string start = ".unfinished-by-marvelode-timer-settings-";
    const std::vector<std::string> others{
        start + "abc12",        start + "abc1234",   ".unfinished-by-marvelode-timer-other-abc123",
        "settings.new-version", "settings.new-home", "settings.backup"};
    for (const std::string& name : others) {
        folder.write("marvelode-timer/" + name, "");
    }
    const fs::path leftover = folder.write("marvelode-timer/" + start + "abc123", "[Sett");
    open();
    EXPECT_TRUE(fs::exists(leftover)) << "another program may be writing it";
    settings->clearUp();
    EXPECT_FALSE(fs::exists(leftover));
    for (const std::string& name : others) {
        EXPECT_TRUE(fs::exists(file.parent_path() / name)) << name;
    }
}

TEST_F(Settings, KeepWhatWasSetWhileAFileThatWasKnownCouldNotBeRead) {
    edit("[Settings]\nMute=false\n");
    EXPECT_EQ(open().value("Mute"), DefaultsValue{false});
    fs::remove(file);
    fs::create_directory(file);
    settings->set(true, "Mute");
    fs::remove(file);
    edit("[Settings]\nMute=false\nAlertSound='Bowl'\n");
    EXPECT_EQ(settings->value("Mute"), DefaultsValue{true});
    settings.reset();
    EXPECT_EQ(content(), "[Settings]\nMute=true\nAlertSound='Bowl'\n");
}

TEST_F(Settings, LeaveAReadOnlyFileAsItIs) {
    edit("[Settings]\nMute=false\n");
    fs::permissions(file, fs::perms::owner_read);
    open().set(true, "Mute");
    EXPECT_EQ(settings->value("Mute"), DefaultsValue{true});
    settings.reset();
    EXPECT_EQ(content(), "[Settings]\nMute=false\n");
    EXPECT_EQ(errors.size(), 1U);
}

TEST_F(Settings, AreWrittenThroughALink) {
    const fs::path target = folder.path / "dotfiles/settings";
    fs::create_directory(target.parent_path());
    fs::create_symlink("../dotfiles/settings", file);
    open().set(true, "Mute");
    EXPECT_TRUE(fs::is_symlink(file));
    EXPECT_EQ(contentOf(target), "[Settings]\nMute=true\n");
    EXPECT_EQ(open().value("Mute"), DefaultsValue{true});
}

TEST_F(Settings, LeaveNothingElseInTheFolder) {
    open().set(true, "Mute");
    settings->set(false, "Mute");
    EXPECT_EQ(std::distance(fs::directory_iterator{file.parent_path()}, fs::directory_iterator{}), 1);
}

} // namespace
} // namespace platform::linux
