// Every state that the break cycle can reach, the nearest first: in each of them, everything that the user, the
// clock and the machine can do. What must hold in all of them is checked after every step.

#include "tests/models/CycleLife.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <deque>
#include <iostream>
#include <map>
#include <set>
#include <utility>
#include <vector>

namespace models {
namespace {

/// The way to a state from one of the two beginnings.
struct Way {
    bool hadAFirstRun;
    Path deeds;
};

/// All states that can be reached, each with where every deed leads from there.
class Search {
public:
    Search() {
        for (const bool hadAFirstRun : {false, true}) {
            discover(Life{hadAFirstRun}.state(), {hadAFirstRun, {}});
        }
        while (!_open.empty() && !testing::Test::HasFailure()) {
            if (_untried.at(_open.front()).empty()) {
                _open.pop_front();
            } else {
                explore(_open.front());
            }
        }
    }

    std::size_t states() const { return _ways.size(); }
    std::size_t steps() const { return _steps; }

    /// The states from which no deeds lead to a running interval with no window in front.
    std::vector<State> dead() const {
        std::set<State> alive;
        for (bool hasGrown = true; hasGrown;) {
            hasGrown = false;
            for (const auto& [from, to] : _edges) {
                const bool isGoal = to.phase == AppState::Timing && to.window == Window::None && !to.isAsleep;
                if (isGoal || alive.contains(to)) {
                    hasGrown |= alive.insert(from).second;
                }
            }
        }
        std::vector<State> others;
        for (const auto& [state, way] : _ways) {
            if (!alive.contains(state)) {
                others.push_back(state);
            }
        }
        return others;
    }

    const std::map<State, Way>& ways() const { return _ways; }

private:
    void discover(const State& state, Way way) {
        if (_ways.emplace(state, std::move(way)).second) {
            _untried.emplace(state, Life::possible(state));
            _open.push_back(state);
        }
    }

    /// Lives the way to `state` again, and then goes on as long as there is something untried.
    void explore(State state) {
        const Way way = _ways.at(state);
        Life life{way.hadAFirstRun};
        for (const Deed each : way.deeds) {
            life.perform(each);
        }
        ASSERT_EQ(life.state(), state) << "the state leaves out something that matters";
        while (!_untried.at(state).empty()) {
            const Deed deed = _untried.at(state).back();
            _untried.at(state).pop_back();
            life.perform(deed);
            ++_steps;
            ASSERT_FALSE(testing::Test::HasFailure())
                << "after deed " << static_cast<int>(deed) << " in: " << state;
            const State next = life.state();
            Way longer = _ways.at(state);
            longer.deeds.push_back(deed);
            discover(next, std::move(longer));
            _edges.insert({state, next});
            state = next;
        }
    }

    std::map<State, Way> _ways;
    std::map<State, Path> _untried;
    std::deque<State> _open;
    std::set<std::pair<State, State>> _edges;
    std::size_t _steps = 0;
};

TEST(TheBreakCycle, IsNeverStuckAndKeepsItsDeadlineInEveryStateThatCanBeReached) {
    const Search search;
    std::cout << search.states() << " states, " << search.steps() << " steps\n";
    for (const State& state : search.dead()) {
        ADD_FAILURE() << "no way leads out of: " << state;
    }
    const auto rests = [](const auto& each) { return each.first.restsByTheSettings; };
    EXPECT_TRUE(std::any_of(search.ways().begin(), search.ways().end(), rests)); // the one exception can be reached
}

} // namespace
} // namespace models
