// The resident program and the helpers that it starts for sounds. Small scripts stand in for
// them.

#include "platform/linux/sound/SoundPlayer.hpp"

#include "tests/support/CollectedErrors.hpp"
#include "tests/support/TemporaryFolder.hpp"

#include <glib.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/time.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <fstream>
#include <functional>
#include <iterator>
#include <list>
#include <optional>
#include <string>
#include <vector>

namespace {

using namespace std::chrono_literals;
using platform::linux::HelperProgram;
using platform::linux::SessionEnvironment;
using platform::linux::SoundPlayer;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

class SoundPlayerTest : public testing::Test {
protected:
    SoundPlayerTest() { EXPECT_EQ(mkfifo(_pipe.c_str(), 0600), 0); }

    /// A helper program that does what `commands` of the shell say; `$pipe` is a named pipe for talking to it.
    const HelperProgram& helper(const std::string& commands) {
        const auto script = _folder.write("helper", "#!/bin/sh\npipe='" + _pipe.string() + "'\n" + commands + '\n');
        std::filesystem::permissions(script, std::filesystem::perms::owner_all);
        return _helpers.emplace_back(script, _session);
    }

    /// Runs the main loop until something has happened; fails if that takes unreasonably long.
    static void runUntil(const std::function<bool()>& happened) {
        bool isLate = false;
        const guint guard = g_timeout_add(
            20'000,
            [](gpointer late) -> gboolean {
                *static_cast<bool*>(late) = true;
                return G_SOURCE_CONTINUE;
            },
            &isLate);
        while (!happened() && !isLate) {
            g_main_context_iteration(nullptr, TRUE);
        }
        g_source_remove(guard);
        ASSERT_FALSE(isLate);
    }

    void runUntilLogged(std::size_t count = 1) {
        runUntil([&] { return _logged.size() >= count; });
    }

    /// Waits for the helper to write a line into the pipe.
    std::string lineFromHelper() const {
        std::string line;
        while (line.empty()) { // as it is while the helper before is still closing its end
            std::ifstream pipe{_pipe};
            std::getline(pipe, line);
        }
        return line;
    }

    /// Waits for the helper to read from the pipe, and writes it a line.
    void lineToHelper() const { std::ofstream{_pipe} << "go on\n"; }

    static bool isGone(const std::string& process) { return kill(std::stoi(process), 0) != 0 && errno == ESRCH; }

    const TemporaryFolder _folder;
    const std::filesystem::path _pipe = _folder.path / "pipe";
    const std::filesystem::path _sound = R"(/sounds/A sound; with "odd" 'letters' $HOME.m4a)";
    SessionEnvironment _session;
    std::list<HelperProgram> _helpers;
    CollectedErrors _log;
    const std::vector<std::string>& _logged = _log.problems;
};

TEST_F(SoundPlayerTest, PlaysTheSoundThroughTheHelper) {
    SoundPlayer player{helper(R"(printf '%s|' "$@" > "$pipe")"), _log};
    EXPECT_TRUE(player.play(_sound));
    EXPECT_EQ(lineFromHelper(), "play|" + _sound.string() + "|");
}

TEST_F(SoundPlayerTest, BeepsThroughTheHelper) {
    SoundPlayer player{helper(R"(printf '%s|' "$@" > "$pipe")"), _log};
    player.beep();
    EXPECT_EQ(lineFromHelper(), "beep|");
}

TEST_F(SoundPlayerTest, TellsTheHelperHowLoud) {
    SoundPlayer player{helper(R"(printf '%s|' "$@" > "$pipe")"), _log};
    EXPECT_TRUE(player.play(_sound, 0.25));
    EXPECT_EQ(lineFromHelper(), "play|" + _sound.string() + "|0.25|");
    player.beep(0.0);
    EXPECT_EQ(lineFromHelper(), "beep|0|");
}

TEST_F(SoundPlayerTest, SameSoundPlaysOnceAtATime) {
    SoundPlayer player{helper(R"(read go < "$pipe")"), _log};
    EXPECT_TRUE(player.play(_sound));
    EXPECT_FALSE(player.play(_sound));
    lineToHelper();
    runUntil([&] { return player.play(_sound); });
    EXPECT_FALSE(player.play(_sound));
    EXPECT_THAT(_logged, IsEmpty());
}

TEST_F(SoundPlayerTest, DifferentSoundsPlayTogether) {
    SoundPlayer player{helper(R"(echo started > "$pipe"; exec sleep 60)"), _log};
    EXPECT_TRUE(player.play("/Bowl.m4a"));
    EXPECT_EQ(lineFromHelper(), "started");
    EXPECT_TRUE(player.play("/Sonar.m4a"));
    EXPECT_EQ(lineFromHelper(), "started");
    player.beep();
    EXPECT_EQ(lineFromHelper(), "started");
    EXPECT_FALSE(player.play("/Bowl.m4a"));
}

TEST_F(SoundPlayerTest, OneBeepAtATime) {
    SoundPlayer player{helper(R"(echo beep >> "$pipe.beeps"; read go < "$pipe"; exit 1)"), _log};
    player.beep();
    player.beep();
    lineToHelper();
    runUntilLogged();
    std::ifstream beeps{_folder.path / "pipe.beeps"};
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>{beeps}, {}), "beep\n");
}

