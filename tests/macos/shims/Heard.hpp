#pragma once

// What the program asked of functions that are no methods, as the shims keep it for tests: the unified log, beeps.

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

/// How many logs were asked for.
int createdLogs();

/// How often the program beeped.
int beeps();
