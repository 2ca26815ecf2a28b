#pragma once

// What the program wrote to the unified log, as the shim of <os/log.h> keeps it for tests.

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
