#pragma once

// The system's journal. Entries are dropped where none is running or it takes none at that moment; the program
// prints its messages as well.

#include "platform/Logger.hpp"

#include <string_view>

namespace platform::linux {

inline constexpr const char* journalSocket = "/run/systemd/journal/socket";

/// Whether a journal is running.
bool isJournalRunning();

/// Adds an entry with the logger's subsystem and category as the fields SUBSYSTEM and CATEGORY.
void writeToJournal(const Logger& logger, Logger::Level level, std::string_view message,
                    const char* socket = journalSocket);

} // namespace platform::linux
