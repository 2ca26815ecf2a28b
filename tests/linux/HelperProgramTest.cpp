// Helper programs start whatever becomes of their files, and end whatever they do.

#include "platform/linux/HelperProgram.hpp"

#include "platform/linux/HelperProcess.hpp"
#include "tests/support/TemporaryFolder.hpp"

#include <glib.h>
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <array>
#include <cstdlib>
#include <filesystem>
#include <string>

namespace platform::linux {
namespace {

namespace fs = std::filesystem;

class HelperProgramTest : public testing::Test {
protected:
    /// Installs a script in place of the program that was there, as a package does: under its name appears another
    /// file.
    fs::path install(const std::string& commands) const {
        const fs::path fresh = folder.write("fresh", "#!/bin/sh\n" + commands + '\n');
        fs::permissions(fresh, fs::perms::owner_all);
        fs::rename(fresh, folder.path / "program");
        return folder.path / "program";
    }

    /// The status with which a run of the program ends.
    static int statusOf(const HelperProgram& program, const HelperProgram::Run& run = {}) {
        const HelperProgram::Started started = program.start(run);
        EXPECT_EQ(started.problem, "");
        int status = 0;
        EXPECT_EQ(waitpid(started.process, &status, 0), started.process);
        return WEXITSTATUS(status);
    }

    TemporaryFolder folder;
    SessionEnvironment session;
};

TEST_F(HelperProgramTest, GetsItsArguments) {
    const HelperProgram program{install("[ \"$1\" = 'a b' ] && exit $2"), session};
    EXPECT_EQ(statusOf(program, {.arguments = {"a b", "7"}}), 7);
}

TEST_F(HelperProgramTest, GetsTheSessionsEnvironmentAndItsOwnVariables) {
    session.adopt({{"DISPLAY", ":77"}});
    const HelperProgram program{
        install("[ $DISPLAY = :77 ] && [ $HOME = \"" + std::string{std::getenv("HOME")} + "\" ] && exit $OWN"),
        session};
    EXPECT_EQ(statusOf(program, {.variables = {"OWN=7"}}), 7);
}

TEST_F(HelperProgramTest, IsTheOneOfTheBeginningAfterAnUpgrade) {
    const HelperProgram program{install("exit 1"), session};
    install("exit 2");
    EXPECT_EQ(statusOf(program), 1);
}

TEST_F(HelperProgramTest, StartsAfterThePackageWasRemoved) {
    const HelperProgram program{install("exit 1"), session};
    fs::remove(folder.path / "program");
    EXPECT_EQ(statusOf(program), 1);
}

TEST_F(HelperProgramTest, IsFoundOnceItIsThere) {
    const HelperProgram program{folder.path / "program", session};
    const HelperProgram::Started started = program.start({});
    EXPECT_EQ(started.process, 0);
    EXPECT_NE(started.problem.find("program"), std::string::npos) << started.problem;
    install("exit 3");
    EXPECT_EQ(statusOf(program), 3);
}

TEST_F(HelperProgramTest, BinariesStartToo) {
    fs::copy_file(fs::canonical("/bin/sh"), folder.path / "shell");
    const HelperProgram program{folder.path / "shell", session};
    fs::remove(folder.path / "shell");
    EXPECT_EQ(statusOf(program, {.arguments = {"-c", "exit 9"}}), 9);
}

} // namespace
} // namespace platform::linux
