// A thousand reminders, answered in turn by “Snooze” and “Restart”: nothing is left of any of them.

#include "tests/faults/WholeProgram.hpp"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>

namespace faults {
namespace {

namespace fs = std::filesystem;

class Growth : public testing::Test {
protected:
    fs::path inProc(const char* name) const { return "/proc/" + std::to_string(program.process()) + "/" + name; }

    std::ptrdiff_t descriptors() const {
        return std::distance(fs::directory_iterator{inProc("fd")}, fs::directory_iterator{});
    }

    /// Programs that it has started, whether they run or wait for it to take note of their end.
    std::string children() const {
        std::ifstream stream{inProc("task") / std::to_string(program.process()) / "children"};
        return {std::istreambuf_iterator{stream}, {}};
    }

    void live(int reminders) {
        for (int time = 0; time < reminders; ++time) {
            program.awaitReminder();
            if (time % 10 == 0) {
                program.succeeds("ToggleMute");
            }
        }
        program.await([this] { return children().empty(); }, "helpers to end");
    }

    WholeProgram program;
};

TEST_F(Growth, IsNoneInAThousandReminders) {
    constexpr int few = 50; // until it has all that it needs
    constexpr int many = 1000;
    constexpr int slack = 128;
    program.store("[Settings]\nVersion='test'\nMute=false\nPopupAlerts=true\nAlertSound='Sonar'\n");
    program.start();
    program.await([this] { return !program.get("State").empty(); }, "the timer on the bus");
    live(few);
    const auto descriptorsBefore = descriptors();
    const int kilobytesBefore = program.memory();
    live(many);
    EXPECT_EQ(descriptors(), descriptorsBefore);
    EXPECT_LE(program.memory(), kilobytesBefore + slack);
    std::cout << kilobytesBefore << " KiB before, " << program.memory() << " KiB after\n";
    program.quit();
    EXPECT_EQ(program.status(), 0) << program.output();
}

} // namespace
} // namespace faults
