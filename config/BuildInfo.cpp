#include "config/BuildInfo.hpp"

#include "app/Err.hpp"
#include "platform/Bundle.hpp"
#include "platform/Fatal.hpp"
#include "platform/Text.hpp"

#include <optional>

namespace marvelode {
namespace {

using namespace std::string_literals;

constexpr std::string_view unknown = "UNKNOWN";

std::optional<std::string> readResource(std::string_view basename) {
    const auto url = platform::Bundle::main().url(basename, "txt");
    std::optional<std::string> text = url ? platform::Data::contentsOf(*url) : std::nullopt;
    return text && platform::isUtf8(*text) ? text : std::nullopt;
}

/// Cuts a line at its first "=" that has text before it.
std::pair<std::string_view, std::string_view> keyAndValue(std::string_view line) {
    const std::size_t start = line.find_first_not_of('=');
    const std::size_t cut = line.find('=', start);
    if (start == std::string_view::npos || cut == std::string_view::npos || cut + 1 == line.size()) {
        platform::fatal();
    }
    return {line.substr(start, cut - start), line.substr(cut + 1)};
}

void parse(std::string_view text, BuildInfo& info) {
    for (const std::string_view line : platform::nonEmptyLines(text)) {
        const auto [key, value] = keyAndValue(platform::trimmingWhitespace(line));
        if (key == "Build") {
            info.build = value;
        } else if (key == "Date") {
            info.date = value;
        } else if (key == "Version") {
            info.version = value;
        } else {
            throw Err{"Unrecognized build info key "s.append(key)};
        }
    }
    const std::pair<const char*, const std::string&> fields[] = {
        {"build", info.build}, {"date", info.date}, {"version", info.version}};
    for (const auto& [name, value] : fields) {
        if (value == unknown) {
            throw Err{"Missing field \""s + name + "\" in build info"};
        }
    }
}

} // namespace

std::shared_ptr<BuildInfo> BuildInfo::fromResourceFile(std::string_view basename) {
    auto info = std::make_shared<BuildInfo>(std::string{unknown}, std::string{unknown}, std::string{unknown});
    if (const std::optional<std::string> text = readResource(basename)) {
        try {
            parse(*text, *info);
        } catch (const Err&) {
            // An incomplete file is no reason not to start: what was read counts, the rest stays unknown.
        }
    }
    return info;
}

} // namespace marvelode
