#pragma once

// The part of the unified log that the program uses.

#include <cstdint>

typedef struct os_log_s* os_log_t;

typedef std::uint8_t os_log_type_t;
inline constexpr os_log_type_t OS_LOG_TYPE_ERROR = 0x10;

os_log_t os_log_create(const char* subsystem, const char* category);
bool os_log_type_enabled(os_log_t oslog, os_log_type_t type);

// a macro on a Mac, too
#define os_log_with_type(log, type, format, ...) logEntry(log, type, format, __VA_ARGS__)

void logEntry(os_log_t log, os_log_type_t type, const char* format, const char* argument);
