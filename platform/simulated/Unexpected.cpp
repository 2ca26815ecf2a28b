#include "platform/simulated/Unexpected.hpp"

namespace platform::simulated {

std::string inQuotes(std::string_view text) { return "\"" + std::string{text} + "\""; }

void missing(std::string_view kind, std::string_view name) {
    throw Unexpected{"there is no " + std::string{kind} + " " + inQuotes(name)};
}

} // namespace platform::simulated
