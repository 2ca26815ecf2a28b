#include "platform/linux/DesktopSettings.hpp"

#include <algorithm>
#include <array>
#include <utility>

namespace platform::linux {
namespace {

using Cause = DesktopValues::Cause;

constexpr std::array<std::pair<std::string_view, Cause>, 3> causes{
    {{"do-not-disturb", Cause::DoNotDisturb}, {"locked", Cause::Locked}, {"full-screen", Cause::FullScreen}}};

/// The words of a list, however their writer has separated and quoted them.
std::vector<std::string> wordsOf(std::string_view text) {
    constexpr std::string_view between = " \t,;[]'\"";
    std::vector<std::string> words;
    for (std::size_t begin = text.find_first_not_of(between); begin != std::string_view::npos;) {
        const std::size_t end = std::min(text.find_first_of(between, begin), text.size());
        words.emplace_back(text.substr(begin, end - begin));
        begin = text.find_first_not_of(between, end);
    }
    return words;
}

/// What a value stands for whose writer may have quoted it as a whole.
std::string unquoted(const std::string& text) {
    const VariantHandle quoted{g_variant_parse(G_VARIANT_TYPE_STRING, text.c_str(), nullptr, nullptr, nullptr)};
    return quoted ? g_variant_get_string(quoted.get(), nullptr) : text;
}

std::optional<double> numberIn(const std::string& text, double least, double most) {
    char* end = nullptr;
    const double number = g_ascii_strtod(text.c_str(), &end);
    const bool isNumber = !text.empty() && end == text.c_str() + text.size();
    return isNumber && number >= least && number <= most ? std::optional{number} : std::nullopt;
}

} // namespace

DesktopSettings::DesktopSettings(const SettingsFile& file, ErrorLog& errorLog)
    : _file{file}
    , _errorLog{errorLog} {}

const DesktopValues& DesktopSettings::current() {
    if (_reading != _file.readings()) {
        _reading = _file.readings();
        const std::set<std::string> known = std::exchange(_problems, {});
        parse();
        for (const std::string& problem : _problems) {
            if (!known.contains(problem)) {
                _errorLog.add(problem);
            }
        }
    }
    return _values;
}

std::optional<std::string> DesktopSettings::text(const char* key) const {
    const auto found = _file.desktopText(key);
    return found && !unquoted(*found).empty() ? found : std::nullopt;
}

void DesktopSettings::parse() {
    _values = {};
    if (const auto found = text("HoldWhile")) {
        parseHoldWhile(*found);
    }
    if (const auto found = text("HoldCommand")) {
        parseHoldCommand(*found);
    }
    if (const auto found = text("RestartAfterLocked")) {
        parseRestartAfterLocked(unquoted(*found));
    }
    if (const auto found = text("Volume")) {
        parseVolume(unquoted(*found));
    }
}

void DesktopSettings::parseHoldWhile(std::string_view text) {
    for (const std::string& word : wordsOf(text)) {
        const auto* const known =
            std::find_if(causes.begin(), causes.end(), [&](const auto& cause) { return cause.first == word; });
        if (known != causes.end()) {
            _values.holdWhile.insert(known->second);
        } else {
            complain("HoldWhile knows do-not-disturb, locked and full-screen, but not \"" + word + '"');
        }
    }
}

/// The quotes in it, even around the whole of it, are those of a shell.
void DesktopSettings::parseHoldCommand(const std::string& text) {
    char** words = nullptr;
    ErrorSlot error;
    const bool isCommand = g_shell_parse_argv(text.c_str(), nullptr, &words, error.out()) != FALSE;
    const TextsHandle owned{words};
    if (!isCommand) {
        complain(std::string{"HoldCommand cannot be understood: "} + error.message());
    }
    for (char** word = words; word && *word; ++word) {
        _values.holdCommand.emplace_back(*word);
    }
}

void DesktopSettings::parseRestartAfterLocked(const std::string& text) {
    constexpr double mostSeconds = 1e9;
    if (const auto seconds = numberIn(text, 1, mostSeconds)) {
        _values.restartAfterLocked = std::chrono::seconds{static_cast<std::int64_t>(*seconds)};
    } else {
        complain("RestartAfterLocked is a number of seconds from 1, and not \"" + text + '"');
    }
}

void DesktopSettings::parseVolume(const std::string& text) {
    _values.volume = numberIn(text, 0, 1);
    if (!_values.volume) {
        complain("Volume is a number from 0 to 1, and not \"" + text + '"');
    }
}

} // namespace platform::linux
