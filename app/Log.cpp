#include "app/Log.hpp"

namespace marvelode {

const platform::Logger& Log::logger() {
    static const platform::Logger logger{"Marvelode Timer", "MarvelodeLog"};
    return logger;
}

void Log::error(std::string_view message) {
    platform::print(message);
    if (logger().isEnabled(platform::Logger::Level::Error)) {
        logger().log(platform::Logger::Level::Error, message);
    }
}

} // namespace marvelode