TEST_F(SoundPlayerTest, NothingPlaysOnceTheSessionIsOver) {
    SoundPlayer player{helper("exit 1"), _log};
    for (int failures = 0; failures < 3; ++failures) {
        _session.reminderWasMissed();
    }
    EXPECT_FALSE(player.play(_sound));
    player.beep();
    _session.displayWasFound(_session.display());
    EXPECT_TRUE(player.play(_sound));
    runUntilLogged();
    EXPECT_THAT(_logged, SizeIs(1));
}

TEST_F(SoundPlayerTest, EverythingPlaysAfterTheSessionIfRemindersAreSoundsAlone) {
    SoundPlayer player{helper("exit 1"), _log};
    for (int failures = 0; failures < 3; ++failures) {
        _session.reminderWasMissed();
    }
    _session.remindersNeedDisplay([] { return false; });
    EXPECT_TRUE(player.play(_sound));
    runUntilLogged();
}

TEST_F(SoundPlayerTest, SuccessIsNotLoggedWhateverTheHelperWrites) {
    SoundPlayer player{helper("echo a warning from deep down >&2"), _log};
    EXPECT_TRUE(player.play(_sound));
    runUntil([&] { return player.play(_sound); });
    EXPECT_THAT(_logged, IsEmpty());
}

TEST_F(SoundPlayerTest, MissingHelperIsLoggedEachTime) {
    const HelperProgram missing{_folder.path / "missing", _session};
    SoundPlayer player{missing, _log};
    EXPECT_FALSE(player.play("/Bowl.m4a"));
    ASSERT_THAT(_logged, SizeIs(1));
    EXPECT_THAT(_logged[0], HasSubstr("The sound Bowl.m4a could not be played: "));
    EXPECT_THAT(_logged[0], HasSubstr("missing"));
    player.beep();
    ASSERT_THAT(_logged, SizeIs(2));
    EXPECT_THAT(_logged[1], HasSubstr("The alert beep could not be played: "));
}

TEST_F(SoundPlayerTest, FailureIsLoggedOnceInTheHelpersLastWords) {
    SoundPlayer player{helper("echo a warning from deep down >&2; echo 'There is no sound card.' >&2; exit 1"),
                       _log};
    EXPECT_TRUE(player.play("/Bowl.m4a"));
    runUntilLogged();
    EXPECT_THAT(_logged, ElementsAre("The sound Bowl.m4a could not be played: There is no sound card."));
    EXPECT_TRUE(player.play("/Bowl.m4a"));
    runUntilLogged(2);
    EXPECT_THAT(_logged, SizeIs(2));
}

TEST_F(SoundPlayerTest, SilentFailureIsLogged) {
    SoundPlayer player{helper("exit 3"), _log};
    player.beep();
    runUntilLogged();
    EXPECT_THAT(_logged, ElementsAre("The alert beep could not be played: its player failed with status 3."));
}

TEST_F(SoundPlayerTest, CrashIsLogged) {
    SoundPlayer player{helper("kill -KILL $$"), _log};
    player.beep();
    runUntilLogged();
    ASSERT_THAT(_logged, SizeIs(1));
    EXPECT_THAT(_logged[0], HasSubstr("its player was ended by a signal"));
}

