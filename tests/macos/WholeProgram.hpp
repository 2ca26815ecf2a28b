#pragma once

// The program as it is, on the real run loop and in real time, with a user who does one thing after the other.
// Every test has a process of its own.

#include "app/App.hpp"
#include "app/main.hpp"
#import "tests/macos/Session.hpp"

#include <gtest/gtest.h>

#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace macos_tests {

using namespace std::chrono_literals;
using Lines = std::vector<std::string>;

class WholeProgram : public testing::Test {
protected:
    /// What the user does, as soon as what they wait for has happened.
    struct Deed {
        std::function<bool()> when;
        std::function<void()> what;
    };

    Session session;

    static void store(NSString* key, id value) {
        [[NSUserDefaults standardUserDefaults] setObject:value forKey:key];
    }
    static id stored(NSString* key) { return [[NSUserDefaults standardUserDefaults] objectForKey:key]; }

    /// Runs the program with a user who does `deeds` and then quits.
    void run(const Lines& arguments, std::vector<Deed> deeds) {
        deeds.push_back({noWindow, [] { pick("Quit"); }});
        runUntilItEnds(arguments, std::move(deeds));
    }

    /// The same with a user whose last deed ends the program.
    void runUntilItEnds(const Lines& arguments, std::vector<Deed> deeds) {
        next(std::move(deeds), 0);
        const int status = session.run(arguments, 20s, [this](int argc, const char* const* argv) {
            begin();
            return marvelode::marvelodeTimer(argc, argv);
        });
        EXPECT_EQ(status, 0);
        EXPECT_FALSE(session.ranOut()) << "the user could not do everything";
        EXPECT_TRUE(_isDone) << "the program ended early";
    }

    /// Called just before the program does anything.
    virtual void begin() {}

    static bool launched() { return marvelode::app && marvelode::app->state != marvelode::App::State::Init; }
    static bool noWindow() { return launched() && frontWindow() == nil; }
    static bool window() { return [frontWindow() isVisible]; }
    static bool alert() { return window() && alertButton(0) != nil; }
    static bool panel() { return window() && alertButton(0) == nil; }

    /// True as soon as that time has passed since it was first asked.
    static std::function<bool()> passed(milliseconds span) {
        return [span, begin = std::optional<std::chrono::steady_clock::time_point>{}]() mutable {
            const auto now = std::chrono::steady_clock::now();
            begin = begin.value_or(now);
            return now - *begin >= span;
        };
    }

private:
    void next(std::vector<Deed> deeds, std::size_t index) {
        _isDone = index == deeds.size();
        if (!_isDone) {
            const auto when = deeds[index].when;
            session.when(when, [this, deeds = std::move(deeds), index] {
                next(deeds, index + 1); // first, because a deed may open a window and not return before it closes
                deeds[index].what();
            });
        }
    }

    bool _isDone = false;
};

} // namespace macos_tests
