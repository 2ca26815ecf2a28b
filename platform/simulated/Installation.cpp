#include "platform/simulated/SimulatedDesktop.hpp"

// What is stored on a simulated desktop and what comes out of it: settings, resources, sounds and messages.

#include <utility>

namespace platform::simulated {
namespace {

template <typename Value>
std::optional<Value> found(const std::map<std::string, Value, std::less<>>& map, std::string_view key) {
    const auto position = map.find(key);
    return position == map.end() ? std::nullopt : std::optional{position->second};
}

template <typename Kind>
const Kind* fileAs(const Resources& resources, std::string_view name) {
    const auto position = resources.find(name);
    return position == resources.end() ? nullptr : std::get_if<Kind>(&position->second);
}

} // namespace

// Settings

DefaultsValue SimulatedDesktop::valueForKey(std::string_view key, DefaultsValue absent) const {
    if (const auto argument = found(_arguments, key)) {
        return *argument;
    }
    return found(defaults, key).value_or(std::move(absent));
}

bool SimulatedDesktop::boolForKey(std::string_view key) { return boolFromDefaults(valueForKey(key, false)); }

std::int64_t SimulatedDesktop::integerForKey(std::string_view key) {
    return integerFromDefaults(valueForKey(key, std::int64_t{0}));
}

std::optional<std::string> SimulatedDesktop::stringForKey(std::string_view key) {
    const bool isKnown = _arguments.contains(key) || defaults.contains(key);
    return isKnown ? std::optional{stringFromDefaults(valueForKey(key, false))} : std::nullopt;
}

void SimulatedDesktop::setDefault(DefaultsValue value, std::string_view key) {
    note(Journal::Kind::Stored, std::string{key} + " " + stringFromDefaults(value));
    const auto position = defaults.find(key);
    if (position == defaults.end()) {
        defaults.emplace(key, std::move(value));
    } else {
        position->second = std::move(value);
    }
}

// Resources: a file's address is its name

std::optional<std::filesystem::path> SimulatedDesktop::resource(std::string_view name, std::string_view extension) {
    std::string file = std::string{name} + "." + std::string{extension};
    _lookedUp.insert(file);
    return resources.contains(file) ? std::optional<std::filesystem::path>{std::move(file)} : std::nullopt;
}

std::optional<std::string> SimulatedDesktop::contentsOf(const std::filesystem::path& url) {
    const auto* file = fileAs<TextFile>(resources, url.native());
    return file ? std::optional{file->bytes} : std::nullopt;
}

std::optional<NSImage> SimulatedDesktop::imageNamed(std::string_view name) {
    const auto* file = fileAs<PictureFile>(resources, name);
    return file ? std::optional{NSImage{std::string{name}, name, file->size}} : std::nullopt;
}

// Sounds

bool SimulatedDesktop::canPlay(const std::filesystem::path& url) {
    return fileAs<SoundFile>(resources, url.native());
}

bool SimulatedDesktop::play(const NSSound& sound) {
    const auto* file = fileAs<SoundFile>(resources, sound.url.native());
    TimerQueue::Instant& until = _playingUntil[&sound];
    if (!file || until > _uptime) {
        return false;
    }
    until = _uptime + file->length;
    note(Journal::Kind::Heard, sound.url.stem());
    return true;
}

// Messages

void SimulatedDesktop::log(const Logger& logger, Logger::Level /*level*/, std::string_view message) {
    note(Journal::Kind::Logged, std::string{message});
    _logged.push_back({logger.subsystem, logger.category, std::string{message}});
}

SimulatedDesktop::Lines SimulatedDesktop::heard() { return _journal.news(Journal::Kind::Heard); }

SimulatedDesktop::Lines SimulatedDesktop::printed() { return _journal.news(Journal::Kind::Printed); }

std::vector<LogEntry> SimulatedDesktop::logged() { return std::exchange(_logged, {}); }

SimulatedDesktop::Lines SimulatedDesktop::journal() {
    _unseenAlerts.clear();
    _logged.clear();
    return _journal.all();
}

} // namespace platform::simulated
