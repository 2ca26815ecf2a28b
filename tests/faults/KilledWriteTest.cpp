// The program is killed while it writes its settings, before and after each call to the system: what is stored is
// the old or the new settings, whole.

#include "platform/linux/SettingsFile.hpp"
#include "tests/support/CollectedErrors.hpp"
#include "tests/support/TemporaryFolder.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/ptrace.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iostream>
#include <iterator>
#include <set>
#include <string>

namespace faults {
namespace {

namespace fs = std::filesystem;
using platform::linux::SettingsFile;

/// Runs `work` in a process of its own, up to that place at which it enters a call to the system or leaves one, and
/// kills it there. Whether there was such a place.
bool killAt(int place, const std::function<void()>& work) {
    const pid_t child = fork();
    if (child == 0) {
        ptrace(PTRACE_TRACEME, 0, nullptr, nullptr);
        raise(SIGSTOP);
        work();
        _exit(0);
    }
    int status = 0;
    waitpid(child, &status, 0);
    for (int passed = 0; passed < place && WIFSTOPPED(status); ++passed) {
        ptrace(PTRACE_SYSCALL, child, nullptr, nullptr);
        waitpid(child, &status, 0);
    }
    const bool isThere = WIFSTOPPED(status);
    if (isThere) {
        kill(child, SIGKILL);
        waitpid(child, &status, 0);
    }
    return isThere;
}

class KilledWrite : public testing::Test {
protected:
    /// Mutes, in a process that is killed at every place, each time after `prepare`; the file must then hold one of
    /// those texts each time, and each of them at some time.
    void muteAndDieEverywhere(const std::function<void()>& prepare, const std::set<std::string>& allowed) {
        constexpr int many = 1000;
        std::set<std::string> found;
        int places = 0;
        for (bool isKilled = true; isKilled && places < many; ++places) {
            fs::remove_all(home);
            fs::create_directory(home);
            prepare();
            isKilled = killAt(places + 1, [this] { SettingsFile{file, errors}.set(true, "Mute"); });
            found.insert(content());
            ASSERT_TRUE(allowed.contains(content())) << "killed at place " << places + 1 << ":\n" << content();
            expectNextRunToWrite();
        }
        EXPECT_LT(places, many);
        EXPECT_EQ(found, allowed) << "something was never to be seen";
        std::cout << places << " places to be killed at\n";
    }

    /// The next run finds what is there in order, can change it, and clears up.
    void expectNextRunToWrite() {
        SettingsFile{file, errors}.set(false, "Mute");
        SettingsFile again{file, errors};
        again.clearUp();
        EXPECT_EQ(again.value("Mute"), platform::DefaultsValue{false});
        EXPECT_THAT(errors.problems, testing::IsEmpty());
        const fs::path stored = fs::canonical(file).parent_path();
        EXPECT_EQ(std::distance(fs::directory_iterator{stored}, fs::directory_iterator{}), 1)
            << "something is left";
    }

    void store(std::string_view text) const { std::ofstream{file, std::ios::binary} << text; }

    /// What is in the file; of one that is not there, that.
    std::string content() const {
        std::ifstream stream{file, std::ios::binary};
        return stream ? std::string{std::istreambuf_iterator{stream}, {}} : "no file";
    }

    CollectedErrors errors;
    TemporaryFolder folder;
    const fs::path home = folder.path / "home";
    const fs::path file = home / "settings";
};

constexpr const char* before = "[Settings]\nMute=false\nAlertSound='Bowl'\n";
constexpr const char* after = "[Settings]\nMute=true\nAlertSound='Bowl'\n";

TEST_F(KilledWrite, LeavesTheOldSettingsOrTheNew) {
    muteAndDieEverywhere([this] { store(before); }, {before, after});
}

TEST_F(KilledWrite, LeavesTheFirstSettingsOrNone) {
    muteAndDieEverywhere([this] { fs::remove(home); }, {"no file", "[Settings]\nMute=true\n"});
}

TEST_F(KilledWrite, LeavesALinkAndWhatItLeadsTo) {
    const fs::path target = folder.path / "dotfiles/settings";
    muteAndDieEverywhere(
        [&] {
            fs::remove_all(target.parent_path());
            fs::create_directory(target.parent_path());
            fs::create_symlink(target, file);
            store(before);
        },
        {before, after});
    EXPECT_TRUE(fs::is_symlink(file));
}

} // namespace
} // namespace faults
