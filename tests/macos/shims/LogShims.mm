// The unified log, which keeps its entries for the tests.

#import "tests/macos/shims/Heard.hpp"

#include <chrono>
#include <map>
#include <mutex>
#include <thread>
#include <utility>

struct os_log_s {
    std::string subsystem;
    std::string category;
};

namespace {

int createdLogCount = 0;
std::mutex logMutex; // Apple's log is for all threads

} // namespace

std::vector<LogEntry>& logEntries() {
    static std::vector<LogEntry> entries;
    return entries;
}

int createdLogs() { return createdLogCount; }

os_log_t os_log_create(const char* subsystem, const char* category) {
    std::this_thread::sleep_for(std::chrono::milliseconds{10}); // time for another thread to ask for one
    const std::scoped_lock lock{logMutex};
    ++createdLogCount;
    static std::map<std::pair<std::string, std::string>, os_log_s> logs; // one for each name, as Apple's are
    return &logs.try_emplace({subsystem, category}, os_log_s{subsystem, category}).first->second;
}

bool os_log_type_enabled(os_log_t oslog, os_log_type_t type) { return oslog && type == OS_LOG_TYPE_ERROR; }

void logEntry(os_log_t log, os_log_type_t type, const char* format, const char* argument) {
    const std::scoped_lock lock{logMutex};
    logEntries().push_back({log->subsystem, log->category, type, format, argument});
}