TEST_F(SoundPlayerTest, OddLettersInAFailureAreMadeReadable) {
    SoundPlayer player{helper(R"(printf 'No \377 device' >&2; exit 1)"), _log};
    player.beep();
    runUntilLogged();
    EXPECT_THAT(_logged, ElementsAre("The alert beep could not be played: No \uFFFD device"));
}

TEST_F(SoundPlayerTest, HangingHelperIsEndedAndLogged) {
    SoundPlayer player{helper(R"(echo $$ > "$pipe"; exec sleep 60)"), _log, 100ms};
    EXPECT_TRUE(player.play("/Bowl.m4a"));
    const std::string process = lineFromHelper();
    runUntilLogged();
    EXPECT_THAT(_logged, ElementsAre("The sound Bowl.m4a could not be played: its player did not come to an end."));
    EXPECT_TRUE(isGone(process));
    EXPECT_TRUE(player.play("/Bowl.m4a"));
}

TEST_F(SoundPlayerTest, EndlesslyComplainingHelperIsEndedAndLogged) {
    SoundPlayer player{helper("exec yes >&2"), _log, 100ms};
    player.beep();
    runUntilLogged();
    EXPECT_THAT(_logged, ElementsAre(EndsWith("its player did not come to an end.")));
}

TEST_F(SoundPlayerTest, LogMayPlayTheNextSound) {
    struct Retrying final : platform::linux::ErrorLog {
        void add(std::string_view) override {
            if (++problems < 3) {
                player->beep();
            }
        }
        SoundPlayer* player = nullptr;
        int problems = 0;
    } log;
    SoundPlayer player{helper("exit 1"), log};
    log.player = &player;
    player.beep();
    runUntil([&] { return log.problems == 3; });
}

TEST_F(SoundPlayerTest, EndsItsHelpersWhenItGoes) {
    std::string process;
    {
        SoundPlayer player{helper(R"(echo $$ > "$pipe"; exec sleep 60)"), _log};
        player.play(_sound);
        process = lineFromHelper();
        EXPECT_FALSE(isGone(process));
    }
    EXPECT_TRUE(isGone(process));
    EXPECT_THAT(_logged, IsEmpty());
}

/// Signals that interrupt this process's waiting, again and again.
class Interruptions {
public:
    Interruptions() {
        struct sigaction action{};
        action.sa_handler = [](int) {};
        sigaction(SIGALRM, &action, &_before);
        constexpr timeval often{0, 20};
        const itimerval timer{often, often};
        setitimer(ITIMER_REAL, &timer, nullptr);
    }
    ~Interruptions() {
        const itimerval never{};
        setitimer(ITIMER_REAL, &never, nullptr);
        sigaction(SIGALRM, &_before, nullptr);
    }
    Interruptions(const Interruptions&) = delete;
    Interruptions& operator=(const Interruptions&) = delete;

private:
    struct sigaction _before{};
};

TEST_F(SoundPlayerTest, LeavesNoZombieWhenItIsInterrupted) {
    std::vector<std::string> processes;
    std::optional<SoundPlayer> player{std::in_place, helper(R"(echo $$ > "$pipe"; exec sleep 60)"), _log};
    for (int count = 0; count < 20; ++count) {
        player->play(_folder.path / std::to_string(count));
        processes.push_back(lineFromHelper());
    }
    const Interruptions interruptions;
    player.reset();
    EXPECT_TRUE(std::all_of(processes.begin(), processes.end(), isGone));
}

TEST_F(SoundPlayerTest, LeavesNoDescriptorOpen) {
    const auto openDescriptors = [] {
        const std::filesystem::directory_iterator descriptors{"/proc/self/fd"};
        return std::distance(begin(descriptors), end(descriptors));
    };
    SoundPlayer player{helper("exit 1"), _log};
    player.beep();
    runUntilLogged();
    const auto before = openDescriptors();
    for (std::size_t count = 2; count < 10; ++count) {
        player.beep();
        runUntilLogged(count);
    }
    EXPECT_EQ(openDescriptors(), before);
}

} // namespace
