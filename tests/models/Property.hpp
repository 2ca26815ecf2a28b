#pragma once

// Properties that hold for thousands of random sequences. The seed of a failure is printed; RC_PARAMS in the
// environment repeats it.

#include "tests/support/Sanitizers.hpp"

#include <gtest/gtest.h>
#include <rapidcheck.h>

#include <cstdlib>
#include <string>

namespace models {

/// How many random sequences each property is tried on.
constexpr int sequences = isSanitized ? 200 : 10'000;

/// Fails the test if `property` does not hold for every one of `count` sequences.
template <typename Property>
void expectAlways(const std::string& description, Property&& property, int count = sequences) {
    setenv("RC_PARAMS", ("max_success=" + std::to_string(count)).c_str(), false);
    EXPECT_TRUE(rc::check(description, std::forward<Property>(property)));
}

} // namespace models
