#pragma once

// What all clauses of the contract have in common: a driver, and a program that ends well.

#include "platform/NSApplication.hpp"
#include "tests/contract/Driver.hpp"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace contract {

using namespace std::chrono_literals;

class Clause : public testing::Test {
protected:
    const std::unique_ptr<Driver> driver = makeDriver();

    /// Runs `program`, which must end by itself.
    void run(std::function<void()> program, const std::vector<std::string>& arguments = {}) {
        EXPECT_EQ(driver->run(arguments, std::move(program)), 0);
    }

    /// Runs `program` and ends it when it has returned.
    void runToEnd(const std::function<void()>& program, const std::vector<std::string>& arguments = {}) {
        run(
            [&] {
                program();
                end();
            },
            arguments);
    }

    /// Ends the program.
    static void end() { platform::NSApplication::shared().terminate(); }

    /// Ends the program after that time.
    void endAfter(milliseconds span) { driver->after(span, end); }
};

} // namespace contract
