#include "platform/Desktop.hpp"

#include "platform/Bundle.hpp"
#include "platform/Fatal.hpp"

#include <stdexcept>

namespace platform {
namespace {

Desktop* current = nullptr;

} // namespace

Desktop::Desktop() {
    if (current) {
        throw std::logic_error{"there is a desktop already; a process has one at a time"};
    }
    current = this;
}

Desktop::~Desktop() { current = nullptr; }

Desktop& desktop() {
    if (!current) {
        fatal();
    }
    return *current;
}

Bundle& Bundle::main() {
    static Bundle bundle;
    return bundle;
}

std::optional<std::filesystem::path> Bundle::url(std::string_view name, std::string_view extension) const {
    return desktop().resource(name, extension);
}

std::optional<std::string> Data::contentsOf(const std::filesystem::path& url) { return desktop().contentsOf(url); }

std::optional<NSImage> NSImage::named(std::string_view name) { return desktop().imageNamed(name); }

std::shared_ptr<NSSound> NSSound::contentsOf(const std::filesystem::path& url, bool byReference) {
    if (!byReference) {
        fatal(); // no desktop keeps a sound in memory
    }
    return desktop().canPlay(url) ? std::make_shared<NSSound>(url) : nullptr;
}

bool NSSound::play() { return desktop().play(*this); }

void NSSound::beep() { desktop().beep(); }

NSWorkspace& NSWorkspace::shared() {
    static NSWorkspace workspace;
    return workspace;
}

NotificationCenter& NSWorkspace::notificationCenter() { return desktop().workspaceNotifications; }

bool Logger::isEnabled(Level level) const { return desktop().isLogEnabled(*this, level); }

void Logger::log(Level level, std::string_view message) const { desktop().log(*this, level, message); }

void print(std::string_view line) { desktop().print(line); }

} // namespace platform
