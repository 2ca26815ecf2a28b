#include "platform/linux/ErrorLog.hpp"

#include "platform/Logger.hpp"
#include "platform/linux/Journal.hpp"

#include <glib.h>

#include <cstdio>

namespace platform::linux {

void StandardErrorLog::add(std::string_view problem) {
    std::fprintf(stderr, "marvelode-timer: %.*s\n", static_cast<int>(problem.size()), problem.data());
    if (isJournalRunning() && !g_log_writer_is_journald(fileno(stderr))) {
        writeToJournal(Logger{"Marvelode Timer", "Desktop"}, Logger::Level::Error, problem);
    }
}

} // namespace platform::linux
