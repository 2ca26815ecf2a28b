#include "platform/linux/Journal.hpp"

#include <glib.h>

#include <array>

namespace platform::linux {
namespace {

GLogField field(const char* name, std::string_view value) {
    return {name, value.data(), static_cast<gssize>(value.size())};
}

} // namespace

bool isJournalRunning() { return g_file_test("/run/systemd/journal/socket", G_FILE_TEST_EXISTS); }

void writeToJournal(const Logger& logger, Logger::Level level, std::string_view message) {
    constexpr std::string_view errorPriority = "3";
    switch (level) {
    case Logger::Level::Error:
        const std::array fields{field("MESSAGE", message), field("PRIORITY", errorPriority),
                                field("SYSLOG_IDENTIFIER", "marvelode-timer"), field("SUBSYSTEM", logger.subsystem),
                                field("CATEGORY", logger.category)};
        g_log_writer_journald(G_LOG_LEVEL_CRITICAL, fields.data(), fields.size(), nullptr);
        break;
    }
}

} // namespace platform::linux
