// Any settings file, and what is set while it is there. The input is the file; behind a line of "--" follow the
// settings that are changed, one in a line: "Mute=true".

#include "platform/linux/SettingsFile.hpp"
#include "tests/fuzz/Fuzz.hpp"
#include "tests/support/CollectedErrors.hpp"
#include "tests/support/TemporaryFolder.hpp"

#include <charconv>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

/// A disk that is done at once: what a crash would leave on it is not asked here.
extern "C" int fsync(int /*file*/) { return 0; }

namespace {

namespace fs = std::filesystem;
using namespace platform;
using namespace platform::linux;
using fuzz::require;

constexpr const char* group = "Settings";

using Values = std::map<std::string, DefaultsValue, std::less<>>;
/// What a file holds as it stands there, by group and key.
using Entries = std::map<std::pair<std::string, std::string>, std::string>;
using KeyFile = std::unique_ptr<GKeyFile, Release<g_key_file_unref>>;
using Names = std::unique_ptr<char*, Release<g_strfreev>>;

const fs::path& file() {
    static const TemporaryFolder folder;
    static const fs::path path = folder.path / "settings";
    return path;
}

const fs::path& damagedFile() {
    static const fs::path path = file().string() + ".damaged";
    return path;
}

std::string contentOf(const fs::path& path) {
    std::ifstream stream{path, std::ios::binary};
    return {std::istreambuf_iterator{stream}, {}};
}

void putInPlace(std::string_view content) {
    fs::remove(file());
    fs::remove(damagedFile());
    std::ofstream{file(), std::ios::binary} << content;
}

/// Nothing if GLib calls the file damaged. It takes a carriage return for half the end of a line once the other
/// half is there, as it is as soon as the file is written.
std::optional<Entries> entriesOf(std::string content) {
    if (content.ends_with('\r')) {
        content += '\n';
    }
    const KeyFile parsed{g_key_file_new()};
    const bool isText = g_utf8_validate(content.data(), static_cast<gssize>(content.size()), nullptr);
    if (!content.empty() && (!isText || !g_key_file_load_from_data(parsed.get(), content.data(), content.size(),
                                                                   G_KEY_FILE_KEEP_TRANSLATIONS, nullptr))) {
        return std::nullopt;
    }
    Entries entries;
    const Names groups{g_key_file_get_groups(parsed.get(), nullptr)};
    for (char** each = groups.get(); *each; ++each) {
        const Names keys{g_key_file_get_keys(parsed.get(), *each, nullptr, nullptr)};
        for (char** key = keys.get(); key && *key; ++key) {
            entries[{*each, *key}] = TextHandle{g_key_file_get_value(parsed.get(), *each, *key, nullptr)}.get();
        }
    }
    return entries;
}

template <typename Number>
std::optional<Number> numberIn(std::string_view text) {
    Number number{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc{} && end == text.data() + text.size() ? std::optional{number} : std::nullopt;
}

/// Texts in the program are without zero bytes, and its fractions are numbers.
std::optional<DefaultsValue> valueIn(std::string_view text) {
    if (text == "true" || text == "false") {
        return text == "true";
    }
    if (const auto number = numberIn<std::int64_t>(text)) {
        return *number;
    }
    if (const auto number = numberIn<double>(text)) {
        return std::isnan(*number) ? std::nullopt : std::optional<DefaultsValue>{*number};
    }
    const bool isText = g_utf8_validate(text.data(), static_cast<gssize>(text.size()), nullptr);
    return isText ? std::optional<DefaultsValue>{std::string{text}} : std::nullopt;
}

/// The changes that `lines` tell of, as far as their keys are such as the program has.
Values changesIn(std::string_view lines) {
    Values changes;
    while (!lines.empty()) {
        const auto [line, rest] = fuzz::cut(lines, "\n");
        const auto [key, text] = fuzz::cut(line, "=");
        const bool isKey = key == "TimerInterval" || key == "Mute" || key == "AlertSound" || key == "Version";
        if (const auto value = isKey ? valueIn(text) : std::nullopt) {
            changes.insert_or_assign(std::string{key}, *value);
        }
        lines = rest;
    }
    return changes;
}

void checkReading(const std::string& content, bool isDamaged) {
    CollectedErrors errors;
    SettingsFile settings{file(), errors};
    for (const char* key : {"Mute", "TimerInterval"}) {
        require(!isDamaged || !settings.value(key), "a damaged file has no values");
    }
    require(errors.problems.size() == (isDamaged ? 1 : 0), "a damaged file is reported, once");
    require(contentOf(isDamaged ? damagedFile() : file()) == content, "a file that is read stays as it is");
    require(fs::exists(file()) != isDamaged, "a damaged file is put aside");
}

void checkWriting(const Values& changes) {
    CollectedErrors errors;
    SettingsFile settings{file(), errors};
    for (const auto& [key, value] : changes) {
        settings.set(value, key);
        require(settings.value(key) == value, "a value is there as soon as it is set");
    }
    SettingsFile nextRun{file(), errors};
    for (const auto& [key, value] : changes) {
        require(nextRun.value(key) == value, "a value is there at the next run");
    }
    require(errors.problems.empty(), "nothing goes wrong with a file that is not damaged");
}

/// What is in the file and was not changed is there as before.
void checkTheRest(Entries before, const Values& changes) {
    std::optional<Entries> after = entriesOf(contentOf(file()));
    require(after.has_value(), "GLib reads what is written");
    for (const auto& [key, value] : changes) {
        before.erase({group, key});
        after->erase({group, key});
    }
    require(*after == before, "what is not changed is kept");
}

} // namespace

void fuzz::check(std::string_view input) {
    const auto [content, lines] = cut(input, "\n--\n");
    const std::string text{content};
    const std::optional<Entries> entries = entriesOf(text);
    const Values changes = changesIn(lines);
    putInPlace(text);
    checkReading(text, !entries);
    checkWriting(changes);
    checkTheRest(entries.value_or(Entries{}), changes);
}
