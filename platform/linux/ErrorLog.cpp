#include "platform/linux/ErrorLog.hpp"

#include "platform/Logger.hpp"
#include "platform/linux/Journal.hpp"
#include "platform/linux/Output.hpp"

#include <glib.h>
#include <unistd.h>

#include <string>

namespace platform::linux {
namespace {

std::chrono::seconds secondsNow() { return std::chrono::seconds{g_get_monotonic_time() / G_USEC_PER_SEC}; }

} // namespace

void StandardErrorLog::add(std::string_view problem) {
    if (_latest.size() == kept) {
        _latest.erase(_latest.begin());
    }
    _latest.push_back({secondsNow(), std::string{problem}});
    writeAtOnce(STDERR_FILENO, "marvelode-timer: " + std::string{problem} + '\n');
    if (isJournalRunning() && !g_log_writer_is_journald(STDERR_FILENO)) {
        writeToJournal(Logger{"Marvelode Timer", "Desktop"}, Logger::Level::Error, problem);
    }
}

std::vector<std::string> StandardErrorLog::latest() const {
    std::vector<std::string> lines;
    for (const auto& [time, text] : _latest) {
        lines.push_back(std::to_string((secondsNow() - time).count()) + " s ago: " + text);
    }
    return lines;
}

} // namespace platform::linux
