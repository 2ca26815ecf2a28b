#pragma once

// The program's one error type. It is thrown and caught within one operation; its text is logged at most.

#include <exception>
#include <string>
#include <utility>

namespace marvelode {

class Err : public std::exception {
public:
    explicit Err(std::string message)
        : msg{std::move(message)} {}

    /// The message alone, without decoration.
    const std::string& description() const noexcept { return msg; }

    const char* what() const noexcept override { return msg.c_str(); }

    const std::string msg;
};

} // namespace marvelode
