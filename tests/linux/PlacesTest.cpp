#include "platform/linux/Places.hpp"

#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>

namespace platform::linux {
namespace {

TEST(Places, AreThoseOfTheRunningExecutable) {
    EXPECT_EQ(executable(), std::filesystem::canonical(program_invocation_name));
}

TEST(Places, AreThoseOfAnInstallationWhereTheKernelTellsNothing) {
    const std::filesystem::path installed = executable("/nonexistent/exe");
    EXPECT_TRUE(installed.is_absolute());
    EXPECT_EQ(installed.filename(), "marvelode-timer");
    EXPECT_EQ(installed.parent_path().filename(), "bin");
}

} // namespace
} // namespace platform::linux
