// Build information from any file. A line without a key or a value stops the program on purpose: such files are
// left to the death tests.

#include "config/BuildInfo.hpp"
#include "platform/Text.hpp"
#include "platform/simulated/SimulatedDesktop.hpp"
#include "tests/fuzz/Fuzz.hpp"

#include <map>
#include <optional>
#include <string>

namespace {

using Fields = std::map<std::string, std::string, std::less<>>;

/// What a file holds; nothing if it stops the program.
std::optional<Fields> fieldsOf(std::string_view text) {
    Fields fields{{"Build", "UNKNOWN"}, {"Date", "UNKNOWN"}, {"Version", "UNKNOWN"}};
    if (!platform::isUtf8(text)) {
        return fields;
    }
    for (std::string_view line : platform::nonEmptyLines(text)) {
        line = platform::trimmingWhitespace(line);
        while (line.starts_with('=')) {
            line.remove_prefix(1);
        }
        const auto [key, value] = fuzz::cut(line, "=");
        if (value.empty()) {
            return std::nullopt;
        }
        const auto field = fields.find(key);
        if (field == fields.end()) {
            break;
        }
        field->second = value;
    }
    return fields;
}

int runNothing(int, const char* const*) { return 0; }

} // namespace

void fuzz::check(std::string_view input) {
    const std::optional<Fields> fields = fieldsOf(input);
    if (!fields) {
        return;
    }
    static platform::simulated::SimulatedDesktop desktop{runNothing, [](const std::string&) {}};
    desktop.resources["BuildInfo.txt"] = platform::simulated::TextFile{std::string{input}};
    const auto info = marvelode::BuildInfo::fromResourceFile("BuildInfo");
    const Fields read{{"Build", info->build}, {"Date", info->date}, {"Version", info->version}};
    require(read == fields, "each field has its last value before the first unknown key");
}
