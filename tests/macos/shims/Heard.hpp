#pragma once

// What the program wrote to the unified log and what it let be heard, as the shims keep it for tests.

#import <os/log.h>

#include <string>
#include <vector>

struct LogEntry {
    std::string subsystem;
    std::string category;
    os_log_type_t type;
    std::string format;
    std::string argument;
};

/// All entries of this process, in order.
std::vector<LogEntry>& logEntries();

/// The file names of the MPEG-4 sounds that were started, in order.
std::vector<std::string>& playedSounds();

/// How often the program beeped.
int beeps();
