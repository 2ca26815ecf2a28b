#pragma once

// An error log that a test can read.

#include "platform/linux/ErrorLog.hpp"

#include <string>
#include <string_view>
#include <vector>

class CollectedErrors final : public platform::linux::ErrorLog {
public:
    void add(std::string_view problem) override { problems.emplace_back(problem); }

    std::vector<std::string> problems;
};
