// One call to the system fails, whichever it is: the timer goes on, or ends with a clear message; it never hangs,
// and the settings file is the old or the new one.
//
// Each day a share of the calls has its turn, and every one within a few weeks. DAY=20000 before the command tries
// that day's share again, DAY=every tries all; most kinds take a minute or two then, “Poll” five, “Memory” an hour
// or two.

#include "tests/faults/WholeProgram.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <iostream>
#include <string>
#include <vector>

namespace faults {
namespace {

/// What can go wrong with the calls of a kind.
struct Refusal {
    const char* name;
    Kind kind;
    std::vector<int> errors;
    int days;             ///< Until all have had their turn.
    int most = 1'000'000; ///< How many are tried at all, the earliest.
};

void PrintTo(const Refusal& refusal, std::ostream* stream) { *stream << refusal.name; }

const std::vector<Refusal> refusals{
    {"Open", Kind::Open, {EMFILE, ENFILE, EACCES, EINTR, EIO, ENOMEM}, 6},
    {"Read", Kind::Read, {EIO, EINTR, shortOfAll}, 3},
    {"Write", Kind::Write, {ENOSPC, EDQUOT, EIO, EINTR, shortOfAll}, 1},
    {"Close", Kind::Close, {EIO, EINTR, ENOSPC}, 1},
    {"Sync", Kind::Sync, {EIO, EINTR, ENOSPC}, 1},
    {"Rename", Kind::Rename, {EACCES, EIO, ENOSPC, EROFS}, 1},
    {"Status", Kind::Status, {EACCES, EIO, ENOMEM}, 8},
    {"Descriptor", Kind::Descriptor, {EMFILE, ENFILE, ENOMEM}, 3},
    {"Send", Kind::Send, {EINTR, EAGAIN, EPIPE, ENOBUFS}, 14},
    {"Receive", Kind::Receive, {EINTR, EAGAIN, ECONNRESET, ENOMEM}, 20},
    {"Poll", Kind::Poll, {EINTR, ENOMEM}, 30},
    {"Spawn", Kind::Spawn, {EAGAIN, ENOMEM}, 1},
    {"Thread", Kind::Thread, {EAGAIN}, 1},
    {"Map", Kind::Map, {ENOMEM}, 1},
    {"Memory", Kind::Memory, {ENOMEM}, 1500},
    {"MemoryAtTheStart", Kind::Memory, {ENOMEM}, 25, 1500},
};

/// Whether the call of that number has its turn today.
bool isDue(int number, int days) {
    constexpr std::time_t secondsPerDay = 86'400;
    const char* const wanted = std::getenv("DAY");
    const std::time_t day = wanted ? std::stol(wanted) : std::time(nullptr) / secondsPerDay;
    return (wanted && std::string_view{wanted} == "every") || (number + day) % days == 0;
}

const char* nameOf(int error) { return error == shortOfAll ? "a single byte" : strerrorname_np(error); }

std::string settings(std::string_view version, std::string_view mute) {
    return "[Settings]\nVersion='" + std::string{version} + "'\nMute=" + std::string{mute} +
           "\nPopupAlerts=true\nAlertSound='Sonar'\n";
}

class FailedCall : public testing::TestWithParam<Refusal> {
protected:
    /// Reminders that are put off and answered, a change of a setting, a panel, the end.
    void live() {
        program.start();
        program.await([this] { return !program.get("State").empty(); }, "the timer on the bus");
        program.user().nextButton = 1;
        program.awaitReminder();
        program.awaitRestart();
        program.await([this] { return program.get("Muted") == "(<true>,)" || !program.succeeds("ToggleMute"); },
                      "the change of a setting");
        program.succeeds("ShowSettings");
        program.await([this] { return program.succeeds("Restart"); }, "the panel to close");
        program.awaitRestart();
        program.quit();
    }

    /// What is wrong with a life in which that call fails; empty if nothing is.
    std::string complaint(Kind kind, int number, int error) {
        program.store(settings("1.0.0", "false"));
        program.plan().kind = kind;
        program.plan().number = number;
        program.plan().error = error;
        try {
            live();
            return complaintAboutEnd();
        } catch (const Over&) {
            return program.output().empty() ? "it ended without a word" : complaintAboutSettings();
        } catch (const Stuck& stuck) {
            program.kill();
            return stuck.what();
        }
    }

    /// After a life that was lived to its end.
    std::string complaintAboutEnd() const {
        if (program.status() != 0 && program.output().empty()) {
            return "its end failed without a word";
        }
        if (program.status() != 0) {
            return complaintAboutSettings();
        }
        if (program.stored() != settings("test", "true")) {
            return "a setting is lost:\n" + program.stored();
        }
        return program.storedFiles() == "settings " ? "" : "something is left behind: " + program.storedFiles();
    }

    /// After a life that ended early.
    std::string complaintAboutSettings() const {
        for (const char* version : {"1.0.0", "test"}) { // which it stores when it starts
            for (const char* mute : {"false", "true"}) {
                if (program.stored() == settings(version, mute)) {
                    return {};
                }
            }
        }
        return "the settings are damaged:\n" + program.stored();
    }

    WholeProgram program;
};

TEST_P(FailedCall, CostsNoReminderAndNoSetting) {
    const Refusal& refusal = GetParam();
    constexpr int none = 0;
    ASSERT_EQ(complaint(refusal.kind, none, 0), "") << "although nothing fails:\n" << program.output();
    const int calls = std::min<int>(program.plan().calls[static_cast<std::size_t>(refusal.kind)], refusal.most);
    ASSERT_GT(calls, 0);
    int lives = 0;
    for (int number = 1; number <= calls; ++number) {
        for (const int error : isDue(number, refusal.days) ? refusal.errors : std::vector<int>{}) {
            EXPECT_EQ(complaint(refusal.kind, number, error), "")
                << refusal.name << " " << number << " of " << calls << " with " << nameOf(error) << ":\n"
                << program.output();
            ++lives;
        }
    }
    std::cout << calls << " calls, each of which can fail in " << refusal.errors.size() << " ways; " << lives
              << " lives today\n";
}

INSTANTIATE_TEST_SUITE_P(Each, FailedCall, testing::ValuesIn(refusals),
                         [](const auto& each) { return std::string{each.param.name}; });

} // namespace
} // namespace faults
