#include "platform/linux/ErrorLog.hpp"

#include "platform/Logger.hpp"
#include "platform/linux/Journal.hpp"
#include "platform/linux/Output.hpp"

#include <glib.h>
#include <unistd.h>

#include <string>

namespace platform::linux {

void StandardErrorLog::add(std::string_view problem) {
    writeAtOnce(STDERR_FILENO, "marvelode-timer: " + std::string{problem} + '\n');
    if (isJournalRunning() && !g_log_writer_is_journald(STDERR_FILENO)) {
        writeToJournal(Logger{"Marvelode Timer", "Desktop"}, Logger::Level::Error, problem);
    }
}

} // namespace platform::linux
