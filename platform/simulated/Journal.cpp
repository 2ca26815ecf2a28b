#include "platform/simulated/Journal.hpp"

#include <utility>

namespace platform::simulated {
namespace {

const char* nameOf(Journal::Kind kind) {
    switch (kind) {
    case Journal::Kind::Stored:
        return "stored ";
    case Journal::Kind::Published:
        return "published ";
    case Journal::Kind::Heard:
        return "heard ";
    case Journal::Kind::Shown:
        return "shown ";
    case Journal::Kind::Closed:
        return "closed ";
    case Journal::Kind::Printed:
        return "printed ";
    case Journal::Kind::Logged:
        return "logged ";
    }
    return "";
}

} // namespace

void Journal::add(Kind kind, std::string text) {
    Entry entry{kind, std::move(text)};
    const bool isRepeatedStore = kind == Kind::Stored && !_entries.empty() && _entries.back() == entry;
    if (!isRepeatedStore) {
        _entries.push_back(std::move(entry));
    }
}

std::vector<std::string> Journal::news(Kind kind) {
    std::vector<std::string> texts;
    for (std::size_t& next = _asked[static_cast<std::size_t>(kind)]; next < _entries.size(); ++next) {
        if (_entries[next].kind == kind) {
            texts.push_back(_entries[next].text);
        }
    }
    return texts;
}

std::vector<std::string> Journal::all() {
    std::vector<std::string> lines;
    for (const Entry& entry : _entries) {
        lines.push_back(nameOf(entry.kind) + entry.text);
    }
    _entries.clear();
    _asked.fill(0);
    return lines;
}

} // namespace platform::simulated
